#include "spatial/PointCloudColorGeometry.h"
#include "spatial/PointCloudGeometry.h"

#include <Qt3DRender/QAttribute>
#include <chrono>
#include <future>
#include <thread>
#include <utility>

using Qt3DRender::QAttribute;
using ::testing::ElementsAre;

namespace {

QByteArray triples(std::initializer_list<float> values)
{
    return {reinterpret_cast<const char *>(values.begin()), int(values.size() * sizeof(float))};
}

/// One point that another thread brings and announces.
template <class Cloud>
void updateElsewhere(Cloud &cloud)
{
    std::thread other([&cloud] {
        cloud.setPoints(triples({1, 2, 3}));
        cloud.setSize(1);
        emit cloud.update();
    });
    other.join();
}

} // namespace

TEST(PointCloud, setPointsAlwaysSignalsAndSizeOnlyOnAChange)
{
    PointCloud cloud;
    const QSignalSpy points(&cloud, &PointCloud::pointsChanged);
    const QSignalSpy size(&cloud, &PointCloud::sizeChanged);
    const QSignalSpy update(&cloud, &PointCloud::update);
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setSize(1);
    cloud.setSize(1);
    EXPECT_EQ(points.count(), 2);
    EXPECT_EQ(size.count(), 1);
    EXPECT_EQ(update.count(), 0);
}

TEST(PointCloud, signalsCarryWhatIsStored)
{
    PointCloud cloud;
    const QSignalSpy points(&cloud, &PointCloud::pointsChanged);
    const QSignalSpy size(&cloud, &PointCloud::sizeChanged);
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setSize(7);
    ASSERT_EQ(points.count(), 1);
    EXPECT_EQ(points[0][0].toByteArray(), triples({1, 2, 3}));
    ASSERT_EQ(size.count(), 1);
    EXPECT_EQ(size[0][0].toInt(), 7);
}

TEST(PointCloudColor, signalsCarryWhatIsStored)
{
    PointCloudColor cloud;
    const QSignalSpy points(&cloud, &PointCloudColor::pointsChanged);
    const QSignalSpy colors(&cloud, &PointCloudColor::colorsChanged);
    const QSignalSpy size(&cloud, &PointCloudColor::sizeChanged);
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setColors(triples({0, 1, 0}));
    cloud.setSize(7);
    ASSERT_EQ(points.count(), 1);
    EXPECT_EQ(points[0][0].toByteArray(), triples({1, 2, 3}));
    ASSERT_EQ(colors.count(), 1);
    EXPECT_EQ(colors[0][0].toByteArray(), triples({0, 1, 0}));
    ASSERT_EQ(size.count(), 1);
    EXPECT_EQ(size[0][0].toInt(), 7);
}

TEST(PointCloudColor, equalColorsAreDroppedAndEqualPointsAreNot)
{
    PointCloudColor cloud;
    const QSignalSpy points(&cloud, &PointCloudColor::pointsChanged);
    const QSignalSpy colors(&cloud, &PointCloudColor::colorsChanged);
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setColors(triples({0, 1, 0}));
    cloud.setColors(triples({0, 1, 0}));
    EXPECT_EQ(points.count(), 2);
    EXPECT_EQ(colors.count(), 1);
    EXPECT_EQ(cloud.colors(), triples({0, 1, 0}));
}

TEST(PointCloudColor, itsSizeSignalsOnAChangeAndNothingIsAnUpdate)
{
    PointCloudColor cloud;
    const QSignalSpy size(&cloud, &PointCloudColor::sizeChanged);
    const QSignalSpy update(&cloud, &PointCloudColor::update);
    cloud.setSize(1);
    cloud.setSize(1);
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setColors(triples({0, 1, 0}));
    EXPECT_EQ(size.count(), 1);
    EXPECT_EQ(update.count(), 0);
}

