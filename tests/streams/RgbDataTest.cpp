#include "streams/RgbData.h"

#include "support/AllocationCounter.h"
#include "support/FakeColorCamera.h"
#include "support/LogCatcher.h"
#include "support/Pause.h"
#include "support/Pictures.h"
#include "support/Timers.h"

#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <atomic>
#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>
#include <random>
#include <thread>

using pictures::bufferOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

qv::ColorImage record(
    int codec, std::size_t width, std::size_t height, const std::vector<unsigned char> &bytes)
{
    qv::ColorImage image;
    image.codec = codec;
    image.width = width;
    image.height = height;
    image.data = bufferOf(bytes);
    image.dataSize = static_cast<unsigned int>(bytes.size());
    return image;
}

/// A YUYV picture of one colour.
qv::ColorImage yuyv(std::size_t width, std::size_t height, unsigned char y, unsigned char u, unsigned char v)
{
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < width * height / 2; ++i)
        bytes.insert(bytes.end(), {y, u, y, v});
    return record(0, width, height, bytes);
}

/// An I420 picture of one colour.
qv::ColorImage i420(std::size_t width, std::size_t height, unsigned char y, unsigned char u, unsigned char v)
{
    std::vector<unsigned char> bytes(width * height, y);
    const std::size_t chroma = (width + 1) / 2 * ((height + 1) / 2);
    bytes.insert(bytes.end(), chroma, u);
    bytes.insert(bytes.end(), chroma, v);
    return record(1, width, height, bytes);
}

qv::ColorImage jpeg(int width, int height, const cv::Scalar &bgr)
{
    std::vector<unsigned char> bytes;
    cv::imencode(".jpg", cv::Mat(height, width, CV_8UC3, bgr), bytes);
    return record(2, std::size_t(width), std::size_t(height), bytes);
}

/// Red, green, blue of the BT.601 colour in studio range.
cv::Vec3d rgbOf(double y, double u, double v)
{
    const double luma = 1.164383 * (y - 16);
    const auto limited = [](double value) { return std::min(std::max(value, 0.0), 255.0); };
    return {limited(luma + 1.596027 * (v - 128)), limited(luma - 0.391762 * (u - 128) - 0.812968 * (v - 128)),
        limited(luma + 2.017232 * (u - 128))};
}

void expectColor(const QImage &image, const cv::Vec3d &rgb)
{
    ASSERT_FALSE(image.isNull());
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            ASSERT_NEAR(qRed(pixel), rgb[0], 3) << x << ' ' << y;
            ASSERT_NEAR(qGreen(pixel), rgb[1], 3) << x << ' ' << y;
            ASSERT_NEAR(qBlue(pixel), rgb[2], 3) << x << ' ' << y;
        }
    }
}

class Rgb : public testing::Test {
protected:
    void TearDown() override { rgb.reset(); }

    /// A running first camera whose calls so far are forgotten.
    void run()
    {
        rgb->control(true);
        camera->takeCalls();
    }

    LogCatcher log;
    std::shared_ptr<FakeColorCamera> camera = std::make_shared<FakeColorCamera>();
    std::unique_ptr<RgbData> rgb = std::make_unique<RgbData>(camera, nullptr);
};

} // namespace

TEST(RgbData, aNullCameraIsRefused)
{
    try {
        const RgbData rgb(nullptr, nullptr);
        FAIL() << "made of nothing";
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "Invalid ColorCamera");
    }
}

TEST_F(Rgb, constructionTouchesNothing)
{
    EXPECT_THAT(camera->calls(), IsEmpty());
    EXPECT_EQ(rgb->framerate(), 30);
    EXPECT_EQ(rgb->mode(), 0);
    EXPECT_EQ(rgb->resolution(), 0);
    EXPECT_TRUE(rgb->isEnable());
    EXPECT_TRUE(rgb->isEnable2());
    EXPECT_FALSE(rgb->isRunning());
    EXPECT_NE(rgb->image(), rgb->image2());
}

