#include "sim/SlamFixture.h"

#include "device/TrajectoryPoses.h"
#include "device/qv/FisheyeCameras.h"

#include <cmath>
#include <sstream>

using namespace sim;

namespace {

/// The largest distance and the largest angle of poses from those of the trajectory.
struct Error {
    double distance = 0;
    double angle = 0;
};

Error largestError(const std::vector<qv::Pose> &poses, const Trajectory &trajectory)
{
    Error error;
    const Pose frame = frameAt(trajectory, seconds(poses.front()));
    for (const qv::Pose &pose : poses) {
        const Pose truth = frame.inverse() * trajectory.pose(seconds(pose));
        error.distance = std::max(error.distance, (eigen(pose.translation) - truth.translation()).norm());
        const Eigen::AngleAxisd turn(Eigen::Matrix3d(truth.linear().transpose() * rotationOf(pose)));
        error.angle = std::max(error.angle, std::abs(turn.angle()));
    }
    return error;
}

std::vector<qv::Pose> some(const std::shared_ptr<qv::Slam> &slam, std::size_t count)
{
    PoseTap tap(slam);
    EXPECT_TRUE(slam->start());
    EXPECT_TRUE(tap.waitForMore(count));
    slam->stop();
    return tap.all();
}

/// Both map operations are refused; whoever waits for the end of a save is told.
void expectNoMaps(qv::Slam &slam)
{
    const auto ended = std::make_shared<std::atomic<int>>(0);
    std::stringbuf map("no map");
    EXPECT_FALSE(slam.loadMapAndSwitchToCslam(
        map, [ended](int) { *ended += 100; }, [](float) {}));
    EXPECT_FALSE(slam.saveMapAndSwitchToCslam(
        map, [ended](int, int quality) { *ended += quality == 0 ? 1 : 100; }, [](float) {}));
    EXPECT_TRUE(waitFor([&ended] { return *ended > 0; }));
    EXPECT_EQ(*ended, 1);
    EXPECT_EQ(map.str(), "no map");
}

} // namespace

TEST(SimSlam, profilesHaveTheirPoses)
{
    for (const Profile profile : {Profile::Headset, Profile::Module, Profile::Quad}) {
        const auto device = makeDevice(slamConfig(profile));
        EXPECT_NE(device->slam(), nullptr);
        EXPECT_NE(edgeOf(device), nullptr);
        EXPECT_NE(device->slam(), edgeOf(device));
        EXPECT_EQ(device->slam(), device->slam());
        EXPECT_EQ(edgeOf(device), edgeOf(device));
        EXPECT_EQ(device->info().at("edge6dofAvailable"), "true");
    }
    const auto plain = makeDevice(slamConfig(Profile::Plain));
    EXPECT_NE(plain->slam(), nullptr);
    EXPECT_EQ(edgeOf(plain), nullptr);
    EXPECT_EQ(plain->info().at("edge6dofAvailable"), "false");
    const auto imuOnly = makeDevice(slamConfig(Profile::ImuOnly));
    EXPECT_EQ(imuOnly->slam(), nullptr);
    EXPECT_EQ(edgeOf(imuOnly), nullptr);
    EXPECT_EQ(imuOnly->info().at("edge6dofAvailable"), "false");
}

TEST(SimSlam, posesFollowTheTrajectory)
{
    DeviceConfig config = slamConfig(Profile::Module);
    config.seed = 3;
    const auto device = makeDevice(config);
    const Trajectory trajectory(3);
    const Error host = largestError(some(device->slam(), 400), trajectory);
    const Error edge = largestError(some(edgeOf(device), 1000), trajectory);
    // The bounds of the drift, and six deviations of the noise.
    EXPECT_LT(host.distance, 0.02);
    EXPECT_LT(host.angle, 0.005);
    EXPECT_LT(edge.distance, 0.05);
    EXPECT_LT(edge.angle, 0.012);
    EXPECT_GT(host.distance, 0.0001) << "it has noise";
    EXPECT_GT(edge.distance, host.distance) << "the rougher one";
}

