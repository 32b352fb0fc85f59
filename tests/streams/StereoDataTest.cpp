#include "streams/StereoData.h"

#include "support/FakeDevice.h"
#include "support/FakeFisheyeCameras.h"
#include "support/FakeOwner.h"
#include "support/LogCatcher.h"
#include "support/Methods.h"
#include "support/Pictures.h"
#include "support/Properties.h"
#include "support/Timers.h"
#include "support/ViewerSize.h"
#include "support/Wait.h"

#include <QJsonArray>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <limits>
#include <opencv2/videoio.hpp>
#include <thread>

using pictures::fisheye;
using pictures::fisheyes;
using pictures::grey;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Calls = std::vector<std::string>;

FisheyeData *camera(const StereoData &stereo, int index)
{
    return qobject_cast<FisheyeData *>(stereo.image(StereoData::Image(index)));
}

template <std::size_t N>
typename qv::FisheyeKeyPoints<N, 32>::Descriptor descriptor(const std::vector<float> &pairs)
{
    std::shared_ptr<float> data(new float[pairs.size() + 1], std::default_delete<float[]>());
    std::copy(pairs.begin(), pairs.end(), data.get());
    return {static_cast<unsigned int>(pairs.size() / 2), data};
}

class Stereo : public testing::Test {
protected:
    Stereo() { cameras->log = device->log; }

    void SetUp() override
    {
        owner.held = device;
        stereo = std::make_unique<StereoData>(cameras, &owner);
        device->takeCalls();
    }

    void TearDown() override { stereo.reset(); }

    Calls calls() { return device->takeCalls(); }

    // Its own log lines are no part of most tests.
    LogCatcher log;
    FakeOwner owner;
    std::shared_ptr<FakeDeviceEx> device = std::make_shared<FakeDeviceEx>();
    std::shared_ptr<FakeFisheyeCamerasEx> cameras = std::make_shared<FakeFisheyeCamerasEx>();
    std::unique_ptr<StereoData> stereo;
};

} // namespace

TEST(StereoData, nullCamerasAreRefused)
{
    try {
        const StereoData stereo(std::shared_ptr<qv::FisheyeCameras>(), nullptr);
        FAIL() << "made of nothing";
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "Invalid FisheyeCameras");
    }
}

TEST(StereoData, constructionSetsTheUvcModeRegistersAndStops)
{
    FakeOwner owner;
    const auto device = std::make_shared<FakeDeviceEx>();
    const auto cameras = std::make_shared<FakeFisheyeCamerasEx>();
    owner.held = device;
    cameras->log = device->log;
    const StereoData stereo(cameras, &owner);
    EXPECT_THAT(device->calls(),
        ElementsAre("setUvcMode(2)", "registerKeyPoints2Callback", "registerKeyPoints4Callback",
            "registerCallback", "stop"));
    EXPECT_EQ(stereo.mode(), 4) << "whatever was sent";
}

TEST(StereoData, defaults)
{
    const StereoData stereo(std::make_shared<FakeFisheyeCamerasEx>(), nullptr);
    EXPECT_EQ(stereo.gain(), 20);
    EXPECT_EQ(stereo.brightness(), 5);
    EXPECT_TRUE(stereo.autoExposure());
    EXPECT_EQ(stereo.mode(), 4);
    EXPECT_EQ(stereo.count(), 0);
    EXPECT_EQ(stereo.dataFrameRate(), 0);
    EXPECT_EQ(stereo.width(), 640);
    EXPECT_EQ(stereo.height(), 400);
}