TEST_F(Rgb, qmlSeesTheFirstCamerasImage)
{
    EXPECT_EQ(rgb->property("image").value<ImageData *>(), rgb->image());
    EXPECT_NE(static_cast<AbstractImageData *>(rgb.get())->image(), rgb->image());
}

TEST_F(Rgb, controlRegistersStartsAndSignals)
{
    QStringList order;
    QObject::connect(
        rgb.get(), &RgbData::isEnableChanged, [&](bool on) { order << (on ? "enabled" : "disabled"); });
    Pause pause;
    QObject::connect(rgb.get(), &RgbData::isEnableChanged, [&](bool on) { pause.told(on, rgb->isEnable()); });
    QObject::connect(rgb.get(), &RgbData::rgbRunning, [&](int v) {
        order << QString::number(v);
        EXPECT_EQ(rgb->isRunning(), v == 2);
    });
    rgb->control(true);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("registerCallback", "start"));
    pause.expect(1, 99);
    rgb->control(false);
    pause.expect(2, 99);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("unregisterCallback(1)", "stop"));
    EXPECT_EQ(order, (QStringList{"disabled", "enabled", "2", "disabled", "enabled", "3"}));
}

TEST_F(Rgb, aSecondControlReplacesTheCallback)
{
    run();
    rgb->control(true);
    EXPECT_THAT(camera->calls(), ElementsAre("unregisterCallback(1)", "registerCallback", "start"));
    EXPECT_EQ(camera->callbacks.count(), 1U);
}

TEST_F(Rgb, theSecondCameraIsControlledApart)
{
    QStringList order;
    QObject::connect(rgb.get(), &RgbData::isEnableChanged, [&] { order << "first"; });
    QObject::connect(rgb.get(), &RgbData::isEnable2Changed,
        [&] { order << (rgb->isEnable2() ? "enabled2" : "disabled2"); });
    Pause pause;
    QObject::connect(rgb.get(), &RgbData::isEnable2Changed,
        [&] { pause.told(rgb->isEnable2(), rgb->property("isEnable2").toBool()); });
    QObject::connect(rgb.get(), &RgbData::rgbRunning, [&](int v) { order << QString::number(v); });
    rgb->control(true, 1);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("registerCallback2", "startCamera(1)"));
    EXPECT_FALSE(rgb->isRunning());
    rgb->control(true, 1);
    EXPECT_THAT(
        camera->takeCalls(), ElementsAre("unregisterCallback2(1)", "registerCallback2", "startCamera(1)"));
    rgb->control(false, 1);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("unregisterCallback2(2)", "stopCamera(1)"));
    pause.expect(3, 99);
    EXPECT_EQ(order,
        (QStringList{
            "disabled2", "enabled2", "2", "disabled2", "enabled2", "2", "disabled2", "enabled2", "3"}));
}

TEST_F(Rgb, aStoppedCameraHasNoCallbackLeftToTakeBack)
{
    for (const int index : {0, 1}) {
        rgb->control(true, index);
        rgb->control(false, index);
        camera->takeCalls();
        rgb->control(false, index);
        EXPECT_THAT(camera->takeCalls(), ElementsAre(index == 0 ? "stop" : "stopCamera(1)"));
    }
    rgb.reset();
    EXPECT_THAT(camera->takeCalls(),
        ElementsAre("unregisterCallback(-1)", "unregisterCallback2(-1)", "stop", "stopCamera(1)"));
}

TEST_F(Rgb, otherCamerasDoNothing)
{
    QSignalSpy running(rgb.get(), &RgbData::rgbRunning);
    rgb->control(true, 2);
    rgb->control(false, -1);
    EXPECT_THAT(camera->calls(), IsEmpty());
    EXPECT_EQ(running.count(), 0);
}

TEST_F(Rgb, refusedStartsAndStopsAreIgnored)
{
    camera->startResult = camera->stopResult = camera->stopCameraResult = false;
    QSignalSpy running(rgb.get(), &RgbData::rgbRunning);
    rgb->control(true);
    EXPECT_TRUE(rgb->isRunning());
    rgb->control(false);
    EXPECT_FALSE(rgb->isRunning());
    rgb->control(true, 1);
    rgb->control(false, 1);
    EXPECT_EQ(running.count(), 4);
}