TEST(SimSlam, driftGrowsToItsBoundAndAMapHoldsItDown)
{
    const auto world = SharedWorld::get(2);
    for (const auto &setup : {TrajectoryPoses::Setup::host(2), TrajectoryPoses::Setup::edge(2)}) {
        TrajectoryPoses poses(world, setup);
        double drift = 0;
        double corrected = 0;
        for (double since = 0; since < 600; since += 0.5) {
            PoseSource::Request request;
            request.due = 100 + since;
            request.since = since;
            const Eigen::Vector3d truth = world->trajectory().pose(request.due).translation();
            drift = std::max(drift, (poses.estimate(request)->worldFromBody.translation() - truth).norm());
            request.corrected = true;
            corrected =
                std::max(corrected, (poses.estimate(request)->worldFromBody.translation() - truth).norm());
        }
        EXPECT_GT(drift, setup.drift * 0.5);
        EXPECT_LT(drift, setup.drift * 2 + setup.noise * 8);
        EXPECT_LT(corrected, drift * 0.5);
    }
}

TEST(SimSlam, sameSeedAndTimeGiveTheSamePose)
{
    const auto world = SharedWorld::get(4);
    TrajectoryPoses one(world, TrajectoryPoses::Setup::host(4));
    TrajectoryPoses two(world, TrajectoryPoses::Setup::host(4));
    TrajectoryPoses edge(world, TrajectoryPoses::Setup::edge(4));
    PoseSource::Request request;
    request.due = 40.125;
    request.since = 30;
    EXPECT_EQ(one.estimate(request)->worldFromBody.matrix(), two.estimate(request)->worldFromBody.matrix());
    EXPECT_NE(one.estimate(request)->worldFromBody.matrix(), edge.estimate(request)->worldFromBody.matrix());
}

TEST(SimSlam, theFirstPoseIsTheOrigin)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    const qv::Pose first = some(device->slam(), 1).front();
    EXPECT_LT(eigen(first.translation).norm(), 1e-9);
    // It looks along +z, but for its tilt: no part of it to the side, and down is down.
    const Eigen::Vector3d ahead = rotationOf(first).col(2);
    EXPECT_NEAR(ahead.x(), 0, 1e-9);
    EXPECT_GT(ahead.z(), 0.9);
    const Eigen::Matrix3d tilt = Trajectory(1).pose(seconds(first)).linear();
    EXPECT_NEAR(rotationOf(first)(1, 1), tilt(1, 1), 1e-5) << "y is the world's";
    EXPECT_NEAR(ahead.y(), tilt(1, 2), 1e-5);
}

TEST(SimSlam, quaternionAndMatrixSayTheSame)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    for (const qv::Pose &pose : some(device->slam(), 50)) {
        const Eigen::Quaterniond q(pose.qw, pose.qx, pose.qy, pose.qz);
        EXPECT_NEAR(q.norm(), 1, 1e-9);
        EXPECT_GE(pose.qw, 0);
        EXPECT_LT((q.toRotationMatrix() - rotationOf(pose)).norm(), 1e-9);
        EXPECT_NEAR(rotationOf(pose).determinant(), 1, 1e-9);
    }
}

TEST(SimSlam, ratesAreThoseOfHostAndEdgeOrOfTheDescription)
{
    DeviceConfig own = slamConfig(Profile::Module);
    own.streams["slam"].rate = 1000;
    own.streams["edge"].rate = 800;
    const auto usual = makeDevice(slamConfig(Profile::Module));
    const auto asked = makeDevice(own);
    const std::pair<std::shared_ptr<qv::Slam>, int> cases[] = {
        {usual->slam(), 5000}, {edgeOf(usual), 2000}, {asked->slam(), 1000}, {edgeOf(asked), 1250}};
    for (const auto &[slam, periodUs] : cases) {
        const auto all = some(slam, 60);
        for (std::size_t i = 1; i < all.size(); ++i) {
            const auto distance = all[i].edgeTimestampUs - all[i - 1].edgeTimestampUs;
            EXPECT_GT(distance, 0);
            EXPECT_LE(std::abs(distance - (distance + periodUs / 2) / periodUs * periodUs), 1) << distance;
        }
        EXPECT_LE(all.back().hostTimestamp, Clock::now());
    }
}

