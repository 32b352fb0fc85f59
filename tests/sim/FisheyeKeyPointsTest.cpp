#include "device/RenderedFisheye.h"
#include "sim/FisheyeFixture.h"
#include "world/CameraModels.h"

#include <set>

using namespace sim;

using FisheyeKeyPoints = FisheyeTest;

TEST_F(FisheyeKeyPoints, keyPointsOfAPairComeToThePairsCallback)
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

TEST_F(FisheyeKeyPoints, keyPointsOfFourCamerasComeToTheirCallback)
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

TEST_F(FisheyeKeyPoints, keyPointsComeOnAThreadOfTheirOwn)
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

TEST_F(FisheyeKeyPoints, uvcModesDecideOnKeyPoints)
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
    const auto ends = [&] {
        const auto now = Clock::microseconds(Clock::now());
        const std::size_t before = tap->count();
        return waitFor([&] { return tap->count() > before + 6; }) && pairs.noneDueAfter(now);
    };
    ex()->setUvcMode(1);
    EXPECT_TRUE(ends()) << "pictures only";
    EXPECT_GT(points(2), 0U);
    ex()->setImuMode(2);
    EXPECT_TRUE(ends()) << "IMU only tracks nothing";
    cameras->stop();
    cameras->unregisterKeyPoints2Callback(id);
}

TEST_F(FisheyeKeyPoints, keyPointsAreTheWorldsFeaturesUnderTheLens)
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
