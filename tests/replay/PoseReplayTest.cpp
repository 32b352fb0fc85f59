#include "core/Clock.h"
#include "device/DeviceFactory.h"
#include "replay/PoseTrack.h"

#include "replay/Player.h"
#include "replay/RecordingFolder.h"
#include "sim/Records.h"
#include "sim/Stderr.h"

#include <Eigen/Geometry>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

using namespace sim;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

using PoseTap = Tap<qv::Pose, qv::Slam>;

struct Sample {
    Eigen::Vector3d position;
    Eigen::Quaterniond rotation;
};

/// The same file read another way: time in microseconds to pose.
std::map<std::int64_t, Sample> readPoses(const std::string &file, bool seconds, bool scalarFirst)
{
    std::map<std::int64_t, Sample> poses;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        std::replace(line.begin(), line.end(), ',', ' ');
        std::stringstream words(line);
        std::string time;
        double n[7] = {};
        words >> time;
        for (double &number : n)
            words >> number;
        const std::int64_t us = seconds ? static_cast<std::int64_t>(std::llround(std::stold(time) * 1e6L))
                                        : std::stoll(time) / 1000;
        const Eigen::Quaterniond q = scalarFirst ? Eigen::Quaterniond(n[3], n[4], n[5], n[6])
                                                 : Eigen::Quaterniond(n[6], n[3], n[4], n[5]);
        poses.emplace(us, Sample{{n[0], n[1], n[2]}, q.normalized()});
    }
    return poses;
}

Eigen::Matrix3d rotationOf(const qv::Pose &pose)
{
    return Eigen::Map<const Eigen::Matrix<double, 3, 3, Eigen::RowMajor>>(pose.rotation.data());
}

Eigen::Vector3d positionOf(const qv::Pose &pose)
{
    return {pose.translation.x, pose.translation.y, pose.translation.z};
}

/// Whatever the frame of the stream is: distances, and turns about the camera's own axes, are those of the
/// file. Answers how many poses were looked at.
int comparePoses(const std::vector<qv::Pose> &played, const std::map<std::int64_t, Sample> &recorded,
    const Eigen::Isometry3d &bodyFromCamera)
{
    const auto recordedPose = [&](const qv::Pose &pose) -> std::optional<Eigen::Isometry3d> {
        auto found = recorded.lower_bound(pose.edgeTimestampUs - 1);
        if (found == recorded.end() || found->first > pose.edgeTimestampUs + 1)
            return std::nullopt; // of a later loop
        Eigen::Isometry3d out = Eigen::Isometry3d::Identity();
        out.linear() = found->second.rotation.toRotationMatrix();
        out.translation() = found->second.position;
        return out * bodyFromCamera;
    };
    const auto first = recordedPose(played.front());
    EXPECT_TRUE(first.has_value());
    int compared = 0;
    for (const qv::Pose &pose : played) {
        const auto truth = recordedPose(pose);
        if (!first || !truth)
            continue;
        const Eigen::Isometry3d moved = first->inverse() * *truth;
        const Eigen::Matrix3d before = rotationOf(played.front());
        const Eigen::Vector3d step = before.transpose() * (positionOf(pose) - positionOf(played.front()));
        EXPECT_LT((step - moved.translation()).norm(), 1e-5);
        EXPECT_LT((before.transpose() * rotationOf(pose) - moved.linear()).norm(), 1e-4);
        ++compared;
    }
    return compared;
}

/// One row a tenth of the pictures' period: moves along x, turns about y.
std::string table(int count, int perPeriod = 1)
{
    std::string text = "#timestamp, p_x, p_y, p_z, q_w, q_x, q_y, q_z, v, v, v\n";
    for (int i = 0; i < count; ++i) {
        const double angle = 0.05 * i;
        std::ostringstream row;
        row << RecordingFolder::firstTime + i * RecordingFolder::period / perPeriod << ',' << 0.01 * i
            << ",2,3," << std::cos(angle / 2) << ",0," << std::sin(angle / 2) << ",0,9,9,9\n";
        text += row.str();
    }
    return text;
}

} // namespace

