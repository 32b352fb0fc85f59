#include "spatial/PlanesData.h"

#include "support/FakeSlam.h"

#include <QJsonObject>
#include <cmath>

using ::testing::ElementsAre;

namespace {

qv::Slam::Planes planes(std::vector<qv::Plane> list)
{
    return std::make_shared<const std::vector<qv::Plane>>(std::move(list));
}

QString colorOf(const std::string &id)
{
    auto slam = std::make_shared<FakeSlam>();
    const PlanesData data(slam, nullptr);
    slam->tofPlanes.deliver(planes({{id, {}}}));
    return data.tofPlanes()[0].toObject()[QStringLiteral("color")].toString();
}

} // namespace

TEST(PlanesData, nullComponentThrows)
{
    try {
        const PlanesData data(nullptr, nullptr);
        FAIL();
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "Invalid Slam");
    }
}

TEST(PlanesData, registersStereoThenTofAndStopsAtItsEnd)
{
    auto slam = std::make_shared<FakeSlam>();
    {
        const PlanesData data(slam, nullptr);
        EXPECT_THAT(
            slam->takeCalls(), ElementsAre("registerStereoPlanesCallback", "registerTofPlanesCallback"));
    }
    EXPECT_THAT(slam->takeCalls(),
        ElementsAre("unregisterStereoPlanesCallback(21)", "unregisterTofPlanesCallback(31)", "stop"));
}

TEST(PlanesData, planeBecomesColorNameAndPoints)
{
    auto slam = std::make_shared<FakeSlam>();
    const PlanesData data(slam, nullptr);
    slam->stereoPlanes.deliver(planes({{"3", {{0.1, 0.2, 0.3}, {4, 5, 6}}}}));
    ASSERT_EQ(data.stereoPlanes().size(), 1);
    const QJsonObject plane = data.stereoPlanes()[0].toObject();
    EXPECT_EQ(plane.keys(), (QStringList{"color", "name", "points"}));
    EXPECT_EQ(plane["color"].toString(), QStringLiteral("#0082c8"));
    EXPECT_EQ(plane["name"].toString(), QStringLiteral("3"));
    EXPECT_EQ(plane["points"].toArray(), (QJsonArray{QJsonArray{0.1, 0.2, 0.3}, QJsonArray{4, 5, 6}}));
    EXPECT_TRUE(data.tofPlanes().isEmpty());
}

TEST(PlanesData, planesKeepTheirOrder)
{
    auto slam = std::make_shared<FakeSlam>();
    const PlanesData data(slam, nullptr);
    slam->tofPlanes.deliver(planes({{"2", {}}, {"1", {}}, {"3", {}}}));
    QStringList names;
    for (const QJsonValue &plane : data.tofPlanes())
        names.append(plane.toObject()["name"].toString());
    EXPECT_EQ(names, (QStringList{"2", "1", "3"}));
}

TEST(PlanesData, refusedRegistrationsAreUnregisteredAsMinusOne)
{
    auto slam = std::make_shared<FakeSlam>();
    slam->stereoPlanes.refuses = true;
    slam->tofPlanes.refuses = true;
    {
        const PlanesData data(slam, nullptr);
        slam->takeCalls();
    }
    EXPECT_THAT(slam->takeCalls(),
        ElementsAre("unregisterStereoPlanesCallback(-1)", "unregisterTofPlanesCallback(-1)", "stop"));
}

TEST(PlanesData, paletteStandsInItsOrder)
{
    const char *const names[]{"#e6194b", "#3cb44b", "#ffe119", "#0082c8", "#f58230", "#911eb4", "#46f0f0",
        "#f032e6", "#d2f53c", "#fabebe", "#008080", "#e6beff", "#aa6e28", "#fffac8", "#800000", "#aaffc3",
        "#808000", "#ffd7b4"};
    for (int i = 0; i < 18; ++i)
        EXPECT_EQ(colorOf(std::to_string(i)), QLatin1String(names[i])) << i;
    EXPECT_EQ(colorOf("21"), colorOf("3"));
    EXPECT_EQ(colorOf("not a number"), colorOf("0"));
    EXPECT_EQ(colorOf("99999999999"), colorOf("0")); // more than an int holds
    EXPECT_EQ(colorOf("0x3"), colorOf("0"));
    EXPECT_EQ(colorOf(""), colorOf("0"));
    EXPECT_EQ(colorOf("-1"), colorOf("17"));
    EXPECT_EQ(colorOf("-18"), colorOf("0"));
}

TEST(PlanesData, samePlanesEmitNothing)
{
    auto slam = std::make_shared<FakeSlam>();
    const PlanesData data(slam, nullptr);
    const QSignalSpy tof(&data, &PlanesData::tofPlanesChanged);
    const QSignalSpy stereo(&data, &PlanesData::stereoPlanesChanged);
    for (int i = 0; i < 2; ++i) {
        slam->tofPlanes.deliver(planes({{"1", {{1, 2, 3}}}}));
        slam->stereoPlanes.deliver(planes({{"1", {{1, 2, 3}}}}));
    }
    EXPECT_EQ(tof.count(), 1);
    EXPECT_EQ(stereo.count(), 1);
}