TEST(StereoData, qmlSeesTheEnumThePropertiesAndTheSignals)
{
    const QMetaObject &meta = StereoData::staticMetaObject;
    const QMetaEnum images = meta.enumerator(meta.indexOfEnumerator("Image"));
    const std::map<std::string, int> expected{
        {"Left", 0}, {"Right", 1}, {"UpLeft", 0}, {"UpRight", 1}, {"BottomLeft", 2}, {"BottomRight", 3}};
    for (const auto &[name, value] : expected)
        EXPECT_EQ(images.keyToValue(name.c_str()), value) << name;
    for (const char *name : {"gain", "brightness", "autoExposure", "mode", "count"})
        EXPECT_TRUE(meta.property(meta.indexOfProperty(name)).isWritable()) << name;
    for (const char *name : {"dataFrameRate", "width", "height"})
        EXPECT_FALSE(meta.property(meta.indexOfProperty(name)).isWritable()) << name;
    const QMetaMethod count = meta.property(meta.indexOfProperty("count")).notifySignal();
    EXPECT_EQ(count.methodSignature(), "countChanged(int)");
    EXPECT_STREQ(count.typeName(), "int");
    EXPECT_NE(meta.indexOfSignal("resetSgbm()"), -1);
    for (const char *plain :
        {"setImageRecordPath(int,QString)", "setImageRecording(int,bool)", "saveImage(int,QString)"})
        EXPECT_EQ(meta.indexOfMethod(plain), -1) << plain;
    EXPECT_NE(meta.indexOfMethod("image(Image)"), -1);
}

TEST(StereoData, offersItsSignalsInOrderAndWhatDocumentsCall)
{
    EXPECT_EQ(signalsOf<StereoData>(),
        (QStringList{"void gainChanged(int)", "void brightnessChanged(int)", "void autoExposureChanged(bool)",
            "void modeChanged(int)", "int countChanged(int)", "void dataFrameRateChanged(int)",
            "void widthChanged(int)", "void heightChanged(int)", "void resetSgbm()"}));
    EXPECT_EQ(callablesOf<StereoData>(),
        (QStringList{"QObject* image(Image)", "bool setResolution(int)", "void control(bool)",
            "void registerFisheyeCameras(bool)", "void setAutoExposure(bool)", "void setBrightness(int)",
            "void setCount(int)", "void setFeFrameRate(float)", "void setFrameRate(int)", "void setGain(int)",
            "void setMode(int)", "void setViewSize(int,int)"}));
    EXPECT_TRUE(slotsOf<FisheyeData>().isEmpty() && signalsOf<FisheyeData>().isEmpty());
    EXPECT_TRUE(propertiesOf<FisheyeData>().isEmpty());
}

TEST(StereoData, offersItsProperties)
{
    EXPECT_EQ(propertiesOf<StereoData>(),
        (QStringList{"int gain read-write gainChanged(int)",
            "int brightness read-write brightnessChanged(int)",
            "bool autoExposure read-write autoExposureChanged(bool)", "int mode read-write modeChanged(int)",
            "int count read-write countChanged(int)", "int dataFrameRate read dataFrameRateChanged(int)",
            "int width read widthChanged(int)", "int height read heightChanged(int)"}));
}

TEST(StereoData, camerasWithoutExtensionGiveImagesOnly)
{
    const LogCatcher log;
    const auto cameras = std::make_shared<FakeFisheyeCameras>();
    StereoData stereo(cameras, nullptr);
    EXPECT_THAT(cameras->takeCalls(), ElementsAre("registerCallback", "stop"));
    EXPECT_EQ(log.lines(), QStringList{"critical: No cam_ex"});

    stereo.control(true);
    EXPECT_THAT(cameras->takeCalls(), ElementsAre("start"));
    EXPECT_EQ(log.lines(),
        (QStringList{"critical: No cam_ex", "debug: StereoData::control start....................",
            "critical: No cam_ex"}));
    cameras->deliver(fisheyes({fisheye(4, 4, 1)}));
    EXPECT_EQ(stereo.count(), 1);
    stereo.control(false);
    EXPECT_THAT(cameras->takeCalls(), ElementsAre("unregisterCallback(1)", "stop"));
}

TEST(StereoData, aPlainDeviceLeavesTheModeWithoutEffect)
{
    FakeOwner owner;
    const auto device = std::make_shared<FakeDevice>();
    owner.held = device;
    StereoData stereo(std::make_shared<FakeFisheyeCamerasEx>(), &owner);
    stereo.setMode(1);
    EXPECT_EQ(stereo.mode(), 1);
    EXPECT_THAT(device->calls(), IsEmpty());
}

