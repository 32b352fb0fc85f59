#include "sim/ColorTofFixture.h"

#include <gmock/gmock.h>
#include <limits>
#include <thread>

using namespace sim;

using ColorTest = ColorTofTest;

namespace {

qv::ColorImage shoot(RenderedColor &source, double t)
{
    qv::ColorImage record;
    EXPECT_TRUE(source.picture(t, record));
    return record;
}

double meanGrey(const qv::ColorImage &image)
{
    return cv::mean(greyOf(image))[0];
}

double difference(const cv::Mat &a, const cv::Mat &b)
{
    return cv::norm(a, b, cv::NORM_L1)
        / static_cast<double>(a.total() * static_cast<std::size_t>(a.channels()));
}

} // namespace

TEST_F(ColorTest, profilesHaveTheirCameras)
{
    const auto made = [&](Profile profile) {
        config.profile = profile;
        return makeDevice(config);
    };
    for (const Profile profile : {Profile::Quad, Profile::ImuOnly, Profile::Plain}) {
        EXPECT_EQ(made(profile)->colorCamera(), nullptr);
        EXPECT_EQ(made(profile)->tofCamera(), nullptr);
        EXPECT_EQ(made(profile)->info().at("colorAvailable"), "false");
        EXPECT_EQ(made(profile)->info().at("tofAvailable"), "false");
    }
    const auto headset = made(Profile::Headset);
    EXPECT_EQ(headset->colorCamera(), headset->colorCamera());
    EXPECT_EQ(headset->tofCamera(), headset->tofCamera());
    for (const char *feature : {"colorAvailable", "tofAvailable", "rgb2Available", "afRGBAvailable"})
        EXPECT_EQ(headset->info().at(feature), "true") << feature;
    const auto module = made(Profile::Module);
    EXPECT_EQ(module->info().at("colorAvailable"), "true");
    EXPECT_EQ(module->info().at("tofAvailable"), "true");
    EXPECT_EQ(module->info().at("rgb2Available"), "false");
    EXPECT_EQ(module->info().at("afRGBAvailable"), "false");
}

TEST_F(ColorTest, aHeadsetStartsWith1920By1080)
{
    config.streams.clear();
    make();
    ASSERT_TRUE(color->start());
    const qv::ColorImage image = freshColor();
    EXPECT_EQ(image.codec, 1);
    EXPECT_EQ(image.width, 1920U);
    EXPECT_EQ(image.height, 1080U);
    EXPECT_EQ(image.dataSize, 1920U * 1080 * 3 / 2);
    EXPECT_EQ(color->calibration().at(0).pdcm.at(0).w, 1920);
}

TEST_F(ColorTest, theModulesCameraSendsYuyv)
{
    make(Profile::Module);
    ASSERT_TRUE(color->start());
    const qv::ColorImage image = freshColor();
    EXPECT_EQ(image.codec, 0);
    EXPECT_EQ(image.dataSize, 160U * 90 * 2);
}

TEST_F(ColorTest, theConfigurationChoosesTheCodec)
{
    const std::pair<const char *, int> codecs[] = {{"yuyv", 0}, {"yuv420p", 1}, {"jpeg", 2}};
    for (const auto &[name, number] : codecs) {
        config.streams["color"].codec = name;
        make();
        ASSERT_TRUE(color->start());
        EXPECT_EQ(freshColor().codec, number);
    }
}

TEST_F(ColorTest, everyCodecShowsTheSamePicture)
{
    const auto world = SharedWorld::get(1);
    for (const cv::Size size : {cv::Size(320, 180), cv::Size(1280, 720)}) {
        cv::Mat pictures[3];
        for (int codec = 0; codec < 3; ++codec) {
            RenderedColor source(world, colorSetupFor(size, static_cast<ColorCodec>(codec)));
            pictures[codec] = rgbOf(shoot(source, 4.5));
            ASSERT_EQ(pictures[codec].size(), size);
        }
        EXPECT_LT(difference(pictures[0], pictures[1]), 2);
        EXPECT_LT(difference(pictures[0], pictures[2]), 3);
    }
}

