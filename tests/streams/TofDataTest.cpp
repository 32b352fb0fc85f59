#include "streams/TofData.h"

#include "imaging/DepthColors.h"
#include "streams/TofPictures.h"
#include "support/AllocationCounter.h"
#include "support/FakeLibrary.h"
#include "support/FakeTofCamera.h"
#include "support/LogCatcher.h"
#include "support/Pictures.h"
#include "support/Timers.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <opencv2/videoio.hpp>

using pictures::bufferOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Millimetres = std::vector<std::int16_t>;
using Metres = std::vector<float>;

qv::DepthImage tofRecord(
    int type, std::size_t width, std::size_t height, pictures::Buffer data, std::size_t bytes)
{
    qv::DepthImage image;
    image.type = type;
    image.width = width;
    image.height = height;
    image.data = std::move(data);
    image.dataSize = static_cast<unsigned int>(bytes);
    return image;
}

qv::DepthImage millimetres(std::size_t width, std::size_t height, const Millimetres &samples)
{
    return tofRecord(0, width, height, bufferOf(samples), samples.size() * 2);
}

qv::DepthImage metres(std::size_t width, std::size_t height, const Metres &samples)
{
    return tofRecord(1, width, height, bufferOf(samples), samples.size() * 4);
}

/// Samples 1000, 1001, ... for a frame of `width * height`.
template <class Sample>
std::vector<Sample> ramp(std::size_t count, double scale)
{
    std::vector<Sample> samples;
    for (std::size_t i = 0; i < count; ++i)
        samples.push_back(static_cast<Sample>((1000.0 + double(i)) * scale));
    return samples;
}

qv::DepthImage countingMillimetres(std::size_t width, std::size_t height)
{
    return millimetres(width, height, ramp<std::int16_t>(width * height, 1));
}

qv::DepthImage countingMetres(std::size_t width, std::size_t height)
{
    return metres(width, height, ramp<float>(width * height, 0.001));
}

std::vector<float> shown(const TofData &tof)
{
    const ImageData::Frame frame = tof.image()->frame();
    const auto *values = reinterpret_cast<const float *>(frame.data.get());
    return {values, values + frame.dataSize / 4};
}

class Tof : public testing::Test {
protected:
    Tof() { fake::library().reset(); }

    void SetUp() override
    {
        tof = std::make_unique<TofData>(camera, nullptr);
        camera->takeCalls();
    }

    void TearDown() override { tof.reset(); }

    void run()
    {
        tof->control(true);
        camera->takeCalls();
    }

    /// Delivers until the average is reported; how many frames that took, at most `limit`.
    int deliverUntilAverage(const qv::DepthImage &frame, int limit = 40)
    {
        QSignalSpy average(tof.get(), &TofData::centerAvgPxChanged);
        for (int i = 1; i <= limit; ++i) {
            camera->deliver(frame);
            if (average.count() > 0) {
                EXPECT_EQ(average[0][0].toInt(), tof->centerAvgPx());
                return i;
            }
        }
        return 0;
    }

    LogCatcher log;
    std::shared_ptr<FakeTofCamera> camera = std::make_shared<FakeTofCamera>();
    std::unique_ptr<TofData> tof;
};

} // namespace

TEST(TofData, aNullCameraIsRefused)
{
    try {
        const TofData tof(nullptr, nullptr);
        FAIL() << "made of nothing";
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "Invalid TofCamera");
    }
}

TEST(TofData, constructionSetsTheStreamModeAndAsksTheFamily)
{
    const auto camera = std::make_shared<FakeTofCamera>();
    camera->manufacturerResult = 1;
    const TofData tof(camera, nullptr);
    EXPECT_THAT(camera->calls(), ElementsAre("setStreamMode(0)", "manufacturer"));
    EXPECT_EQ(tof.manufacturer(), 1);
    EXPECT_EQ(tof.image()->type(), int(ImageData::Float));
}

TEST_F(Tof, defaults)
{
    EXPECT_EQ(tof->framerate(), 30);
    EXPECT_EQ(tof->maxDistance(), 1.0);
    EXPECT_EQ(tof->minDistance(), 0.1);
    EXPECT_EQ(tof->mode(), 0);
    EXPECT_EQ(tof->frequency(), 0);
    EXPECT_EQ(tof->fps(), 5);
    EXPECT_EQ(tof->resolution(), 0);
    EXPECT_FALSE(tof->pixelShow());
    EXPECT_EQ(tof->depth(), 0);
    EXPECT_EQ(tof->centerAvgPx(), 0);
    EXPECT_EQ(tof->manufacturer(), 0);
    EXPECT_TRUE(tof->isEnable());
    EXPECT_FALSE(tof->isRunning());
    EXPECT_EQ(tof->property("image").value<ImageData *>(), tof->image());
    EXPECT_EQ(tof->property("fps").toDouble(), 5.0);
}