TEST_F(Rgb, aHeldStreamIsNotStopped)
{
    EXPECT_TRUE(rgb->startOrStop(true));
    EXPECT_THAT(camera->takeCalls(), ElementsAre("registerCallback", "start"));
    EXPECT_FALSE(rgb->isRunning()) << "held, not running";
    QSignalSpy running(rgb.get(), &RgbData::rgbRunning), enable(rgb.get(), &RgbData::isEnableChanged);
    rgb->control(false);
    EXPECT_THAT(camera->calls(), IsEmpty());
    EXPECT_EQ(running.count() + enable.count(), 0);
    camera->deliver(yuyv(4, 4, 1, 2, 3));
    EXPECT_NE(rgb->image()->data(), nullptr);

    rgb->control(true, 1);
    camera->takeCalls();
    running.clear();
    rgb->control(false, 1);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("unregisterCallback2(1)", "stopCamera(1)"))
        << "the second camera isn't held";
    ASSERT_EQ(running.count(), 1);
    EXPECT_EQ(running[0][0].toInt(), 3);

    EXPECT_FALSE(rgb->startOrStop(false)) << "not running, so nothing to let go";
    rgb->control(true);
    camera->takeCalls();
    EXPECT_TRUE(rgb->startOrStop(false));
    EXPECT_THAT(camera->calls(), IsEmpty()) << "the stream keeps running";
    EXPECT_TRUE(rgb->isRunning());
    rgb->control(false);
    EXPECT_THAT(camera->calls(), ElementsAre("unregisterCallback(2)", "stop"));
}

TEST_F(Rgb, startOrStopAnswersTheStart)
{
    camera->startResult = false;
    EXPECT_FALSE(rgb->startOrStop(true));
    EXPECT_FALSE(rgb->startOrStop(true));
    camera->startResult = true;
    EXPECT_TRUE(rgb->startOrStop(true)) << "held, but not running";
    EXPECT_THAT(camera->takeCalls(),
        ElementsAre("registerCallback", "start", "registerCallback", "start", "registerCallback", "start"));
    run();
    EXPECT_FALSE(rgb->startOrStop(true)) << "running already";
    EXPECT_THAT(camera->calls(), IsEmpty());
}

TEST_F(Rgb, aFrameIsHandedOnAsItComes)
{
    run();
    const std::vector<qv::ColorImage> frames{yuyv(4, 4, 1, 2, 3), i420(4, 4, 1, 2, 3), jpeg(4, 4, {1, 2, 3})};
    const int types[] = {ImageData::YUYV, ImageData::YUV420p, ImageData::JPEG};
    for (std::size_t i = 0; i < 3; ++i) {
        camera->deliver(frames[i]);
        const ImageData::Frame shown = rgb->image()->frame();
        EXPECT_EQ(shown.data, frames[i].data);
        EXPECT_EQ(shown.dataSize, int(frames[i].dataSize));
        EXPECT_EQ(shown.type, types[i]);
        EXPECT_EQ(shown.width, 4);
    }
    EXPECT_EQ(rgb->sourceWidth(), 4);
    EXPECT_EQ(rgb->sourceHeight(), 4);
}

TEST_F(Rgb, aFullFrameIsNeitherCopiedNorGivenANewBuffer)
{
    if (!AllocationCounter::works())
        GTEST_SKIP() << "the sanitizer has its own allocator, nothing can be counted";
    run();
    const auto frame = yuyv(1920, 1080, 1, 2, 3);
    camera->deliver(frame);
    const auto callback = camera->callbacks.held().at(0);
    const AllocationCounter counter;
    for (int i = 0; i < 5; ++i)
        callback(frame);
    EXPECT_LT(counter.largest(), 4096U);
}

