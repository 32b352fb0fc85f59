#include "streams/SgbmData.h"

#include "support/FakeVsc.h"
#include "support/LogCatcher.h"
#include "support/Pause.h"
#include "support/Pictures.h"
#include "support/Timers.h"
#include "support/Wait.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <type_traits>

using pictures::bufferOf;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::is_same_v<::SgbmConfig, qv::SgbmConfig>);

namespace {

using Samples = std::vector<unsigned short>;
using Bytes = std::vector<unsigned char>;

qv::SgbmImage record(
    int type, std::size_t width, std::size_t height, pictures::Buffer data, std::size_t bytes)
{
    qv::SgbmImage image;
    image.type = type;
    image.width = width;
    image.height = height;
    image.data = std::move(data);
    image.dataSize = static_cast<unsigned int>(bytes);
    return image;
}

qv::SgbmImage depth(std::size_t width, std::size_t height, const Samples &samples)
{
    return record(1, width, height, bufferOf(samples), samples.size() * 2);
}

qv::SgbmImage disparity(std::size_t width, std::size_t height, const Bytes &samples)
{
    return record(0, width, height, bufferOf(samples), samples.size());
}

Samples countingUp(std::size_t count, int first = 1000)
{
    Samples samples;
    for (std::size_t i = 0; i < count; ++i)
        samples.push_back(static_cast<unsigned short>(first + int(i)));
    return samples;
}

/// The colour bytes that a frame shows, though its size says less.
Bytes shown(const ImageData *image)
{
    const ImageData::Frame frame = image->frame();
    return Bytes(frame.data.get(), frame.data.get() + 3 * frame.width * frame.height);
}

/// Grey levels of the depths, as told: clamped, shifted, scaled, truncated.
Bytes greyLevels(const Samples &samples, double near, double far)
{
    Bytes levels;
    for (const unsigned short sample : samples) {
        const double clamped = std::min(std::max(double(sample), near * 1000), far * 1000);
        levels.push_back(static_cast<unsigned char>((clamped - near * 1000) / ((far - near) * 1000) * 255));
    }
    return levels;
}

/// R, G, B of grey levels in an OpenCV colour map.
Bytes mapped(Bytes levels, int map)
{
    cv::Mat bgr, rgb;
    cv::applyColorMap(cv::Mat(1, int(levels.size()), CV_8UC1, levels.data()), bgr, map);
    cv::cvtColor(bgr, rgb, cv::COLOR_BGR2RGB);
    return Bytes(rgb.data, rgb.data + 3 * levels.size());
}

Bytes plainColours(const Samples &samples, double near, double far)
{
    const auto j = [](double x) {
        const double value = 1.5 - std::fabs(1.0 - 4.0 * x);
        return static_cast<unsigned char>((value < 0 ? 0 : value > 1 ? 1 : value) * 255);
    };
    Bytes colors;
    for (const unsigned short sample : samples) {
        const double d = sample / 1000.0;
        const double t = (d - near) / (far - near);
        if (d <= near || d > far)
            colors.insert(colors.end(), {0, 0, 0});
        else
            colors.insert(colors.end(), {j(t - 0.5), j(t - 0.25), j(t)});
    }
    return colors;
}

/// How far a pair sees at a picture width of 64.
const double seenAt64 = 64 / (2 * std::tan(48 * M_PI / 180)) * 0.08;

class Sgbm : public testing::Test {
protected:
    void TearDown() override { sgbm.reset(); }

    void run()
    {
        sgbm->control(true);
        vsc->takeCalls();
    }

    int deliverUntilAverage(const qv::SgbmImage &frame, int limit = 40)
    {
        QSignalSpy average(sgbm.get(), &SgbmData::centerAvgPxChanged);
        for (int i = 1; i <= limit; ++i) {
            vsc->deliver(frame);
            if (average.count() > 0) {
                EXPECT_EQ(average[0][0].toInt(), sgbm->centerAvgPx());
                return i;
            }
        }
        return 0;
    }

    /// What is read at a pixel of that value in a field of 3000.
    int depthOfAHole(unsigned short value)
    {
        Samples samples(20 * 20, 3000);
        samples[10 * 20 + 10] = value;
        sgbm->setX(10);
        sgbm->setY(10);
        vsc->deliver(depth(20, 20, samples));
        return sgbm->depth();
    }

    LogCatcher log;
    std::shared_ptr<FakeVsc> vsc = std::make_shared<FakeVsc>();
    std::unique_ptr<SgbmData> sgbm = std::make_unique<SgbmData>(vsc.get(), nullptr);
};

} // namespace

TEST(SgbmData, aNullUnitIsRefused)
{
    try {
        const SgbmData sgbm(nullptr, nullptr);
        FAIL() << "made of nothing";
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "Invalid VSC");
    }
}

