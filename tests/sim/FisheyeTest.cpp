#include "core/Clock.h"
#include "device/DeviceFactory.h"
#include "device/FisheyeCalibration.h"
#include "device/RenderedFisheye.h"
#include "device/qv/DeviceEx.h"
#include "device/qv/FisheyeCamerasEx.h"
#include "sim/Records.h"
#include "world/CameraModels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

using namespace sim;

namespace {

using ImagesTap = Tap<qv::FisheyeImages, qv::FisheyeCameras>;

cv::Mat matOf(const qv::FisheyeImage &image)
{
    return {static_cast<int>(image.height), static_cast<int>(image.width), CV_8UC1,
        const_cast<unsigned char *>(image.data.get())};
}

double meanOf(const qv::FisheyeImages &record)
{
    return cv::mean(matOf(record.images.at(0)))[0];
}

/// One small, slow set of cameras: enough to see every effect and quick under a sanitizer.
struct FisheyeTest : ::testing::Test {
    DeviceConfig config;
    std::shared_ptr<SimDevice> device;
    std::shared_ptr<qv::FisheyeCamerasEx> cameras;
    std::unique_ptr<ImagesTap> tap;

    FisheyeTest()
    {
        config.uuid = "test";
        config.streams["fisheye"] = {20, 160, 100, ""};
    }
    ~FisheyeTest() override
    {
        if (cameras)
            cameras->stop();
    }

    void make(Profile profile = Profile::Headset)
    {
        config.profile = profile;
        device = makeDevice(config);
        cameras = std::dynamic_pointer_cast<qv::FisheyeCamerasEx>(device->fisheyeCameras());
        tap = std::make_unique<ImagesTap>(device->fisheyeCameras());
    }

    std::shared_ptr<qv::DeviceEx> ex() const
    {
        return std::dynamic_pointer_cast<qv::DeviceEx>(std::shared_ptr<qv::Device>(device));
    }

    /// A record that was begun after now.
    qv::FisheyeImages fresh()
    {
        const auto now = Clock::microseconds(Clock::now());
        EXPECT_TRUE(waitFor([&] { return tap->count() > 0 && tap->last().edgeTimestampUs > now; }));
        return tap->last();
    }
};

} // namespace

TEST_F(FisheyeTest, aHeadsetHasTwoPicturesOf640By400At50)
{
    config.streams.clear();
    make();
    const auto rate = std::make_shared<Records<std::int64_t>>();
    ASSERT_TRUE(cameras->start());
    const qv::FisheyeImages record = fresh();
    ASSERT_EQ(record.images.size(), 2U);
    for (const qv::FisheyeImage &image : record.images) {
        EXPECT_EQ(image.width, 640U);
        EXPECT_EQ(image.height, 400U);
        ASSERT_NE(image.data, nullptr);
    }
    ASSERT_TRUE(tap->waitForMore(5));
    const auto all = tap->all();
    for (std::size_t i = 1; i < all.size(); ++i)
        EXPECT_EQ((all[i].edgeTimestampUs - all[i - 1].edgeTimestampUs) % 20000, 0);
}

TEST_F(FisheyeTest, aQuadHasFourDifferentPictures)
{
    make(Profile::Quad);
    ASSERT_TRUE(cameras->start());
    const qv::FisheyeImages record = fresh();
    ASSERT_EQ(record.images.size(), 4U);
    for (std::size_t a = 0; a < 4; ++a) {
        for (std::size_t b = a + 1; b < 4; ++b)
            EXPECT_GT(
                cv::norm(matOf(record.images[a]), matOf(record.images[b]), cv::NORM_L1) / (160 * 100), 5);
    }
}

TEST_F(FisheyeTest, picturesShowTheWorldFromWhereTheCalibrationSays)
{
    config.streams["fisheye"] = {20, 320, 200, ""};
    make();
    ASSERT_TRUE(cameras->start());
    cameras->setExposure(1, 10, 5); // no blur, half the light, a known factor
    const qv::FisheyeImages record = fresh();
    const double t = static_cast<double>(record.edgeTimestampUs) * 1e-6;
    const Trajectory trajectory(1);
    const auto scene = std::make_shared<const Scene>(1);
    for (std::size_t camera = 0; camera < 2; ++camera) {
        const qv::CalibrationEx &calibration = cameras->calibrationsAtCurrentResolution()[camera];
        Pose bodyFromCamera = Pose::Identity();
        for (int i = 0; i < 3; ++i) {
            bodyFromCamera.translation()[i] = calibration.translation[i];
            for (int j = 0; j < 3; ++j)
                bodyFromCamera.linear()(i, j) = calibration.rotation[3 * i + j];
        }
        cv::Mat expected;
        Renderer(scene, std::make_shared<UnifiedModel>(calibration.ucm.at(0)))
            .grey(trajectory.pose(t) * bodyFromCamera, t, expected, 0.5);
        EXPECT_LT(cv::norm(matOf(record.images[camera]), expected, cv::NORM_L1) / (320 * 200), 2.5) << camera;
    }
}