TEST_F(Tof, controlRegistersSetsUpStartsAndSignals)
{
    QList<int> running;
    QObject::connect(tof.get(), &TofData::tofRunning, [&](int v) {
        running << v;
        EXPECT_TRUE(tof->isEnable());
        EXPECT_EQ(tof->isRunning(), v == 0);
    });
    QElapsedTimer timer;
    timer.start();
    tof->control(true);
    EXPECT_GE(timer.elapsed(), 99);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("registerCallback", "setSonyTofSetting(1, 0, 5)", "start"));
    timer.restart();
    tof->control(false);
    EXPECT_GE(timer.elapsed(), 99);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("unregisterCallback(1)", "unregisterCallback(-1)", "stop"));
    EXPECT_EQ(running, (QList<int>{0, 1})) << "0 is on";
}

TEST_F(Tof, aSecondControlReplacesTheCallback)
{
    run();
    tof->control(true);
    EXPECT_THAT(camera->calls(),
        ElementsAre("unregisterCallback(1)", "registerCallback", "setSonyTofSetting(1, 0, 5)", "start"));
    EXPECT_EQ(camera->callbacks.count(), 1U);
}

TEST_F(Tof, aHeldStreamIsNotStoppedUntilItIsLetGo)
{
    EXPECT_TRUE(tof->startOrStop(true));
    EXPECT_THAT(camera->takeCalls(), ElementsAre("registerCallback", "setSonyTofSetting(1, 0, 5)", "start"));
    EXPECT_TRUE(tof->isRunning());
    EXPECT_FALSE(tof->startOrStop(true)) << "running already";
    QSignalSpy running(tof.get(), &TofData::tofRunning);
    tof->control(false);
    EXPECT_THAT(camera->calls(), IsEmpty());
    EXPECT_EQ(running.count(), 0);
    EXPECT_TRUE(tof->startOrStop(false));
    EXPECT_TRUE(tof->isRunning()) << "goes on until control stops it";
    tof->control(false);
    EXPECT_THAT(camera->calls(), ElementsAre("unregisterCallback(1)", "unregisterCallback(-1)", "stop"));
    EXPECT_FALSE(tof->startOrStop(false));
}

TEST_F(Tof, aStreamThatRunsAlreadyIsNotHeld)
{
    run();
    EXPECT_FALSE(tof->startOrStop(true));
    EXPECT_THAT(camera->calls(), IsEmpty());
    tof->control(false);
    EXPECT_THAT(camera->calls(), ElementsAre("unregisterCallback(1)", "unregisterCallback(-1)", "stop"));
    EXPECT_FALSE(tof->isRunning());
}

TEST_F(Tof, startOrStopAnswersTheStart)
{
    camera->startResult = false;
    EXPECT_FALSE(tof->startOrStop(true));
    EXPECT_TRUE(tof->isRunning());
}

TEST_F(Tof, frameRateReachesTheCameraWhenItDiffers)
{
    QSignalSpy rate(tof.get(), &TofData::framerateChanged);
    tof->setFramerate(30);
    tof->setFramerate(10);
    ASSERT_EQ(rate.count(), 1);
    EXPECT_EQ(rate[0][0].toInt(), 10);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("setFramerate(10)"));
    QObject::connect(tof.get(), &TofData::framerateChanged,
        [&] { EXPECT_THAT(camera->calls(), IsEmpty()) << "told before the camera has it"; });
    tof->setFramerate(20);
    EXPECT_THAT(camera->calls(), ElementsAre("setFramerate(20)"));
}

TEST_F(Tof, theRecorderFollowsAcceptedRatesOnly)
{
    const QTemporaryDir folder;
    run();
    const auto frame = metres(64, 48, Metres(64 * 48, 0.5F));
    camera->deliver(frame);
    const auto recordedRate = [&](const char *name) {
        tof->setRecordPath(folder.filePath(name));
        tof->setRecording(true);
        camera->deliver(frame);
        tof->setRecording(false);
        return cv::VideoCapture(tof->recordPath().toStdString()).get(cv::CAP_PROP_FPS);
    };
    EXPECT_EQ(recordedRate("untouched.avi"), 15);
    tof->setFramerate(20);
    EXPECT_EQ(recordedRate("accepted.avi"), 20);
    camera->framerateResult = false;
    tof->setFramerate(25);
    EXPECT_EQ(tof->framerate(), 25);
    EXPECT_EQ(recordedRate("refused.avi"), 20);
}

TEST_F(Tof, distancesAlwaysSignal)
{
    QSignalSpy most(tof.get(), &TofData::maxDistanceChanged), least(tof.get(), &TofData::minDistanceChanged);
    tof->setMaxDistance(1.0);
    tof->setMinDistance(0.1);
    tof->setMaxDistance(1.0);
    ASSERT_EQ(most.count(), 2);
    EXPECT_EQ(most[0][0].toDouble(), 1.0);
    ASSERT_EQ(least.count(), 1);
    EXPECT_EQ(least[0][0].toDouble(), 0.1);
}

TEST_F(Tof, workModesByModeAndFrequency)
{
    const std::vector<std::array<int, 3>> table{
        {0, 0, 1}, {0, 1, 0}, {1, 0, 3}, {1, 1, 2}, {2, 0, 5}, {2, 1, 4}};
    for (const auto &[mode, frequency, workMode] : table) {
        tof->setMode(mode);
        tof->setFrequency(frequency);
        camera->takeCalls();
        tof->RefreshSonyTofSetting();
        EXPECT_THAT(
            camera->takeCalls(), ElementsAre("setSonyTofSetting(" + std::to_string(workMode) + ", 0, 5)"));
    }
}

