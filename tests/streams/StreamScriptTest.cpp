#include "streams/ImuData.h"
#include "streams/RgbData.h"
#include "streams/RgbdData.h"
#include "streams/SgbmData.h"
#include "streams/TofData.h"
#include "streams/TofIrData.h"
#include "support/FakeColorCamera.h"
#include "support/FakeDevice.h"
#include "support/FakeImuSensor.h"
#include "support/FakeOwner.h"
#include "support/FakeTofCamera.h"
#include "support/FakeVsc.h"
#include "support/LogCatcher.h"
#include "support/Pictures.h"
#include "support/Script.h"
#include "support/Timers.h"

#include <gmock/gmock.h>

// The stream models called as the interface calls them, with JavaScript's numbers for their integers, floats
// and bytes.

using pictures::bufferOf;
using testing::ElementsAre;

namespace {

// The averages of a box are worked out once in this many frames.
constexpr int framesPerAverage = 20;

class SgbmScript : public testing::Test {
protected:
    const qv::SgbmConfig &sent() const { return vsc->configs.back(); }

    LogCatcher log;
    std::shared_ptr<FakeVsc> vsc = std::make_shared<FakeVsc>();
    SgbmData sgbm{vsc.get(), nullptr};
    Script script{QStringLiteral("sgbm"), sgbm};
};

class TofScript : public testing::Test {
protected:
    TofScript() { camera->takeCalls(); }

    LogCatcher log;
    std::shared_ptr<FakeTofCamera> camera = std::make_shared<FakeTofCamera>();
    TofData tof{camera, nullptr};
    Script script{QStringLiteral("tof"), tof};
};

class RgbScript : public testing::Test {
protected:
    LogCatcher log;
    std::shared_ptr<FakeColorCamera> camera = std::make_shared<FakeColorCamera>();
    RgbData rgb{camera, nullptr};
    Script script{QStringLiteral("rgb"), rgb};
};

/// 4x3 samples of 1000, 1001, ...
template <class Sample, class Record>
Record depthRecord(int type)
{
    std::vector<Sample> samples;
    for (int i = 0; i < 12; ++i)
        samples.push_back(static_cast<Sample>(1000 + i));
    Record frame;
    frame.type = type;
    frame.width = 4;
    frame.height = 3;
    frame.data = bufferOf(samples);
    frame.dataSize = static_cast<unsigned int>(samples.size() * sizeof(Sample));
    return frame;
}

} // namespace

TEST_F(SgbmScript, disparityIsAByte)
{
    const std::pair<const char *, int> cases[] = {
        {"sgbm.setMaxDisparity(0)", 0},
        {"sgbm.setMaxDisparity(64)", 64},
        {"sgbm.setMaxDisparity(127.0)", 127},
        {"sgbm.setMaxDisparity(128)", 128},
        {"sgbm.setMaxDisparity(510 / 2)", 255},
    };
    for (const auto &[call, expected] : cases) {
        script(call);
        ASSERT_FALSE(vsc->configs.empty()) << call;
        EXPECT_EQ(int(sent().maxDisparity), expected) << call;
    }
    EXPECT_EQ(vsc->configs.size(), 5U);
}

TEST_F(SgbmScript, fractionsBecomeFloats)
{
    script("sgbm.setZoomFactor(133 / 100.)");
    EXPECT_EQ(sent().dewarpZoomFactor, 1.33F);
    script("sgbm.setZoomFactor(2)");
    EXPECT_EQ(sent().dewarpZoomFactor, 2.0F);
    script("sgbm.setBaseline(81 / 1000.)");
    EXPECT_EQ(sent().baseline, 0.081F);
    script("sgbm.setFOV(97)");
    EXPECT_EQ(sent().fov, 97.0F);
    script("sgbm.setFOV(97.5)");
    EXPECT_EQ(sent().fov, 97.5F);
}

TEST_F(SgbmScript, otherSettingsReachTheUnit)
{
    script("sgbm.setMaxDistance(70000)");
    EXPECT_EQ(sent().maxDistance, 70000 - 65536);
    script("sgbm.setMinDistance(150.0)");
    EXPECT_EQ(sent().minDistance, 150);
    script("sgbm.setEnableDewarp(false)");
    EXPECT_EQ(sent().enableDewarp, 0);
    script("sgbm.setSource('SW')");
    EXPECT_EQ(sent().source, 1);
    const auto before = vsc->configs.size();
    script("sgbm.reset()");
    EXPECT_EQ(vsc->configs.size(), before + 1);
    vsc->takeCalls();
    EXPECT_EQ(script("sgbm.setSgbmResolution(1)"), QVariant(true));
    vsc->resolutionResult = false;
    EXPECT_EQ(script("sgbm.setSgbmResolution(2)"), QVariant(false));
    EXPECT_THAT(vsc->takeCalls(), ElementsAre("setResolution(1)", "setResolution(2)"));
}