// A slot at the signal finds the array locked for every other thread, and the other array free.
TEST(PointCloudColor, signalsLeaveUnderTheLockOfTheirArray)
{
    PointCloudColor cloud;
    // What is free is waited for as long as it takes.
    const auto readable = [](auto read, bool free) {
        auto reading = std::async(std::launch::async, read);
        const std::chrono::milliseconds limit(free ? 10000 : 50);
        const bool ready = reading.wait_for(limit) == std::future_status::ready;
        return std::pair(ready, std::move(reading));
    };
    std::vector<std::future<QByteArray>> readers;
    int signalled = 0;
    const auto look = [&](bool pointsFree, bool colorsFree) {
        ++signalled;
        auto [pointsReady, points] = readable([&] { return cloud.points(); }, pointsFree);
        auto [colorsReady, colors] = readable([&] { return cloud.colors(); }, colorsFree);
        EXPECT_EQ(pointsReady, pointsFree);
        EXPECT_EQ(colorsReady, colorsFree);
        readers.push_back(std::move(points));
        readers.push_back(std::move(colors));
    };
    QObject::connect(&cloud, &PointCloudColor::pointsChanged, [&] { look(false, true); });
    QObject::connect(&cloud, &PointCloudColor::colorsChanged, [&] { look(true, false); });
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setColors(triples({0, 1, 0}));
    EXPECT_EQ(signalled, 2);
    ASSERT_EQ(readers.size(), 4U);
    EXPECT_EQ(readers[0].get(), triples({1, 2, 3})); // who waited reads what was set
    EXPECT_EQ(readers[3].get(), triples({0, 1, 0}));
}

TEST(PointCloudColor, colorsOfTheSameLengthAreComparedByteByByte)
{
    PointCloudColor cloud;
    const QSignalSpy colors(&cloud, &PointCloudColor::colorsChanged);
    cloud.setColors(triples({0, 1, 0}));
    cloud.setColors(triples({0, 1, 1}));
    cloud.setColors(triples({0, 1, 1, 0, 0, 0}));
    EXPECT_EQ(colors.count(), 3);
}

TEST(PointCloudGeometry, emptyHolderGivesOneAttributeOfCountZero)
{
    PointCloud cloud;
    PointCloudGeometry geometry;
    geometry.setPointCloud(&cloud);
    ASSERT_EQ(geometry.attributes().size(), 1);
    EXPECT_EQ(geometry.attributes().first()->count(), 0U);
    EXPECT_EQ(geometry.attributes().first(), geometry.boundingVolumePositionAttribute());
}

TEST(PointCloudGeometry, attributeHasTheLayoutOfTheHolder)
{
    PointCloud cloud;
    cloud.setPoints(triples({1, 2, 3, 4, 5, 6}));
    cloud.setSize(2);
    PointCloudGeometry geometry;
    geometry.setPointCloud(&cloud);
    const QAttribute *attribute = geometry.attributes().first();
    EXPECT_EQ(attribute->name(), QStringLiteral("vertexPosition"));
    EXPECT_EQ(attribute->vertexBaseType(), QAttribute::Float);
    EXPECT_EQ(attribute->vertexSize(), 3U);
    EXPECT_EQ(attribute->attributeType(), QAttribute::VertexAttribute);
    EXPECT_EQ(attribute->byteStride(), 12U);
    EXPECT_EQ(attribute->byteOffset(), 0U);
    EXPECT_EQ(attribute->count(), 2U);
    EXPECT_EQ(attribute->buffer()->data(), cloud.points());
    EXPECT_EQ(attribute->buffer()->property("type").toInt(), 0x8892); // GL_ARRAY_BUFFER
    EXPECT_EQ(attribute->buffer()->parent(), &geometry);
}

TEST(PointCloudGeometry, updateOfTheHolderMovesBufferAndCount)
{
    PointCloud cloud;
    PointCloudGeometry geometry;
    geometry.setPointCloud(&cloud);
    const QAttribute *attribute = geometry.attributes().first();
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setSize(1);
    EXPECT_EQ(attribute->count(), 0U);
    emit cloud.update();
    EXPECT_EQ(geometry.attributes().size(), 1);
    EXPECT_EQ(attribute->count(), 1U);
    EXPECT_EQ(attribute->buffer()->data(), triples({1, 2, 3}));
}

TEST(PointCloudGeometry, anUpdateOfAnotherThreadWaitsForTheInterface)
{
    PointCloud cloud;
    PointCloudGeometry geometry;
    geometry.setPointCloud(&cloud);
    updateElsewhere(cloud);
    EXPECT_EQ(geometry.attributes().first()->count(), 0U);
    QCoreApplication::processEvents();
    EXPECT_EQ(geometry.attributes().first()->count(), 1U);
    EXPECT_EQ(geometry.attributes().first()->buffer()->data(), triples({1, 2, 3}));
}

TEST(PointCloudGeometry, sameHolderTwiceSignalsOnce)
{
    PointCloud cloud;
    PointCloudGeometry geometry;
    const QSignalSpy changed(&geometry, &PointCloudGeometry::pointCloudChanged);
    geometry.setPointCloud(&cloud);
    geometry.setPointCloud(&cloud);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed[0][0].value<PointCloud *>(), &cloud);
    EXPECT_EQ(geometry.pointCloud(), &cloud);
}