TEST_F(FisheyeTest, sameSeedAndTimeGiveTheSameBytes)
{
    const auto world = SharedWorld::get(3);
    RenderedFisheye one(world, FisheyeRig::stereo(160, 100), 50, 3);
    RenderedFisheye two(SharedWorld::get(3), FisheyeRig::stereo(160, 100), 50, 3);
    RenderedFisheye other(SharedWorld::get(3), FisheyeRig::stereo(160, 100), 50, 4);
    qv::FisheyeImages first;
    qv::FisheyeImages again;
    qv::FisheyeImages third;
    qv::FisheyeImages warmUp;
    ASSERT_TRUE(one.pictures(0.5, warmUp));
    ASSERT_TRUE(one.pictures(2.34, first));
    ASSERT_TRUE(two.pictures(2.34, again));
    ASSERT_TRUE(other.pictures(2.34, third));
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(cv::norm(matOf(first.images[i]), matOf(again.images[i]), cv::NORM_INF), 0);
        EXPECT_GT(cv::norm(matOf(first.images[i]), matOf(third.images[i]), cv::NORM_INF), 0);
    }
}

TEST_F(FisheyeTest, aDeliveredPictureIsNeverWrittenAgain)
{
    make();
    ASSERT_TRUE(cameras->start());
    const qv::FisheyeImages held = fresh();
    const cv::Mat copy = matOf(held.images[0]).clone();
    ASSERT_TRUE(tap->waitForMore(12));
    EXPECT_EQ(cv::norm(copy, matOf(held.images[0]), cv::NORM_INF), 0);
}