TEST(StereoData, withoutCamerasEveryOperationIsHarmless)
{
    const LogCatcher log;
    StereoData stereo;
    stereo.setGain(1);
    stereo.setBrightness(1);
    stereo.setAutoExposure(false);
    stereo.setFeFrameRate(30);
    stereo.setMode(0);
    stereo.setCount(3);
    stereo.setFrameRate(3);
    EXPECT_FALSE(stereo.setResolution(2));
    stereo.control(true);
    stereo.registerFisheyeCameras(true);
    stereo.registerFisheyeCameras(false);
    stereo.control(false);
    stereo.setViewSize(1, 1);
    EXPECT_EQ(stereo.calibrationJson(), QJsonValue(QJsonArray()));
    EXPECT_THAT(stereo.calibrationsAtCalibrationResolution(), IsEmpty());
    EXPECT_THAT(stereo.calibrationsAtCurrentResolution(), IsEmpty());
    EXPECT_NE(stereo.image(StereoData::BottomRight), nullptr);
    EXPECT_EQ(fireTimers(stereo), 1);
}

TEST_F(Stereo, exposureGoesOutOnEveryChangeAlsoWhileOff)
{
    QSignalSpy gain(stereo.get(), &StereoData::gainChanged),
        brightness(stereo.get(), &StereoData::brightnessChanged),
        exposure(stereo.get(), &StereoData::autoExposureChanged);
    stereo->setGain(30);
    stereo->setBrightness(7);
    stereo->setAutoExposure(false);
    EXPECT_EQ(gain, QList<QVariantList>{{30}});
    EXPECT_EQ(brightness, QList<QVariantList>{{7}});
    EXPECT_EQ(exposure, QList<QVariantList>{{false}});
    EXPECT_THAT(
        calls(), ElementsAre("setExposure(0, 30, 5)", "setExposure(0, 30, 7)", "setExposure(1, 30, 7)"));
}

TEST_F(Stereo, presentValuesSendNothing)
{
    QSignalSpy gain(stereo.get(), &StereoData::gainChanged),
        brightness(stereo.get(), &StereoData::brightnessChanged),
        exposure(stereo.get(), &StereoData::autoExposureChanged),
        mode(stereo.get(), &StereoData::modeChanged);
    stereo->setGain(20);
    stereo->setBrightness(5);
    stereo->setAutoExposure(true);
    stereo->setMode(4);
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(gain.count() + brightness.count() + exposure.count() + mode.count(), 0);
}

TEST_F(Stereo, theSignalLeavesBeforeTheDeviceIsTold)
{
    QStringList told;
    const auto note = [&](int value) {
        EXPECT_THAT(device->calls(), IsEmpty());
        told << QString("%1 %2 %3").arg(value).arg(stereo->gain()).arg(stereo->mode());
    };
    QObject::connect(stereo.get(), &StereoData::gainChanged, note);
    QObject::connect(stereo.get(), &StereoData::modeChanged, note);
    stereo->setGain(30);
    EXPECT_THAT(calls(), ElementsAre("setExposure(0, 30, 5)"));
    stereo->setMode(1);
    EXPECT_THAT(calls(), ElementsAre("setUvcMode(1)"));
    EXPECT_EQ(told, (QStringList{"30 30 4", "1 30 1"}));
}

TEST_F(Stereo, frameRateOfTheCamerasPassesThrough)
{
    cameras->framerateResult = false;
    stereo->setFeFrameRate(47.5F);
    EXPECT_THAT(calls(), ElementsAre("setFramerate(47.5)"));
}

TEST_F(Stereo, modeReachesTheDevice)
{
    QSignalSpy mode(stereo.get(), &StereoData::modeChanged);
    for (const int value : {1, 5, 3})
        stereo->setMode(value);
    EXPECT_THAT(calls(), ElementsAre("setUvcMode(1)", "setUvcMode(5)", "setUvcMode(3)"));
    EXPECT_EQ(mode.count(), 3);
}