TEST(PointCloudGeometry, theCountAloneLimitsWhatIsDrawnAndNoByteIsCopied)
{
    PointCloud cloud;
    const QByteArray points = triples({1, 2, 3, 4, 5, 6, 7, 8, 9});
    cloud.setPoints(points);
    cloud.setSize(3);
    PointCloudGeometry geometry;
    geometry.setPointCloud(&cloud);
    const QAttribute *attribute = geometry.attributes().first();
    EXPECT_EQ(attribute->count(), 3U);
    cloud.setSize(1);
    emit cloud.update();
    EXPECT_EQ(attribute->count(), 1U);
    EXPECT_EQ(attribute->buffer()->data().constData(), points.constData());
}

TEST(PointCloudGeometry, otherAttributesKeepTheirCount)
{
    PointCloud cloud;
    PointCloudGeometry geometry;
    geometry.setPointCloud(&cloud);
    auto *indices = new QAttribute(&geometry);
    indices->setAttributeType(QAttribute::IndexAttribute);
    indices->setName(QAttribute::defaultPositionAttributeName());
    auto *normals = new QAttribute(&geometry);
    normals->setName(QAttribute::defaultNormalAttributeName());
    for (QAttribute *other : {indices, normals}) {
        other->setCount(5);
        geometry.addAttribute(other);
    }
    cloud.setSize(2);
    emit cloud.update();
    EXPECT_EQ(geometry.attributes().first()->count(), 2U);
    EXPECT_EQ(indices->count(), 5U);
    EXPECT_EQ(normals->count(), 5U);
}

TEST(PointCloudGeometry, nullHolderLeavesTheOldPointsOnScreen)
{
    PointCloud cloud;
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setSize(1);
    PointCloudGeometry geometry;
    geometry.setPointCloud(&cloud);
    const QSignalSpy changed(&geometry, &PointCloudGeometry::pointCloudChanged);
    geometry.setPointCloud(nullptr);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(geometry.attributes().first()->count(), 1U);
    cloud.setSize(0);
    emit cloud.update();
    EXPECT_EQ(geometry.attributes().first()->count(), 1U);
}

TEST(PointCloudGeometry, aSizeAheadOfThePointsReadsNoForeignMemory)
{
    PointCloud cloud;
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setSize(4);
    PointCloudGeometry geometry;
    geometry.setPointCloud(&cloud);
    const QAttribute *attribute = geometry.attributes().first();
    EXPECT_EQ(attribute->count(), 4U);
    EXPECT_GE(attribute->buffer()->data().size(), 4 * 12);
    EXPECT_TRUE(attribute->buffer()->data().startsWith(triples({1, 2, 3})));
}

// The writer's thread may set the size of its next frame at any time.
TEST(PointCloudGeometry, aSizeThatComesInTheMiddleOfAnUpdateWaitsForTheNext)
{
    PointCloud cloud;
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setSize(1);
    PointCloudGeometry geometry;
    geometry.setPointCloud(&cloud);
    const QAttribute *attribute = geometry.attributes().first();
    cloud.setPoints(triples({4, 5, 6}));
    QObject::connect(attribute->buffer(), &Qt3DRender::QBuffer::dataChanged, [&] { cloud.setSize(20000); });
    emit cloud.update();
    EXPECT_EQ(cloud.size(), 20000);
    EXPECT_EQ(attribute->count(), 1U);
    EXPECT_EQ(attribute->buffer()->data(), triples({4, 5, 6}));
}

TEST(PointCloudGeometry, aHolderThatDiesIsForgotten)
{
    auto cloud = std::make_unique<PointCloud>();
    PointCloudGeometry geometry;
    geometry.setPointCloud(cloud.get());
    cloud.reset();
    EXPECT_EQ(geometry.pointCloud(), nullptr);
}