TEST_F(Sgbm, defaults)
{
    EXPECT_THAT(vsc->calls(), IsEmpty());
    EXPECT_EQ(sgbm->image()->type(), int(ImageData::Float));
    EXPECT_EQ(sgbm->depth(), 0);
    EXPECT_EQ(sgbm->frameRate(), 0);
    EXPECT_EQ(sgbm->centerAvgPx(), 0);
    EXPECT_FALSE(sgbm->pixelShow());
    EXPECT_EQ(sgbm->width(), 640);
    EXPECT_EQ(sgbm->height(), 400);
    EXPECT_TRUE(sgbm->isEnable());
    EXPECT_EQ(sgbm->viewWidth(), 640);
    EXPECT_EQ(sgbm->viewHeight(), 400);
    EXPECT_EQ(sgbm->resolution(), 0);
    EXPECT_EQ(sgbm->colorIndex(), 0);
    EXPECT_FALSE(sgbm->isRunning());
    const auto timers = sgbm->findChildren<QTimer *>();
    ASSERT_EQ(timers.size(), 1);
    EXPECT_EQ(timers[0]->interval(), 1000);
    EXPECT_TRUE(timers[0]->isActive());
}

TEST_F(Sgbm, controlRegistersStartsWithTheConfigurationAndSignals)
{
    vsc->currentResolution = 1;
    QStringList order;
    QObject::connect(
        sgbm.get(), &SgbmData::isEnableChanged, [&](bool on) { order << (on ? "enabled" : "disabled"); });
    Pause pause;
    QObject::connect(
        sgbm.get(), &SgbmData::isEnableChanged, [&](bool on) { pause.told(on, sgbm->isEnable()); });
    std::vector<bool> runningWhenEnabled;
    QObject::connect(sgbm.get(), &SgbmData::isEnableChanged, [&](bool on) {
        if (on)
            runningWhenEnabled.push_back(sgbm->isRunning());
    });
    QObject::connect(sgbm.get(), &SgbmData::resolutionChanged, [&] { order << "resolution"; });
    sgbm->control(true);
    pause.expect(1, 99);
    EXPECT_THAT(vsc->takeCalls(), ElementsAre("registerCallback", "start(config)", "resolution"));
    EXPECT_EQ(sgbm->resolution(), 1);
    EXPECT_THAT(runningWhenEnabled, ElementsAre(false)) << "it runs once that has been told";
    EXPECT_TRUE(sgbm->isRunning());
    sgbm->control(true);
    EXPECT_THAT(vsc->takeCalls(),
        ElementsAre("unregisterCallback(1)", "registerCallback", "start(config)", "resolution"));
    sgbm->control(false);
    EXPECT_THAT(vsc->takeCalls(), ElementsAre("unregisterCallback(2)", "stop"));
    EXPECT_FALSE(sgbm->isRunning());
    sgbm->control(false);
    EXPECT_THAT(vsc->takeCalls(), ElementsAre("stop"));
    pause.expect(4, 99);
    EXPECT_EQ(order,
        (QStringList{"resolution", "disabled", "enabled", "disabled", "enabled", "disabled", "enabled",
            "disabled", "enabled"}));
}

TEST_F(Sgbm, theFirstConfigurationHasItsInitialValues)
{
    run();
    const qv::SgbmConfig &config = vsc->configs.at(0);
    EXPECT_EQ(config.enableDewarp, 1);
    EXPECT_EQ(config.dewarpZoomFactor, 1.0F);
    EXPECT_EQ(config.enableDisparity, 1);
    EXPECT_EQ(config.enableDepth, 1);
    EXPECT_EQ(config.enablePointCloud, 0);
    EXPECT_EQ(config.enableGamma, 1);
    EXPECT_EQ(config.gamma, 2.2F);
    EXPECT_EQ(config.enableGammaCorrection, 0);
    EXPECT_EQ(config.baseline, 0.08F);
    EXPECT_EQ(config.fov, 96.0F);
    EXPECT_EQ(config.maxDisparity, 255);
    EXPECT_THAT(config.homography, ElementsAre(1, 0, 0, 0, 1, 0, 0, 0, 1));
    EXPECT_EQ(config.mode, 0);
    EXPECT_EQ(config.maxDistance, 8000);
    EXPECT_EQ(config.minDistance, 100);
    EXPECT_EQ(config.source, 0);
}