TEST_F(Rgb, anUnknownCodecIsCountedAndDropped)
{
    run();
    const auto good = yuyv(4, 4, 1, 2, 3);
    camera->deliver(good);
    QSignalSpy update(rgb->image(), &ImageData::update);
    auto unknown = yuyv(8, 8, 1, 2, 3);
    unknown.codec = 3;
    camera->deliver(unknown);
    unknown.codec = -1;
    camera->deliver(unknown);
    EXPECT_EQ(update.count(), 0);
    EXPECT_EQ(rgb->image()->data(), good.data);
    EXPECT_EQ(rgb->sourceWidth(), 4);
    EXPECT_TRUE(log.lines().isEmpty());
    fireTimers(*rgb);
    EXPECT_EQ(rgb->dataFrameRate(), 3.0);
}

TEST_F(Rgb, theSecondCameraHasItsOwnPictureAndRate)
{
    rgb->control(true, 1);
    const auto frame = i420(6, 4, 1, 2, 3);
    camera->callbacks2.deliver(frame);
    camera->callbacks2.deliver(frame);
    EXPECT_EQ(rgb->image2()->data(), frame.data);
    EXPECT_EQ(rgb->image2()->frame().type, int(ImageData::YUV420p));
    EXPECT_EQ(rgb->image()->data(), nullptr);
    EXPECT_EQ(rgb->sourceWidth(), 6);
    fireTimers(*rgb);
    EXPECT_EQ(rgb->dataFrameRate(), 0.0);
    EXPECT_EQ(rgb->dataFrameRate2(), 2.0);
    auto unknown = frame;
    unknown.codec = 3;
    unknown.data = bufferOf(std::vector<unsigned char>(36));
    camera->callbacks2.deliver(unknown);
    EXPECT_EQ(rgb->image2()->data(), frame.data);
    fireTimers(*rgb);
    EXPECT_EQ(rgb->dataFrameRate2(), 1.0) << "counted before its codec is looked at";
}

TEST_F(Rgb, theSecondImageCanBeReplaced)
{
    QSignalSpy changed(rgb.get(), &RgbData::image2Changed);
    rgb->setImage2(rgb->image2());
    EXPECT_EQ(changed.count(), 0);
    rgb->control(true, 1);
    {
        ImageData other;
        rgb->setProperty("image2", QVariant::fromValue(&other));
        EXPECT_EQ(changed.count(), 1);
        camera->callbacks2.deliver(yuyv(4, 4, 1, 2, 3));
        EXPECT_NE(other.data(), nullptr);
    }
    EXPECT_EQ(rgb->image2(), nullptr);
    camera->callbacks2.deliver(yuyv(4, 4, 1, 2, 3));
    rgb->setView2Size(1, 1);
}

TEST_F(Rgb, isEnable2CanBeWritten)
{
    QSignalSpy changed(rgb.get(), &RgbData::isEnable2Changed);
    rgb->setProperty("isEnable2", true);
    rgb->setProperty("isEnable2", false);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_FALSE(rgb->isEnable2());
    rgb->control(true, 1);
    EXPECT_EQ(changed.count(), 2) << "false already while the camera starts";
    EXPECT_TRUE(rgb->isEnable2());
}

TEST_F(Rgb, frameRateReachesCameraAndRecorder)
{
    QSignalSpy rate(rgb.get(), &RgbData::framerateChanged);
    rgb->setFramerate(30);
    EXPECT_EQ(rate.count(), 0);
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_THAT(camera->calls(), IsEmpty());
    rgb->setFramerate(15);
    ASSERT_EQ(rate.count(), 1);
    EXPECT_EQ(rate[0][0].toInt(), 15);
    EXPECT_EQ(log.lines(), QStringList{"debug: Set framerate to 15"});
    EXPECT_THAT(camera->calls(), ElementsAre("setFramerate(15)"));
}

TEST_F(Rgb, settingsAreToldBeforeTheCameraHasThem)
{
    std::vector<std::size_t> callsSoFar;
    const auto note = [&] { callsSoFar.push_back(camera->calls().size()); };
    QObject::connect(rgb.get(), &RgbData::framerateChanged, note);
    QObject::connect(rgb.get(), &RgbData::resolutionChanged, note);
    rgb->setFramerate(15);
    rgb->setResolution(2);
    EXPECT_THAT(callsSoFar, ElementsAre(0U, 1U));
    EXPECT_THAT(camera->calls(), ElementsAre("setFramerate(15)", "setResolution(2)"));
}