TEST(PoseTrack, readsBothLayouts)
{
    RecordingFolder euroc;
    RecordingFolder::write(euroc.root() / "state_groundtruth_estimate0" / "data.csv",
        "\xef\xbb\xbf#time,x,y,z,w,x,y,z\r\n1500000000000000000,1,2,3,0.5,0.5,-0.5,0.5,7,7\r\n");
    RecordingFolder tum;
    RecordingFolder::write(std::filesystem::path(tum.path()) / "groundtruth.txt",
        "# ground truth\n1500000000.000001 1 2 3 0.5 -0.5 0.5 0.5\n");
    const auto first = readPoseTrack(euroc.path());
    const auto second = readPoseTrack(tum.path());
    ASSERT_EQ(first.size(), 1U);
    ASSERT_EQ(second.size(), 1U);
    EXPECT_EQ(first[0].time, 1500000000000000000);
    EXPECT_EQ(second[0].time, 1500000000000001000);
    EXPECT_EQ(first[0].worldFromBody.translation(), Eigen::Vector3d(1, 2, 3));
    // (0.5, 0.5, -0.5, 0.5), scalar first, worked out by hand.
    Eigen::Matrix3d expected;
    expected << 0, -1, 0, 0, 0, -1, 1, 0, 0;
    EXPECT_LT((first[0].worldFromBody.linear() - expected).norm(), 1e-12) << first[0].worldFromBody.linear();
    EXPECT_LT((second[0].worldFromBody.matrix() - first[0].worldFromBody.matrix()).norm(), 1e-12);
}

TEST(PoseTrack, readsTheTrackersOwnPlaceOutOfIt)
{
    RecordingFolder folder;
    RecordingFolder::write(folder.root() / "mocap0" / "data.csv", "1500000000000000000,1,2,3,1,0,0,0\n");
    RecordingFolder::write(folder.root() / "mocap0" / "sensor.yaml",
        "T_BS:\n  cols: 4\n  rows: 4\n  data: [1,0,0,0.25, 0,1,0,0, 0,0,1,-1, 0,0,0,1]\n");
    const auto track = readPoseTrack(folder.path());
    ASSERT_EQ(track.size(), 1U);
    EXPECT_LT((track[0].worldFromBody.translation() - Eigen::Vector3d(0.75, 2, 4)).norm(), 1e-12);
}

TEST(PoseTrack, leavesOutWhatIsNoPoseAndPutsTheRestInOrder)
{
    RecordingFolder folder;
    RecordingFolder::write(std::filesystem::path(folder.path()) / "groundtruth.txt",
        "2.0 0 0 2 0 0 0 1\n1.0 0 0 1 0 0 0 1\n1.0 9 9 9 0 0 0 1\n3.0 0 0 3 0 0 0 0\n4.0 0 0\n"
        "5.0 nan 0 3 0 0 0 1\nno pose at all here but eight words\n6.0 0 0 6 0 0 0 1.001\n");
    Stderr errors;
    const auto track = readPoseTrack(folder.path());
    std::vector<double> z;
    for (const PoseRow &row : track)
        z.push_back(row.worldFromBody.translation().z());
    EXPECT_THAT(z, ElementsAre(1, 2, 6));
    ASSERT_EQ(errors.lines().size(), 1U);
    EXPECT_THAT(errors.lines()[0], HasSubstr("4 rows can't be read"));
    EXPECT_THAT(errors.lines()[0], HasSubstr("line 4"));
    EXPECT_THAT(errors.lines()[0], HasSubstr("1 row left out"));
}