TEST_F(Stereo, modeZeroBlanksAllPictures)
{
    cameras->deliver(fisheyes({fisheye(8, 6, 1), fisheye(8, 6, 2), fisheye(8, 6, 3), fisheye(8, 6, 4)}));
    camera(*stereo, 1)->setPoints({{1, 1}});
    stereo->setMode(0);
    for (int i = 0; i < 4; ++i) {
        const ImageData::Frame frame = camera(*stereo, i)->image()->frame();
        EXPECT_EQ(frame.data, nullptr);
        EXPECT_EQ(frame.width, 0);
        EXPECT_EQ(frame.height, 0);
        EXPECT_TRUE(camera(*stereo, i)->image()->points().isEmpty());
    }
    EXPECT_THAT(calls(), ElementsAre("setUvcMode(0)"));
}

TEST_F(Stereo, otherModesKeepThePictures)
{
    cameras->deliver(fisheyes({fisheye(8, 6, 1)}));
    stereo->setMode(1);
    EXPECT_NE(camera(*stereo, 0)->image()->data(), nullptr);
}

TEST_F(Stereo, aPairLeavesTheLowerCamerasBlank)
{
    const auto left = fisheye(8, 6, 1), right = fisheye(8, 6, 2);
    QSignalSpy count(stereo.get(), &StereoData::countChanged);
    cameras->deliver(fisheyes({left, right}));
    EXPECT_EQ(stereo->count(), 2);
    EXPECT_EQ(count.count(), 1);
    EXPECT_EQ(camera(*stereo, 0)->image()->data(), left.data);
    EXPECT_EQ(camera(*stereo, 1)->image()->data(), right.data);
    EXPECT_EQ(camera(*stereo, 2)->image()->data(), nullptr);
    EXPECT_EQ(camera(*stereo, 3)->image()->data(), nullptr);
}

TEST_F(Stereo, fourCamerasFillAllFour)
{
    std::vector<qv::FisheyeImage> four;
    for (unsigned char i = 0; i < 4; ++i)
        four.push_back(fisheye(8, 6, i));
    cameras->deliver(fisheyes(four));
    EXPECT_EQ(stereo->count(), 4);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(camera(*stereo, int(i))->image()->data(), four[i].data);
}

TEST_F(Stereo, ofFiveImagesFourAreShownAndFiveCounted)
{
    cameras->deliver(fisheyes({5, fisheye(8, 6, 1)}));
    EXPECT_EQ(stereo->count(), 5);
    EXPECT_NE(camera(*stereo, 3)->image()->data(), nullptr);
    EXPECT_EQ(stereo->image(StereoData::Image(4)), nullptr);
}

TEST_F(Stereo, imagesOutsideTheFourAreNull)
{
    EXPECT_EQ(stereo->image(StereoData::Image(4)), nullptr);
    EXPECT_EQ(stereo->image(StereoData::Image(-1)), nullptr);
    QQmlEngine engine;
    QQmlExpression call(engine.rootContext(), stereo.get(), "image(1)");
    EXPECT_EQ(call.evaluate().value<QObject *>(), stereo->image(StereoData::Right))
        << "as a document calls it";
}

TEST_F(Stereo, sizeFollowsTheFirstImage)
{
    QSignalSpy width(stereo.get(), &StereoData::widthChanged),
        height(stereo.get(), &StereoData::heightChanged);
    cameras->deliver(fisheyes({fisheye(640, 400, 1), fisheye(8, 6, 1)}));
    EXPECT_EQ(width.count() + height.count(), 0) << "the size that it has from the start";
    cameras->deliver(fisheyes({fisheye(1280, 720, 1)}));
    ASSERT_EQ(width.count(), 1);
    ASSERT_EQ(height.count(), 1);
    EXPECT_EQ(width[0][0].toInt(), 1280);
    EXPECT_EQ(stereo->width(), 1280);
    EXPECT_EQ(stereo->height(), 720);
}

TEST_F(Stereo, theOrderOfAFrameSet)
{
    QStringList order;
    QObject::connect(stereo.get(), &StereoData::widthChanged, [&] { order << "width"; });
    QObject::connect(stereo.get(), &StereoData::heightChanged, [&] { order << "height"; });
    QObject::connect(stereo.get(), &StereoData::countChanged, [&] {
        order << "count";
        return 0;
    });
    for (int i = 0; i < 2; ++i)
        QObject::connect(
            camera(*stereo, i)->image(), &ImageData::update, [&, i] { order << QString::number(i); });
    cameras->deliver(fisheyes({fisheye(8, 6, 1), fisheye(8, 6, 1)}));
    EXPECT_EQ(order, (QStringList{"width", "height", "0", "1", "count"}));
}

