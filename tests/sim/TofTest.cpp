#include "sim/ColorTofFixture.h"

#include "device/DepthPacking.h"
#include "device/DepthRays.h"
#include "device/PointCloud.h"
#include "device/TofOptics.h"

#include <cstring>
#include <gmock/gmock.h>
#include <limits>
#include <thread>

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

TEST_F(TofTest, aCloudLiesWhereThePixelsAre)
{
    for (const Profile profile : {Profile::Headset, Profile::Module}) {
        make(profile);
        tof->start();
        const qv::DepthImage image = freshDepth(profile == Profile::Headset ? 1 : 0);
        const auto cloud = tof->depthImageToPointCloud(image);
        ASSERT_NE(cloud, nullptr);
        const cv::Mat depth = matOf(image);
        ASSERT_EQ(cloud->points.size(), static_cast<std::size_t>(cv::countNonZero(depth)));
        const PolynomialModel lens(tof->calibration().at(0).pdcm.at(0));
        std::size_t next = 0;
        for (int y = 0; y < depth.rows; ++y) {
            for (int x = 0; x < depth.cols; ++x) {
                const double z = profile == Profile::Headset ? depth.at<float>(y, x)
                                                             : depth.at<std::int16_t>(y, x) / 1000.0;
                if (z == 0)
                    continue;
                const auto &[px, py, pz] = cloud->points[next++];
                ASSERT_NEAR(pz, z, 1e-6);
                const auto pixel = lens.project({px, py, pz});
                ASSERT_TRUE(pixel);
                ASSERT_NEAR(pixel->x(), x, 0.01);
                ASSERT_NEAR(pixel->y(), y, 0.01);
            }
        }
    }
}

TEST_F(TofTest, thereIsNoCloudOfWhatIsNoDepthPicture)
{
    make();
    const std::shared_ptr<unsigned char> data(
        new unsigned char[4 * 3 * 4](), std::default_delete<unsigned char[]>());
    qv::DepthImage image;
    image.type = 1;
    image.width = 4;
    image.height = 3;
    image.data = data;
    image.dataSize = 48;
    ASSERT_NE(tof->depthImageToPointCloud(image), nullptr);
    EXPECT_TRUE(tof->depthImageToPointCloud(image)->points.empty()) << "zero is no reading";
    const auto none = [&](auto change) {
        qv::DepthImage changed = image;
        change(changed);
        return tof->depthImageToPointCloud(changed) == nullptr;
    };
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.type = 2; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.type = -1; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.type = 9; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.data = nullptr; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.dataSize = 47; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.width = 0; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.height = std::numeric_limits<std::size_t>::max() / 2; }));
    const float wild[] = {
        std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), -1, 2};
    std::memcpy(data.get(), wild, sizeof wild);
    ASSERT_EQ(tof->depthImageToPointCloud(image)->points.size(), 1U);
    EXPECT_EQ(tof->depthImageToPointCloud(image)->points[0][2], 2);
}

TEST_F(TofTest, alignedColoursComeWhileBothCamerasStream)
{
    make();
    Records<qv::DepthImage> seen; // as a counter with a lock
    const int id = tof->registerColorDepthImageCallback([&](const qv::DepthColorImage &) { seen.add({}); });
    EXPECT_GE(id, 0);
    tof->start();
    freshDepth(1);
    freshDepth(1);
    EXPECT_EQ(seen.count(), 0U) << "the colour camera is off";
    color->start();
    EXPECT_TRUE(seen.waitForMore(3));
    color->stop();
    freshDepth(1);
    const std::size_t before = seen.count();
    freshDepth(1);
    EXPECT_EQ(seen.count(), before);
    EXPECT_TRUE(tof->unregisterColorDepthImageCallback(id));
    EXPECT_FALSE(tof->unregisterColorDepthImageCallback(id));
    EXPECT_FALSE(tof->unregisterColorDepthImageCallback(-1));
    EXPECT_EQ(tof->registerColorDepthImageCallback(nullptr), -1);
}