TEST_F(Rgb, theRecorderFollowsAcceptedRatesOnly)
{
    const QTemporaryDir folder;
    run();
    const auto recordedRate = [&](const char *name) {
        rgb->setRecordPath(folder.filePath(name));
        rgb->setRecording(true);
        camera->deliver(yuyv(64, 48, 100, 128, 128));
        rgb->setRecording(false);
        return cv::VideoCapture(rgb->recordPath().toStdString()).get(cv::CAP_PROP_FPS);
    };
    camera->deliver(yuyv(64, 48, 100, 128, 128));
    EXPECT_EQ(recordedRate("untouched.avi"), 30);
    rgb->setFramerate(20);
    EXPECT_EQ(recordedRate("accepted.avi"), 20);
    camera->framerateResult = false;
    rgb->setFramerate(10);
    EXPECT_EQ(rgb->framerate(), 10);
    EXPECT_EQ(recordedRate("refused.avi"), 20);
}

TEST_F(Rgb, modeGoesNowhere)
{
    QSignalSpy mode(rgb.get(), &RgbData::modeChanged);
    rgb->setMode(0);
    rgb->setMode(2);
    ASSERT_EQ(mode.count(), 1);
    EXPECT_EQ(mode[0][0].toInt(), 2);
    EXPECT_THAT(camera->calls(), IsEmpty());
}

TEST_F(Rgb, knownResolutionsAreSentAllAreAnnounced)
{
    QSignalSpy resolution(rgb.get(), &RgbData::resolutionChanged);
    for (const int value : {0, 7, 4, 1, 2, 3, -1, 5, 0})
        rgb->setResolution(value);
    QList<int> announced;
    for (const QList<QVariant> &arguments : resolution)
        announced << arguments[0].toInt();
    EXPECT_EQ(announced, (QList<int>{7, 4, 1, 2, 3, -1, 5, 0}));
    EXPECT_THAT(camera->calls(),
        ElementsAre("setResolution(4)", "setResolution(1)", "setResolution(2)", "setResolution(3)",
            "setResolution(0)"));
}

TEST_F(Rgb, focusPassesThrough)
{
    rgb->setRGBMode(1);
    rgb->setRGBDistance(255);
    EXPECT_THAT(camera->calls(), ElementsAre("setRgbMode(1)", "setRgbDistance(255)"));
}

TEST_F(Rgb, pixelsOfAllThreeCodecs)
{
    run();
    camera->deliver(yuyv(64, 8, 120, 90, 200));
    EXPECT_EQ(rgb->toImage().format(), QImage::Format_RGB888);
    expectColor(rgb->toImage(), rgbOf(120, 90, 200));
    camera->deliver(i420(64, 8, 60, 180, 100));
    expectColor(rgb->toImage(), rgbOf(60, 180, 100));
    camera->deliver(jpeg(64, 8, {200, 120, 40}));
    expectColor(rgb->toImage(), {40, 120, 200});
}

TEST_F(Rgb, everyPixelIsInItsPlaceAtAnyWidth)
{
    // A luma step in the middle: rows of bytes that are no multiple of four must not shear the picture.
    run();
    for (const std::size_t width : {2, 6, 10, 18, 30, 62, 64, 66, 102, 640}) {
        std::vector<unsigned char> bytes;
        for (std::size_t y = 0; y < 6; ++y) {
            for (std::size_t x = 0; x < width; x += 2) {
                const unsigned char luma = x < width / 2 ? 40 : 200;
                bytes.insert(bytes.end(), {luma, 128, luma, 128});
            }
        }
        camera->deliver(record(0, width, 6, bytes));
        const QImage image = rgb->toImage();
        const cv::Mat matrix = rgb->toMat();
        ASSERT_EQ(image.size(), QSize(int(width), 6));
        ASSERT_EQ(matrix.size(), cv::Size(int(width), 6));
        for (int y = 0; y < 6; ++y) {
            for (std::size_t x = 0; x < width; ++x) {
                const double grey = 1.164383 * ((x / 2 * 2 < width / 2 ? 40 : 200) - 16);
                ASSERT_NEAR(qGreen(image.pixel(int(x), y)), grey, 3) << width << ": " << x << ' ' << y;
                ASSERT_NEAR(matrix.at<cv::Vec3b>(y, int(x))[1], grey, 3) << width << ": " << x << ' ' << y;
            }
        }
    }
}

