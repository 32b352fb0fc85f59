#include "sim/ColorTofFixture.h"

#include "device/TofOptics.h"

#include <gmock/gmock.h>
#include <limits>

using namespace sim;

using TofTest = ColorTofTest;

namespace {

/// What the scene has along the rays of a grid of pixels: z in the camera's frame.
template <class Visit>
void forSomePixels(const SharedWorld &world, const qv::Calibration &calibration, double t, const Visit &visit)
{
    const PolynomialModel lens(calibration.pdcm.at(0));
    const Pose pose = world.trajectory().pose(t) * poseOf(calibration);
    for (int y = 3; y < lens.size().height; y += 7) {
        for (int x = 3; x < lens.size().width; x += 7) {
            const Eigen::Vector3d ray = lens.unproject({x, y});
            const auto hit = world.scene()->cast(pose.translation(), pose.linear() * ray, t);
            if (hit)
                visit(x, y, hit->distance * ray.z());
        }
    }
}

TofSource::Frames expose(RenderedTof &source, double t, TofSource::Wanted wanted = {})
{
    TofSource::Frames frames;
    EXPECT_TRUE(source.expose(t, wanted, frames));
    frames.depth = frames.depth.clone();
    return frames;
}

double largest(const cv::Mat &depth)
{
    double value = 0;
    cv::minMaxLoc(depth, nullptr, &value);
    return value;
}

cv::Mat truth(const RenderedTof &source, double t)
{
    const auto world = SharedWorld::get(1);
    const qv::Calibration calibration = source.calibration().at(0);
    cv::Mat depth;
    Renderer(world->scene(), std::make_shared<PolynomialModel>(calibration.pdcm.at(0)))
        .depth(world->trajectory().pose(t) * poseOf(calibration), t, depth);
    return depth;
}

/// Mean distance of the readings from the truth, where it is even: away from edges and creases.
double noiseOf(const cv::Mat &depth, const cv::Mat &truth)
{
    cv::Mat smooth;
    cv::blur(truth, smooth, {3, 3}, {-1, -1}, cv::BORDER_REPLICATE);
    const cv::Mat even = (cv::abs(smooth - truth) < 0.0002F) & (depth > 0);
    EXPECT_GT(cv::countNonZero(even), 1000);
    return cv::mean(cv::abs(depth - truth), even)[0];
}

/// A time at which the room's far corners are in sight of the ToF camera.
double farSight(RenderedTof &probe)
{
    for (double t = 1; t < 200; t += 1.5) {
        if (cv::countNonZero(expose(probe, t).depth > 5.1F) > 40)
            return t;
    }
    ADD_FAILURE() << "nothing is far";
    return 0;
}

} // namespace

TEST_F(TofTest, aHeadsetReadsMetresFromTheSecondFamily)
{
    config.streams.clear();
    make();
    EXPECT_EQ(tof->manufacturer(), 1);
    ASSERT_TRUE(tof->start());
    const qv::DepthImage image = freshDepth(1);
    EXPECT_EQ(image.width, 640U);
    EXPECT_EQ(image.height, 480U);
    EXPECT_EQ(image.dataSize, 640U * 480 * 4);
    EXPECT_GT(image.confidence, 0.5);
    EXPECT_LE(image.confidence, 1);
}

TEST_F(TofTest, aModuleReadsMillimetresFromTheFirstFamily)
{
    config.streams.clear();
    make(Profile::Module);
    EXPECT_EQ(tof->manufacturer(), 0);
    ASSERT_TRUE(tof->start());
    const qv::DepthImage image = freshDepth(0);
    EXPECT_EQ(image.width, 640U);
    EXPECT_EQ(image.dataSize, 640U * 480 * 2);
    ASSERT_TRUE(depths->waitForMore(4));
    const auto all = depths->all();
    EXPECT_NEAR(static_cast<double>(all[2].edgeTimestampUs - all[1].edgeTimestampUs), 1e6 / 15, 2);
}

TEST_F(TofTest, theConfigurationChoosesTheKindOfDepth)
{
    config.streams["tof"].codec = "millimetres";
    make();
    tof->start();
    const cv::Mat millimetres = matOf(freshDepth(0));
    EXPECT_GT(cv::mean(millimetres)[0], 500);
    config.streams["tof"].codec = "metres";
    make(Profile::Module);
    tof->start();
    EXPECT_LT(largest(matOf(freshDepth(1))), 10);
}