TEST_F(TofTest, anAlignedPixelIsThreeColoursAndAFloat)
{
    make();
    struct Aligned {
        std::size_t width;
        std::size_t height;
        std::vector<unsigned char> bytes;
        std::int64_t edgeTimestampUs;
    };
    // Aligned colours follow the depth of the same exposure on the same thread.
    std::mutex mutex;
    qv::DepthImage depth;
    std::vector<std::pair<qv::DepthImage, qv::DepthColorImage>> pairs;
    const int depthId = tof->registerCallback([&](const qv::DepthImage &image) {
        const std::lock_guard lock(mutex);
        if (image.type == 1)
            depth = image;
    });
    const int id = tof->registerColorDepthImageCallback([&](const qv::DepthColorImage &image) {
        const std::lock_guard lock(mutex);
        pairs.emplace_back(depth, image);
    });
    color->start();
    tof->start();
    ASSERT_TRUE(waitFor([&] {
        const std::lock_guard lock(mutex);
        return pairs.size() > 2;
    }));
    tof->unregisterCallback(depthId);
    EXPECT_TRUE(tof->unregisterColorDepthImageCallback(id));
    const auto &[plain, aligned] = pairs.back();
    ASSERT_EQ(aligned.width, 160U);
    ASSERT_EQ(aligned.height, 120U);
    cv::Mat rgb(120, 160, CV_8UC3);
    for (std::size_t i = 0; i < 160 * 120; ++i) {
        float metres = 0;
        std::memcpy(&metres, aligned.data.get() + 7 * i + 3, 4);
        ASSERT_EQ(metres, reinterpret_cast<const float *>(plain.data.get())[i]);
        std::copy_n(aligned.data.get() + 7 * i, 3, rgb.data + 3 * i);
    }
    // Red comes first: the same view, rendered apart from the device.
    const double t = static_cast<double>(plain.edgeTimestampUs) * 1e-6;
    const qv::Calibration calibration = tof->calibration().at(0);
    const auto world = SharedWorld::get(1);
    cv::Mat expected;
    Renderer(world->scene(), std::make_shared<PolynomialModel>(calibration.pdcm.at(0)))
        .color(world->trajectory().pose(t) * poseOf(calibration), t, expected);
    const double factor = Exposure::aim / std::max(1.0, [&] {
        const cv::Scalar m = cv::mean(expected);
        return 0.299 * m[0] + 0.587 * m[1] + 0.114 * m[2];
    }());
    expected.convertTo(expected, -1, factor);
    EXPECT_LT(cv::norm(rgb, expected, cv::NORM_L1) / (160 * 120 * 3), 8);
    cv::Mat swapped;
    cv::cvtColor(rgb, swapped, cv::COLOR_RGB2BGR);
    EXPECT_LT(cv::norm(rgb, expected, cv::NORM_L1), cv::norm(swapped, expected, cv::NORM_L1));
}

TEST_F(TofTest, noAlignedCallbackRunsAfterItsEnd)
{
    make();
    std::atomic<bool> gone{false};
    std::atomic<bool> late{false};
    std::atomic<int> calls{0};
    const int id = tof->registerColorDepthImageCallback([&](const qv::DepthColorImage &) {
        ++calls;
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        late = late || gone;
    });
    color->start();
    tof->start();
    ASSERT_TRUE(waitFor([&] { return calls > 2; }));
    EXPECT_TRUE(tof->unregisterColorDepthImageCallback(id));
    gone = true;
    ASSERT_TRUE(depths->waitForMore(6));
    EXPECT_FALSE(late);
}

TEST(DepthPacking, millimetresAreRoundedAndBounded)
{
    const cv::Mat metres = (cv::Mat_<float>(1, 5) << 0, 1.2344F, 1.2346F, 32.767F, 40);
    cv::Mat millimetres;
    toMillimetres(metres, millimetres);
    EXPECT_EQ(millimetres.at<std::int16_t>(0), 0);
    EXPECT_EQ(millimetres.at<std::int16_t>(1), 1234);
    EXPECT_EQ(millimetres.at<std::int16_t>(2), 1235);
    EXPECT_EQ(millimetres.at<std::int16_t>(3), 32767);
    EXPECT_EQ(millimetres.at<std::int16_t>(4), 0);
    EXPECT_EQ(shareOfReadings(metres), 0.8);
    EXPECT_EQ(shareOfReadings({}), 0);
}
