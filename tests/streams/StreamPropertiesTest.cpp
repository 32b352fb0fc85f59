#include "streams/ImuData.h"
#include "streams/RgbData.h"
#include "streams/RgbdData.h"
#include "streams/SgbmData.h"
#include "streams/TofData.h"
#include "streams/TofIrData.h"
#include "support/FakeColorCamera.h"
#include "support/FakeImuSensor.h"
#include "support/FakeTofCamera.h"
#include "support/FakeVsc.h"
#include "support/Methods.h"
#include "support/Properties.h"

#include <gtest/gtest.h>

// What the interface sees of each stream model: bindings and calls are looked up by name at run time, so that
// nothing but these lists notices a renamed property or a method that can't be called any more.

TEST(StreamProperties, modelsNeedNoParent)
{
    const ImuData imu(std::make_shared<FakeImuSensor>());
    const RgbData rgb(std::make_shared<FakeColorCamera>());
    const TofData tof(std::make_shared<FakeTofCamera>());
    const TofIrData tofIr(std::make_shared<FakeTofCamera>());
    const RgbdData rgbd(std::make_shared<FakeTofCamera>());
    FakeVsc vsc;
    const SgbmData sgbm(&vsc);
    for (const QObject *model :
        std::initializer_list<const QObject *>{&imu, &rgb, &tof, &tofIr, &rgbd, &sgbm})
        EXPECT_EQ(model->parent(), nullptr) << model->metaObject()->className();
}

TEST(StreamProperties, imuAxis)
{
    EXPECT_EQ(propertiesOf<ImuAxisData>(),
        (QStringList{"double x read xChanged(double)", "double y read yChanged(double)",
            "double z read zChanged(double)", "QVector3D vector read-write vectorChanged(QVector3D)"}));
    EXPECT_EQ(signalsOf<ImuAxisData>(),
        (QStringList{"void xChanged(double)", "void yChanged(double)", "void zChanged(double)",
            "void vectorChanged(QVector3D)"}));
    EXPECT_EQ(callablesOf<ImuAxisData>(),
        (QStringList{"void set(double,double,double)", "void setVector(QVector3D)", "void setX(double)",
            "void setY(double)", "void setZ(double)"}));
}

TEST(StreamProperties, imu)
{
    EXPECT_EQ(propertiesOf<ImuData>(),
        (QStringList{"ImuAxisData* accel read accelChanged(ImuAxisData*)",
            "ImuAxisData* gyro read gyroChanged(ImuAxisData*)",
            "ImuAxisData* magn read magnChanged(ImuAxisData*)", "int mode read-write modeChanged(int)",
            "int offset read-write offsetChanged(int)"}));
    EXPECT_EQ(signalsOf<ImuData>(),
        (QStringList{"void accelChanged(ImuAxisData*)", "void gyroChanged(ImuAxisData*)",
            "void magnChanged(ImuAxisData*)", "void modeChanged(int)", "void offsetChanged(int)"}));
    EXPECT_EQ(callablesOf<ImuData>(),
        (QStringList{"void control(bool)", "void setMode(int)", "void setOffset(int)"}));
}

TEST(StreamProperties, rgb)
{
    EXPECT_EQ(propertiesOf<RgbData>(),
        (QStringList{"ImageData* image read imageChanged(ImageData*)",
            "ImageData* image2 read-write image2Changed()", "int framerate read-write framerateChanged(int)",
            "int mode read-write modeChanged(int)", "int resolution read-write resolutionChanged(int)",
            "bool isEnable read isEnableChanged(bool)", "bool isEnable2 read-write isEnable2Changed()"}));
    EXPECT_EQ(signalsOf<RgbData>(),
        (QStringList{"void imageChanged(ImageData*)", "void image2Changed()", "void framerateChanged(int)",
            "void modeChanged(int)", "void resolutionChanged(int)", "void isEnableChanged(bool)",
            "void isEnable2Changed()", "void rgbRunning(int)"}));
    EXPECT_EQ(callablesOf<RgbData>(),
        (QStringList{"bool isRunning()", "bool save(QString)", "bool startOrStop(bool)", "void control(bool)",
            "void control(bool,int)", "void setFramerate(int)", "void setMode(int)",
            "void setRGBDistance(int)", "void setRGBMode(int)", "void setResolution(int)",
            "void setView2Size(int,int)", "void setViewSize(int,int)"}));
}

TEST(StreamProperties, rgbd)
{
    EXPECT_EQ(propertiesOf<RgbdData>(),
        (QStringList{
            "ImageData* image read imageChanged(ImageData*)", "bool enable read enableChanged(bool)"}));
    EXPECT_EQ(signalsOf<RgbdData>(),
        (QStringList{"void imageChanged(ImageData*)", "void enableChanged(bool)", "void TofControl(bool)",
            "void RgbControl(bool)"}));
    EXPECT_EQ(callablesOf<RgbdData>(),
        (QStringList{
            "bool control(bool)", "void reset()", "void setEnable(int)", "void setViewSize(int,int)"}));
}