TEST_F(Sgbm, eachSettingRestartsTheUnitWithIt)
{
    run();
    sgbm->setSource("SW");
    sgbm->setEnableDewarp(false);
    sgbm->setZoomFactor(1.5F);
    sgbm->setBaseline(0.11F);
    sgbm->setFOV(70.0F);
    sgbm->setMaxDisparity(64);
    sgbm->setMaxDistance(5000);
    sgbm->setMinDistance(300);
    sgbm->reset();
    sgbm->setSource("HW");
    const auto calls = vsc->takeCalls();
    ASSERT_EQ(calls.size(), 20U);
    for (std::size_t i = 0; i < calls.size(); i += 2) {
        EXPECT_EQ(calls[i], "stop");
        EXPECT_EQ(calls[i + 1], "start(config)");
    }
    const auto &configs = vsc->configs;
    EXPECT_EQ(configs.at(1).source, 1);
    EXPECT_EQ(configs.at(2).enableDewarp, 0);
    EXPECT_EQ(configs.at(3).dewarpZoomFactor, 1.5F);
    EXPECT_EQ(configs.at(4).baseline, 0.11F);
    EXPECT_EQ(configs.at(5).fov, 70.0F);
    EXPECT_EQ(configs.at(6).maxDisparity, 64);
    EXPECT_EQ(configs.at(7).maxDistance, 5000);
    EXPECT_EQ(configs.at(8).minDistance, 300);
    EXPECT_EQ(configs.at(9).minDistance, 300);
    EXPECT_EQ(configs.at(10).source, 0);
    EXPECT_EQ(configs.at(10).fov, 70.0F) << "the earlier settings stay";
    EXPECT_EQ(vsc->callbacks.count(), 1U) << "the callback stays registered";
}

TEST_F(Sgbm, aSettingThatIsThereAlreadyRestartsTheUnitToo)
{
    for (int i = 0; i < 2; ++i) {
        sgbm->setSource("HW");
        sgbm->setEnableDewarp(true);
        sgbm->setZoomFactor(1.0F);
        sgbm->setBaseline(0.08F);
        sgbm->setFOV(96.0F);
        sgbm->setMaxDisparity(255);
        sgbm->setMaxDistance(8000);
        sgbm->setMinDistance(100);
    }
    EXPECT_EQ(vsc->configs.size(), 16U);
    EXPECT_EQ(vsc->calls().size(), 32U);
}

TEST_F(Sgbm, everyWordButOneIsTheSoftware)
{
    for (const char *word : {"SW", "hw", "", "HW "}) {
        sgbm->setSource(word);
        EXPECT_EQ(vsc->configs.back().source, 1) << word;
    }
}

TEST_F(Sgbm, distancesWrapAtSixteenBits)
{
    QSignalSpy most(sgbm.get(), &SgbmData::maxDistanceChanged),
        least(sgbm.get(), &SgbmData::minDistanceChanged);
    sgbm->setMaxDistance(70000);
    sgbm->setMinDistance(-1);
    EXPECT_EQ(vsc->configs.back().maxDistance, 70000 - 65536);
    EXPECT_EQ(vsc->configs.back().minDistance, 65535);
    EXPECT_EQ(most.count() + least.count(), 0);
}

TEST_F(Sgbm, holeLimitsWrapAtSixteenBits)
{
    run();
    sgbm->setHoleSize(2);
    sgbm->setHoleMin(65536 + 500);
    sgbm->setHoleMax(65536 + 5000);
    EXPECT_EQ(depthOfAHole(400), 3000);
    EXPECT_EQ(depthOfAHole(600), 600);
    EXPECT_EQ(depthOfAHole(4900), 4900);
    EXPECT_EQ(depthOfAHole(5100), 3000);
}

TEST_F(Sgbm, untouchedHoleLimitsAreTwentyCentimetresAndTenMetres)
{
    run();
    sgbm->setHoleSize(2);
    EXPECT_EQ(depthOfAHole(199), 3000);
    EXPECT_EQ(depthOfAHole(200), 200);
    EXPECT_EQ(depthOfAHole(10000), 10000);
    EXPECT_EQ(depthOfAHole(10001), 3000);
}

TEST_F(Sgbm, thePainterFindsTheProbeOfAnObject)
{
    QObject *stream = sgbm.get();
    EXPECT_EQ(qobject_cast<DepthProbe *>(stream), static_cast<DepthProbe *>(sgbm.get()));
}

TEST_F(Sgbm, settersThatSignalAlwaysAndNever)
{
    QSignalSpy x(sgbm.get(), &SgbmData::xChanged), y(sgbm.get(), &SgbmData::yChanged),
        show(sgbm.get(), &SgbmData::pixelShowChanged), size(sgbm.get(), &SgbmData::holeSizeChanged),
        least(sgbm.get(), &SgbmData::holeMinChanged), most(sgbm.get(), &SgbmData::holeMaxChanged),
        width(sgbm.get(), &SgbmData::centerAvgWidthChanged),
        height(sgbm.get(), &SgbmData::centerAvgHeightChanged),
        color(sgbm.get(), &SgbmData::colorIndexChanged);
    for (int i = 0; i < 2; ++i) {
        sgbm->setX(5);
        sgbm->setY(6);
        sgbm->setPixelShow(true);
        sgbm->setHoleSize(3);
        sgbm->setHoleMin(100);
        sgbm->setHoleMax(5000);
        sgbm->setCenterAvgWidth(10);
        sgbm->setCenterAvgHeight(10);
        sgbm->setColorIndex(3);
    }
    EXPECT_EQ(x.count(), 2);
    EXPECT_EQ(y.count(), 2);
    ASSERT_EQ(show.count(), 2);
    EXPECT_TRUE(show[1][0].toBool());
    EXPECT_EQ(size.count() + least.count() + most.count() + width.count() + height.count(), 0);
    EXPECT_EQ(color.count(), 1);
    EXPECT_THAT(vsc->calls(), IsEmpty());
}