TEST(SimSlam, overrateIsThrottledOnRequest)
{
    DeviceConfig own = slamConfig(Profile::Module);
    own.streams["slam"].rate = 1000;
    const auto device = makeDevice(own);
    const auto slam = device->slam();
    EXPECT_FALSE(slam->handleOverrate()) << "it isn't running";
    PoseTap tap(slam);
    slam->start();
    ASSERT_TRUE(tap.waitForMore(5));
    EXPECT_TRUE(slam->handleOverrate());
    tap.clear();
    ASSERT_TRUE(tap.waitForMore(30));
    const auto all = tap.all();
    for (std::size_t i = all.size() - 10; i < all.size(); ++i)
        EXPECT_GE(all[i].edgeTimestampUs - all[i - 1].edgeTimestampUs, 1999);
    EXPECT_FALSE(slam->handleOverrate()) << "nothing more to do";
}

TEST(SimSlam, onlyWhatThrottlesIsInTheDevicesLog)
{
    DeviceConfig own = slamConfig(Profile::Module);
    own.streams["slam"].rate = 1000;
    const auto device = makeDevice(own);
    const auto slam = device->slam();
    ASSERT_TRUE(slam->start());
    for (int pose = 0; pose < 500; ++pose)
        slam->handleOverrate();
    const std::string log = device->state().log().take(8192) + '\n';
    EXPECT_THAT(log, ::testing::HasSubstr("power on")) << "it was pushed out";
    const std::size_t line = log.find("slam: handleOverrate\n");
    ASSERT_NE(line, std::string::npos);
    EXPECT_EQ(log.find("handleOverrate", line + 10), std::string::npos) << "once is enough";
}

TEST(SimSlam, overrateStaysIfHandlingIsRefused)
{
    DeviceConfig own = slamConfig(Profile::Module);
    own.streams["slam"].rate = 1000;
    own.faults.refuse = {"slam.handleOverrate"};
    const auto device = makeDevice(own);
    PoseTap tap(device->slam());
    device->slam()->start();
    ASSERT_TRUE(tap.waitForMore(5));
    EXPECT_FALSE(device->slam()->handleOverrate());
    tap.clear();
    ASSERT_TRUE(tap.waitForMore(40));
    const auto all = tap.all();
    std::int64_t shortest = 1'000'000;
    for (std::size_t i = 1; i < all.size(); ++i)
        shortest = std::min(shortest, all[i].edgeTimestampUs - all[i - 1].edgeTimestampUs);
    EXPECT_LE(shortest, 1001);
}

TEST(SimSlam, confidenceFallsOnFastTurns)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    const Trajectory trajectory(1);
    PoseTap tap(device->slam());
    device->slam()->start();
    const auto settled = [&] {
        const auto all = tap.all();
        return !all.empty() && all.back().hostTimestamp > all.front().hostTimestamp + 4;
    };
    ASSERT_TRUE(waitFor(settled));
    device->slam()->stop();
    const auto all = tap.all();
    std::vector<std::pair<double, double>> pairs; // turn rate, confidence
    for (const qv::Pose &pose : all) {
        EXPECT_GE(pose.confidence, 0);
        EXPECT_LE(pose.confidence, 1);
        if (pose.hostTimestamp > all.front().hostTimestamp + 1.5)
            pairs.emplace_back(trajectory.angularVelocity(seconds(pose)).norm(), pose.confidence);
    }
    std::sort(pairs.begin(), pairs.end());
    for (std::size_t i = 1; i < pairs.size(); ++i)
        EXPECT_LE(pairs[i].second, pairs[i - 1].second + 1e-6) << pairs[i].first;
    EXPECT_LT(pairs.back().second, pairs.front().second);
}