TEST_F(Tof, unknownModesAreStoredAndKeepTheWorkMode)
{
    tof->setMode(2);
    camera->takeCalls();
    tof->setMode(3);
    EXPECT_EQ(tof->mode(), 3);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("setSonyTofSetting(5, 0, 5)"));
    tof->setFrequency(-1);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("setSonyTofSetting(5, 0, 5)"));
}

TEST_F(Tof, sensorSettingsReachTheCameraInSilence)
{
    QSignalSpy mode(tof.get(), &TofData::modeChanged), frequency(tof.get(), &TofData::frequencyChanged),
        fps(tof.get(), &TofData::fpsChanged), resolution(tof.get(), &TofData::resolutionChanged);
    for (int i = 0; i < 2; ++i) {
        tof->setProperty("mode", 1);
        tof->setProperty("frequency", 1);
        tof->setProperty("resolution", 1);
        tof->setProperty("fps", 3);
    }
    EXPECT_THAT(camera->calls(),
        ElementsAre("setSonyTofSetting(3, 0, 5)", "setSonyTofSetting(2, 0, 5)", "setSonyTofSetting(2, 1, 5)",
            "setSonyTofSetting(2, 1, 3)"));
    EXPECT_EQ(mode.count() + frequency.count() + fps.count() + resolution.count(), 0);
}

TEST_F(Tof, refusedSettingsAreLogged)
{
    camera->sonyTofSettingResult = camera->distanceModeResult = camera->libWorkModeResult = false;
    tof->setFps(2);
    EXPECT_EQ(tof->fps(), 2);
    EXPECT_FALSE(tof->RefreshSonyTofSetting());
    EXPECT_FALSE(tof->setDistanceMode(1));
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(tof->setLibWorkMode(2));
    EXPECT_GE(timer.elapsed(), 499) << "a refusal takes as long";
    EXPECT_EQ(log.lines(),
        (QStringList{"debug: setSonyTofSetting failed", "debug: setSonyTofSetting failed",
            "debug: setDistanceMode failed", "debug: setLibWorkMode failed"}));
}