TEST_F(Sgbm, theResolutionPropertyDoesNotReachTheUnit)
{
    QSignalSpy resolution(sgbm.get(), &SgbmData::resolutionChanged);
    sgbm->setProperty("resolution", 1);
    sgbm->setProperty("resolution", 1);
    EXPECT_EQ(resolution.count(), 1);
    EXPECT_THAT(vsc->calls(), IsEmpty());
}

TEST_F(Sgbm, setSgbmResolutionDoes)
{
    QSignalSpy resolution(sgbm.get(), &SgbmData::resolutionChanged);
    EXPECT_TRUE(sgbm->setSgbmResolution(0)) << "has it already";
    EXPECT_THAT(vsc->takeCalls(), IsEmpty());
    EXPECT_TRUE(sgbm->setSgbmResolution(1));
    EXPECT_THAT(vsc->takeCalls(), ElementsAre("setResolution(1)"));
    vsc->resolutionResult = false;
    EXPECT_FALSE(sgbm->setSgbmResolution(2));
    EXPECT_EQ(sgbm->resolution(), 2) << "keeps the new value";
    EXPECT_EQ(resolution.count(), 0) << "who asks for it isn't told";
    EXPECT_EQ(log.lines(), QStringList{"debug: set sgbm resolution failed"});
}

TEST_F(Sgbm, viewSizesAreShares)
{
    QList<int> heard;
    QObject::connect(sgbm.get(), &SgbmData::viewWidthChanged, [&](int width) { heard << width; });
    QObject::connect(sgbm.get(), &SgbmData::viewHeightChanged, [&](int height) { heard << height; });
    sgbm->setViewSize(1000, 801);
    EXPECT_EQ(heard, (QList<int>{333, 400}));
    EXPECT_EQ(sgbm->viewWidth(), 333);
    EXPECT_EQ(sgbm->viewHeight(), 400);
}

TEST_F(Sgbm, theRateIsReportedEachSecond)
{
    run();
    QList<int> rates;
    QObject::connect(sgbm.get(), &SgbmData::frameRateChanged, [&](int rate) {
        rates << rate;
        EXPECT_EQ(sgbm->frameRate(), rate);
    });
    for (int i = 0; i < 3; ++i)
        vsc->deliver(depth(8, 4, countingUp(32)));
    fireTimers(*sgbm);
    fireTimers(*sgbm);
    EXPECT_EQ(rates, (QList<int>{3, 0}));
}

TEST_F(Sgbm, framesOfTheOtherKindAndDamagedOnesAreDropped)
{
    run();
    QSignalSpy update(sgbm->image(), &ImageData::update);
    const auto good = depth(8, 4, countingUp(32));
    vsc->deliver(disparity(8, 4, Bytes(32, 1)));
    auto unknown = good;
    unknown.type = 2;
    auto cut = good;
    cut.dataSize -= 1;
    auto null = good;
    null.data = nullptr;
    auto flat = good;
    flat.width = 0;
    auto huge = good;
    huge.width = huge.height = std::size_t(1) << 40;
    for (const auto &frame : {unknown, cut, null, flat, huge})
        vsc->deliver(frame);
    sgbm->setDepth(false);
    vsc->deliver(good);
    auto shortDisparity = disparity(8, 4, Bytes(32, 1));
    shortDisparity.dataSize = 31;
    vsc->deliver(shortDisparity);
    EXPECT_EQ(update.count(), 0);
    EXPECT_TRUE(log.lines().isEmpty());
    fireTimers(*sgbm);
    EXPECT_EQ(sgbm->frameRate(), 0);
    vsc->deliver(disparity(8, 4, Bytes(32, 1)));
    EXPECT_EQ(update.count(), 1);
}

TEST_F(Sgbm, theFrameIsColourWithTheSizeOfItsSamples)
{
    run();
    vsc->deliver(depth(8, 4, countingUp(32)));
    const ImageData::Frame frame = sgbm->image()->frame();
    EXPECT_EQ(frame.type, int(ImageData::Color));
    EXPECT_EQ(frame.width, 8);
    EXPECT_EQ(frame.height, 4);
    EXPECT_EQ(frame.dataSize, 64);
}

TEST_F(Sgbm, plainColoursBetweenTheDistances)
{
    run();
    sgbm->setMinDistance(250);
    sgbm->setMaxDistance(1000);
    Samples samples = countingUp(64 * 13, 200);
    samples[0] = 0;
    samples[1] = 65535;
    samples[2] = 250;
    samples[3] = 1000;
    samples[4] = 1001;
    vsc->deliver(depth(64, 13, samples));
    EXPECT_EQ(shown(sgbm->image()), plainColours(samples, 0.25, 1.0));
}