TEST_F(TofTest, depthIsThatOfTheWorldToACentimetre)
{
    const auto world = SharedWorld::get(1);
    for (const bool secondFamily : {false, true}) {
        RenderedTof source(world, tofSetupFor({320, 240}, secondFamily), nullptr);
        const double t = 12.5;
        const cv::Mat depth = expose(source, t).depth;
        int read = 0;
        int right = 0;
        forSomePixels(*world, source.calibration().at(0), t, [&](int x, int y, double z) {
            const float reading = depth.at<float>(y, x);
            read += reading > 0;
            right += reading > 0 && std::abs(reading - z) < 0.01;
        });
        EXPECT_GT(read, 800);
        EXPECT_GT(right, read * 99 / 100) << "but for pixels right at an edge";
    }
}

TEST_F(TofTest, depthAndInfraredOfOneExposureFollowEachOther)
{
    make();
    ASSERT_TRUE(tof->start());
    ASSERT_TRUE(depths->waitForMore(12));
    const auto all = depths->all();
    for (std::size_t i = 0; i + 1 < all.size(); i += 2) {
        EXPECT_EQ(all[i].type, 1);
        EXPECT_EQ(all[i + 1].type, 2);
        EXPECT_EQ(all[i].edgeTimestampUs, all[i + 1].edgeTimestampUs);
        EXPECT_EQ(all[i + 1].dataSize, 160U * 120 * 2);
    }
}

