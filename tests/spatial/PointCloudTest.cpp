#include "spatial/PointCloudColorGeometry.h"
#include "spatial/PointCloudGeometry.h"

#include <Qt3DRender/QAttribute>

using Qt3DRender::QAttribute;
using ::testing::ElementsAre;

namespace {

QByteArray triples(std::initializer_list<float> values)
{
    return {reinterpret_cast<const char *>(values.begin()), int(values.size() * sizeof(float))};
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

TEST(PointCloudGeometry, sameHolderTwiceSignalsOnce)
{
    PointCloud cloud;
    PointCloudGeometry geometry;
    const QSignalSpy changed(&geometry, &PointCloudGeometry::pointCloudChanged);
    geometry.setPointCloud(&cloud);
    geometry.setPointCloud(&cloud);
    EXPECT_EQ(changed.count(), 1);
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