TEST_F(Sgbm, theRangeEndsWhereThePairSeesNoFurther)
{
    run();
    ASSERT_LT(seenAt64, 8.0);
    const Samples samples = countingUp(64 * 40, 500);
    vsc->deliver(depth(64, 40, samples));
    EXPECT_EQ(shown(sgbm->image()), plainColours(samples, 0.1, seenAt64));
    sgbm->setFOV(30);
    sgbm->setBaseline(1);
    vsc->deliver(depth(64, 40, samples));
    EXPECT_EQ(shown(sgbm->image()), plainColours(samples, 0.1, seenAt64)) << "whatever the unit is told";
}

TEST_F(Sgbm, aWiderPairSeesFurther)
{
    run();
    sgbm->setMaxDistance(65535);
    sgbm->setHoleMax(65535);
    Samples samples(640 * 2, 23050);
    std::fill(samples.begin() + 640, samples.end(), static_cast<unsigned short>(23051));
    vsc->deliver(depth(640, 2, samples));
    const Bytes colours = shown(sgbm->image());
    // 23.0503 m are the end: the last colour is a red of half its strength, and black is what lies beyond.
    EXPECT_EQ(Bytes(colours.begin(), colours.begin() + 3), (Bytes{127, 0, 0}));
    EXPECT_EQ(Bytes(colours.end() - 3, colours.end()), (Bytes{0, 0, 0}));
}

TEST_F(Sgbm, untouchedDistancesAreTenCentimetresAndEightMetres)
{
    run();
    Samples samples(640 * 2, 3000);
    const Samples ends{100, 101, 8000, 8001};
    std::copy(ends.begin(), ends.end(), samples.begin());
    vsc->deliver(depth(640, 2, samples));
    const Bytes colours = shown(sgbm->image());
    // A blue and a red of half their strength, and black outside.
    EXPECT_EQ(Bytes(colours.begin(), colours.begin() + 12), (Bytes{0, 0, 0, 0, 0, 127, 127, 0, 0, 0, 0, 0}));
}

TEST_F(Sgbm, schemesAreColourMapsWhileHolesAreFilled)
{
    run();
    const Samples samples = countingUp(64 * 40, 0);
    const Bytes levels = greyLevels(samples, 0.1, seenAt64);
    for (const int scheme : {1, 2, 11}) {
        sgbm->setColorIndex(scheme);
        vsc->deliver(depth(64, 40, samples));
        EXPECT_EQ(shown(sgbm->image()), mapped(levels, scheme)) << scheme;
    }
    sgbm->setEnableFillHoles(false);
    for (const int scheme : {0, 1}) {
        sgbm->setColorIndex(scheme);
        vsc->deliver(depth(64, 40, samples));
        EXPECT_EQ(shown(sgbm->image()), mapped(levels, cv::COLORMAP_JET)) << "the scheme plays no part";
    }
}

TEST_F(Sgbm, anUnknownSchemeIsAnEmptyPicture)
{
    run();
    for (const int unknown : {4711, -1}) {
        sgbm->setColorIndex(unknown);
        QSignalSpy update(sgbm->image(), &ImageData::update);
        EXPECT_NO_THROW(vsc->deliver(depth(8, 4, countingUp(32))));
        EXPECT_EQ(update.count(), 1);
        EXPECT_EQ(sgbm->image()->data(), nullptr) << unknown;
    }
    sgbm->setColorIndex(1);
    vsc->deliver(depth(8, 4, countingUp(32)));
    EXPECT_NE(sgbm->image()->data(), nullptr);
}

TEST_F(Sgbm, anEmptyOrTurnedRangeGivesDefinedBytes)
{
    run();
    const auto frame = depth(64, 40, countingUp(64 * 40, 0));
    sgbm->setMaxDistance(2000);
    for (const int nearest : {2000, 3000}) {
        sgbm->setMinDistance(nearest);
        sgbm->setColorIndex(0);
        vsc->deliver(frame);
        EXPECT_EQ(shown(sgbm->image()), Bytes(3 * 64 * 40, 0)) << "nothing lies in a range from " << nearest;
        // Of bones: black, and for a range that runs backwards white.
        sgbm->setColorIndex(1);
        vsc->deliver(frame);
        const unsigned char grey = nearest == 2000 ? 0 : 255;
        EXPECT_EQ(shown(sgbm->image()), Bytes(3 * 64 * 40, grey)) << nearest;
    }
}