TEST(PointCloudColorGeometry, twoAttributesOfWhichThePositionsBoundTheVolume)
{
    PointCloudColor cloud;
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setColors(triples({0, 0.5F, 1}));
    cloud.setSize(1);
    PointCloudColorGeometry geometry;
    geometry.setPointCloud(&cloud);
    ASSERT_EQ(geometry.attributes().size(), 2);
    EXPECT_EQ(geometry.attributes()[0]->name(), QStringLiteral("vertexPosition"));
    EXPECT_EQ(geometry.attributes()[1]->name(), QStringLiteral("vertexColor"));
    EXPECT_EQ(geometry.attributes()[1]->count(), 1U);
    EXPECT_EQ(geometry.attributes()[1]->buffer()->data(), triples({0, 0.5F, 1}));
    EXPECT_EQ(geometry.boundingVolumePositionAttribute(), geometry.attributes()[0]);
}

TEST(PointCloudColorGeometry, bothAttributesHaveTheLayoutOfTheHolder)
{
    PointCloudColor cloud;
    cloud.setPoints(triples({1, 2, 3, 4, 5, 6}));
    cloud.setColors(triples({0, 0, 0, 1, 1, 1}));
    cloud.setSize(2);
    PointCloudColorGeometry geometry;
    geometry.setPointCloud(&cloud);
    ASSERT_EQ(geometry.attributes().size(), 2);
    for (const QAttribute *attribute : geometry.attributes()) {
        EXPECT_EQ(attribute->vertexBaseType(), QAttribute::Float);
        EXPECT_EQ(attribute->vertexSize(), 3U);
        EXPECT_EQ(attribute->attributeType(), QAttribute::VertexAttribute);
        EXPECT_EQ(attribute->byteStride(), 12U);
        EXPECT_EQ(attribute->byteOffset(), 0U);
        EXPECT_EQ(attribute->count(), 2U);
        EXPECT_EQ(attribute->buffer()->property("type").toInt(), 0x8892); // GL_ARRAY_BUFFER
        EXPECT_EQ(attribute->buffer()->parent(), &geometry);
    }
    EXPECT_EQ(geometry.attributes()[0]->buffer()->data(), cloud.points());
    EXPECT_NE(geometry.attributes()[0]->buffer(), geometry.attributes()[1]->buffer());
}

TEST(PointCloudColorGeometry, emptyHolderGivesTwoAttributesOfCountZero)
{
    PointCloudColor cloud;
    PointCloudColorGeometry geometry;
    geometry.setPointCloud(&cloud);
    ASSERT_EQ(geometry.attributes().size(), 2);
    EXPECT_EQ(geometry.attributes()[0]->count(), 0U);
    EXPECT_EQ(geometry.attributes()[1]->count(), 0U);
}

TEST(PointCloudColorGeometry, updateOfTheHolderMovesBuffersAndCounts)
{
    PointCloudColor cloud;
    PointCloudColorGeometry geometry;
    geometry.setPointCloud(&cloud);
    const QVector<QAttribute *> attributes = geometry.attributes();
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setColors(triples({0, 0.5F, 1}));
    cloud.setSize(1);
    EXPECT_EQ(attributes[0]->count(), 0U);
    emit cloud.update();
    EXPECT_EQ(geometry.attributes(), attributes);
    EXPECT_EQ(attributes[0]->count(), 1U);
    EXPECT_EQ(attributes[1]->count(), 1U);
    EXPECT_EQ(attributes[0]->buffer()->data(), triples({1, 2, 3}));
    EXPECT_EQ(attributes[1]->buffer()->data(), triples({0, 0.5F, 1}));
}

TEST(PointCloudColorGeometry, anUpdateOfAnotherThreadWaitsForTheInterface)
{
    PointCloudColor cloud;
    PointCloudColorGeometry geometry;
    geometry.setPointCloud(&cloud);
    updateElsewhere(cloud);
    EXPECT_EQ(geometry.attributes()[0]->count(), 0U);
    QCoreApplication::processEvents();
    EXPECT_EQ(geometry.attributes()[0]->count(), 1U);
    EXPECT_EQ(geometry.attributes()[0]->buffer()->data(), triples({1, 2, 3}));
}

TEST(PointCloudColorGeometry, sameHolderTwiceSignalsOnceAndAnotherTakesItsPlace)
{
    PointCloudColor first;
    PointCloudColor second;
    second.setSize(1);
    second.setPoints(triples({7, 8, 9}));
    PointCloudColorGeometry geometry;
    const QSignalSpy changed(&geometry, &PointCloudColorGeometry::pointCloudChanged);
    geometry.setPointCloud(&first);
    geometry.setPointCloud(&first);
    EXPECT_EQ(changed.count(), 1);
    geometry.setPointCloud(&second);
    ASSERT_EQ(changed.count(), 2);
    EXPECT_EQ(changed[1][0].value<PointCloudColor *>(), &second);
    EXPECT_EQ(geometry.pointCloud(), &second);
    EXPECT_EQ(geometry.attributes()[0]->buffer()->data(), triples({7, 8, 9}));
    first.setPoints(triples({1, 2, 3}));
    emit first.update();
    EXPECT_EQ(geometry.attributes()[0]->buffer()->data(), triples({7, 8, 9}));
}