TEST_F(Tof, acceptedSettingsAreNot)
{
    EXPECT_TRUE(tof->setDistanceMode(1));
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(tof->setLibWorkMode(2));
    EXPECT_GE(timer.elapsed(), 499);
    tof->setTofIrGamma(1.5);
    EXPECT_THAT(
        camera->calls(), ElementsAre("setDistanceMode(1)", "setLibWorkMode(2)", "setTofIrGamma(1.5)"));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(Tof, pixelShowAlwaysSignalsManufacturerWhenItDiffers)
{
    QSignalSpy show(tof.get(), &TofData::pixelShowChanged), maker(tof.get(), &TofData::manufacturerChanged);
    tof->setProperty("pixelShow", true);
    tof->setProperty("pixelShow", true);
    tof->setProperty("manufacturer", 0);
    tof->setProperty("manufacturer", 1);
    ASSERT_EQ(show.count(), 2);
    EXPECT_TRUE(show[1][0].toBool());
    EXPECT_EQ(maker.count(), 1);
}

TEST_F(Tof, millimetresBecomeMetresInAFrameOfTheirOwn)
{
    run();
    const auto frame = millimetres(3, 2, {0, 1, 999, 32767, -1, -32768});
    camera->deliver(frame);
    EXPECT_THAT(shown(*tof), ElementsAre(0.0F, 0.001F, 0.999F, 32.767F, -0.001F, -32.768F));
    EXPECT_EQ(tof->image()->frame().type, int(ImageData::Float));
    EXPECT_EQ(tof->image()->dataSize(), 24);
    EXPECT_EQ(tof->sourceWidth(), 3);
    EXPECT_EQ(tof->sourceHeight(), 2);
}

TEST(TofMillimetres, everySampleIsTheDoubleQuotientNarrowed)
{
    Millimetres all;
    for (int value = -32768; value <= 32767; ++value)
        all.push_back(static_cast<std::int16_t>(value));
    Metres converted(all.size());
    millimetresToMetres(reinterpret_cast<const unsigned char *>(all.data()), all.size(), converted.data());
    for (std::size_t i = 0; i < all.size(); ++i)
        ASSERT_EQ(converted[i], float(double(all[i]) / 1000.0)) << all[i];
    // Alone a sample goes another way than among eight.
    for (std::size_t i = 0; i < all.size(); ++i) {
        float metres = 0;
        millimetresToMetres(reinterpret_cast<const unsigned char *>(&all[i]), 1, &metres);
        ASSERT_EQ(metres, converted[i]) << all[i];
    }
}

TEST(TofMillimetres, anyCountAtAnyAddressStaysWithinItsBounds)
{
    constexpr std::size_t most = 40;
    constexpr float untouched = -7.5F;
    for (const std::size_t offset : {0U, 1U, 2U, 3U}) {
        for (std::size_t count = 0; count <= most; ++count) {
            // Nothing beyond the last sample, so that the sanitizer sees a read too many.
            std::vector<unsigned char> bytes(offset + count * 2);
            Metres expected, converted(count + 8, untouched);
            for (std::size_t i = 0; i < count; ++i) {
                const auto value = static_cast<std::int16_t>(977 * i - 20000);
                std::memcpy(&bytes[offset + 2 * i], &value, sizeof(value));
                expected.push_back(float(value / 1000.0));
            }
            expected.resize(converted.size(), untouched);
            millimetresToMetres(bytes.data() + offset, count, converted.data());
            ASSERT_EQ(converted, expected) << count << " samples from " << offset;
        }
    }
}

TEST_F(Tof, floatFramesAreSharedNotCopied)
{
    run();
    const auto frame = countingMetres(640, 480);
    camera->deliver(frame);
    EXPECT_EQ(tof->image()->data(), frame.data);
    EXPECT_EQ(tof->image()->dataSize(), 640 * 480 * 4);
    if (!AllocationCounter::works())
        GTEST_SKIP() << "the sanitizer has its own allocator, only the buffer was compared";
    const auto callback = camera->callbacks.held().at(0);
    const AllocationCounter counter;
    for (int i = 0; i < 5; ++i)
        callback(frame);
    EXPECT_LT(counter.largest(), 4096U);
}

TEST_F(Tof, depthFramesCountInfraredDoesNot)
{
    run();
    camera->deliver(countingMillimetres(4, 4));
    camera->deliver(countingMetres(4, 4));
    QSignalSpy update(tof->image(), &ImageData::update);
    auto infrared = countingMillimetres(8, 6);
    infrared.type = 2;
    camera->deliver(infrared);
    EXPECT_EQ(update.count(), 0);
    EXPECT_EQ(tof->sourceWidth(), 8) << "its size is taken all the same";
    fireTimers(*tof);
    EXPECT_EQ(tof->dataFrameRate(), 2.0);
}

TEST_F(Tof, unknownTypesAreLoggedAndDropped)
{
    run();
    auto frame = countingMillimetres(4, 4);
    frame.type = 3;
    camera->deliver(frame);
    EXPECT_EQ(log.lines(), QStringList{"debug: The viewer does not support this ToF image format"});
    EXPECT_EQ(tof->sourceWidth(), 0);
    fireTimers(*tof);
    EXPECT_EQ(tof->dataFrameRate(), 0.0);
}

TEST_F(Tof, damagedFramesDoNoHarm)
{
    run();
    QSignalSpy update(tof->image(), &ImageData::update);
    for (auto frame : {countingMillimetres(4, 4), countingMetres(4, 4)}) {
        auto cut = frame;
        cut.dataSize -= 1;
        auto null = frame;
        null.data = nullptr;
        auto flat = frame;
        flat.height = 0;
        auto huge = frame;
        huge.width = huge.height = std::size_t(1) << 40;
        for (const auto &damaged : {cut, null, flat, huge})
            camera->deliver(damaged);
    }
    EXPECT_EQ(update.count(), 0);
    auto longer = millimetres(2, 1, {1000, 2000, 3000, 4000});
    camera->deliver(longer);
    EXPECT_THAT(shown(*tof), ElementsAre(1.0F, 2.0F)) << "no more than the picture has";
}

TEST_F(Tof, theReadOutIsOnePixelToTheLeft)
{
    run();
    tof->setPixelShow(true);
    QList<int> depths;
    QObject::connect(tof.get(), &TofData::depthChanged, [&](int depth) { depths << depth; });
    for (const auto &frame : {countingMillimetres(4, 3), countingMetres(4, 3)}) {
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 4; ++x) {
                if (x == 0 && y == 0)
                    continue;
                tof->setX(x);
                tof->setY(y);
                camera->deliver(frame);
                ASSERT_NEAR(tof->depth(), 1000 + x + 4 * y - 1, frame.type) << x << ' ' << y;
                ASSERT_EQ(depths.last(), tof->depth());
            }
        }
    }
    EXPECT_EQ(depths.size(), 22);
}

TEST_F(Tof, aRowAloneReadsTheEndOfTheRowAbove)
{
    // The column is the first one, and what is read stands one to the left of it.
    run();
    tof->setPixelShow(true);
    tof->setY(2);
    tof->setObjectY(1);
    camera->deliver(countingMillimetres(8, 4));
    EXPECT_EQ(tof->depth(), 1015);
    EXPECT_EQ(tof->objectDepth(), 1007);
}

TEST_F(Tof, millimetresAreReadBeforeTheyAreShownAndMetresAfter)
{
    run();
    tof->setPixelShow(true);
    tof->setX(2);
    QStringList order;
    QObject::connect(tof.get(), &TofData::depthChanged, [&] { order << "depth"; });
    QObject::connect(tof->image(), &ImageData::update, [&] { order << "picture"; });
    camera->deliver(countingMillimetres(4, 3));
    EXPECT_EQ(order, (QStringList{"depth", "picture"}));
    order.clear();
    camera->deliver(countingMetres(4, 3));
    EXPECT_EQ(order, (QStringList{"picture", "depth"}));
}