TEST_F(SgbmScript, mousePositionLosesItsFraction)
{
    QSignalSpy x(&sgbm, &SgbmData::xChanged);
    QSignalSpy y(&sgbm, &SgbmData::yChanged);
    script("sgbm.setX(2.99)");
    script("sgbm.setX(-0.5)");
    script("sgbm.setX(-1)");
    script("sgbm.setY(1.5)");
    ASSERT_EQ(x.count(), 3);
    EXPECT_EQ(x.at(0).at(0).toInt(), 2);
    EXPECT_EQ(x.at(1).at(0).toInt(), 0);
    EXPECT_EQ(x.at(2).at(0).toInt(), -1);
    ASSERT_EQ(y.count(), 1);
    EXPECT_EQ(y.at(0).at(0).toInt(), 1);
}

TEST_F(SgbmScript, averageBoxLosesItsFractions)
{
    script("sgbm.control(true)");
    script("sgbm.setEnableCenterAvgPx(true)");
    script("sgbm.setCenterAvgX(1.99)");
    script("sgbm.setCenterAvgY(2.5)");
    script("sgbm.setCenterAvgWidth(2.7)");
    script("sgbm.setCenterAvgHeight(1.2)");
    for (int i = 0; i < framesPerAverage; ++i)
        vsc->deliver(depthRecord<unsigned short, qv::SgbmImage>(1));
    // Row 2, columns 1 and 2: 1009 and 1010.
    EXPECT_EQ(script("sgbm.centerAvgPx"), QVariant(1009));
    script("sgbm.setCenterAvgX(0)");
    script("sgbm.setCenterAvgY(-0.9)");
    script("sgbm.setCenterAvgWidth(1)");
    for (int i = 0; i < framesPerAverage; ++i)
        vsc->deliver(depthRecord<unsigned short, qv::SgbmImage>(1));
    EXPECT_EQ(script("sgbm.centerAvgPx"), QVariant(1000));
}

TEST_F(SgbmScript, readsAndWritesItsProperties)
{
    script("sgbm.colorIndex = 2.0");
    EXPECT_EQ(sgbm.colorIndex(), 2);
    script("sgbm.colorIndex = 3.7");
    EXPECT_EQ(script("sgbm.colorIndex"), QVariant(3));
    script("sgbm.resolution = 1.0");
    EXPECT_EQ(sgbm.resolution(), 1);
    script("sgbm.pixelShow = true");
    EXPECT_TRUE(sgbm.pixelShow());
    EXPECT_EQ(script("sgbm.isEnable"), QVariant(true));
    EXPECT_EQ(script("sgbm.frameRate"), QVariant(0));
    script("sgbm.setViewSize(1000.5, 801.9)");
    EXPECT_EQ(script("sgbm.viewWidth"), QVariant(333));
    EXPECT_EQ(script("sgbm.viewHeight"), QVariant(400));
}

TEST_F(SgbmScript, holesAreFilledAsTheCallsSay)
{
    // One sample below the limit amid samples of 2000.
    std::vector<unsigned short> samples(49, 2000);
    samples[24] = 300;
    auto frame = depthRecord<unsigned short, qv::SgbmImage>(1);
    frame.width = frame.height = 7;
    frame.data = bufferOf(samples);
    frame.dataSize = 98;
    script("sgbm.control(true)");
    sgbm.setX(3);
    sgbm.setY(3);
    const auto depth = [&] {
        vsc->deliver(frame);
        return script("sgbm.depth").toInt();
    };
    script("sgbm.setHoleSize(2.9)");
    EXPECT_EQ(depth(), 300) << "above the limit of 200";
    script("sgbm.setHoleMin(500.0)");
    EXPECT_EQ(depth(), 2000);
    script("sgbm.setEnableFillHoles(false)");
    EXPECT_EQ(depth(), 300);
    script("sgbm.setEnableFillHoles(true)");
    script("sgbm.setHoleMax(1999.9)");
    EXPECT_EQ(depth(), 300) << "all of it is a hole";
    script("sgbm.setHoleMax(2000)");
    EXPECT_EQ(depth(), 2000);
    script("sgbm.setDepth(false)");
    samples[24] = 700;
    frame.data = bufferOf(samples);
    EXPECT_EQ(depth(), 2000) << "depth frames are left out";
}