TEST_F(Rgb, oddSizesOfI420)
{
    run();
    camera->deliver(i420(63, 47, 120, 90, 200));
    expectColor(rgb->toImage(), rgbOf(120, 90, 200));
}

TEST_F(Rgb, theVideoMatrixIsBlueFirst)
{
    run();
    const cv::Vec3d rgbColor = rgbOf(120, 90, 200);
    camera->deliver(yuyv(64, 8, 120, 90, 200));
    const auto pixel = rgb->toMat().at<cv::Vec3b>(3, 3);
    for (int channel = 0; channel < 3; ++channel)
        EXPECT_NEAR(pixel[channel], rgbColor[2 - channel], 3);
    camera->deliver(jpeg(64, 8, {200, 120, 40}));
    const auto decoded = rgb->toMat().at<cv::Vec3b>(3, 3);
    EXPECT_NEAR(decoded[0], 200, 3);
    EXPECT_NEAR(decoded[2], 40, 3);
}

TEST_F(Rgb, beforeTheFirstFrameThereIsNoPicture)
{
    const QTemporaryDir folder;
    EXPECT_TRUE(rgb->toImage().isNull());
    EXPECT_TRUE(rgb->toMat().empty());
    run();
    EXPECT_TRUE(rgb->save(folder.filePath("a.png"))) << "it is running";
    EXPECT_FALSE(QFile::exists(folder.filePath("a.png")));
}

TEST_F(Rgb, ofATypeWithoutAConversionOnlyTheSizeIsKnown)
{
    rgb->image()->set(4, 2, bufferOf(std::vector<unsigned char>(24)), 24);
    const cv::Mat matrix = rgb->toMat();
    EXPECT_EQ(matrix.size(), cv::Size(4, 2));
    EXPECT_EQ(matrix.type(), CV_8UC3);
    EXPECT_EQ(rgb->toImage().size(), QSize(4, 2));
}

TEST_F(Rgb, saveAnswersWhetherTheCameraRuns)
{
    const QTemporaryDir folder;
    EXPECT_FALSE(rgb->save(folder.filePath("stopped.png")));
    run();
    camera->deliver(yuyv(64, 8, 120, 90, 200));
    EXPECT_TRUE(rgb->save(folder.filePath("rgb.png")));
    expectColor(QImage(folder.filePath("rgb.png")), rgbOf(120, 90, 200));
    EXPECT_TRUE(rgb->save(folder.filePath("none/rgb.png")));
    rgb->control(false);
    EXPECT_FALSE(rgb->save(folder.filePath("stopped.png")));
    EXPECT_FALSE(QFile::exists(folder.filePath("stopped.png")));
}

TEST_F(Rgb, shortEmptyAndBrokenFramesDoNoHarm)
{
    const QTemporaryDir folder;
    run();
    auto cut = yuyv(64, 48, 1, 2, 3);
    cut.dataSize -= 1;
    auto cutPlanes = i420(64, 48, 1, 2, 3);
    cutPlanes.dataSize -= 1;
    auto null = yuyv(64, 48, 1, 2, 3);
    null.data = nullptr;
    auto nullJpeg = jpeg(64, 48, {1, 2, 3});
    nullJpeg.data = nullptr;
    auto emptyJpeg = jpeg(64, 48, {1, 2, 3});
    emptyJpeg.dataSize = 0;
    const auto noJpeg = record(2, 64, 48, std::vector<unsigned char>(100, 7));
    const auto flat = record(0, 64, 0, {1, 2, 3, 4});
    for (const auto &frame : {cut, cutPlanes, null, nullJpeg, emptyJpeg, noJpeg, flat}) {
        camera->deliver(frame);
        EXPECT_TRUE(rgb->toImage().isNull());
        EXPECT_TRUE(rgb->toMat().empty());
        EXPECT_TRUE(rgb->save(folder.filePath("a.png")));
    }
    EXPECT_FALSE(QFile::exists(folder.filePath("a.png")));
    auto huge = yuyv(4, 4, 1, 2, 3);
    huge.width = huge.height = std::size_t(1) << 40;
    EXPECT_NO_THROW(camera->deliver(huge));
}