TEST_F(Tof, readOutsOutsideTheFrameKeepTheOldValueAndSignal)
{
    run();
    tof->setPixelShow(true);
    tof->setX(2);
    for (const auto &frame : {countingMillimetres(4, 3), countingMetres(4, 3)}) {
        tof->setX(2);
        tof->setY(1);
        camera->deliver(frame);
        const int before = tof->depth();
        QSignalSpy depth(tof.get(), &TofData::depthChanged);
        constexpr int most = std::numeric_limits<int>::max(), least = std::numeric_limits<int>::min();
        const std::vector<std::pair<int, int>> outside{
            {0, 0}, {-1, 0}, {1, 3}, {4, 3}, {most, most}, {least, least}, {0, -1}};
        for (const auto &[x, y] : outside) {
            tof->setX(x);
            tof->setY(y);
            camera->deliver(frame);
            ASSERT_EQ(tof->depth(), before);
        }
        EXPECT_EQ(depth.count(), int(outside.size()));
    }
}

TEST_F(Tof, withoutPixelShowNothingIsRead)
{
    run();
    tof->setX(2);
    QSignalSpy depth(tof.get(), &TofData::depthChanged);
    camera->deliver(countingMillimetres(4, 3));
    camera->deliver(countingMetres(4, 3));
    EXPECT_EQ(depth.count(), 0);
    EXPECT_EQ(tof->depth(), 0);
}

TEST_F(Tof, signedMillimetresReadNegative)
{
    run();
    tof->setPixelShow(true);
    tof->setX(1);
    camera->deliver(millimetres(2, 1, {static_cast<std::int16_t>(40000 - 65536), 0}));
    EXPECT_EQ(tof->depth(), 40000 - 65536);
}

TEST_F(Tof, oddFloatsReadAsDefinedNumbers)
{
    run();
    tof->setPixelShow(true);
    tof->setX(1);
    const float infinity = std::numeric_limits<float>::infinity();
    for (const auto &[value, expected] :
        std::vector<std::pair<float, int>>{{std::nanf(""), 0}, {infinity, std::numeric_limits<int>::max()},
            {-infinity, std::numeric_limits<int>::min()}, {1.2345F, 1234}, {-1.9999F, -1999}}) {
        camera->deliver(metres(2, 1, {value, 0}));
        EXPECT_EQ(tof->depth(), expected) << value;
    }
}

TEST_F(Tof, thePainterFindsTheProbeOfAnObject)
{
    QObject *stream = tof.get();
    EXPECT_EQ(qobject_cast<DepthProbe *>(stream), static_cast<DepthProbe *>(tof.get()));
}

TEST_F(Tof, theObjectsDepthIsReadOfMillimetresOnly)
{
    run();
    tof->setObjectX(3);
    tof->setObjectY(2);
    camera->deliver(countingMetres(4, 3));
    EXPECT_EQ(tof->objectDepth(), 0);
    camera->deliver(countingMillimetres(4, 3));
    EXPECT_EQ(tof->objectDepth(), 1000 + 2 + 8);
    tof->setObjectX(0);
    tof->setObjectY(0);
    camera->deliver(countingMillimetres(4, 3));
    EXPECT_EQ(tof->objectDepth(), 1010) << "a skipped read keeps the old value";
    tof->setObjectY(500);
    camera->deliver(countingMillimetres(4, 3));
    EXPECT_EQ(tof->objectDepth(), 1010);
}

TEST_F(Tof, theAverageIsOfEveryTwentiethFrameWithoutItsZeros)
{
    run();
    Millimetres samples(10 * 10, 7000);
    // The box: 3 by 2 at column 4, row 5.
    const int inside[] = {100, 0, 201, 303, 0, 404};
    for (int i = 0; i < 6; ++i)
        samples[std::size_t((5 + i / 3) * 10 + 4 + i % 3)] = static_cast<std::int16_t>(inside[i]);
    tof->setCenterAvgX(4);
    tof->setCenterAvgY(5);
    tof->setCenterAvgWidth(3);
    tof->setCenterAvgHeight(2);
    const auto frame = millimetres(10, 10, samples);
    EXPECT_EQ(deliverUntilAverage(frame), 0) << "not asked for";
    EXPECT_EQ(deliverUntilAverage(countingMetres(10, 10)), 0) << "not asked for";
    tof->setEnableCenterAvgPx(true);
    EXPECT_GT(deliverUntilAverage(frame), 0);
    EXPECT_EQ(tof->centerAvgPx(), 1008 / 4);
    EXPECT_EQ(deliverUntilAverage(frame), 20);

    Metres floats;
    for (const std::int16_t sample : samples)
        floats.push_back(float(sample) * 0.001F);
    EXPECT_GT(deliverUntilAverage(metres(10, 10, floats)), 0);
    EXPECT_NEAR(tof->centerAvgPx(), 252, 1);
    EXPECT_EQ(deliverUntilAverage(metres(10, 10, floats)), 20);
}