TEST(SimSlam, theRoadHasTurnsThatTell)
{
    const auto world = SharedWorld::get(1);
    double fastest = 0;
    double fastestTime = 0;
    for (double t = 0; t < 600; t += 0.05) {
        const double rate = world->trajectory().angularVelocity(t).norm();
        if (rate > fastest) {
            fastest = rate;
            fastestTime = t;
        }
    }
    TrajectoryPoses poses(world, TrajectoryPoses::Setup::host(1));
    PoseSource::Request request;
    request.due = fastestTime;
    EXPECT_NEAR(poses.estimate(request)->turnRate, fastest, 1e-9);
    EXPECT_GT(fastest, 0.45);
}

TEST(SimSlam, predictionGoesAheadOnTheEdgeOnly)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    std::dynamic_pointer_cast<qv::DeviceEx>(device)->setEdgePrediction(40'000);
    const auto edge = edgeOf(device);
    const auto ahead = some(edge, 500);
    const auto now = some(device->slam(), 5);
    const Trajectory trajectory(1);
    const Pose frame = frameAt(trajectory, seconds(ahead.front()) - 0.04);
    double worst = 0;
    double unpredicted = 0;
    for (const qv::Pose &pose : ahead) {
        const double t = seconds(pose);
        const Pose truth = frame.inverse() * trajectory.pose(t);
        const Pose before = frame.inverse() * trajectory.pose(t - 0.04);
        worst = std::max(worst, (eigen(pose.translation) - truth.translation()).norm());
        unpredicted = std::max(unpredicted, (before.translation() - truth.translation()).norm());
    }
    EXPECT_LT(worst, 0.05);
    EXPECT_GT(unpredicted, 0);
    for (const qv::Pose &pose : now)
        EXPECT_LE(seconds(pose), pose.hostTimestamp) << "the host's poses are of now";
}

TEST(SimSlam, predictionErrsLessThanNone)
{
    const auto world = SharedWorld::get(1);
    TrajectoryPoses::Setup exact;
    exact.drift = exact.driftAngle = exact.noise = exact.noiseAngle = 0;
    TrajectoryPoses poses(world, exact);
    double predicted = 0;
    double stale = 0;
    for (double t = 20; t < 60; t += 0.37) {
        PoseSource::Request request;
        request.due = t;
        request.ahead = 0.05;
        const auto estimate = poses.estimate(request);
        const Pose truth = world->trajectory().pose(t + 0.05);
        EXPECT_EQ(estimate->edgeTimestampUs, Clock::microseconds(t + 0.05));
        predicted += (estimate->worldFromBody.matrix() - truth.matrix()).norm();
        stale += (world->trajectory().pose(t).matrix() - truth.matrix()).norm();
    }
    EXPECT_LT(predicted, 0.3 * stale);
}