TEST_F(TofTest, theFirstFamilyTakesInfraredWhenToldTo)
{
    make(Profile::Module);
    tof->start();
    ASSERT_TRUE(depths->waitForMore(6));
    for (const qv::DepthImage &image : depths->all())
        EXPECT_EQ(image.type, 0);
    EXPECT_TRUE(tof->enableIr(true));
    freshDepth(2);
    EXPECT_TRUE(tof->enableIr(false));
    const auto now = Clock::microseconds(Clock::now());
    ASSERT_TRUE(depths->waitForMore(6));
    for (const qv::DepthImage &image : depths->all())
        EXPECT_TRUE(image.type == 0 || image.edgeTimestampUs <= now + 50'000);
}

TEST_F(TofTest, streamModesChooseThePictures)
{
    make();
    EXPECT_TRUE(tof->setStreamMode(1));
    tof->start();
    ASSERT_TRUE(depths->waitForMore(4));
    for (const qv::DepthImage &image : depths->all())
        EXPECT_EQ(image.type, 1);
    tof->stop();
    depths->clear();
    EXPECT_TRUE(tof->setStreamMode(2));
    tof->start();
    ASSERT_TRUE(depths->waitForMore(4));
    for (const qv::DepthImage &image : depths->all())
        EXPECT_EQ(image.type, 2);
    EXPECT_TRUE(tof->setStreamMode(0));
    freshDepth(1);
    EXPECT_FALSE(tof->setStreamMode(3));
    EXPECT_FALSE(tof->setStreamMode(-1));
}

TEST_F(TofTest, distanceModesOfTheFirstFamilyCutTheRange)
{
    RenderedTof source(SharedWorld::get(1), tofSetupFor({160, 120}, false), nullptr);
    ASSERT_TRUE(source.setDistanceMode(2));
    const double t = farSight(source);
    const cv::Mat wide = expose(source, t).depth;
    ASSERT_TRUE(source.setDistanceMode(1));
    const cv::Mat middle = expose(source, t).depth;
    ASSERT_TRUE(source.setDistanceMode(0));
    const cv::Mat close = expose(source, t).depth;
    EXPECT_GT(largest(wide), 5);
    EXPECT_NEAR(largest(middle), 4, 0.05);
    EXPECT_LT(largest(close), 2.01);
    EXPECT_GT(cv::countNonZero(wide), cv::countNonZero(middle));
    EXPECT_GT(cv::countNonZero(middle), cv::countNonZero(close));
    EXPECT_FALSE(source.setDistanceMode(3));
    EXPECT_FALSE(source.setDistanceMode(-1));
}

TEST_F(TofTest, theSecondFamilyHasNoDistanceModes)
{
    make();
    EXPECT_FALSE(tof->setDistanceMode(1));
    make(Profile::Module);
    EXPECT_TRUE(tof->setDistanceMode(1));
}

TEST_F(TofTest, twoFrequenciesReachFartherAndAreQuieter)
{
    RenderedTof source(SharedWorld::get(1), tofSetupFor({160, 120}), nullptr);
    ASSERT_TRUE(source.setWorkMode(0));
    const double t = farSight(source);
    const cv::Mat two = expose(source, t).depth;
    ASSERT_TRUE(source.setWorkMode(1));
    const cv::Mat one = expose(source, t).depth;
    EXPECT_GT(largest(two), 5.1);
    EXPECT_LT(largest(one), 5.02);
    EXPECT_GT(noiseOf(one, truth(source, t)), noiseOf(two, truth(source, t)) * 1.5);
}

TEST_F(TofTest, labelsLeaveOutEdgesAndMixingSmearsThem)
{
    RenderedTof source(SharedWorld::get(1), tofSetupFor({160, 120}), nullptr);
    const double t = 12.5;
    source.setWorkMode(0);
    const cv::Mat plain = expose(source, t).depth;
    source.setWorkMode(2);
    const cv::Mat labelled = expose(source, t).depth;
    source.setWorkMode(4);
    const cv::Mat mixed = expose(source, t).depth;
    EXPECT_GT(cv::countNonZero(plain), cv::countNonZero(labelled) + 300);
    EXPECT_EQ(cv::countNonZero((labelled > 0) & (plain == 0)), 0);
    EXPECT_LT(noiseOf(mixed, truth(source, t)), noiseOf(plain, truth(source, t)) * 0.8);
    // Between a near and a far pixel there is one that is neither.
    cv::Mat low;
    cv::Mat high;
    cv::erode(plain, low, {});
    cv::dilate(plain, high, {});
    const cv::Mat edges = high > low + 0.5F;
    const cv::Mat between = (mixed > low + 0.1F) & (mixed < high - 0.1F) & edges;
    const cv::Mat betweenPlain = (plain > low + 0.1F) & (plain < high - 0.1F) & edges;
    EXPECT_GT(cv::countNonZero(between), cv::countNonZero(betweenPlain) * 2);
}

TEST_F(TofTest, workModesOfTheLibraryHoldForBothFamilies)
{
    for (const Profile profile : {Profile::Headset, Profile::Module}) {
        make(profile);
        const int type = profile == Profile::Headset ? 1 : 0;
        tof->start();
        const double whole = freshDepth(type).confidence;
        EXPECT_TRUE(tof->setLibWorkMode(3));
        EXPECT_LT(freshDepth(type).confidence, whole) << "edges are left out";
        EXPECT_FALSE(tof->setLibWorkMode(6));
        EXPECT_FALSE(tof->setLibWorkMode(-1));
    }
}

TEST_F(TofTest, settingsOfTheSecondFamily)
{
    make();
    tof->start();
    EXPECT_EQ(freshDepth(1).width, 160U);
    EXPECT_TRUE(tof->setSonyTofSetting(1, 1, 2));
    ASSERT_TRUE(waitFor([&] { return depths->last().width == 80; }));
    EXPECT_EQ(tof->calibration().at(0).pdcm.at(0).w, 80);
    depths->clear();
    ASSERT_TRUE(depths->waitForMore(6));
    const auto all = depths->all();
    EXPECT_NEAR(static_cast<double>(all[3].edgeTimestampUs - all[1].edgeTimestampUs), 1e6 / 15, 2);
    EXPECT_TRUE(tof->setSonyTofSetting(0, 0, 5));
    ASSERT_TRUE(waitFor([&] { return depths->last().width == 160; }));
    for (const auto &[mode, resolution, rate] : {std::tuple(-1, 0, 0), std::tuple(6, 0, 0),
             std::tuple(0, 2, 0), std::tuple(0, -1, 0), std::tuple(0, 0, 6), std::tuple(0, 0, -1)})
        EXPECT_FALSE(tof->setSonyTofSetting(mode, resolution, rate));
    make(Profile::Module);
    EXPECT_FALSE(tof->setSonyTofSetting(1, 0, 5)) << "that is another sensor";
}

TEST_F(TofTest, everyRateOfTheSecondFamily)
{
    make();
    ASSERT_TRUE(tof->setStreamMode(1));
    tof->start();
    for (int index = 0; index < 6; ++index) {
        ASSERT_TRUE(tof->setSonyTofSetting(1, 1, index));
        const double period = 1e6 / (5 * (index + 1));
        EXPECT_TRUE(waitFor([&] {
            const auto all = depths->all();
            if (all.size() < 2)
                return false;
            const auto distance = all.back().edgeTimestampUs - all[all.size() - 2].edgeTimestampUs;
            return std::abs(static_cast<double>(distance) - period) < 3;
        })) << index;
    }
}

TEST_F(TofTest, rateFollowsTheSetting)
{
    make(Profile::Module);
    EXPECT_TRUE(tof->setFramerate(10));
    tof->start();
    ASSERT_TRUE(depths->waitForMore(3));
    const auto all = depths->all();
    EXPECT_NEAR(static_cast<double>(all[1].edgeTimestampUs - all[0].edgeTimestampUs), 100'000, 2);
    EXPECT_FALSE(tof->setFramerate(0));
    EXPECT_FALSE(tof->setFramerate(std::numeric_limits<float>::infinity()));
}

TEST_F(TofTest, gammaLiftsTheInfraredPicture)
{
    make();
    tof->start();
    EXPECT_TRUE(tof->setTofIrGamma(1));
    const double plain = cv::mean(matOf(freshDepth(2)))[0];
    EXPECT_TRUE(tof->setTofIrGamma(2.8));
    const cv::Mat lifted = matOf(freshDepth(2)).clone();
    EXPECT_GT(cv::mean(lifted)[0], plain * 1.3);
    EXPECT_LE(largest(lifted), 255);
    EXPECT_TRUE(tof->setTofIrGamma(0));
    EXPECT_LT(cv::mean(matOf(freshDepth(2)))[0], plain);
    EXPECT_TRUE(tof->setTofIrGamma(10));
    EXPECT_FALSE(tof->setTofIrGamma(10.5));
    EXPECT_FALSE(tof->setTofIrGamma(-0.1));
    EXPECT_FALSE(tof->setTofIrGamma(std::numeric_limits<double>::quiet_NaN()));
}

TEST(TofOptics, infraredGoesByTheSquareOfTheDistance)
{
    const cv::Mat white(1, 4, CV_8UC1, cv::Scalar(255));
    const cv::Mat depth = (cv::Mat_<float>(1, 4) << 1, 2, 4, 0);
    cv::Mat out;
    TofOptics::infrared(white, depth, 1, 1, out);
    EXPECT_EQ(out.at<std::uint16_t>(0), 255);
    EXPECT_NEAR(out.at<std::uint16_t>(1), 64, 1);
    EXPECT_NEAR(out.at<std::uint16_t>(2), 16, 1);
    EXPECT_EQ(out.at<std::uint16_t>(3), 0);
    TofOptics::infrared(white, depth, 1, 2, out);
    EXPECT_NEAR(out.at<std::uint16_t>(1), 128, 1) << "the root of a quarter";
}

TEST(TofOptics, noReadingIsFartherOffThanItsNoiseAllows)
{
    const TofMode mode = TofMode::ofSecondFamily(1);
    cv::Mat depth(120, 160, CV_32FC1, cv::Scalar(2));
    TofOptics(5).measure(depth, mode, 1, 99);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(depth, mean, deviation);
    EXPECT_NEAR(mean[0], 2, 0.0002);
    EXPECT_NEAR(deviation[0], mode.noise, mode.noise * 0.05) << "that is what it is at two metres";
    EXPECT_LT(cv::norm(depth, cv::Mat(120, 160, CV_32FC1, cv::Scalar(2)), cv::NORM_INF), 3.01 * mode.noise);
}

TEST_F(TofTest, lessLightIsDarkerAndNoisier)
{
    RenderedTof source(SharedWorld::get(1), tofSetupFor({160, 120}), nullptr);
    const auto normal = expose(source, 12.5, {true, false});
    ASSERT_TRUE(source.setExposure(false, 1, 4));
    const auto dim = expose(source, 12.5, {true, false});
    EXPECT_LT(cv::mean(dim.infrared)[0], cv::mean(normal.infrared)[0] * 0.6);
    EXPECT_GT(noiseOf(dim.depth, truth(source, 12.5)), noiseOf(normal.depth, truth(source, 12.5)) * 2);
    EXPECT_FALSE(source.setExposure(false, 0, 4));
}

TEST_F(TofTest, sameSeedAndTimeGiveTheSameBytes)
{
    RenderedTof::Setup setup = tofSetupFor({160, 120});
    RenderedTof one(SharedWorld::get(1), setup, std::make_shared<Exposure>());
    RenderedTof two(SharedWorld::get(1), setup, std::make_shared<Exposure>());
    setup.seed = 2;
    RenderedTof other(SharedWorld::get(1), setup, nullptr);
    expose(one, 3);
    const auto a = expose(one, 12.5, {true, true});
    const auto b = expose(two, 12.5, {true, true});
    EXPECT_EQ(cv::norm(a.depth, b.depth, cv::NORM_INF), 0);
    EXPECT_EQ(cv::norm(a.infrared, b.infrared, cv::NORM_INF), 0);
    EXPECT_EQ(cv::norm(a.color, b.color, cv::NORM_INF), 0);
    EXPECT_GT(cv::norm(a.depth, expose(other, 12.5).depth, cv::NORM_INF), 0);
}
