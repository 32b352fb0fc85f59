#include "spatial/MapData.h"

#include "support/FakeSlam.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>
#include <random>

using ::testing::ElementsAre;

namespace {

std::shared_ptr<const qv::SlamMap> map(std::vector<qv::Vector3> points)
{
    auto made = std::make_shared<qv::SlamMap>();
    made->points = std::move(points);
    return made;
}

std::vector<float> floats(const QByteArray &bytes)
{
    std::vector<float> values(std::size_t(bytes.size()) / sizeof(float));
    std::memcpy(values.data(), bytes.constData(), values.size() * sizeof(float));
    return values;
}

} // namespace

TEST(MapData, nullComponentThrows)
{
    try {
        const MapData data(nullptr, nullptr);
        FAIL();
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "Invalid Slam");
    }
}

TEST(MapData, itsMakingSeedsTheRandomNumbersByTheClock)
{
    const auto slam = std::make_shared<FakeSlam>();
    const auto firstAfter = [](std::time_t seed) {
        std::srand(static_cast<unsigned int>(seed)); // NOLINT
        return std::rand(); // NOLINT
    };
    const std::time_t before = std::time(nullptr);
    const MapData data(slam, nullptr);
    const int drawn = std::rand(); // NOLINT
    const std::time_t after = std::time(nullptr);
    bool found = false;
    for (std::time_t seed = before; seed <= after; ++seed)
        found = found || drawn == firstAfter(seed);
    EXPECT_TRUE(found);
}

TEST(MapData, staysRegisteredForItsLife)
{
    auto slam = std::make_shared<FakeSlam>();
    {
        const MapData data(slam, nullptr);
        EXPECT_THAT(slam->takeCalls(), ElementsAre("registerMapCallback"));
    }
    EXPECT_THAT(slam->takeCalls(), ElementsAre("unregisterMapCallback(41)"));
}

TEST(MapData, refusedRegistrationIsUnregisteredAsMinusOne)
{
    auto slam = std::make_shared<FakeSlam>();
    slam->maps.refuses = true;
    {
        const MapData data(slam, nullptr);
    }
    EXPECT_EQ(slam->calls().back(), "unregisterMapCallback(-1)");
}

TEST(MapData, pointsArePackedAndAnnouncedInOrder)
{
    auto slam = std::make_shared<FakeSlam>();
    const MapData data(slam, nullptr);
    std::vector<std::string> order;
    QObject::connect(&data, &MapData::pointCountChanged, [&] { order.emplace_back("count"); });
    QObject::connect(data.pointCloud(), &PointCloud::pointsChanged, [&] { order.emplace_back("points"); });
    QObject::connect(data.pointCloud(), &PointCloud::sizeChanged, [&] { order.emplace_back("size"); });
    QObject::connect(data.pointCloud(), &PointCloud::update, [&] { order.emplace_back("update"); });
    slam->maps.deliver(map({{1, 2, 3}, {-4.5, 5, 6}}));
    EXPECT_THAT(order, ElementsAre("count", "points", "size", "update"));
    EXPECT_EQ(data.pointCount(), 2);
    EXPECT_EQ(data.pointCloud()->size(), 2);
    EXPECT_THAT(floats(data.pointCloud()->points()), ElementsAre(1, 2, 3, -4.5F, 5, 6));
}

TEST(MapData, posesAndKeyframesFollowTheUpdateOfTheCloud)
{
    auto slam = std::make_shared<FakeSlam>();
    MapData data(slam, nullptr);
    data.setPoses({1});
    data.setKeyframeCount(7);
    std::vector<std::string> order;
    QObject::connect(data.pointCloud(), &PointCloud::update, [&] { order.emplace_back("update"); });
    QObject::connect(&data, &MapData::posesChanged, [&] { order.emplace_back("poses"); });
    QObject::connect(&data, &MapData::keyframeCountChanged, [&] { order.emplace_back("keyframes"); });
    slam->maps.deliver(map({{1, 2, 3}}));
    EXPECT_THAT(order, ElementsAre("update", "poses", "keyframes"));
}

TEST(MapData, everyNumberIsNarrowedByItself)
{
    auto slam = std::make_shared<FakeSlam>();
    const MapData data(slam, nullptr);
    std::mt19937 random(7); // NOLINT: the same maps in each run
    std::uniform_real_distribution<double> metres(-100, 100);
    // Larger and smaller ones in turn, and counts that fill no vector register.
    for (const int count : {1, 3, 1001, 2, 5, 2003}) {
        std::vector<qv::Vector3> points;
        std::vector<float> expected;
        for (int i = 0; i < count; ++i) {
            points.push_back({metres(random), metres(random), metres(random)});
            expected.push_back(float(points.back().x));
            expected.push_back(float(points.back().y));
            expected.push_back(float(points.back().z));
        }
        slam->maps.deliver(map(points));
        EXPECT_EQ(data.pointCloud()->size(), count);
        EXPECT_EQ(floats(data.pointCloud()->points()), expected);
    }
}

TEST(MapData, emptyMapShowsNoPoints)
{
    auto slam = std::make_shared<FakeSlam>();
    const MapData data(slam, nullptr);
    slam->maps.deliver(map({{1, 2, 3}}));
    const QSignalSpy update(data.pointCloud(), &PointCloud::update);
    slam->maps.deliver(map({}));
    EXPECT_EQ(data.pointCount(), 0);
    EXPECT_EQ(data.pointCloud()->size(), 0);
    EXPECT_TRUE(data.pointCloud()->points().isEmpty());
    EXPECT_EQ(update.count(), 1);
}

