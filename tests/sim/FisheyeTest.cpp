#include "device/FisheyeCalibration.h"
#include "device/RenderedFisheye.h"
#include "sim/FisheyeFixture.h"
#include "world/CameraModels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

using namespace sim;

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
    const auto now = Clock::microseconds(Clock::now());
    Tap<qv::Imu, qv::ImuSensor> witness(device->imuSensor());
    device->imuSensor()->start();
    ASSERT_TRUE(witness.waitForMore(200));
    EXPECT_TRUE(tap->noneDueAfter(now));
    ex()->setUvcMode(1);
    EXPECT_TRUE(tap->waitForMore(2));
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