TEST_F(Tof, theUntouchedBoxIsTheFirstFiftyByFifty)
{
    run();
    tof->setEnableCenterAvgPx(true);
    const auto framed = [](int width, int height) {
        Millimetres samples(60 * 60, 6000);
        for (int y = 0; y < height; ++y)
            std::fill_n(samples.begin() + y * 60, width, std::int16_t(3000));
        return millimetres(60, 60, samples);
    };
    EXPECT_GT(deliverUntilAverage(framed(50, 50)), 0);
    EXPECT_EQ(tof->centerAvgPx(), 3000);
    // The 50 pixels of the last column, or row, raise it by 50 / 2500 of 3000.
    for (const auto &[width, height] : {std::pair{49, 50}, std::pair{50, 49}}) {
        EXPECT_GT(deliverUntilAverage(framed(width, height)), 0);
        EXPECT_EQ(tof->centerAvgPx(), 3060);
    }
}

TEST_F(Tof, anAverageOfZerosIsZeroAndSignals)
{
    run();
    tof->setEnableCenterAvgPx(true);
    EXPECT_GT(deliverUntilAverage(countingMillimetres(60, 60)), 0);
    EXPECT_GT(tof->centerAvgPx(), 0);
    EXPECT_GT(deliverUntilAverage(millimetres(60, 60, Millimetres(3600, 0))), 0);
    EXPECT_EQ(tof->centerAvgPx(), 0);
    EXPECT_GT(deliverUntilAverage(metres(60, 60, Metres(3600, 0))), 0);
    EXPECT_EQ(tof->centerAvgPx(), 0);
}

TEST_F(Tof, aBoxThatReachesPastTheFrameTakesWhatTheFrameHas)
{
    run();
    tof->setEnableCenterAvgPx(true);
    tof->setCenterAvgX(2);
    tof->setCenterAvgY(1);
    const auto frame = millimetres(4, 3, {1, 1, 1, 1, 1, 1, 10, 20, 1, 1, 30, 40});
    EXPECT_GT(deliverUntilAverage(frame), 0);
    EXPECT_EQ(tof->centerAvgPx(), 25) << "the four pixels of the corner";
    tof->setCenterAvgX(std::numeric_limits<int>::max());
    EXPECT_GT(deliverUntilAverage(frame), 0);
    EXPECT_EQ(tof->centerAvgPx(), 0);
    tof->setCenterAvgX(-49);
    tof->setCenterAvgY(-49);
    EXPECT_GT(deliverUntilAverage(frame), 0);
    EXPECT_EQ(tof->centerAvgPx(), 1);
}

TEST_F(Tof, theAverageKeepsItsSign)
{
    run();
    tof->setEnableCenterAvgPx(true);
    EXPECT_GT(deliverUntilAverage(millimetres(2, 1, {-100, -101})), 0);
    EXPECT_EQ(tof->centerAvgPx(), -100) << "truncated, not rounded down";
}

TEST_F(Tof, aPointCloudIsSavedOfTheNextDepthFrame)
{
    run();
    tof->savePcd("cloud \u00e4.pcd");
    EXPECT_THAT(fake::library().pcdSaves(), IsEmpty()) << "waits for a frame";
    camera->deliver(countingMetres(4, 3));
    camera->deliver(countingMetres(4, 3));
    EXPECT_THAT(camera->calls(), ElementsAre("depthImageToPointCloud(1)"));
    const auto saves = fake::library().pcdSaves();
    ASSERT_EQ(saves.size(), 1U);
    EXPECT_EQ(saves[0].path, QString("cloud \u00e4.pcd").toLocal8Bit().toStdString());
    EXPECT_EQ(saves[0].cloud, camera->cloud);
    EXPECT_EQ(saves[0].precision, 8);
    EXPECT_TRUE(saves[0].binary);
}

TEST_F(Tof, aPointCloudThatIsAskedOfAStoppedStreamWaits)
{
    tof->savePcd("cloud.pcd");
    run();
    tof->control(false);
    run();
    EXPECT_THAT(fake::library().pcdSaves(), IsEmpty());
    camera->deliver(countingMillimetres(4, 3));
    ASSERT_EQ(fake::library().pcdSaves().size(), 1U);
    EXPECT_EQ(fake::library().pcdSaves()[0].path, "cloud.pcd");
}

TEST_F(Tof, aPointCloudIsMadeOfNoDamagedFrame)
{
    run();
    tof->savePcd("cloud.pcd");
    auto empty = countingMillimetres(4, 3);
    empty.data.reset();
    auto cut = countingMetres(4, 3);
    cut.dataSize = 47;
    auto flat = countingMillimetres(4, 3);
    flat.width = 0;
    for (const auto &damaged : {empty, cut, flat})
        camera->deliver(damaged);
    EXPECT_THAT(camera->calls(), IsEmpty());
    camera->deliver(countingMetres(4, 3));
    EXPECT_THAT(camera->calls(), ElementsAre("depthImageToPointCloud(1)")) << "the request has waited";
}

TEST_F(Tof, aRequestThatMeetsAnythingButDepthIsDropped)
{
    run();
    for (const int type : {2, 3, -1}) {
        tof->savePcd("cloud.pcd");
        auto other = countingMillimetres(4, 3);
        other.type = type;
        camera->deliver(other);
        camera->deliver(countingMillimetres(4, 3));
        EXPECT_THAT(fake::library().pcdSaves(), IsEmpty()) << type;
        EXPECT_THAT(camera->calls(), IsEmpty()) << type;
    }
}

