#include "spatial/MapData.h"
#include "spatial/ObjectsData.h"
#include "spatial/PlanesData.h"
#include "spatial/SlamData.h"
#include "support/Methods.h"
#include "support/Properties.h"

#include <gtest/gtest.h>

// What the interface sees of each spatial model: bindings and calls are looked up by name at run time, so
// that nothing but these lists notices a property that announces itself by another's signal or a renamed
// method.

namespace {

template <class Object>
QStringList invokablesOf()
{
    return methods::ofClass<Object>([](QMetaMethod::MethodType type) { return type == QMetaMethod::Method; });
}

} // namespace

TEST(SpatialProperties, position)
{
    EXPECT_EQ(propertiesOf<PositionData>(),
        (QStringList{"double x read xChanged(double)", "double y read yChanged(double)",
            "double z read zChanged(double)", "QVector3D vector read vectorChanged(QVector3D)"}));
    EXPECT_EQ(signalsOf<PositionData>(),
        (QStringList{"void xChanged(double)", "void yChanged(double)", "void zChanged(double)",
            "void vectorChanged(QVector3D)"}));
    EXPECT_EQ(slotsOf<PositionData>(),
        (QStringList{"void setX(double)", "void setY(double)", "void setZ(double)",
            "void set(double,double,double)", "void setVector(QVector3D)"}));
    EXPECT_EQ(invokablesOf<PositionData>(), QStringList());
}

TEST(SpatialProperties, orientation)
{
    EXPECT_EQ(propertiesOf<OrientationData>(),
        (QStringList{"QMatrix3x3 matrix read matrixChanged(QMatrix3x3)",
            "QQuaternion quaternion read quaternionChanged(QQuaternion)",
            "QVector3D viewVector read-write viewVectorChanged(QVector3D)",
            "double roll read-write rollChanged(double)", "double pitch read-write pitchChanged(double)",
            "double yaw read-write yawChanged(double)"}));
    EXPECT_EQ(signalsOf<OrientationData>(),
        (QStringList{"void matrixChanged(QMatrix3x3)", "void quaternionChanged(QQuaternion)",
            "void viewVectorChanged(QVector3D)", "void rollChanged(double)", "void pitchChanged(double)",
            "void yawChanged(double)"}));
    EXPECT_EQ(slotsOf<OrientationData>(),
        (QStringList{"void setMatrix(QMatrix3x3)", "QVector3D viewCenter(QVector3D,QVector3D)"}));
    EXPECT_EQ(invokablesOf<OrientationData>(), QStringList());
}

TEST(SpatialProperties, slam)
{
    EXPECT_EQ(propertiesOf<SlamData>(),
        (QStringList{"PositionData* position read positionChanged(PositionData*)",
            "OrientationData* orientation read orientationChanged(OrientationData*)",
            "QMatrix4x4 matrix read matrixChanged(QMatrix4x4)", "int status read statusChanged(int)",
            "double confidence read confidenceChanged(double)",
            "bool enabled read-write enabledChanged(bool)",
            "int prediction read-write predictionChanged(int)", "bool lost read lostChanged(bool)",
            "double distance read distanceChanged(double)",
            "int localizedPercent read-write localizedPercentChanged()"}));
    EXPECT_EQ(signalsOf<SlamData>(),
        (QStringList{"void positionChanged(PositionData*)", "void orientationChanged(OrientationData*)",
            "void statusChanged(int)", "void confidenceChanged(double)", "void matrixChanged(QMatrix4x4)",
            "void enabledChanged(bool)", "void predictionChanged(int)", "void lostChanged(bool)",
            "void distanceChanged(double)", "void loopClosureFinished()", "void localizedPercentChanged()"}));
    EXPECT_EQ(slotsOf<SlamData>(),
        (QStringList{"void setStatus(int)", "void setConfidence(double)", "void reset()", "bool pause()",
            "bool resume()", "void setMatrix(QMatrix4x4)", "void setEnabled(bool)", "void setPrediction(int)",
            "void setLost(bool)", "void loopClosure()", "void visualOdometry()", "bool loadMap(QString)",
            "bool loadMap()"}));
    EXPECT_EQ(invokablesOf<SlamData>(), (QStringList{"void control(bool)", "QString getMapPath()"}));
}

TEST(SpatialProperties, map)
{
    EXPECT_EQ(propertiesOf<MapData>(),
        (QStringList{"PointCloud* pointCloud read pointCloudChanged(PointCloud*)",
            "QJsonArray poses read-write posesChanged(QJsonArray)",
            "int pointCount read pointCountChanged(int)",
            "int keyframeCount read keyframeCountChanged(int)"}));
    EXPECT_EQ(signalsOf<MapData>(),
        (QStringList{"void pointCloudChanged(PointCloud*)", "void posesChanged(QJsonArray)",
            "void pointCountChanged(int)", "void keyframeCountChanged(int)"}));
    EXPECT_EQ(slotsOf<MapData>(),
        (QStringList{"void setPoses(QJsonArray)", "void setPointCount(int)", "void setKeyframeCount(int)"}));
    EXPECT_EQ(invokablesOf<MapData>(), QStringList());
}

TEST(SpatialProperties, planes)
{
    EXPECT_EQ(propertiesOf<PlanesData>(),
        (QStringList{"QJsonArray stereoPlanes read stereoPlanesChanged(QJsonArray)",
            "QJsonArray tofPlanes read tofPlanesChanged(QJsonArray)"}));
    EXPECT_EQ(signalsOf<PlanesData>(),
        (QStringList{"void tofPlanesChanged(QJsonArray)", "void stereoPlanesChanged(QJsonArray)"}));
    EXPECT_EQ(slotsOf<PlanesData>(),
        (QStringList{"void setTofPlanes(QJsonArray)", "void setStereoPlanes(QJsonArray)",
            "bool clearTofPlanes()", "bool clearStereoPlanes()"}));
    EXPECT_EQ(invokablesOf<PlanesData>(), QStringList());
}

TEST(SpatialProperties, objects)
{
    EXPECT_EQ(propertiesOf<ObjectsData>(),
        (QStringList{"QJsonArray objects read objectsChanged(QJsonArray)",
            "Source source read-write sourceChanged(ObjectsData::Source)",
            "QString model read-write modelChanged(QString)",
            "QString modelDescriptor read-write modelDescriptorChanged(QString)",
            "bool enabled read-write enabledChanged(bool)"}));
    EXPECT_EQ(signalsOf<ObjectsData>(),
        (QStringList{"void objectsChanged(QJsonArray)", "void sourceChanged(ObjectsData::Source)",
            "void modelChanged(QString)", "void modelDescriptorChanged(QString)",
            "void enabledChanged(bool)"}));
    EXPECT_EQ(slotsOf<ObjectsData>(),
        (QStringList{"void setObjects(QJsonArray)", "void setSource(Source)", "void setModel(QString)",
            "void setModelDescriptor(QString)", "void setEnabled(bool)", "protected void updateCNNModel()"}));
    EXPECT_EQ(invokablesOf<ObjectsData>(), (QStringList{"void control(bool)", "void updateCNNSource()"}));
}