TEST_F(FisheyeTest, rateFollowsTheSetting)
{
    make();
    EXPECT_TRUE(cameras->setFramerate(10));
    ASSERT_TRUE(cameras->start());
    ASSERT_TRUE(tap->waitForMore(4));
    const auto slow = tap->all();
    EXPECT_GE(slow[2].edgeTimestampUs - slow[1].edgeTimestampUs, 99'900);
    EXPECT_FALSE(cameras->setFramerate(0));
    EXPECT_FALSE(cameras->setFramerate(1000));
    EXPECT_FALSE(cameras->setFramerate(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_TRUE(cameras->setFramerate(40));
    EXPECT_TRUE(waitFor([&] {
        const auto all = tap->all();
        const auto distance = all.back().edgeTimestampUs - all[all.size() - 2].edgeTimestampUs;
        return distance % 25'000 == 0 && distance % 100'000 != 0;
    }));
}

TEST_F(FisheyeTest, automaticExposureKeepsTheMeanGreyNearItsAim)
{
    make();
    ASSERT_TRUE(cameras->start());
    EXPECT_NEAR(meanOf(fresh()), Exposure::aim, 25);
}

TEST_F(FisheyeTest, manualExposureScalesTheBrightness)
{
    make();
    ASSERT_TRUE(cameras->start());
    EXPECT_TRUE(cameras->setExposure(1, 10, 4));
    const double bright = meanOf(fresh());
    EXPECT_TRUE(cameras->setExposure(1, 10, 1));
    EXPECT_LT(meanOf(fresh()), bright / 2);
    EXPECT_TRUE(cameras->setExposure(1, 3, 4));
    EXPECT_LT(meanOf(fresh()), bright / 2);
    EXPECT_FALSE(cameras->setExposure(1, 0, 4));
    EXPECT_TRUE(cameras->setExposure(0, 1, 1));
    EXPECT_NEAR(meanOf(fresh()), Exposure::aim, 25);
}

TEST_F(FisheyeTest, highGainIsNoisier)
{
    RenderedFisheye source(SharedWorld::get(1), FisheyeRig::stereo(320, 200), 50, 1);
    const auto shot = [&](int gain, double ms) {
        qv::FisheyeImages record;
        source.setExposure(false, gain, ms);
        source.pictures(9.0, record);
        return matOf(record.images[0]).clone();
    };
    const cv::Mat quiet = shot(10, 8);
    const cv::Mat noisy = shot(80, 1);
    const auto roughness = [](const cv::Mat &picture) {
        cv::Mat median;
        cv::medianBlur(picture, median, 3);
        return cv::norm(picture, median, cv::NORM_L1) / static_cast<double>(picture.total());
    };
    EXPECT_GT(roughness(noisy), roughness(quiet) * 1.2) << "of the same brightness";
}

TEST_F(FisheyeTest, longExposureShowsWhatMovedTwice)
{
    const auto world = SharedWorld::get(1);
    const FisheyeRig rig = FisheyeRig::stereo(320, 200);
    RenderedFisheye source(world, rig, 50, 1);
    source.setExposure(false, 2, 50);
    qv::FisheyeImages record;
    source.pictures(9.0, record);
    Renderer renderer(world->scene(), std::make_shared<UnifiedModel>(rig.mounts[0].lens));
    const auto sharp = [&](double t) {
        cv::Mat picture;
        renderer.grey(world->trajectory().pose(t) * rig.mounts[0].bodyFromCamera, t, picture);
        return picture;
    };
    cv::Mat both;
    cv::addWeighted(sharp(9.0), 0.5, sharp(8.95), 0.5, 0, both);
    const cv::Mat shown = matOf(record.images[0]);
    EXPECT_LT(cv::norm(shown, both, cv::NORM_L1) / (320 * 200), 1.0);
    EXPECT_GT(cv::norm(shown, sharp(9.0), cv::NORM_L1), cv::norm(shown, both, cv::NORM_L1));
}

TEST_F(FisheyeTest, resolutionChangesPicturesAndCurrentCalibrations)
{
    make();
    ASSERT_TRUE(cameras->start());
    EXPECT_EQ(fresh().images[0].width, 160U);
    EXPECT_TRUE(cameras->setResolution(3));
    const qv::FisheyeImages record = fresh();
    EXPECT_EQ(record.images[0].width, 1280U);
    EXPECT_EQ(record.images[0].height, 720U);
    EXPECT_EQ(cameras->calibrationsAtCurrentResolution()[0].cameraModels[0]->width(), 1280);
    EXPECT_EQ(cameras->calibrationsAtCurrentResolution()[0].ucm[0].h, 720);
    EXPECT_EQ(cameras->calibrationsAtCalibrationResolution()[0].cameraModels[0]->width(), 160);
    EXPECT_FALSE(cameras->setResolution(1));
    EXPECT_FALSE(cameras->setResolution(4));
    EXPECT_TRUE(cameras->setResolution(2));
    EXPECT_EQ(fresh().images[0].width, 160U);
}

TEST_F(FisheyeTest, noStreamLetsNoPictureOut)
{
    make();
    ASSERT_TRUE(cameras->start());
    ASSERT_TRUE(tap->waitForMore(2));
    ex()->setUvcMode(0);
    Tap<qv::Imu, qv::ImuSensor> witness(device->imuSensor());
    device->imuSensor()->start();
    ASSERT_TRUE(witness.waitForMore(100)); // 200 ms, four frames
    const std::size_t count = tap->count();
    ASSERT_TRUE(witness.waitForMore(100));
    EXPECT_EQ(tap->count(), count);
    ex()->setUvcMode(1);
    EXPECT_TRUE(tap->waitForMore(2));
}

TEST_F(FisheyeTest, keyPointsOfAPairComeToThePairsCallback)
{
    config.streams["fisheye"] = {20, 640, 400, ""};
    make();
    Records<qv::FisheyeKeyPoints<2, 32>> pairs;
    std::atomic<int> quads{0};
    const int pairId = cameras->registerKeyPoints2Callback([&](const auto &record) { pairs.add(record); });
    const int quadId = cameras->registerKeyPoints4Callback([&](const auto &) { ++quads; });
    ASSERT_TRUE(cameras->start());
    ASSERT_TRUE(pairs.waitForMore(3));
    EXPECT_EQ(quads, 0);
    const auto record = pairs.last();
    for (const auto &descriptor : record.descriptors) {
        EXPECT_GT(descriptor.size, 20U);
        for (unsigned i = 0; i < descriptor.size; ++i) {
            EXPECT_GE(descriptor.data.get()[2 * i], -0.5F);
            EXPECT_LE(descriptor.data.get()[2 * i], 639.5F);
            EXPECT_GE(descriptor.data.get()[2 * i + 1], -0.5F);
            EXPECT_LE(descriptor.data.get()[2 * i + 1], 399.5F);
        }
    }
    cameras->unregisterKeyPoints2Callback(pairId);
    cameras->unregisterKeyPoints4Callback(quadId);
    cameras->unregisterKeyPoints2Callback(-1);
    cameras->unregisterKeyPoints4Callback(-1);
    const std::size_t count = pairs.count();
    ASSERT_TRUE(tap->waitForMore(3));
    EXPECT_EQ(pairs.count(), count);
}

TEST_F(FisheyeTest, keyPointsOfFourCamerasComeToTheirCallback)
{
    make(Profile::Quad);
    Records<qv::FisheyeKeyPoints<4, 32>> quads;
    std::atomic<int> pairs{0};
    const int quadId = cameras->registerKeyPoints4Callback([&](const auto &record) { quads.add(record); });
    const int pairId = cameras->registerKeyPoints2Callback([&](const auto &) { ++pairs; });
    ASSERT_TRUE(cameras->start());
    ASSERT_TRUE(quads.waitForMore(3));
    EXPECT_EQ(pairs, 0);
    for (const auto &descriptor : quads.last().descriptors)
        EXPECT_GT(descriptor.size, 0U);
    cameras->stop();
    cameras->unregisterKeyPoints4Callback(quadId);
    cameras->unregisterKeyPoints2Callback(pairId);
}

TEST_F(FisheyeTest, keyPointsComeOnAThreadOfTheirOwn)
{
    make();
    std::mutex mutex;
    std::set<std::thread::id> pictureThreads;
    std::set<std::thread::id> pointThreads;
    std::atomic<int> seen{0};
    const int images = cameras->registerCallback([&](const qv::FisheyeImages &) {
        const std::lock_guard lock(mutex);
        pictureThreads.insert(std::this_thread::get_id());
    });
    const int points = cameras->registerKeyPoints2Callback([&](const auto &) {
        const std::lock_guard lock(mutex);
        pointThreads.insert(std::this_thread::get_id());
        ++seen;
    });
    cameras->start();
    ASSERT_TRUE(waitFor([&] { return seen > 3; }));
    ASSERT_TRUE(tap->waitForMore(1));
    cameras->stop();
    cameras->unregisterCallback(images);
    cameras->unregisterKeyPoints2Callback(points);
    EXPECT_EQ(pictureThreads.size(), 1U);
    EXPECT_EQ(pointThreads.size(), 1U);
    EXPECT_NE(*pictureThreads.begin(), *pointThreads.begin());
}

TEST_F(FisheyeTest, uvcModesDecideOnKeyPoints)
{
    config.streams["fisheye"] = {20, 640, 400, ""};
    make();
    Records<qv::FisheyeKeyPoints<2, 32>> pairs;
    const int id = cameras->registerKeyPoints2Callback([&](const auto &record) { pairs.add(record); });
    cameras->start();
    const auto points = [&](int mode) {
        ex()->setUvcMode(mode);
        EXPECT_TRUE(pairs.waitForMore(2));
        return pairs.last().descriptors[0].size;
    };
    const unsigned demo = points(2);
    const unsigned debug = points(3);
    EXPECT_LE(demo, 100U);
    EXPECT_GT(debug, demo);
    EXPECT_LE(points(5), 100U);
    EXPECT_GT(points(4), 100U);
    ex()->setUvcMode(1);
    ASSERT_TRUE(tap->waitForMore(3));
    const std::size_t count = pairs.count();
    ASSERT_TRUE(tap->waitForMore(4));
    EXPECT_EQ(pairs.count(), count) << "pictures only";
    EXPECT_GT(points(2), 0U);
    ex()->setImuMode(2);
    ASSERT_TRUE(tap->waitForMore(3));
    const std::size_t untracked = pairs.count();
    ASSERT_TRUE(tap->waitForMore(4));
    EXPECT_EQ(pairs.count(), untracked) << "IMU only tracks nothing";
    cameras->stop();
    cameras->unregisterKeyPoints2Callback(id);
}

TEST_F(FisheyeTest, keyPointsAreTheWorldsFeaturesUnderTheLens)
{
    RenderedFisheye source(SharedWorld::get(1), FisheyeRig::stereo(640, 400), 50, 1);
    const double t = 3.5;
    const auto points = source.keyPoints(t, 50);
    ASSERT_EQ(points.size(), 2U);
    const auto world = SharedWorld::get(1);
    const FisheyeRig rig = FisheyeRig::stereo(640, 400);
    for (std::size_t camera = 0; camera < 2; ++camera) {
        ASSERT_GT(points[camera].size(), 20U);
        const UnifiedModel lens(rig.mounts[camera].lens);
        const Pose cameraFromWorld =
            (world->trajectory().pose(t) * rig.mounts[camera].bodyFromCamera).inverse();
        for (std::size_t i = 0; i < points[camera].size(); i += 2) {
            double nearest = 1e9;
            for (const Feature &feature : world->features().all()) {
                if (const auto pixel = lens.project(cameraFromWorld * feature.position))
                    nearest = std::min(
                        nearest, (*pixel - Eigen::Vector2d(points[camera][i], points[camera][i + 1])).norm());
            }
            EXPECT_LT(nearest, 0.01);
        }
    }
}

TEST_F(FisheyeTest, calibrationsHaveAllModelsOfBothKinds)
{
    make();
    ASSERT_EQ(cameras->calibration().size(), 2U);
    for (const qv::Calibration &record : cameras->calibration()) {
        ASSERT_EQ(record.ucm.size(), 1U);
        ASSERT_EQ(record.pdcm.size(), 1U);
        EXPECT_EQ(record.ucm[0].w, 160);
        ASSERT_EQ(record.cameraModels.size(), 1U);
        EXPECT_EQ(record.cameraModels[0]->height(), 100);
    }
    EXPECT_EQ(cameras->calibrationsAtCalibrationResolution()[0].seucm.size(), 1U);
    const double baseline =
        cameras->calibration()[1].translation[0] - cameras->calibration()[0].translation[0];
    EXPECT_NEAR(baseline, 0.08, 1e-9);
}

TEST_F(FisheyeTest, plainCamerasHaveNoExtension)
{
    make(Profile::Plain);
    EXPECT_EQ(cameras, nullptr);
    ASSERT_TRUE(device->fisheyeCameras()->start());
    EXPECT_EQ(fresh().images.size(), 2U);
    EXPECT_TRUE(device->fisheyeCameras()->stop());
}

TEST_F(FisheyeTest, faultsDamageEveryNthRecord)
{
    make();
    const auto first = [&](auto member, auto test) {
        Faults faults;
        faults.streams["fisheye"].*member = 2;
        device->state().setFaults(faults);
        tap->clear();
        EXPECT_TRUE(waitFor([&] {
            const auto all = tap->all();
            return std::any_of(all.begin(), all.end(), test);
        }));
    };
    ASSERT_TRUE(cameras->start());
    first(&StreamFaults::nullEvery,
        [](const qv::FisheyeImages &r) { return !r.images.empty() && !r.images[0].data; });
    first(&StreamFaults::zeroEvery,
        [](const qv::FisheyeImages &r) { return !r.images.empty() && r.images[0].width == 0; });
    first(&StreamFaults::emptyEvery, [](const qv::FisheyeImages &r) { return r.images.empty(); });
    first(&StreamFaults::shortEvery,
        [](const qv::FisheyeImages &r) { return !r.images.empty() && r.images[0].height == 50; });
    first(&StreamFaults::resizeEvery,
        [](const qv::FisheyeImages &r) { return !r.images.empty() && r.images[0].width == 81; });
    first(&StreamFaults::unknownEvery, [](const qv::FisheyeImages &r) { return r.images.size() == 5; });
}

TEST_F(FisheyeTest, droppedRecordsLeaveGaps)
{
    config.faults.streams["fisheye"].dropEvery = 2;
    make();
    cameras->start();
    ASSERT_TRUE(tap->waitForMore(4));
    const auto all = tap->all();
    EXPECT_GE(all[1].edgeTimestampUs - all[0].edgeTimestampUs, 99'900) << "every second of 20 a second";
}

TEST_F(FisheyeTest, lateRecordsAreOldWhenTheyCome)
{
    config.faults.streams["fisheye"].lateEvery = 1;
    config.faults.streams["fisheye"].lateMs = 40;
    make();
    cameras->start();
    const qv::FisheyeImages record = fresh();
    EXPECT_GE(record.hostTimestamp - static_cast<double>(record.edgeTimestampUs) * 1e-6, 0.039);
}

TEST_F(FisheyeTest, aStalledStreamRunsButIsSilent)
{
    config.faults.streams["fisheye"].stallAfter = 0;
    make();
    ASSERT_TRUE(cameras->start());
    Tap<qv::Imu, qv::ImuSensor> witness(device->imuSensor());
    device->imuSensor()->start();
    ASSERT_TRUE(witness.waitForMore(150));
    EXPECT_EQ(tap->count(), 0U);
    device->state().setFaults({});
    EXPECT_TRUE(tap->waitForMore(2));
    EXPECT_TRUE(cameras->stop()) << "it ran all the time";
}

TEST_F(FisheyeTest, refusedSettingsChangeNothing)
{
    config.faults.refuse = {"setResolution", "fisheye.setFramerate", "setExposure"};
    make();
    EXPECT_FALSE(cameras->setResolution(3));
    EXPECT_FALSE(cameras->setFramerate(10));
    EXPECT_FALSE(cameras->setExposure(1, 10, 10));
    EXPECT_EQ(cameras->calibrationsAtCurrentResolution()[0].ucm[0].w, 160);
}

TEST_F(FisheyeTest, aCallbackThatThrowsStopsNoStream)
{
    make();
    const int id = cameras->registerCallback(
        [](const qv::FisheyeImages &) { throw std::runtime_error("invalid vector<T> subscript"); });
    cameras->start();
    EXPECT_TRUE(tap->waitForMore(3));
    cameras->unregisterCallback(id);
}

TEST_F(FisheyeTest, syncPutsPicturesAndReadingsOnOneGrid)
{
    make();
    device->enableSync(true);
    cameras->start();
    EXPECT_EQ(fresh().edgeTimestampUs % 50'000, 0);
    device->enableSync(false);
    EXPECT_TRUE(waitFor([&] { return tap->last().edgeTimestampUs % 50'000 != 0; }));
}

TEST_F(FisheyeTest, startAndStopInQuickSuccessionAreHarmless)
{
    make();
    for (int i = 0; i < 30; ++i) {
        EXPECT_TRUE(cameras->start());
        if (i % 10 == 0) {
            EXPECT_TRUE(tap->waitForMore(1));
        }
        EXPECT_TRUE(cameras->stop());
        EXPECT_FALSE(cameras->stop());
    }
}

TEST(FisheyeCalibration, theEnhancedModelIsTheSameLens)
{
    const qv::UnifiedCameraModel lens = FisheyeRig::stereo(640, 400).mounts[0].lens;
    const qv::EnhancedUnifiedCameraModel same = enhanced(lens);
    const UnifiedModel unified(lens);
    for (const Eigen::Vector3d &p : {Eigen::Vector3d(0.3, -0.2, 1), Eigen::Vector3d(1.5, 1, 0.5)}) {
        const double d = std::sqrt(same.beta * (p.x() * p.x() + p.y() * p.y()) + p.z() * p.z());
        const double denominator = same.alpha * d + (1 - same.alpha) * p.z();
        const auto pixel = unified.project(p);
        ASSERT_TRUE(pixel);
        EXPECT_NEAR(same.fx * p.x() / denominator + same.u0, pixel->x(), 1e-9);
        EXPECT_NEAR(same.fy * p.y() / denominator + same.v0, pixel->y(), 1e-9);
    }
}

TEST(FisheyeCalibration, thePolynomialIsNearWithinItsAngle)
{
    const qv::UnifiedCameraModel lens = FisheyeRig::stereo(640, 400).mounts[0].lens;
    const PolynomialModel polynomial(nearestPolynomial(lens));
    const UnifiedModel unified(lens);
    for (double angle = 0.05; angle < 0.85; angle += 0.05) {
        const Eigen::Vector3d p(std::sin(angle), 0, std::cos(angle));
        ASSERT_TRUE(polynomial.project(p)) << angle;
        EXPECT_NEAR(polynomial.project(p)->x(), unified.project(p)->x(), 1.0) << angle;
    }
}