TEST_F(Stereo, anEmptyListRaisesTheErrorAfterItWasCounted)
{
    cameras->deliver(fisheyes({fisheye(8, 6, 1), fisheye(8, 6, 1)}));
    try {
        cameras->deliver(fisheyes({}));
        FAIL() << "no error";
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
    }
    EXPECT_EQ(stereo->dataFrameRate(), 2);
    EXPECT_EQ(stereo->count(), 2);
    cameras->deliver(fisheyes({fisheye(8, 6, 1)}));
    EXPECT_EQ(stereo->count(), 1) << "the model goes on";
}

TEST_F(Stereo, damagedImagesDoNoHarm)
{
    cameras->deliver(fisheyes({{8, 6, nullptr}, {0, 0, grey(1, 1, 1)}, {0, 7, nullptr}}));
    EXPECT_EQ(stereo->count(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(camera(*stereo, i)->toImage().isNull());
    const std::size_t huge = std::numeric_limits<std::size_t>::max();
    cameras->deliver(fisheyes({fisheye(8, 6, 1), {huge, 6, grey(1, 1, 1)}, {70000, 70000, grey(1, 1, 1)}}));
    EXPECT_EQ(camera(*stereo, 0)->toImage().size(), QSize(8, 6));
    EXPECT_TRUE(camera(*stereo, 1)->toImage().isNull());
    EXPECT_TRUE(camera(*stereo, 2)->toImage().isNull());
}

TEST_F(Stereo, aSizeThatNoFrameHolderCanCarryLeavesTheOneOfBefore)
{
    QSignalSpy width(stereo.get(), &StereoData::widthChanged),
        height(stereo.get(), &StereoData::heightChanged);
    const std::size_t huge = std::numeric_limits<std::size_t>::max();
    cameras->deliver(fisheyes({{huge, 6, grey(1, 1, 1)}, fisheye(8, 6, 1)}));
    cameras->deliver(fisheyes({{8, (std::size_t(1) << 32) + 6, grey(1, 1, 1)}}));
    EXPECT_EQ(stereo->width(), 640);
    EXPECT_EQ(stereo->height(), 400);
    EXPECT_EQ(width.count() + height.count(), 0);
    EXPECT_EQ(stereo->count(), 1) << "they count as pictures";
    EXPECT_EQ(camera(*stereo, 1)->toImage().size(), QSize(8, 6));
}

TEST_F(Stereo, viewSizeReachesAllFourCameras)
{
    stereo->setViewSize(320, 0);
    stereo->setViewSize(0, 200);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(viewerSizeOf(*camera(*stereo, i)->image()), QSize(320, 200)) << i;
}

TEST_F(Stereo, theTickClearsTheCountWhateverAHandlerWrote)
{
    for (int i = 0; i < 3; ++i)
        cameras->deliver(fisheyes({fisheye(8, 6, 1)}));
    bool written = false;
    std::vector<int> told;
    QObject::connect(stereo.get(), &StereoData::dataFrameRateChanged, [&](int rate) {
        told.push_back(rate);
        if (!std::exchange(written, true))
            stereo->setFrameRate(0);
    });
    fireTimers(*stereo);
    EXPECT_THAT(told, ElementsAre(3, 0));
    EXPECT_EQ(stereo->dataFrameRate(), 0);
}

TEST_F(Stereo, keyPointsOfTwoCamerasAreTruncatedTowardZero)
{
    FakeFisheyeCamerasEx::KeyPoints2 record;
    record.descriptors[0] = descriptor<2>({1.9F, 2.1F, -0.9F, -1.9F});
    record.descriptors[1] = descriptor<2>({639.99F, 399.5F});
    cameras->keyPoints2.deliver(record);
    EXPECT_EQ(camera(*stereo, 0)->image()->points(), (QVector<QPoint>{{1, 2}, {0, -1}}));
    EXPECT_EQ(camera(*stereo, 1)->image()->points(), (QVector<QPoint>{{639, 399}}));
    EXPECT_TRUE(camera(*stereo, 2)->image()->points().isEmpty());
}

TEST_F(Stereo, keyPointsOfFourCamerasReachAllFour)
{
    FakeFisheyeCamerasEx::KeyPoints4 record;
    for (std::size_t i = 0; i < 4; ++i)
        record.descriptors[i] = descriptor<4>({float(i), float(10 * i)});
    cameras->keyPoints4.deliver(record);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(camera(*stereo, i)->image()->points(), (QVector<QPoint>{{i, 10 * i}}));
}

TEST_F(Stereo, aNewRecordReplacesThePoints)
{
    FakeFisheyeCamerasEx::KeyPoints2 record;
    record.descriptors[0] = descriptor<2>({1, 1});
    cameras->keyPoints2.deliver(record);
    record.descriptors[0] = descriptor<2>({});
    cameras->keyPoints2.deliver(record);
    EXPECT_TRUE(camera(*stereo, 0)->image()->points().isEmpty());
}

TEST_F(Stereo, damagedKeyPointsDoNoHarm)
{
    FakeFisheyeCamerasEx::KeyPoints2 record;
    record.descriptors[0].size = 1000;
    record.descriptors[1] = descriptor<2>({std::numeric_limits<float>::quiet_NaN(), 1e30F,
        -std::numeric_limits<float>::infinity(), 2147483648.0F});
    cameras->keyPoints2.deliver(record);
    EXPECT_TRUE(camera(*stereo, 0)->image()->points().isEmpty());
    constexpr int most = std::numeric_limits<int>::max(), least = std::numeric_limits<int>::min();
    EXPECT_EQ(camera(*stereo, 1)->image()->points(), (QVector<QPoint>{{0, most}, {least, most}}));
}

TEST_F(Stereo, theFirstControlOnlyStarts)
{
    stereo->control(true);
    EXPECT_THAT(calls(), ElementsAre("start"));
    EXPECT_EQ(log.lines().last(), "debug: StereoData::control start....................");
}

TEST_F(Stereo, controlOffUnregistersAndStops)
{
    stereo->control(true);
    calls();
    stereo->control(false);
    EXPECT_THAT(calls(),
        ElementsAre("unregisterCallback(1)", "unregisterKeyPoints2Callback(1)",
            "unregisterKeyPoints4Callback(1)", "stop"));
    EXPECT_EQ(log.lines().last(), "debug: StereoData::control stop....................");
    stereo->control(true);
    EXPECT_THAT(calls(),
        ElementsAre("registerCallback", "registerKeyPoints2Callback", "registerKeyPoints4Callback", "start"));
}

TEST_F(Stereo, aSecondControlRegistersNothingAndStartsAgain)
{
    stereo->control(true);
    stereo->control(true);
    EXPECT_THAT(calls(), ElementsAre("start", "start"));
    stereo->control(false);
    calls();
    stereo->control(false);
    EXPECT_THAT(calls(), ElementsAre("stop")) << "nothing is left to unregister, and it stops again";
}

TEST_F(Stereo, aRefusedStartCountsAsRunning)
{
    cameras->startResult = false;
    stereo->control(true);
    calls();
    stereo->registerFisheyeCameras(false);
    EXPECT_THAT(calls(), IsEmpty()) << "running, so the callback stays";
    cameras->stopResult = false;
    stereo->control(false);
    calls();
    stereo->registerFisheyeCameras(true);
    stereo->registerFisheyeCameras(false);
    EXPECT_THAT(calls(), ElementsAre("registerCallback", "unregisterCallback(2)")) << "stopped";
}

TEST_F(Stereo, othersGetThePicturesWhileTheStreamIsOff)
{
    stereo->registerFisheyeCameras(true);
    EXPECT_THAT(calls(), IsEmpty()) << "registered since construction";
    stereo->registerFisheyeCameras(false);
    EXPECT_THAT(calls(), ElementsAre("unregisterCallback(1)"));
    stereo->registerFisheyeCameras(false);
    EXPECT_THAT(calls(), IsEmpty());
    stereo->registerFisheyeCameras(true);
    EXPECT_THAT(calls(), ElementsAre("registerCallback"));
    cameras->deliver(fisheyes({fisheye(8, 6, 1)}));
    EXPECT_NE(camera(*stereo, 0)->image()->data(), nullptr);
}

TEST_F(Stereo, whileItRunsOthersCannotTakeThePicturesAway)
{
    stereo->control(true);
    stereo->registerFisheyeCameras(false);
    EXPECT_EQ(cameras->callbacks.count(), 1U);
    stereo->registerFisheyeCameras(true);
    stereo->control(false);
    EXPECT_EQ(cameras->callbacks.count(), 0U) << "gone for the others as well";
}

TEST_F(Stereo, resolutionAnswersWhatTheCamerasSay)
{
    EXPECT_TRUE(stereo->setResolution(3));
    EXPECT_THAT(calls(), ElementsAre("setResolution(3)"));
    cameras->resolutionResult = false;
    EXPECT_FALSE(stereo->setResolution(2));
    EXPECT_EQ(log.lines().last(), "debug: set stereo resolution failed");
    EXPECT_EQ(stereo->width(), 640);
    EXPECT_EQ(stereo->height(), 400);
}

TEST_F(Stereo, rateIsReportedWithItsSignalAndThenStartsAnew)
{
    QList<int> told, read;
    QObject::connect(stereo.get(), &StereoData::dataFrameRateChanged, [&](int rate) {
        told << rate;
        read << stereo->dataFrameRate();
    });
    for (int i = 0; i < 3; ++i)
        cameras->deliver(fisheyes({fisheye(8, 6, 1)}));
    EXPECT_EQ(stereo->dataFrameRate(), 3) << "the frames so far in this second";
    fireTimers(*stereo);
    EXPECT_EQ(stereo->dataFrameRate(), 0);
    fireTimers(*stereo);
    EXPECT_EQ(told, (QList<int>{3, 0})) << "a rate of 0 is reported too";
    EXPECT_EQ(read, told);
}

TEST_F(Stereo, theTimerTicksEachSecondAlsoWhileOff)
{
    const auto timers = stereo->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(timers.size(), 1);
    EXPECT_EQ(timers[0]->interval(), 1000);
    QSignalSpy rate(stereo.get(), &StereoData::dataFrameRateChanged);
    EXPECT_TRUE(waitFor([&] { return rate.count() >= 1; }));
}

TEST_F(Stereo, setFrameRateOverwritesAndAlwaysSignals)
{
    QSignalSpy rate(stereo.get(), &StereoData::dataFrameRateChanged);
    QObject::connect(stereo.get(), &StereoData::dataFrameRateChanged,
        [&](int told) { EXPECT_EQ(stereo->dataFrameRate(), told); });
    stereo->setFrameRate(5);
    stereo->setFrameRate(5);
    EXPECT_EQ(rate.count(), 2);
    EXPECT_EQ(stereo->dataFrameRate(), 5);
}

TEST_F(Stereo, countCanBeWritten)
{
    QSignalSpy count(stereo.get(), &StereoData::countChanged);
    stereo->setProperty("count", 3);
    stereo->setProperty("count", 3);
    EXPECT_EQ(count.count(), 1);
    EXPECT_EQ(stereo->count(), 3);
}

TEST_F(Stereo, savingAndRecordingGoByIndex)
{
    const QTemporaryDir folder;
    EXPECT_FALSE(stereo->saveImage(0, folder.filePath("left.png"))) << "no picture yet";
    cameras->deliver(fisheyes({fisheye(64, 48, 50), fisheye(64, 48, 90)}));
    EXPECT_TRUE(stereo->saveImage(1, folder.filePath("right.png")));
    EXPECT_EQ(qGray(QImage(folder.filePath("right.png")).pixel(3, 3)), 90);

    EXPECT_TRUE(stereo->setImageRecordPath(1, folder.filePath("right.avi")));
    EXPECT_TRUE(stereo->setImageRecording(1, true));
    cameras->deliver(fisheyes({fisheye(64, 48, 50), fisheye(64, 48, 90)}));
    EXPECT_TRUE(stereo->setImageRecording(1, false));
    cv::VideoCapture video(folder.filePath("right.avi").toStdString());
    cv::Mat frame;
    ASSERT_TRUE(video.read(frame));
    EXPECT_NEAR(cv::mean(frame)[0], 90, 4);

    for (const int index : {-1, 4}) {
        EXPECT_FALSE(stereo->setImageRecordPath(index, "a.avi"));
        EXPECT_FALSE(stereo->setImageRecording(index, true));
        EXPECT_FALSE(stereo->saveImage(index, folder.filePath("a.png")));
    }
}

TEST_F(Stereo, calibrationsComeFromTheCameras)
{
    cameras->calibrations.resize(2);
    cameras->calibrationCalibrations.resize(3);
    cameras->currentCalibrations.resize(4);
    EXPECT_EQ(stereo->calibrationJson().toArray().size(), 2);
    EXPECT_EQ(stereo->calibrationsAtCalibrationResolution().size(), 3U);
    EXPECT_EQ(stereo->calibrationsAtCurrentResolution().size(), 4U);
}

TEST_F(Stereo, destructionUnregistersAndDoesNotStop)
{
    stereo->control(true);
    calls();
    stereo.reset();
    EXPECT_THAT(calls(),
        ElementsAre(
            "unregisterCallback(1)", "unregisterKeyPoints2Callback(1)", "unregisterKeyPoints4Callback(1)"));
}

TEST_F(Stereo, destructionUnregistersOnlyWhatIsRegistered)
{
    stereo->control(false);
    calls();
    stereo.reset();
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Stereo, callbacksThatAreStillOnTheirWayFindItGone)
{
    const auto images = cameras->callbacks.held();
    const auto points2 = cameras->keyPoints2.held();
    const auto points4 = cameras->keyPoints4.held();
    stereo.reset();
    images.at(0)(fisheyes({fisheye(8, 6, 1)}));
    images.at(0)(fisheyes({}));
    points2.at(0)({});
    points4.at(0)({});
}

TEST_F(Stereo, itMayGoWhileItsCallbacksRun)
{
    const auto images = cameras->callbacks.held();
    const auto points = cameras->keyPoints2.held();
    std::atomic<bool> done{false};
    std::atomic<int> frames{0};
    std::thread pictures([&] {
        const auto record = fisheyes({fisheye(8, 6, 1), fisheye(8, 6, 2)});
        while (!done) {
            images.at(0)(record);
            ++frames;
        }
    });
    std::thread tracking([&] {
        FakeFisheyeCamerasEx::KeyPoints2 record;
        for (float x = 0; !done; ++x) {
            record.descriptors[0] = descriptor<2>({x, x});
            points.at(0)(record);
        }
    });
    while (frames < 100)
        QThread::yieldCurrentThread();
    stereo.reset();
    const int then = frames;
    while (frames < then + 100)
        QThread::yieldCurrentThread();
    done = true;
    pictures.join();
    tracking.join();
}

TEST_F(Stereo, settingsWhileFramesComeAreSafe)
{
    std::atomic<bool> done{false};
    std::atomic<int> sets{0};
    std::thread pictures([&] {
        for (std::size_t size = 1; !done; size = size % 40 + 1) {
            cameras->deliver(
                fisheyes(std::vector<qv::FisheyeImage>(size % 5 + 1, fisheye(size, size + 1, 7))));
            ++sets;
        }
    });
    std::thread tracking([&] {
        FakeFisheyeCamerasEx::KeyPoints4 record;
        for (float x = 0; !done; ++x) {
            record.descriptors[1] = descriptor<4>({x, x, 1, 2});
            cameras->keyPoints4.deliver(record);
        }
    });
    for (int i = 0; sets < 2000; ++i) {
        stereo->setMode(i % 2);
        camera(*stereo, i % 4)->toImage();
        camera(*stereo, i % 4)->toMat();
        camera(*stereo, i % 4)->image()->points();
        fireTimers(*stereo);
        QCoreApplication::processEvents();
    }
    done = true;
    pictures.join();
    tracking.join();
}