TEST_F(ColorTest, picturesShowTheWorldFromWhereTheCalibrationSays)
{
    const auto world = SharedWorld::get(1);
    for (const cv::Size size : {cv::Size(640, 480), cv::Size(1920, 1080)}) {
        RenderedColor source(world, colorSetupFor(size));
        source.setExposure(false, 10, 5); // no blur, half the light, a known factor
        const double t = 7.25;
        const cv::Mat shown = greyOf(shoot(source, t));
        const qv::Calibration calibration = source.calibration().at(0);
        ASSERT_EQ(calibration.pdcm.at(0).w, size.width);
        ASSERT_EQ(calibration.pdcm.at(0).h, size.height);
        cv::Mat expected;
        Renderer(world->scene(), std::make_shared<PolynomialModel>(calibration.pdcm.at(0)))
            .grey(world->trajectory().pose(t) * poseOf(calibration), t, expected, 0.5);
        EXPECT_LT(difference(shown, expected), 3) << size;
        cv::Mat a;
        cv::Mat b;
        shown.convertTo(a, CV_32F);
        expected.convertTo(b, CV_32F);
        const cv::Point2d shift = cv::phaseCorrelate(a, b);
        EXPECT_LT(std::hypot(shift.x, shift.y), 0.5) << "pixels, at " << size;
    }
}

TEST_F(ColorTest, resolutionsHaveTheirSizesAndCalibrations)
{
    make();
    ASSERT_TRUE(color->start());
    const cv::Size sizes[] = {{1920, 1080}, {1280, 720}, {640, 480}, {320, 240}, {2560, 1920}};
    for (int mode = 0; mode < 5; ++mode) {
        color->setResolution(mode);
        const auto changed = [&] {
            return colors->count() > 0 && colors->last().width == static_cast<std::size_t>(sizes[mode].width);
        };
        ASSERT_TRUE(waitFor(changed)) << mode;
        const qv::ColorImage image = colors->last();
        EXPECT_EQ(image.height, static_cast<std::size_t>(sizes[mode].height));
        EXPECT_EQ(image.dataSize, static_cast<unsigned>(sizes[mode].area() * 3 / 2));
        EXPECT_EQ(color->calibration().at(0).pdcm.at(0).w, sizes[mode].width);
        EXPECT_EQ(color->calibration().at(0).cameraModels.at(0)->height(), sizes[mode].height);
        colors->clear();
    }
    for (const int unknown : {5, -1}) {
        color->setResolution(unknown);
        EXPECT_EQ(color->calibration().at(0).pdcm.at(0).w, 2560) << unknown;
    }
}