TEST(PoseTrack, turnsTheWorldUpright)
{
    // A camera that looks level along the world's x, in a world with z up.
    PoseRow row;
    row.worldFromBody.linear().col(0) = -Eigen::Vector3d::UnitY();
    row.worldFromBody.linear().col(1) = -Eigen::Vector3d::UnitZ();
    row.worldFromBody.linear().col(2) = Eigen::Vector3d::UnitX();
    row.worldFromBody.translation() << 1, 2, 5;
    std::vector<PoseRow> track{row};
    turnUpright(track);
    EXPECT_LT((track[0].worldFromBody.linear().col(1) - Eigen::Vector3d::UnitY()).norm(), 1e-12);
    EXPECT_NEAR(track[0].worldFromBody.translation().y(), -5, 1e-12) << "five up";
    EXPECT_NEAR(track[0].worldFromBody.linear().determinant(), 1, 1e-12);
    track[0] = PoseRow();
    turnUpright(track);
    EXPECT_LT((track[0].worldFromBody.matrix() - Eigen::Matrix4d::Identity()).norm(), 1e-12);
}

TEST(PoseReplay, playsInStepWithThePictures)
{
    RecordingFolder folder;
    folder.addCamera(0, 10);
    RecordingFolder::write(folder.root() / "state_groundtruth_estimate0" / "data.csv", table(50, 5));
    const auto device = play(folder.path());
    ASSERT_NE(device->slam(), nullptr);
    EXPECT_EQ(device->info().at("edge6dofAvailable"), "false");
    PoseTap tap(device->slam());
    Tap<qv::FisheyeImages, qv::FisheyeCameras> images(device->fisheyeCameras());
    ASSERT_TRUE(device->slam()->start());
    ASSERT_TRUE(tap.waitForMore(120));
    ASSERT_TRUE(images.waitForMore(3)) << "its pictures come along";
    device->slam()->stop();
    const auto all = tap.all();
    for (std::size_t i = 1; i < all.size(); ++i) {
        const auto distance = all[i].edgeTimestampUs - all[i - 1].edgeTimestampUs;
        EXPECT_GT(distance, 0) << "also from loop to loop";
        EXPECT_EQ(distance % 4000, 0);
    }
    const qv::FisheyeImages image = images.last();
    const double apart =
        std::abs(static_cast<double>(image.edgeTimestampUs - all.back().edgeTimestampUs)) * 1e-6;
    EXPECT_LT(apart, std::abs(image.hostTimestamp - all.back().hostTimestamp) + 1);
}

TEST(PoseReplay, aTrajectoryStandsAlone)
{
    RecordingFolder folder;
    const std::filesystem::path file = std::filesystem::path(folder.path()) / "groundtruth.txt";
    std::string text = "# time x y z qx qy qz qw\n";
    for (int i = 0; i < 60; ++i)
        text += "7." + std::to_string(100 + i) + " 0 0 " + std::to_string(i) + " 0 0 0 1\n";
    RecordingFolder::write(file, text);
    for (const std::string &path : {folder.path(), file.string()}) {
        const auto device = play(path);
        ASSERT_NE(device, nullptr);
        EXPECT_EQ(device->fisheyeCameras(), nullptr);
        EXPECT_EQ(device->imuSensor(), nullptr);
        PoseTap tap(device->slam());
        device->slam()->start();
        ASSERT_TRUE(tap.waitForMore(100));
        const auto all = tap.all();
        const std::int64_t first = all.front().edgeTimestampUs;
        for (const qv::Pose &pose : all) {
            const auto row = [](std::int64_t us) {
                return static_cast<double>((us - 7'100'000) / 1000 % 60);
            };
            EXPECT_NEAR(pose.translation.z, row(pose.edgeTimestampUs) - row(first), 1e-9);
        }
    }
}

TEST(PoseReplay, isLostInAGap)
{
    RecordingFolder folder;
    std::string text;
    for (int i = 0; i < 40; ++i) // 0.4 s, a gap of 1.2 s, 0.2 s
        text += std::to_string(100 + 0.02 * i + (i >= 20 ? 1.2 : 0)) + " 0 0 0 0 0 0 1\n";
    RecordingFolder::write(std::filesystem::path(folder.path()) / "groundtruth.txt", text);
    const auto device = play(folder.path());
    std::atomic<int> losses{0};
    device->slam()->registerLostCallback([&] { ++losses; });
    PoseTap tap(device->slam());
    device->slam()->start();
    EXPECT_TRUE(waitFor([&] { return losses > 1; })) << "once in each loop";
    EXPECT_GT(tap.count(), 10U);
}