TEST_F(TofScript, doublesOverIntegersReachTheSensor)
{
    script("tof.mode = 1");
    script("tof.frequency = 1");
    script("tof.resolution = 1");
    script("tof.fps = 2");
    script("tof.mode = 2.9");
    EXPECT_THAT(camera->takeCalls(),
        ElementsAre("setSonyTofSetting(3, 0, 5)", "setSonyTofSetting(2, 0, 5)", "setSonyTofSetting(2, 1, 5)",
            "setSonyTofSetting(2, 1, 2)", "setSonyTofSetting(4, 1, 2)"));
    EXPECT_EQ(script("tof.mode === 2 && tof.frequency === 1 && tof.resolution === 1 && tof.fps === 2"),
        QVariant(true));
}

TEST_F(TofScript, framerateLosesItsFraction)
{
    script("tof.framerate = 25.0");
    EXPECT_EQ(script("tof.framerate"), QVariant(25));
    script("tof.framerate = 20.75");
    EXPECT_EQ(script("tof.framerate"), QVariant(20));
    EXPECT_THAT(camera->takeCalls(), ElementsAre("setFramerate(25)", "setFramerate(20)"));
}

TEST_F(TofScript, distancesKeepTheirFractions)
{
    script("tof.maxDistance = 3");
    EXPECT_EQ(tof.maxDistance(), 3.0);
    script("tof.maxDistance = 7.45");
    EXPECT_EQ(tof.maxDistance(), 7.45);
    script("tof.minDistance = 0.15");
    EXPECT_EQ(tof.minDistance(), 0.15);
}

TEST_F(TofScript, callsAnswerWhatTheCameraAnswers)
{
    EXPECT_EQ(script("tof.setDistanceMode(1)"), QVariant(true));
    EXPECT_EQ(script("tof.setLibWorkMode(3)"), QVariant(true));
    EXPECT_EQ(script("tof.RefreshSonyTofSetting()"), QVariant(true));
    EXPECT_EQ(script("tof.isEnable()"), QVariant(true));
    script("tof.setTofIrGamma(0.7)");
    script("tof.setTofIrGamma(1)");
    EXPECT_THAT(camera->takeCalls(),
        ElementsAre("setDistanceMode(1)", "setLibWorkMode(3)", "setSonyTofSetting(1, 0, 5)",
            "setTofIrGamma(0.7)", "setTofIrGamma(1)"));
    camera->distanceModeResult = camera->libWorkModeResult = camera->sonyTofSettingResult = false;
    EXPECT_EQ(script("tof.setDistanceMode(0)"), QVariant(false));
    EXPECT_EQ(script("tof.setLibWorkMode(0)"), QVariant(false));
    EXPECT_EQ(script("tof.RefreshSonyTofSetting()"), QVariant(false));
}

TEST_F(TofScript, readOutsLoseTheirFractions)
{
    script("tof.control(true)");
    script("tof.pixelShow = true");
    script("tof.setX(2.9)");
    script("tof.setY(1.2)");
    const auto frame = depthRecord<std::int16_t, qv::DepthImage>(0);
    camera->deliver(frame);
    // The sample to the left of column 2 in row 1.
    EXPECT_EQ(script("tof.depth"), QVariant(1005));
    script("tof.setEnableCenterAvgPx(true)");
    script("tof.setCenterAvgX(1.99)");
    script("tof.setCenterAvgY(2.5)");
    script("tof.setCenterAvgWidth(2.7)");
    script("tof.setCenterAvgHeight(1.2)");
    for (int i = 0; i < framesPerAverage; ++i)
        camera->deliver(frame);
    EXPECT_EQ(script("tof.centerAvgPx"), QVariant(1009));
}

TEST_F(TofScript, noCameraFamilyIsLostOnTheWay)
{
    EXPECT_EQ(script("tof.manufacturer === 0"), QVariant(true));
    script("tof.manufacturer = 1.0");
    EXPECT_EQ(tof.manufacturer(), 1);
}