TEST(SimSlam, lossIsToldOnceAndRecoveredFrom)
{
    DeviceConfig own = slamConfig(Profile::Module);
    own.faults.streams["slam"].loseAfter = 0.4;
    own.faults.streams["slam"].loseFor = 0.5;
    const auto device = makeDevice(own);
    const auto slam = device->slam();
    std::atomic<int> losses{0};
    const int id = slam->registerLostCallback([&] { ++losses; });
    PoseTap tap(slam);
    slam->start();
    const auto lost = [&] { return losses > 0; };
    ASSERT_TRUE(waitFor(lost));
    const std::int64_t before = tap.last().edgeTimestampUs;
    ASSERT_TRUE(waitFor([&] { return tap.last().edgeTimestampUs > before + 300'000; }));
    const auto all = tap.all();
    std::size_t gap = 1;
    while (gap < all.size() && all[gap].edgeTimestampUs - all[gap - 1].edgeTimestampUs < 300'000)
        ++gap;
    ASSERT_LT(gap, all.size()) << "no poses while it is lost";
    EXPECT_LT(all[gap].confidence, 0.5) << "not yet trusted";
    EXPECT_LT(largestError(all, Trajectory(1)).distance, 0.02) << "the same frame as before";
    EXPECT_EQ(losses, 1);
    slam->unregisterLostCallback(id);
}

TEST(SimSlam, withoutPicturesToTrackItIsLost)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    std::dynamic_pointer_cast<qv::DeviceEx>(device)->setImuMode(2);
    for (const auto &slam : {device->slam(), edgeOf(device)}) {
        std::atomic<int> losses{0};
        const int id = slam->registerLostCallback([&] { ++losses; });
        PoseTap tap(slam);
        EXPECT_TRUE(slam->start());
        EXPECT_TRUE(waitFor([&] { return losses == 1; }));
        EXPECT_EQ(tap.count(), 0U);
        slam->stop();
        slam->unregisterLostCallback(id);
    }
}

TEST(SimSlam, resetTakesANewOrigin)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    const auto slam = device->slam();
    EXPECT_FALSE(slam->reset()) << "it isn't running";
    PoseTap tap(slam);
    slam->start();
    ASSERT_TRUE(waitFor([&] { return tap.count() > 0 && eigen(tap.last().translation).norm() > 0.03; }));
    tap.clear();
    EXPECT_TRUE(slam->reset());
    const auto isNew = [&] {
        const auto all = tap.all();
        return std::any_of(all.begin(), all.end(),
            [](const qv::Pose &pose) { return eigen(pose.translation).norm() < 0.001; });
    };
    EXPECT_TRUE(waitFor(isNew));
    slam->stop();
}

TEST(SimSlam, aNewStartTakesANewOrigin)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    some(device->slam(), 300);
    EXPECT_LT(eigen(some(device->slam(), 1).front().translation).norm(), 1e-9);
}

TEST(SimSlam, pauseHoldsThePosesAndTheFrame)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    const auto slam = device->slam();
    EXPECT_FALSE(slam->pause());
    EXPECT_FALSE(slam->resume());
    PoseTap tap(slam);
    std::atomic<int> losses{0};
    slam->registerLostCallback([&] { ++losses; });
    slam->start();
    ASSERT_TRUE(tap.waitForMore(20));
    EXPECT_TRUE(slam->pause());
    const auto paused = Clock::microseconds(Clock::now());
    PoseTap witness(edgeOf(device));
    edgeOf(device)->start();
    ASSERT_TRUE(witness.waitForMore(100));
    EXPECT_TRUE(tap.noneDueAfter(paused));
    EXPECT_TRUE(slam->resume());
    ASSERT_TRUE(tap.waitForMore(20));
    EXPECT_EQ(losses, 0);
    EXPECT_LT(largestError(tap.all(), Trajectory(1)).distance, 0.02) << "the same frame as before";
    EXPECT_TRUE(slam->stop());
    EXPECT_FALSE(slam->pause());
}

TEST(SimSlam, operationsAreRefusedOnRequest)
{
    DeviceConfig own = slamConfig(Profile::Module);
    own.faults.refuse = {"slam.start", "edge.pause", "edge.reset", "edge.clearTofPlanes"};
    const auto device = makeDevice(own);
    EXPECT_FALSE(device->slam()->start());
    const auto edge = edgeOf(device);
    EXPECT_TRUE(edge->start());
    EXPECT_FALSE(edge->pause());
    EXPECT_FALSE(edge->reset());
    EXPECT_FALSE(edge->clearTofPlanes());
    EXPECT_TRUE(edge->clearStereoPlanes());
    EXPECT_TRUE(edge->stop());
    EXPECT_FALSE(edge->stop());
}

TEST(SimSlam, unreadablePosesComeOnRequest)
{
    DeviceConfig own = slamConfig(Profile::Module);
    own.faults.streams["slam"].unknownEvery = 3;
    const auto device = makeDevice(own);
    const auto all = some(device->slam(), 6);
    EXPECT_TRUE(std::isnan(all[2].translation.x));
    EXPECT_TRUE(std::isfinite(all[1].translation.x));
}