TEST(PlanesData, nullAndEmptyListsEmptyTheArray)
{
    auto slam = std::make_shared<FakeSlam>();
    const PlanesData data(slam, nullptr);
    for (const qv::Slam::Planes &none : {qv::Slam::Planes(), planes({})}) {
        slam->tofPlanes.deliver(planes({{"1", {{1, 2, 3}}}}));
        slam->stereoPlanes.deliver(planes({{"1", {{1, 2, 3}}}}));
        slam->tofPlanes.deliver(none);
        EXPECT_TRUE(data.tofPlanes().isEmpty());
        EXPECT_EQ(data.stereoPlanes().size(), 1);
        slam->stereoPlanes.deliver(none);
        EXPECT_TRUE(data.stereoPlanes().isEmpty());
    }
}

TEST(PlanesData, planeWithoutPointsHasAnEmptyOutline)
{
    auto slam = std::make_shared<FakeSlam>();
    const PlanesData data(slam, nullptr);
    slam->tofPlanes.deliver(planes({{"1", {}}}));
    EXPECT_TRUE(data.tofPlanes()[0].toObject()["points"].isArray());
    EXPECT_TRUE(data.tofPlanes()[0].toObject()["points"].toArray().isEmpty());
}

TEST(PlanesData, pointsThatAreNoNumbersPassAndRepeatWithoutASignal)
{
    auto slam = std::make_shared<FakeSlam>();
    const PlanesData data(slam, nullptr);
    const QSignalSpy changed(&data, &PlanesData::tofPlanesChanged);
    const double nan = std::nan("");
    for (int i = 0; i < 2; ++i)
        slam->tofPlanes.deliver(planes({{"1", {{nan, INFINITY, -INFINITY}, {1, 2, 3}}}}));
    ASSERT_EQ(data.tofPlanes().size(), 1);
    const QJsonArray points = data.tofPlanes()[0].toObject()["points"].toArray();
    ASSERT_EQ(points.size(), 2);
    EXPECT_TRUE(std::isnan(points[0].toArray()[0].toDouble()));
    EXPECT_EQ(points[0].toArray()[1].toDouble(), INFINITY);
    EXPECT_EQ(points[0].toArray()[2].toDouble(), -INFINITY);
    EXPECT_EQ(points[1].toArray(), (QJsonArray{1, 2, 3}));
    EXPECT_EQ(changed.count(), 1);
}

TEST(PlanesData, clearEmptiesOnlyWhenTheLibraryAgrees)
{
    auto slam = std::make_shared<FakeSlam>();
    PlanesData data(slam, nullptr);
    slam->tofPlanes.deliver(planes({{"1", {}}}));
    slam->stereoPlanes.deliver(planes({{"1", {}}}));
    slam->clearResult = false;
    EXPECT_FALSE(data.clearTofPlanes());
    EXPECT_FALSE(data.clearStereoPlanes());
    EXPECT_EQ(data.tofPlanes().size(), 1);
    EXPECT_EQ(data.stereoPlanes().size(), 1);
    slam->clearResult = true;
    EXPECT_TRUE(data.clearTofPlanes());
    EXPECT_TRUE(data.clearStereoPlanes());
    EXPECT_TRUE(data.tofPlanes().isEmpty());
    EXPECT_TRUE(data.stereoPlanes().isEmpty());
}

TEST(PlanesData, clearAsksTheLibraryForItsSideAlsoWhereThereIsNothing)
{
    auto slam = std::make_shared<FakeSlam>();
    PlanesData data(slam, nullptr);
    slam->takeCalls();
    EXPECT_TRUE(data.clearTofPlanes());
    EXPECT_THAT(slam->takeCalls(), ElementsAre("clearTofPlanes"));
    EXPECT_TRUE(data.clearStereoPlanes());
    EXPECT_THAT(slam->takeCalls(), ElementsAre("clearStereoPlanes"));
}

TEST(PlanesData, signalsCarryWhatIsStored)
{
    auto slam = std::make_shared<FakeSlam>();
    const PlanesData data(slam, nullptr);
    const QSignalSpy tof(&data, &PlanesData::tofPlanesChanged);
    const QSignalSpy stereo(&data, &PlanesData::stereoPlanesChanged);
    slam->tofPlanes.deliver(planes({{"1", {{1, 2, 3}}}}));
    slam->stereoPlanes.deliver(planes({{"2", {}}, {"3", {}}}));
    ASSERT_EQ(tof.count(), 1);
    EXPECT_EQ(tof[0][0].toJsonArray().size(), 1);
    EXPECT_EQ(tof[0][0].toJsonArray(), data.tofPlanes());
    ASSERT_EQ(stereo.count(), 1);
    EXPECT_EQ(stereo[0][0].toJsonArray().size(), 2);
    EXPECT_EQ(stereo[0][0].toJsonArray(), data.stereoPlanes());
}

TEST(PlanesData, callbackOnItsWayFindsTheModelGone)
{
    auto slam = std::make_shared<FakeSlam>();
    auto data = std::make_unique<PlanesData>(slam, nullptr);
    const auto lateTof = slam->tofPlanes.held();
    const auto lateStereo = slam->stereoPlanes.held();
    data.reset();
    lateTof.front()(planes({{"1", {}}}));
    lateStereo.front()(planes({{"1", {}}}));
    EXPECT_EQ(slam->tofPlanes.count(), 0U);
    EXPECT_EQ(slam->stereoPlanes.count(), 0U);
}