TEST(PointCloudColorGeometry, theCountsAloneLimitWhatIsDrawnAndNoByteIsCopied)
{
    PointCloudColor cloud;
    const QByteArray points = triples({1, 2, 3, 4, 5, 6}), colors = triples({0, 0, 0, 1, 1, 1});
    cloud.setPoints(points);
    cloud.setColors(colors);
    cloud.setSize(2);
    PointCloudColorGeometry geometry;
    geometry.setPointCloud(&cloud);
    const QVector<QAttribute *> attributes = geometry.attributes();
    EXPECT_EQ(attributes[1]->count(), 2U);
    cloud.setSize(1);
    emit cloud.update();
    EXPECT_EQ(attributes[0]->count(), 1U);
    EXPECT_EQ(attributes[1]->count(), 1U);
    EXPECT_EQ(attributes[0]->buffer()->data().constData(), points.constData());
    EXPECT_EQ(attributes[1]->buffer()->data().constData(), colors.constData());
}

TEST(PointCloudColorGeometry, aSizeAheadOfPointsAndColorsReadsNoForeignMemory)
{
    PointCloudColor cloud;
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setSize(4);
    PointCloudColorGeometry geometry;
    geometry.setPointCloud(&cloud);
    for (const QAttribute *attribute : geometry.attributes()) {
        EXPECT_EQ(attribute->count(), 4U);
        EXPECT_GE(attribute->buffer()->data().size(), 4 * 12);
    }
    EXPECT_TRUE(geometry.attributes()[0]->buffer()->data().startsWith(triples({1, 2, 3})));
}

TEST(PointCloudColorGeometry, nullHolderLeavesTheOldPointsOnScreen)
{
    PointCloudColor cloud;
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setColors(triples({0, 0.5F, 1}));
    cloud.setSize(1);
    PointCloudColorGeometry geometry;
    geometry.setPointCloud(&cloud);
    const QSignalSpy changed(&geometry, &PointCloudColorGeometry::pointCloudChanged);
    geometry.setPointCloud(nullptr);
    EXPECT_EQ(changed.count(), 1);
    cloud.setSize(0);
    emit cloud.update();
    for (const QAttribute *attribute : geometry.attributes())
        EXPECT_EQ(attribute->count(), 1U);
    EXPECT_EQ(geometry.attributes()[0]->buffer()->data(), triples({1, 2, 3}));
}

TEST(PointCloudColorGeometry, aSizeThatComesInTheMiddleOfAnUpdateWaitsForTheNext)
{
    PointCloudColor cloud;
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setColors(triples({0, 0, 0}));
    cloud.setSize(1);
    PointCloudColorGeometry geometry;
    geometry.setPointCloud(&cloud);
    const QVector<QAttribute *> attributes = geometry.attributes();
    cloud.setPoints(triples({4, 5, 6}));
    QObject::connect(
        attributes[0]->buffer(), &Qt3DRender::QBuffer::dataChanged, [&] { cloud.setSize(20000); });
    emit cloud.update();
    EXPECT_EQ(cloud.size(), 20000);
    EXPECT_EQ(attributes[0]->count(), 1U);
    EXPECT_EQ(attributes[1]->count(), 1U);
    EXPECT_EQ(attributes[1]->buffer()->data().size(), 12);
}

TEST(PointCloudColorGeometry, unchangedColoursStillReachTheBufferByUpdate)
{
    PointCloudColor cloud;
    cloud.setColors(triples({0, 0.5F, 1}));
    PointCloudColorGeometry geometry;
    geometry.setPointCloud(&cloud);
    const QSignalSpy colors(&cloud, &PointCloudColor::colorsChanged);
    cloud.setPoints(triples({1, 2, 3}));
    cloud.setColors(triples({0, 0.5F, 1}));
    cloud.setSize(1);
    emit cloud.update();
    EXPECT_EQ(colors.count(), 0);
    EXPECT_EQ(geometry.attributes()[1]->count(), 1U);
    EXPECT_EQ(geometry.attributes()[1]->buffer()->data(), triples({0, 0.5F, 1}));
}