TEST(PoseReplay, hasNoMapToSaveOrLoad)
{
    RecordingFolder folder;
    RecordingFolder::write(folder.root() / "state_groundtruth_estimate0" / "data.csv", table(50));
    const auto device = play(folder.path());
    ASSERT_TRUE(device->slam()->start());
    std::stringbuf buffer;
    std::atomic<int> ends{0};
    EXPECT_FALSE(device->slam()->saveMapAndSwitchToCslam(
        buffer, [&](int, int) { ++ends; }, nullptr));
    EXPECT_FALSE(device->slam()->loadMapAndSwitchToCslam(
        buffer, [&](int) { ++ends; }, nullptr));
    EXPECT_EQ(ends, 1) << "that of the save";
    EXPECT_TRUE(device->slam()->reset());
    EXPECT_TRUE(device->slam()->clearTofPlanes());
}

TEST(PoseReplay, recordingsWithoutATrajectoryHaveNoPoses)
{
    RecordingFolder folder;
    folder.addCamera(0, 3);
    EXPECT_EQ(play(folder.path())->slam(), nullptr);
}

TEST(PoseReplay, aRecordedTrajectoryIsPlayedAsItIsInTheFile)
{
    const std::string folder = shared("asl/euroc_v1_01_easy");
    if (!std::filesystem::exists(folder))
        GTEST_SKIP() << "needs the shared recordings";
    const auto device = play(folder);
    PoseTap tap(device->slam());
    device->slam()->start();
    ASSERT_TRUE(tap.waitForMore(40));
    // The first camera's place on the body, from its sensor.yaml.
    Eigen::Isometry3d camera = Eigen::Isometry3d::Identity();
    camera.matrix() << 0.0148655429818, -0.999880929698, 0.00414029679422, -0.0216401454975, 0.999557249008,
        0.0149672133247, 0.025715529948, -0.064676986768, -0.0257744366974, 0.00375618835797, 0.999660727178,
        0.00981073058949, 0, 0, 0, 1;
    const auto recorded = readPoses(folder + "/mav0/state_groundtruth_estimate0/data.csv", false, true);
    EXPECT_EQ(recorded.size(), 50U);
    EXPECT_GT(comparePoses(tap.all(), recorded, camera), 5);
    for (const qv::Pose &pose : tap.all())
        EXPECT_GT(rotationOf(pose)(1, 1), 0.8) << "the camera is held upright";
}

TEST(PoseReplay, aTrajectoryFromAHandHeldCameraIsPlayedAsItIsInTheFile)
{
    const std::string file = shared("trajectories/tum_fr1_xyz_gt.txt");
    if (!std::filesystem::exists(file))
        GTEST_SKIP() << "needs the shared recordings";
    const auto device = play(file);
    PoseTap tap(device->slam());
    device->slam()->start();
    ASSERT_TRUE(tap.waitForMore(200));
    const auto recorded = readPoses(file, true, false);
    EXPECT_EQ(recorded.size(), 3000U);
    EXPECT_GT(comparePoses(tap.all(), recorded, Eigen::Isometry3d::Identity()), 150);
}

TEST(PoseReplay, colourAndDepthRecordingsHaveTheirPosesToo)
{
    const std::string folder = shared("rgbd/7scenes_redkitchen");
    if (!std::filesystem::exists(folder))
        GTEST_SKIP() << "needs the shared recordings";
    const auto device = play(folder);
    ASSERT_NE(device->tofCamera(), nullptr);
    ASSERT_NE(device->slam(), nullptr);
    PoseTap tap(device->slam());
    device->slam()->start();
    ASSERT_TRUE(tap.waitForMore(25));
    const auto recorded = readPoses(folder + "/groundtruth.txt", true, false);
    EXPECT_GT(comparePoses(tap.all(), recorded, Eigen::Isometry3d::Identity()), 4);
}