TEST_F(ColorTest, rateFollowsTheSetting)
{
    make();
    EXPECT_TRUE(color->setFramerate(6));
    ASSERT_TRUE(color->start());
    ASSERT_TRUE(colors->waitForMore(3));
    const auto slow = colors->all();
    EXPECT_GE(slow[2].edgeTimestampUs - slow[1].edgeTimestampUs, 166'000);
    EXPECT_FALSE(color->setFramerate(0));
    EXPECT_FALSE(color->setFramerate(1000));
    EXPECT_FALSE(color->setFramerate(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_TRUE(color->setFramerate(25));
    EXPECT_TRUE(waitFor([&] {
        const auto all = colors->all();
        return all.back().edgeTimestampUs - all[all.size() - 2].edgeTimestampUs < 41'000;
    }));
}

TEST_F(ColorTest, exposureIsAutomaticUntilItIsSet)
{
    const auto world = SharedWorld::get(1);
    RenderedColor source(world, colorSetupFor({320, 180}));
    EXPECT_NEAR(meanGrey(shoot(source, 3)), Exposure::aim, 15);
    EXPECT_TRUE(source.setExposure(false, 10, 4));
    const double bright = meanGrey(shoot(source, 3));
    EXPECT_TRUE(source.setExposure(false, 10, 1));
    EXPECT_LT(meanGrey(shoot(source, 3)), bright / 2);
    EXPECT_FALSE(source.setExposure(false, 0, 4));
    EXPECT_TRUE(source.setExposure(true, 10, 4));
    EXPECT_NEAR(meanGrey(shoot(source, 3)), Exposure::aim, 15);
}

TEST_F(ColorTest, highGainIsNoisier)
{
    RenderedColor source(SharedWorld::get(1), colorSetupFor({320, 180}));
    const auto roughness = [&](int gain, double milliseconds) {
        source.setExposure(false, gain, milliseconds);
        const cv::Mat picture = greyOf(shoot(source, 9));
        cv::Mat median;
        cv::medianBlur(picture, median, 3);
        return difference(picture, median);
    };
    EXPECT_GT(roughness(80, 1), roughness(10, 8) * 1.2) << "of the same brightness";
}

TEST_F(ColorTest, longExposureSmearsWhatMoves)
{
    RenderedColor source(SharedWorld::get(1), colorSetupFor({320, 180}));
    source.setExposure(false, 2, 50);
    const double smeared = sharpness(greyOf(shoot(source, 9)));
    source.setExposure(false, 20, 5);
    EXPECT_GT(sharpness(greyOf(shoot(source, 9))), smeared * 1.1) << "of the same brightness";
}

TEST_F(ColorTest, manualFocusOffTheSceneBlursThePicture)
{
    RenderedColor::Setup setup = colorSetupFor({640, 360});
    setup.focuses = true;
    RenderedColor source(SharedWorld::get(1), setup);
    const auto at = [&](int distance) {
        source.setAutomaticFocus(false);
        source.setFocusDistance(distance);
        return sharpness(greyOf(shoot(source, 6)));
    };
    const double nearest = at(1);
    const double near = at(20);
    const double far = at(255);
    EXPECT_LT(nearest, near);
    EXPECT_LT(near, far / 3) << "a room is metres away";
    source.setAutomaticFocus(true);
    EXPECT_NEAR(sharpness(greyOf(shoot(source, 6))), far, far / 4) << "focus finds the room by itself";
}

TEST_F(ColorTest, focusChangesTheStreamsPicture)
{
    config.streams["color"] = {20, 320, 180, ""};
    make();
    ASSERT_TRUE(color->start());
    const double sharp = sharpness(greyOf(freshColor()));
    color->setRgbDistance(5);
    color->setRgbMode(1);
    EXPECT_LT(sharpness(greyOf(freshColor())), sharp / 2);
    color->setRgbDistance(0);
    color->setRgbDistance(256);
    color->setRgbMode(7);
    EXPECT_LT(sharpness(greyOf(freshColor())), sharp / 2) << "what can't be changes nothing";
    color->setRgbMode(0);
    EXPECT_GT(sharpness(greyOf(freshColor())), sharp / 2);
}

TEST_F(ColorTest, aLensWithoutFocusStaysAsItIs)
{
    RenderedColor source(SharedWorld::get(1), colorSetupFor({320, 180}));
    const cv::Mat before = greyOf(shoot(source, 6));
    source.setAutomaticFocus(false);
    source.setFocusDistance(5);
    EXPECT_EQ(cv::norm(before, greyOf(shoot(source, 6)), cv::NORM_INF), 0);
}

TEST(FocusBlur, whatIsInFocusStaysSharpAndWhatIsNotDoesNot)
{
    cv::Mat rgb(120, 160, CV_8UC3);
    cv::RNG(7).fill(rgb, cv::RNG::UNIFORM, 0, 256);
    const cv::Mat before = rgb.clone();
    cv::Mat depth(15, 20, CV_32FC1, cv::Scalar(0.3));
    depth.colRange(10, 20) = 3;
    FocusBlur().apply(rgb, depth, 0.3, 600);
    EXPECT_EQ(cv::norm(rgb.colRange(0, 60), before.colRange(0, 60), cv::NORM_INF), 0);
    const cv::Mat blurred = rgb.colRange(100, 160);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(blurred, mean, deviation);
    EXPECT_LT(deviation[0], 40) << "of 74 in even noise";
    EXPECT_NEAR(mean[0], 127, 6);
}

TEST(FocusBlur, automaticFocusTakesTheMiddle)
{
    cv::Mat depth(45, 80, CV_32FC1, cv::Scalar(4));
    depth(cv::Rect(30, 15, 20, 15)) = 1.5;
    EXPECT_EQ(FocusBlur::middle(depth), 1.5);
    EXPECT_EQ(FocusBlur::middle(cv::Mat(1, 1, CV_32FC1, cv::Scalar(2))), 2);
}

TEST_F(ColorTest, sameSeedAndTimeGiveTheSameBytes)
{
    RenderedColor::Setup setup = colorSetupFor({320, 180}, ColorCodec::Yuyv);
    setup.focuses = true;
    setup.seed = 3;
    RenderedColor one(SharedWorld::get(3), setup);
    RenderedColor two(SharedWorld::get(3), setup);
    setup.seed = 4;
    RenderedColor other(SharedWorld::get(3), setup);
    shoot(one, 0.5);
    const auto bytes = [](const qv::ColorImage &image) {
        return std::vector<unsigned char>(image.data.get(), image.data.get() + image.dataSize);
    };
    const auto first = bytes(shoot(one, 2.34));
    EXPECT_EQ(first, bytes(shoot(two, 2.34)));
    EXPECT_NE(first, bytes(shoot(other, 2.34)));
}

TEST_F(ColorTest, aDeliveredPictureIsNeverWrittenAgain)
{
    make();
    ASSERT_TRUE(color->start());
    const qv::ColorImage held = freshColor();
    const std::vector<unsigned char> copy(held.data.get(), held.data.get() + held.dataSize);
    ASSERT_TRUE(colors->waitForMore(12));
    EXPECT_TRUE(std::equal(copy.begin(), copy.end(), held.data.get()));
}

TEST_F(ColorTest, theSecondCameraStandsByItself)
{
    make();
    Records<qv::ColorImage> second;
    const int id = color->registerCallback2([&](const qv::ColorImage &image) { second.add(image); });
    EXPECT_GE(id, 0);
    EXPECT_FALSE(color->stopCamera(1)) << "it doesn't run";
    color->startCamera(1);
    ASSERT_TRUE(second.waitForMore(4));
    EXPECT_EQ(colors->count(), 0U) << "the first one is off";
    const auto all = second.all();
    EXPECT_EQ(all[0].width, 128U);
    EXPECT_EQ(all[0].height, 72U);
    for (std::size_t i = 1; i < all.size(); ++i) {
        // Whole periods of its own rate; more than one where the machine was busy.
        const double periods = static_cast<double>(all[i].edgeTimestampUs - all[i - 1].edgeTimestampUs) / 1e5;
        EXPECT_GE(periods, 0.99);
        EXPECT_NEAR(periods, std::round(periods), 0.001) << "its own rate";
    }
    ASSERT_TRUE(color->start());
    const cv::Mat first = greyOf(freshColor());
    cv::Mat enlarged;
    cv::resize(greyOf(second.last()), enlarged, first.size());
    EXPECT_GT(difference(first, enlarged), 5) << "it looks from elsewhere";
    EXPECT_TRUE(color->stopCamera(1));
    EXPECT_FALSE(color->stopCamera(1));
    color->unregisterCallback2(id);
    color->unregisterCallback2(-1);
    EXPECT_TRUE(colors->waitForMore(2));
}

TEST_F(ColorTest, thereAreNoOtherCameras)
{
    make();
    color->startCamera(2);
    color->startCamera(-1);
    EXPECT_FALSE(color->stopCamera(2));
    EXPECT_FALSE(color->stopCamera(-1));
    color->startCamera(0);
    EXPECT_TRUE(color->stopCamera(0));
    make(Profile::Module);
    color->startCamera(1);
    EXPECT_FALSE(color->stopCamera(1));
    EXPECT_EQ(color->registerCallback2([](const qv::ColorImage &) {}), -1);
    color->unregisterCallback2(3);
}

TEST_F(ColorTest, bothCalibrationsAreListed)
{
    make();
    ASSERT_EQ(color->calibration().size(), 2U);
    EXPECT_EQ(color->calibration()[1].pdcm.at(0).w, 128);
    EXPECT_NE(color->calibration()[0].translation[0], color->calibration()[1].translation[0]);
    make(Profile::Module);
    EXPECT_EQ(color->calibration().size(), 1U);
}

TEST_F(ColorTest, noCallbackRunsAfterItsEnd)
{
    make();
    std::atomic<bool> gone{false};
    std::atomic<int> calls{0};
    std::atomic<bool> late{false};
    const auto slow = [&](const qv::ColorImage &) {
        ++calls;
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        late = late || gone;
    };
    const int first = color->registerCallback(slow);
    const int second = color->registerCallback2(slow);
    color->start();
    color->startCamera(1);
    ASSERT_TRUE(waitFor([&] { return calls > 2; }));
    color->unregisterCallback(first);
    color->unregisterCallback2(second);
    gone = true;
    ASSERT_TRUE(colors->waitForMore(4));
    EXPECT_FALSE(late);
}

TEST_F(ColorTest, synchronousStreamsTakeTheirPicturesTogether)
{
    make();
    ASSERT_TRUE(device->enableSync(true));
    color->start();
    tof->start();
    const auto grid = freshColor().edgeTimestampUs % 50'000;
    EXPECT_EQ(grid, 0);
    EXPECT_EQ(freshDepth(1).edgeTimestampUs % 50'000, 0);
    ASSERT_TRUE(device->enableSync(false));
    EXPECT_NE(freshColor().edgeTimestampUs % 50'000, freshDepth(1).edgeTimestampUs % 50'000);
}