TEST(SimSlam, keepsTheStereoPicturesComing)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    const auto fisheye = device->fisheyeCameras();
    Tap<qv::FisheyeImages, qv::FisheyeCameras> tap(fisheye);
    device->slam()->start();
    ASSERT_TRUE(tap.waitForMore(3)) << "though the cameras have not been started";
    edgeOf(device)->start();
    device->slam()->stop();
    ASSERT_TRUE(tap.waitForMore(3)) << "the edge needs them too";
    EXPECT_FALSE(fisheye->stop()) << "nobody had started them";
    ASSERT_TRUE(tap.waitForMore(3));
    EXPECT_TRUE(fisheye->start());
    edgeOf(device)->stop();
    ASSERT_TRUE(tap.waitForMore(3)) << "now they are on by themselves";
    EXPECT_TRUE(fisheye->stop());
    const auto stopped = Clock::microseconds(Clock::now());
    EXPECT_TRUE(tap.noneDueAfter(stopped));
    EXPECT_FALSE(fisheye->stop());
}

TEST(SimSlam, theCamerasRestWhenItHasGone)
{
    const auto fisheye = [] {
        const auto device = makeDevice(slamConfig(Profile::Plain));
        device->slam()->start();
        return device->fisheyeCameras();
    }();
    Tap<qv::FisheyeImages, qv::FisheyeCameras> tap(fisheye);
    EXPECT_FALSE(fisheye->start()) << "its device has gone";
}

TEST(SimSlam, unregisteredItCallsNoMore)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    const auto slam = device->slam();
    slam->start();
    for (int round = 0; round < 40; ++round) {
        auto alive = std::make_shared<std::atomic<bool>>(true);
        std::atomic<int> wrong{0};
        const int id = slam->registerCallback([&wrong, alive](const qv::Pose &) {
            if (!*alive)
                ++wrong;
        });
        const int map = slam->registerMapCallback([&wrong, alive](const auto &) {
            if (!*alive)
                ++wrong;
        });
        std::this_thread::yield();
        slam->unregisterCallback(id);
        slam->unregisterMapCallback(map);
        *alive = false;
        EXPECT_EQ(wrong, 0);
    }
    for (const int none : {-1, 4711}) {
        slam->unregisterCallback(none);
        slam->unregisterLostCallback(none);
        slam->unregisterMapCallback(none);
        slam->unregisterStereoPlanesCallback(none);
        slam->unregisterTofPlanesCallback(none);
    }
}

TEST(SimSlam, unpluggedItFailsAndDoesNoHarm)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    const auto slam = device->slam();
    PoseTap tap(slam);
    slam->start();
    ASSERT_TRUE(tap.waitForMore(3));
    device->unplug();
    EXPECT_FALSE(slam->reset());
    EXPECT_FALSE(slam->pause());
    EXPECT_FALSE(slam->resume());
    EXPECT_FALSE(slam->clearStereoPlanes());
    EXPECT_FALSE(slam->clearTofPlanes());
    slam->handleOverrate();
    expectNoMaps(*slam);
    EXPECT_FALSE(slam->stop());
    EXPECT_FALSE(slam->start());
}

TEST(SimSlam, whatDoesNotRunFailsAndDoesNoHarm)
{
    const auto device = makeDevice(slamConfig(Profile::Module));
    const auto slam = device->slam();
    EXPECT_FALSE(slam->reset());
    EXPECT_FALSE(slam->pause());
    EXPECT_FALSE(slam->resume());
    EXPECT_FALSE(slam->clearStereoPlanes());
    EXPECT_FALSE(slam->clearTofPlanes());
    slam->handleOverrate();
    expectNoMaps(*slam);
    EXPECT_FALSE(slam->stop());
    EXPECT_TRUE(slam->start()) << "none of it has done harm";
    PoseTap tap(slam);
    EXPECT_TRUE(tap.waitForMore(1));
}