TEST_F(Sgbm, holesAreFilledBeforeAnythingIsRead)
{
    run();
    Samples samples(20 * 20, 3000);
    samples[10 * 20 + 10] = 0;
    sgbm->setX(10);
    sgbm->setY(10);
    sgbm->setObjectX(10);
    sgbm->setObjectY(10);
    vsc->deliver(depth(20, 20, samples));
    EXPECT_EQ(sgbm->depth(), 0) << "no size, no filling";
    sgbm->setHoleSize(3);
    vsc->deliver(depth(20, 20, samples));
    EXPECT_EQ(sgbm->depth(), 3000);
    EXPECT_EQ(sgbm->objectDepth(), 3000);
    sgbm->setEnableFillHoles(false);
    vsc->deliver(depth(20, 20, samples));
    EXPECT_EQ(sgbm->depth(), 0);
    sgbm->setEnableFillHoles(true);
    sgbm->setHoleMin(3001);
    samples[10 * 20 + 10] = 4000;
    vsc->deliver(depth(20, 20, samples));
    EXPECT_EQ(sgbm->depth(), 4000) << "now all else is a hole";
    sgbm->setHoleSize(100000);
    EXPECT_NO_THROW(vsc->deliver(depth(20, 20, samples)));
}

TEST_F(Sgbm, filledHolesAreColouredAsWhatFillsThem)
{
    run();
    sgbm->setHoleSize(3);
    Samples samples(20 * 20, 500);
    samples[10 * 20 + 10] = 0;
    vsc->deliver(depth(20, 20, samples));
    const double seen = 20 / (2 * std::tan(48 * M_PI / 180)) * 0.08;
    EXPECT_EQ(shown(sgbm->image()), plainColours(Samples(20 * 20, 500), 0.1, seen));
}

TEST_F(Sgbm, theReadOutIsThePixelItself)
{
    run();
    QList<int> depths;
    QObject::connect(sgbm.get(), &SgbmData::depthChanged, [&](int value) { depths << value; });
    const auto frame = depth(8, 4, countingUp(32, 60000));
    vsc->deliver(frame);
    EXPECT_EQ(sgbm->objectDepth(), 60000) << "an untouched object stands in the corner";
    EXPECT_TRUE(depths.isEmpty()) << "no pixel named";
    EXPECT_EQ(sgbm->depth(), 0);
    sgbm->setY(1);
    vsc->deliver(frame);
    EXPECT_TRUE(depths.isEmpty()) << "a row without a column names none";
    EXPECT_EQ(sgbm->depth(), 0);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 8; ++x) {
            sgbm->setX(x);
            sgbm->setY(y);
            sgbm->setObjectX(7 - x);
            sgbm->setObjectY(3 - y);
            vsc->deliver(frame);
            ASSERT_EQ(sgbm->depth(), 60000 + 8 * y + x) << "unsigned";
            ASSERT_EQ(sgbm->objectDepth(), 60031 - 8 * y - x);
            ASSERT_EQ(depths.last(), sgbm->depth());
        }
    }
    EXPECT_EQ(depths.size(), 32);
}

TEST_F(Sgbm, aColumnAloneReadsTheRowAbove)
{
    run();
    sgbm->setX(8);
    vsc->deliver(depth(8, 4, countingUp(32, 500)));
    EXPECT_EQ(sgbm->depth(), 500) << "row -1, column 8";
}

TEST_F(Sgbm, outsideTheFrameNothingIsRead)
{
    run();
    sgbm->setX(1);
    sgbm->setY(1);
    const auto frame = depth(8, 4, countingUp(32));
    vsc->deliver(frame);
    QSignalSpy depthSpy(sgbm.get(), &SgbmData::depthChanged);
    constexpr int most = std::numeric_limits<int>::max(), least = std::numeric_limits<int>::min();
    for (const auto &[x, y] : {std::pair{-1, 0}, std::pair{0, 4}, std::pair{1, -1}, std::pair{most, most},
             std::pair{least, least}}) {
        sgbm->setX(x);
        sgbm->setY(y);
        sgbm->setObjectX(x);
        sgbm->setObjectY(y);
        vsc->deliver(frame);
        EXPECT_EQ(sgbm->depth(), 1009);
    }
    EXPECT_EQ(depthSpy.count(), 0);
}

TEST_F(Sgbm, zerosAreSignalledOnEveryThirtiethOnly)
{
    run();
    sgbm->setX(0);
    sgbm->setY(0);
    const auto zero = depth(2, 2, {0, 1, 1, 1}), valid = depth(2, 2, {500, 1, 1, 1});
    QList<int> frames;
    int number = 0;
    QObject::connect(sgbm.get(), &SgbmData::depthChanged, [&] { frames << number; });
    for (number = 1; number <= 40; ++number)
        vsc->deliver(zero);
    EXPECT_EQ(frames, (QList<int>{1, 31}));
    frames.clear();
    number = 41;
    vsc->deliver(valid);
    EXPECT_EQ(frames, QList<int>{41});
    frames.clear();
    for (number = 42; number <= 72; ++number)
        vsc->deliver(zero);
    EXPECT_EQ(frames, QList<int>{62}) << "the 61st zero: a valid reading starts no new count";
}