TEST_F(Rgb, whatSwscaleRefusesIsANullImageAndIsLeftOutOfTheVideo)
{
    const QTemporaryDir folder;
    run();
    camera->deliver(yuyv(64, 48, 60, 128, 128));
    rgb->setRecordPath(folder.filePath("rgb.avi"));
    rgb->setRecording(true);
    camera->deliver(yuyv(64, 48, 60, 128, 128));
    // Wider than swscale goes.
    const std::size_t width = 1 << 26;
    camera->deliver(record(0, width, 1, std::vector<unsigned char>(2 * width, 100)));
    EXPECT_TRUE(rgb->toImage().isNull());
    EXPECT_TRUE(rgb->toMat().empty());
    EXPECT_TRUE(rgb->save(folder.filePath("wide.png")));
    EXPECT_FALSE(QFile::exists(folder.filePath("wide.png")));
    camera->deliver(yuyv(64, 48, 200, 128, 128));
    rgb->setRecording(false);
    cv::VideoCapture video(rgb->recordPath().toStdString());
    int frames = 0;
    for (cv::Mat frame; video.read(frame);)
        ++frames;
    EXPECT_EQ(frames, 2);
}

TEST_F(Rgb, bothCamerasAppendTheFirstOnesPicture)
{
    const QTemporaryDir folder;
    run();
    rgb->setFramerate(12);
    rgb->control(true, 1);
    camera->deliver(yuyv(64, 48, 60, 128, 128));
    rgb->setRecordPath(folder.filePath("rgb.avi"));
    rgb->setRecording(true);
    for (const unsigned char luma : {60, 120, 200}) {
        camera->deliver(yuyv(64, 48, luma, 128, 128));
        camera->callbacks2.deliver(yuyv(64, 48, 20, 128, 128));
    }
    rgb->setRecording(false);
    cv::VideoCapture video(rgb->recordPath().toStdString());
    EXPECT_NEAR(video.get(cv::CAP_PROP_FPS), 12, 0.01) << "not that of the frames of both";
    std::vector<double> means;
    for (cv::Mat frame; video.read(frame);)
        means.push_back(cv::mean(frame)[1]);
    ASSERT_EQ(means.size(), 6U);
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NEAR(means[i], 1.164383 * (std::vector<int>{60, 120, 200}[i / 2] - 16), 5) << "frame " << i;
}

TEST_F(Rgb, calibrationComesFromTheCamera)
{
    camera->calibrations.resize(2);
    EXPECT_EQ(rgb->calibrationJson().toArray().size(), 2);
}

TEST_F(Rgb, destructionUnregistersAndStopsBoth)
{
    rgb.reset();
    EXPECT_THAT(camera->takeCalls(),
        ElementsAre("unregisterCallback(-1)", "unregisterCallback2(-1)", "stop", "stopCamera(1)"));
    rgb = std::make_unique<RgbData>(camera, nullptr);
    rgb->control(true);
    rgb->control(true, 1);
    const auto first = camera->callbacks.held().at(0);
    const auto second = camera->callbacks2.held().at(0);
    camera->takeCalls();
    rgb.reset();
    EXPECT_THAT(camera->takeCalls(),
        ElementsAre("unregisterCallback(1)", "unregisterCallback2(1)", "stop", "stopCamera(1)"));
    first(yuyv(4, 4, 1, 2, 3));
    second(yuyv(4, 4, 1, 2, 3));
}