TEST(MapData, sameMapIsSentAgainAndOnlyTheCountStaysSilent)
{
    auto slam = std::make_shared<FakeSlam>();
    const MapData data(slam, nullptr);
    const auto same = map({{1, 2, 3}});
    slam->maps.deliver(same);
    const QSignalSpy count(&data, &MapData::pointCountChanged);
    const QSignalSpy points(data.pointCloud(), &PointCloud::pointsChanged);
    const QSignalSpy update(data.pointCloud(), &PointCloud::update);
    slam->maps.deliver(same);
    EXPECT_EQ(count.count(), 0);
    EXPECT_EQ(points.count(), 1);
    EXPECT_EQ(update.count(), 1);
}

TEST(MapData, nullMapChangesNothing)
{
    auto slam = std::make_shared<FakeSlam>();
    const MapData data(slam, nullptr);
    slam->maps.deliver(map({{1, 2, 3}}));
    const QSignalSpy update(data.pointCloud(), &PointCloud::update);
    slam->maps.deliver(nullptr);
    EXPECT_EQ(update.count(), 0);
    EXPECT_EQ(data.pointCount(), 1);
}

TEST(MapData, valuesBeyondAFloatBecomeInfinite)
{
    auto slam = std::make_shared<FakeSlam>();
    const MapData data(slam, nullptr);
    slam->maps.deliver(map({{1e300, -1e300, std::numeric_limits<double>::quiet_NaN()}}));
    const std::vector<float> values = floats(data.pointCloud()->points());
    EXPECT_EQ(values[0], std::numeric_limits<float>::infinity());
    EXPECT_EQ(values[1], -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(values[2]));
}

/// Where the processor has wide vectors, many are narrowed at a time and the last ones singly.
TEST(MapData, mapsOfEachLengthAreNarrowedAlike)
{
    auto slam = std::make_shared<FakeSlam>();
    const MapData data(slam, nullptr);
    constexpr double special[]{1e300, -1e300, 1e-300, -0.0, std::numeric_limits<double>::infinity(), 0.1,
        16777217, 1.0 / 3, std::numeric_limits<double>::quiet_NaN()};
    for (std::size_t count = 1; count < 20; ++count) {
        SCOPED_TRACE(count);
        std::vector<qv::Vector3> points;
        std::vector<float> expected;
        for (std::size_t i = 0; i < count; ++i) {
            const double x = special[i % 9], y = special[(i + 4) % 9] - double(i), z = double(i) * 0.7;
            points.push_back({x, y, z});
            for (const double value : {x, y, z})
                expected.push_back(static_cast<float>(value));
        }
        slam->maps.deliver(map(points));
        const std::vector<float> values = floats(data.pointCloud()->points());
        ASSERT_EQ(values.size(), expected.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (std::isnan(expected[i]))
                EXPECT_TRUE(std::isnan(values[i])) << i;
            else
                EXPECT_TRUE(values[i] == expected[i] && std::signbit(values[i]) == std::signbit(expected[i]))
                    << i;
        }
    }
}

TEST(MapData, latestMapIsKeptAliveUntilTheNextOrNone)
{
    auto slam = std::make_shared<FakeSlam>();
    const MapData data(slam, nullptr);
    for (const auto &next : {map({}), decltype(map({}))()}) {
        auto first = map({{1, 2, 3}});
        const std::weak_ptr<const qv::SlamMap> watch = first;
        slam->maps.deliver(first);
        first.reset();
        EXPECT_FALSE(watch.expired());
        slam->maps.deliver(next);
        EXPECT_TRUE(watch.expired());
    }
}

TEST(MapData, posesStayEmptyAndKeyframesZero)
{
    auto slam = std::make_shared<FakeSlam>();
    MapData data(slam, nullptr);
    const QSignalSpy poses(&data, &MapData::posesChanged);
    const QSignalSpy keyframes(&data, &MapData::keyframeCountChanged);
    slam->maps.deliver(map({{1, 2, 3}}));
    EXPECT_EQ(poses.count(), 0);
    EXPECT_EQ(keyframes.count(), 0);
    data.setPoses({1});
    data.setKeyframeCount(7);
    slam->maps.deliver(map({{1, 2, 3}}));
    EXPECT_TRUE(data.poses().isEmpty());
    EXPECT_EQ(data.keyframeCount(), 0);
    EXPECT_EQ(poses.count(), 2);
    EXPECT_EQ(keyframes.count(), 2);
}

TEST(MapData, signalsCarryWhatIsStored)
{
    auto slam = std::make_shared<FakeSlam>();
    MapData data(slam, nullptr);
    const QSignalSpy points(&data, &MapData::pointCountChanged);
    const QSignalSpy poses(&data, &MapData::posesChanged);
    const QSignalSpy keyframes(&data, &MapData::keyframeCountChanged);
    slam->maps.deliver(map({{1, 2, 3}, {4, 5, 6}}));
    data.setPoses({1, 2, 3});
    data.setKeyframeCount(7);
    ASSERT_EQ(points.count(), 1);
    EXPECT_EQ(points[0][0].toInt(), 2);
    ASSERT_EQ(poses.count(), 1);
    EXPECT_EQ(poses[0][0].toJsonArray(), (QJsonArray{1, 2, 3}));
    ASSERT_EQ(keyframes.count(), 1);
    EXPECT_EQ(keyframes[0][0].toInt(), 7);
}

TEST(MapData, callbackOnItsWayFindsTheModelGone)
{
    auto slam = std::make_shared<FakeSlam>();
    auto data = std::make_unique<MapData>(slam, nullptr);
    const auto late = slam->maps.held();
    data.reset();
    const auto points = map({{1, 2, 3}});
    late.front()(points);
    EXPECT_EQ(points.use_count(), 1); // nobody has taken it
    EXPECT_EQ(slam->maps.count(), 0U);
}