TEST_F(Tof, aFailedPointCloudIsIgnored)
{
    run();
    fake::library().setPcdResult(false);
    tof->savePcd("cloud.pcd");
    camera->deliver(countingMillimetres(4, 3));
    EXPECT_EQ(fake::library().pcdSaves().size(), 1U);
    EXPECT_NE(tof->image()->data(), nullptr);
}

TEST_F(Tof, thePictureHasTheDefaultColours)
{
    run();
    tof->setMinDistance(0.5);
    tof->setMaxDistance(2.5);
    const Metres samples{0.0F, 0.05F, 0.1F, 0.11F, 0.5F, 1.0F, 1.5F, 2.0F, 2.5F, 3.0F, 9.5F, 9.6F};
    camera->deliver(metres(4, 3, samples));
    const QImage image = tof->toImage();
    ASSERT_EQ(image.size(), QSize(4, 3));
    ASSERT_EQ(image.format(), QImage::Format_RGB888);
    const cv::Mat matrix = tof->toMat();
    for (int i = 0; i < 12; ++i) {
        const float depth = samples[std::size_t(i)];
        // Beyond 9.5 m counts as 0 m; up to 0.1 m isn't shown: both take row 0.
        const float measured = depth > 9.5F ? 0 : depth;
        const double level = measured * (255 / 2.0) - 255 * 0.5 / 2.0;
        const int row = depth <= 0.1F ? 0 : int(std::lrint(std::min(std::max(level, 0.0), 255.0)));
        const auto &[red, green, blue] = depthColorTable[std::size_t(row)];
        EXPECT_EQ(image.pixel(i % 4, i / 4), qRgb(red, green, blue)) << depth;
        EXPECT_EQ(matrix.at<cv::Vec3b>(i / 4, i % 4), cv::Vec3b(blue, green, red)) << depth;
    }
    EXPECT_EQ(image.pixel(0, 0), qRgb(255, 12, 0));
}

TEST_F(Tof, whatIsNearerThanTenCentimetresIsNotMeasured)
{
    run();
    tof->setMinDistance(0.0);
    tof->setMaxDistance(1.0);
    const Metres samples{0.05F, 0.09F, 0.1F, 0.101F};
    // 0.101 m of 1 m is level 26: the others have levels of their own too, but take the first row.
    const int rows[] = {0, 0, 0, 26};
    camera->deliver(metres(4, 1, samples));
    const QImage image = tof->toImage();
    for (int i = 0; i < 4; ++i) {
        const auto &[red, green, blue] = depthColorTable[std::size_t(rows[i])];
        EXPECT_EQ(image.pixel(i, 0), qRgb(red, green, blue)) << samples[std::size_t(i)];
    }
}

TEST_F(Tof, oddSamplesAndAnEmptyRangeGiveDefinedPictures)
{
    run();
    const float infinity = std::numeric_limits<float>::infinity();
    Metres samples(16 * 4, 1.0F);
    samples[0] = std::nanf("");
    samples[1] = infinity;
    samples[2] = -infinity;
    samples[3] = 1e30F;
    camera->deliver(metres(16, 4, samples));
    const QImage first = tof->toImage();
    // Not measured, or beyond what can be: the first row of the table.
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(first.pixel(x, 0), qRgb(255, 12, 0)) << samples[std::size_t(x)];
    tof->setMinDistance(1.0);
    tof->setMaxDistance(1.0);
    // The infinite scale of an empty range leaves no number, and no number is the first row as well.
    const QImage empty = tof->toImage();
    ASSERT_EQ(empty.size(), QSize(16, 4));
    for (int i = 0; i < 64; ++i)
        EXPECT_EQ(empty.pixel(i % 16, i / 16), qRgb(255, 12, 0)) << i;
}

TEST_F(Tof, theLastFrameIsNotWrittenToByAPicture)
{
    run();
    tof->setMaxDistance(1.5);
    const auto frame = countingMetres(64, 48);
    const std::vector<float> before = ramp<float>(64 * 48, 0.001);
    camera->deliver(frame);
    tof->toMat();
    EXPECT_EQ(shown(*tof), before);
}

TEST_F(Tof, beforeTheFirstFrameThereIsNoPicture)
{
    EXPECT_TRUE(tof->toImage().isNull());
    EXPECT_TRUE(tof->toMat().empty());
}

TEST_F(Tof, saveAnswersWhetherTheStreamRuns)
{
    const QTemporaryDir folder;
    camera->deliver(countingMetres(4, 3));
    EXPECT_FALSE(tof->save(folder.filePath("stopped.png")));
    EXPECT_FALSE(QFile::exists(folder.filePath("stopped.png")));
    run();
    EXPECT_TRUE(tof->save(folder.filePath("empty.png")));
    EXPECT_FALSE(QFile::exists(folder.filePath("empty.png"))) << "no frame yet";
    camera->deliver(countingMetres(4, 3));
    EXPECT_TRUE(tof->save(folder.filePath("tof.png")));
    EXPECT_EQ(QImage(folder.filePath("tof.png")).convertToFormat(QImage::Format_RGB888), tof->toImage());
    EXPECT_TRUE(tof->save(folder.filePath("none/tof.png")));
    tof->control(false);
    EXPECT_FALSE(tof->save(folder.filePath("stopped.png")));
    EXPECT_FALSE(QFile::exists(folder.filePath("stopped.png"))) << "though there is a frame";
}