TEST_F(RgbScript, integersComeFromSliders)
{
    script("rgb.framerate = 24.0");
    script("rgb.framerate = 12.6");
    EXPECT_EQ(script("rgb.framerate"), QVariant(12));
    script("rgb.resolution = 1.0");
    script("rgb.setRGBMode(true ? 1 : 0)");
    script("rgb.setRGBDistance(254.75)");
    EXPECT_THAT(camera->takeCalls(),
        ElementsAre("setFramerate(24)", "setFramerate(12)", "setResolution(1)", "setRgbMode(1)",
            "setRgbDistance(254)"));
    script("rgb.mode = 2.0");
    EXPECT_EQ(script("rgb.mode"), QVariant(2));
}

TEST_F(RgbScript, controlTakesOneArgumentOrTwo)
{
    script("rgb.control(true)");
    EXPECT_EQ(script("rgb.isRunning()"), QVariant(true));
    script("rgb.control(true, 1)");
    script("rgb.control(false, 1)");
    EXPECT_EQ(script("rgb.isRunning()"), QVariant(true));
    script("rgb.control(false)");
    EXPECT_EQ(script("rgb.isRunning()"), QVariant(false));
    EXPECT_THAT(camera->takeCalls(),
        ElementsAre("registerCallback", "start", "registerCallback2", "startCamera(1)",
            "unregisterCallback2(1)", "stopCamera(1)", "unregisterCallback(1)", "stop"));
    EXPECT_EQ(script("rgb.isEnable && rgb.isEnable2"), QVariant(true));
}

TEST_F(RgbScript, picturesAreObjectsOfTheirOwn)
{
    EXPECT_EQ(script("rgb.image").value<QObject *>(), rgb.image());
    EXPECT_EQ(script("rgb.image2").value<QObject *>(), rgb.image2());
    EXPECT_NE(rgb.image(), rgb.image2());
}

TEST(RgbdScript, controlAnswersAndEnableFollowsTheStreams)
{
    const auto camera = std::make_shared<FakeTofCamera>();
    RgbdData rgbd(camera, nullptr);
    Script script(QStringLiteral("rgbd"), rgbd);
    EXPECT_EQ(script("rgbd.control(true)"), QVariant(true));
    EXPECT_EQ(script("rgbd.control(false)"), QVariant(true));
    EXPECT_EQ(script("rgbd.control(false)"), QVariant(false));
    EXPECT_EQ(script("rgbd.enable"), QVariant(false));
    script("rgbd.setEnable(0)");
    script("rgbd.setEnable(2.0)");
    EXPECT_EQ(script("rgbd.enable"), QVariant(true));
    EXPECT_EQ(script("rgbd.image").value<QObject *>(), rgbd.image());
}

TEST(TofIrScript, controlReachesTheCamera)
{
    const LogCatcher log;
    FakeOwner owner;
    const auto device = std::make_shared<FakeDevice>();
    const auto camera = std::make_shared<FakeTofCamera>();
    device->tofComponent = camera;
    owner.held = device;
    TofIrData infrared(camera, &owner);
    Script script(QStringLiteral("tofIr"), infrared);
    script("tofIr.control(true)");
    EXPECT_THAT(camera->takeCalls(), ElementsAre("manufacturer", "enableIr(true)", "registerCallback"));
    EXPECT_EQ(script("tofIr.image").value<QObject *>(), infrared.image());
    EXPECT_EQ(script("tofIr.manufacturer"), QVariant(0));
}

TEST(ImuScript, settingsReachTheDevice)
{
    FakeOwner owner;
    const auto device = std::make_shared<FakeDeviceEx>();
    owner.held = device;
    const auto sensor = std::make_shared<FakeImuSensor>();
    ImuData imu(sensor, &owner);
    device->takeCalls();
    Script script(QStringLiteral("imu"), imu);
    script("imu.mode = 4");
    script("imu.offset = -300.0");
    script("imu.control(false)");
    EXPECT_THAT(device->takeCalls(), ElementsAre("setImuMode(4)", "setImuOffset(-300)"));
    qv::Imu record;
    record.accel = {0.5, -1.25, 9.75};
    sensor->deliver(record);
    EXPECT_EQ(script("imu.accel.x === 0.5 && imu.accel.y === -1.25 && imu.accel.z === 9.75"), QVariant(true));
    EXPECT_EQ(script("imu.accel.vector"), QVariant(QVector3D(0.5F, -1.25F, 9.75F)));
    sensor->deliver(record);
    fireTimers(imu);
    EXPECT_EQ(script("imu.dataFrameRate"), QVariant(2));
}