TEST_F(Sgbm, theAverageIsOfEveryTwentiethFrame)
{
    run();
    EXPECT_EQ(deliverUntilAverage(depth(8, 4, countingUp(32))), 0) << "not asked for";
    sgbm->setEnableCenterAvgPx(true);
    sgbm->setCenterAvgX(2);
    sgbm->setCenterAvgY(1);
    sgbm->setCenterAvgWidth(2);
    sgbm->setCenterAvgHeight(2);
    Samples samples(8 * 4, 9);
    samples[10] = 40000;
    samples[11] = 0;
    samples[18] = 50000;
    samples[19] = 60001;
    EXPECT_GT(deliverUntilAverage(depth(8, 4, samples)), 0);
    EXPECT_EQ(sgbm->centerAvgPx(), 50000) << "150001 by 3, truncated";
    EXPECT_EQ(deliverUntilAverage(depth(8, 4, samples)), 20);
    EXPECT_EQ(deliverUntilAverage(depth(8, 4, Samples(32, 0))), 20);
    EXPECT_EQ(sgbm->centerAvgPx(), 0);
    sgbm->setCenterAvgWidth(5000);
    sgbm->setCenterAvgHeight(5000);
    EXPECT_EQ(deliverUntilAverage(depth(8, 4, Samples(32, 77))), 20);
    EXPECT_EQ(sgbm->centerAvgPx(), 77);
}

TEST_F(Sgbm, theUntouchedBoxIsTheFirstFiftyByFifty)
{
    run();
    sgbm->setEnableCenterAvgPx(true);
    const auto framed = [](int border) {
        Samples samples(60 * 60, 6000);
        for (int y = 0; y < border; ++y)
            std::fill_n(samples.begin() + y * 60, border, static_cast<unsigned short>(3000));
        return depth(60, 60, samples);
    };
    EXPECT_GT(deliverUntilAverage(framed(50)), 0);
    EXPECT_EQ(sgbm->centerAvgPx(), 3000);
    EXPECT_GT(deliverUntilAverage(framed(49)), 0);
    // The 99 pixels of the last row and column raise it by 99 / 2500 of 3000.
    EXPECT_EQ(sgbm->centerAvgPx(), 3118);
}

TEST_F(Sgbm, disparityIsScaledJetWithoutItsSpecks)
{
    run();
    sgbm->setDepth(false);
    Bytes samples(16 * 8, 40);
    samples[5] = 0;
    std::fill_n(samples.begin() + 64, 64, static_cast<unsigned char>(0));
    samples[100] = 200; // a speck that the median takes away
    vsc->deliver(disparity(16, 8, samples));
    Bytes scaled;
    for (const unsigned char sample : samples)
        scaled.push_back(cv::saturate_cast<unsigned char>(sample * 2.5));
    Bytes expected = mapped(scaled, cv::COLORMAP_JET);
    for (std::size_t y = 0; y < 8; ++y) {
        for (std::size_t x = 0; x < 16; ++x) {
            std::vector<unsigned char> around;
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx) {
                    const int row = std::min(std::max(int(y) + dy, 0), 7),
                              column = std::min(std::max(int(x) + dx, 0), 15);
                    around.push_back(scaled[std::size_t(row * 16 + column)]);
                }
            }
            std::sort(around.begin(), around.end());
            if (around[4] == 0)
                std::fill_n(
                    expected.begin() + std::ptrdiff_t(3 * (y * 16 + x)), 3, static_cast<unsigned char>(0));
        }
    }
    EXPECT_EQ(shown(sgbm->image()), expected);
    EXPECT_EQ(sgbm->image()->frame().type, int(ImageData::Color));
    fireTimers(*sgbm);
    EXPECT_EQ(sgbm->frameRate(), 1);
}

TEST_F(Sgbm, aSpeckIsJudgedByItsEightNeighbours)
{
    run();
    sgbm->setDepth(false);
    // Nine equal pixels amid nothing: the corners have three of them around, all others at least five.
    Bytes samples(9 * 9, 0);
    Bytes levels(9 * 9, 0);
    for (std::size_t y = 3; y < 6; ++y) {
        for (std::size_t x = 3; x < 6; ++x) {
            samples[9 * y + x] = 40;
            levels[9 * y + x] = 100;
        }
    }
    vsc->deliver(disparity(9, 9, samples));
    const Bytes jet = mapped(levels, cv::COLORMAP_JET);
    Bytes expected(3 * 9 * 9, 0);
    for (const std::ptrdiff_t pixel : {9 * 3 + 4, 9 * 4 + 3, 9 * 4 + 4, 9 * 4 + 5, 9 * 5 + 4})
        std::copy_n(jet.begin() + 3 * pixel, 3, expected.begin() + 3 * pixel);
    EXPECT_EQ(shown(sgbm->image()), expected);
}

TEST_F(Sgbm, disparityHasNoReadOuts)
{
    run();
    sgbm->setDepth(false);
    sgbm->setX(0);
    sgbm->setY(0);
    sgbm->setEnableCenterAvgPx(true);
    QSignalSpy depthSpy(sgbm.get(), &SgbmData::depthChanged);
    EXPECT_EQ(deliverUntilAverage(disparity(8, 4, Bytes(32, 9)), 25), 0);
    EXPECT_EQ(depthSpy.count(), 0);
}