TEST_F(Tof, recordsColouredFramesOfBothKinds)
{
    const QTemporaryDir folder;
    run();
    tof->setMinDistance(0.0);
    tof->setMaxDistance(4.0);
    camera->deliver(metres(64, 48, Metres(64 * 48, 2.0F)));
    tof->setRecordPath(folder.filePath("tof.avi"));
    tof->setRecording(true);
    camera->deliver(metres(64, 48, Metres(64 * 48, 2.0F)));
    camera->deliver(millimetres(64, 48, Millimetres(64 * 48, 2000)));
    tof->setRecording(false);
    cv::VideoCapture video(tof->recordPath().toStdString());
    int frames = 0;
    // 2 m of 4 m are level 128, a pure green with some blue.
    const auto &[red, green, blue] = depthColorTable[128];
    for (cv::Mat frame; video.read(frame); ++frames) {
        const cv::Scalar mean = cv::mean(frame);
        EXPECT_NEAR(mean[0], blue, 12);
        EXPECT_NEAR(mean[1], green, 12);
        EXPECT_NEAR(mean[2], red, 12);
    }
    EXPECT_EQ(frames, 2);
}

TEST_F(Tof, infraredFramesRepeatTheLastDepthInTheVideo)
{
    const QTemporaryDir folder;
    run();
    const auto frame = metres(64, 48, Metres(64 * 48, 2.0F));
    auto infrared = millimetres(64, 48, Millimetres(64 * 48, 9));
    infrared.type = 2;
    camera->deliver(frame);
    tof->setRecordPath(folder.filePath("tof.avi"));
    tof->setRecording(true);
    for (const auto &each : {frame, infrared, infrared})
        camera->deliver(each);
    tof->setRecording(false);
    cv::VideoCapture video(tof->recordPath().toStdString());
    std::vector<cv::Scalar> means;
    for (cv::Mat read; video.read(read);)
        means.push_back(cv::mean(read));
    ASSERT_EQ(means.size(), 3U);
    for (int channel = 0; channel < 3; ++channel)
        EXPECT_NEAR(means[2][channel], means[0][channel], 3);
}

TEST_F(Tof, unknownTypesAreLeftOutOfTheVideo)
{
    const QTemporaryDir folder;
    run();
    const auto frame = metres(64, 48, Metres(64 * 48, 2.0F));
    auto unknown = frame;
    unknown.type = 3;
    camera->deliver(frame);
    tof->setRecordPath(folder.filePath("tof.avi"));
    tof->setRecording(true);
    for (const auto &each : {frame, unknown, unknown, frame})
        camera->deliver(each);
    tof->setRecording(false);
    cv::VideoCapture video(tof->recordPath().toStdString());
    int frames = 0;
    for (cv::Mat read; video.read(read);)
        ++frames;
    EXPECT_EQ(frames, 2);
}

TEST_F(Tof, allCamerasShareACountToTheNextAverageForEachKindOfFrame)
{
    run();
    const auto otherCamera = std::make_shared<FakeTofCamera>();
    TofData other(otherCamera, nullptr);
    other.control(true);
    other.setEnableCenterAvgPx(true);
    tof->setEnableCenterAvgPx(true);
    for (const bool whole : {true, false}) {
        const auto frame = whole ? countingMillimetres(60, 60) : countingMetres(60, 60);
        const auto ofOtherKind = whole ? countingMetres(60, 60) : countingMillimetres(60, 60);
        ASSERT_GT(deliverUntilAverage(ofOtherKind), 0);
        ASSERT_GT(deliverUntilAverage(frame), 0);
        QSignalSpy average(tof.get(), &TofData::centerAvgPxChanged);
        QSignalSpy otherAverage(&other, &TofData::centerAvgPxChanged);
        for (int i = 0; i < 19; ++i)
            otherCamera->deliver(frame);
        camera->deliver(ofOtherKind);
        EXPECT_EQ(average.count() + otherAverage.count(), 0);
        camera->deliver(frame);
        EXPECT_EQ(average.count(), 1);
        EXPECT_EQ(otherAverage.count(), 0);
    }
}

TEST_F(Tof, calibrationComesFromTheCamera)
{
    camera->calibrations.resize(3);
    EXPECT_EQ(tof->calibrationJson().toArray().size(), 3);
}

TEST_F(Tof, destructionUnregistersAndStops)
{
    run();
    const auto callback = camera->callbacks.held().at(0);
    tof.reset();
    EXPECT_THAT(camera->takeCalls(), ElementsAre("unregisterCallback(1)", "stop"));
    callback(countingMetres(4, 3));
    tof = std::make_unique<TofData>(camera, nullptr);
    camera->takeCalls();
    tof.reset();
    EXPECT_THAT(camera->takeCalls(), ElementsAre("unregisterCallback(-1)", "stop"));
}