TEST(StreamProperties, tof)
{
    // Four of the properties are doubles for QML over integer accessors.
    EXPECT_EQ(propertiesOf<TofData>(),
        (QStringList{"ImageData* image read imageChanged(ImageData*)",
            "int framerate read-write framerateChanged(int)",
            "double maxDistance read-write maxDistanceChanged(double)",
            "double minDistance read-write minDistanceChanged(double)",
            "double mode read-write modeChanged(int)", "double frequency read-write frequencyChanged(int)",
            "double fps read-write fpsChanged(int)", "double resolution read-write resolutionChanged(int)",
            "bool pixelShow read-write pixelShowChanged(bool)", "int depth read depthChanged(int)",
            "int centerAvgPx read centerAvgPxChanged(int)",
            "int manufacturer read-write manufacturerChanged()"}));
    EXPECT_EQ(signalsOf<TofData>(),
        (QStringList{"void imageChanged(ImageData*)", "void framerateChanged(int)",
            "void maxDistanceChanged(double)", "void minDistanceChanged(double)", "void modeChanged(int)",
            "void frequencyChanged(int)", "void fpsChanged(int)", "void resolutionChanged(int)",
            "void tofRunning(int)", "void pixelShowChanged(bool)", "void depthChanged(int)",
            "void centerAvgPxChanged(int)", "void manufacturerChanged()"}));
    EXPECT_EQ(callablesOf<TofData>(),
        (QStringList{"bool RefreshSonyTofSetting()", "bool isEnable()", "bool save(QString)",
            "bool setDistanceMode(int)", "bool setLibWorkMode(int)", "bool startOrStop(bool)", "int fps()",
            "int frequency()", "int mode()", "int resolution()", "void control(bool)",
            "void savePcd(QString)", "void setCenterAvgHeight(int)", "void setCenterAvgWidth(int)",
            "void setCenterAvgX(int)", "void setCenterAvgY(int)", "void setEnableCenterAvgPx(bool)",
            "void setFps(int)", "void setFramerate(int)", "void setFrequency(int)",
            "void setMaxDistance(double)", "void setMinDistance(double)", "void setMode(int)",
            "void setResolution(int)", "void setTofIrGamma(double)", "void setViewSize(int,int)",
            "void setX(int)", "void setY(int)"}));
}

TEST(StreamProperties, tofInfrared)
{
    EXPECT_EQ(propertiesOf<TofIrData>(),
        (QStringList{"ImageData* image read imageChanged(ImageData*)",
            "int manufacturer read-write manufacturerChanged()"}));
    EXPECT_EQ(
        signalsOf<TofIrData>(), (QStringList{"void manufacturerChanged()", "void imageChanged(ImageData*)"}));
    EXPECT_EQ(callablesOf<TofIrData>(),
        (QStringList{"bool save(QString)", "void control(bool)", "void setViewSize(int,int)"}));
}

TEST(StreamProperties, stereoDepth)
{
    EXPECT_EQ(propertiesOf<SgbmData>(),
        (QStringList{"ImageData* image read imageChanged(ImageData*)", "int depth read depthChanged(int)",
            "int frameRate read frameRateChanged(int)", "int centerAvgPx read centerAvgPxChanged(int)",
            "bool pixelShow read-write pixelShowChanged(bool)", "int width read widthChanged(int)",
            "int height read heightChanged(int)", "bool isEnable read isEnableChanged(bool)",
            "int viewWidth read viewWidthChanged(int)", "int viewHeight read viewHeightChanged(int)",
            "int resolution read-write resolutionChanged()",
            "int colorIndex read-write colorIndexChanged()"}));
    EXPECT_EQ(signalsOf<SgbmData>(),
        (QStringList{"void imageChanged(ImageData*)", "void depthChanged(int)", "void xChanged(int)",
            "void yChanged(int)", "void holeSizeChanged(int)", "void holeMaxChanged(int)",
            "void holeMinChanged(int)", "void frameRateChanged(int)", "void maxDistanceChanged(int)",
            "void minDistanceChanged(int)", "void centerAvgPxChanged(int)", "void centerAvgWidthChanged(int)",
            "void centerAvgHeightChanged(int)", "void pixelShowChanged(bool)", "void widthChanged(int)",
            "void heightChanged(int)", "void isEnableChanged(bool)", "void viewWidthChanged(int)",
            "void viewHeightChanged(int)", "void resolutionChanged()", "void colorIndexChanged()"}));
    EXPECT_EQ(callablesOf<SgbmData>(),
        (QStringList{"bool setSgbmResolution(int)", "void control(bool)", "void reset()",
            "void setBaseline(float)", "void setCenterAvgHeight(int)", "void setCenterAvgWidth(int)",
            "void setCenterAvgX(int)", "void setCenterAvgY(int)", "void setDepth(bool)",
            "void setEnableCenterAvgPx(bool)", "void setEnableDewarp(bool)", "void setEnableFillHoles(bool)",
            "void setFOV(float)", "void setHoleMax(int)", "void setHoleMin(int)", "void setHoleSize(int)",
            "void setMaxDisparity(uchar)", "void setMaxDistance(int)", "void setMinDistance(int)",
            "void setSource(QString)", "void setViewSize(int,int)", "void setX(int)", "void setY(int)",
            "void setZoomFactor(float)"}));
}