TEST(SgbmPictures, wideDisparityIsShiftedIntoAByte)
{
    Samples samples;
    for (int i = 0; i < 64; ++i)
        samples.push_back(static_cast<unsigned short>(i * 1021));
    const cv::Mat picture = disparityPicture(depth(8, 8, samples), 3);
    Bytes levels;
    for (const unsigned short sample : samples)
        levels.push_back(static_cast<unsigned char>(sample / 32 % 256));
    EXPECT_EQ(Bytes(picture.data, picture.data + 192), mapped(levels, cv::COLORMAP_JET));
    auto cut = depth(8, 8, samples);
    cut.dataSize = 127;
    EXPECT_TRUE(disparityPicture(cut, 3).empty());
    EXPECT_FALSE(disparityPicture(cut, 0).empty()) << "eight bits a sample";
}

TEST(SgbmPictures, depthToPixelsReadsAndWritesItsPixelsOnly)
{
    const Samples samples = countingUp(9, 300);
    Bytes source(2 * 9 + 1), colors(3 * 9 + 8, 0xAA);
    std::memcpy(source.data() + 1, samples.data(), 18); // at an odd address
    SgbmColors painter;
    painter.depthToPixels(source.data() + 1, 9, {0.1, 2.0}, SgbmColors::plainColors, colors.data());
    const Bytes expected = plainColours(samples, 0.1, 2.0);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), colors.begin()));
    for (std::size_t i = 27; i < colors.size(); ++i)
        EXPECT_EQ(colors[i], 0xAA);
    painter.depthToPixels(nullptr, 0, {0.1, 2.0}, SgbmColors::plainColors, nullptr);
}

TEST_F(Sgbm, aPictureThatSomebodyHoldsIsNotOverwritten)
{
    run();
    vsc->deliver(depth(64, 4, countingUp(256, 500)));
    const auto held = sgbm->image()->data();
    const Bytes before = shown(sgbm->image());
    for (int i = 0; i < 6; ++i)
        vsc->deliver(depth(64, 4, countingUp(256, 1500)));
    EXPECT_EQ(Bytes(held.get(), held.get() + before.size()), before);
}

TEST_F(Sgbm, saveWritesTheFirstThirdAsGrey)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("sbgm.png");
    vsc->deliver(depth(64, 4, countingUp(256, 500)));
    EXPECT_FALSE(sgbm->save(path)) << "stopped";
    run();
    EXPECT_FALSE(sgbm->save(path)) << "no frame yet";
    EXPECT_FALSE(QFile::exists(path));
    vsc->deliver(depth(63, 4, countingUp(252, 500)));
    EXPECT_TRUE(sgbm->save(path));
    const QImage image = QImage(path).convertToFormat(QImage::Format_Grayscale8);
    ASSERT_EQ(image.size(), QSize(63, 4));
    const Bytes bytes = shown(sgbm->image());
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 63; ++x)
            ASSERT_EQ(image.constScanLine(y)[x], bytes[std::size_t(y * 63 + x)]);
    }
    EXPECT_FALSE(sgbm->save(folder.filePath("none/sbgm.png")));
    sgbm->control(false);
    EXPECT_FALSE(sgbm->save(folder.filePath("stopped.png")));
    EXPECT_FALSE(QFile::exists(folder.filePath("stopped.png"))) << "though there is a frame";
}

TEST_F(Sgbm, destructionUnregistersAndDoesNotStop)
{
    run();
    const auto callback = vsc->callbacks.held().at(0);
    sgbm.reset();
    EXPECT_THAT(vsc->takeCalls(), ElementsAre("unregisterCallback(1)"));
    callback(depth(8, 4, countingUp(32)));
    sgbm = std::make_unique<SgbmData>(vsc.get(), nullptr);
    sgbm.reset();
    EXPECT_THAT(vsc->takeCalls(), IsEmpty());
}

TEST_F(Sgbm, allUnitsShareTheCountToTheNextAverage)
{
    run();
    FakeVsc otherUnit;
    SgbmData other(&otherUnit, nullptr);
    other.control(true);
    other.setEnableCenterAvgPx(true);
    sgbm->setEnableCenterAvgPx(true);
    const auto frame = depth(60, 60, Samples(3600, 3000));
    ASSERT_GT(deliverUntilAverage(frame), 0);
    QSignalSpy average(sgbm.get(), &SgbmData::centerAvgPxChanged);
    QSignalSpy otherAverage(&other, &SgbmData::centerAvgPxChanged);
    for (int i = 0; i < 19; ++i)
        otherUnit.deliver(frame);
    EXPECT_EQ(average.count() + otherAverage.count(), 0);
    vsc->deliver(frame);
    EXPECT_EQ(average.count(), 1);
    EXPECT_EQ(otherAverage.count(), 0);
}
