#include "core/Clock.h"
#include "core/ConfigParser.h"
#include "device/DeviceFactory.h"
#include "device/DeviceRegistry.h"
#include "device/qv/FisheyeCamerasEx.h"

#include "replay/Player.h"
#include "replay/RecordingFolder.h"
#include "sim/Records.h"
#include "sim/Stderr.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

using namespace sim;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

using ImagesTap = Tap<qv::FisheyeImages, qv::FisheyeCameras>;
using ImuTap = Tap<qv::Imu, qv::ImuSensor>;

std::shared_ptr<qv::FisheyeCamerasEx> extended(const std::shared_ptr<SimDevice> &device)
{
    return std::dynamic_pointer_cast<qv::FisheyeCamerasEx>(device->fisheyeCameras());
}

/// Recorded time of a record, whatever the loop it was played in.
std::int64_t recordedUs(std::int64_t playedUs, std::int64_t firstUs, std::int64_t durationUs)
{
    return firstUs + (playedUs - firstUs) % durationUs;
}

std::set<int> greys(const ImagesTap &tap)
{
    std::set<int> result;
    for (const qv::FisheyeImages &record : tap.all())
        result.insert(record.images.at(0).data.get()[0]);
    return result;
}

} // namespace

TEST(ReplayDevice, playsEveryFrameInALoop)
{
    RecordingFolder folder;
    folder.addCamera(0, 4);
    folder.addCamera(1, 4);
    const auto device = play(folder.path());
    ImagesTap tap(device->fisheyeCameras());
    ASSERT_TRUE(device->fisheyeCameras()->start());
    ASSERT_TRUE(waitFor([&] { return greys(tap).size() == 4 && tap.count() > 12; }));
    device->fisheyeCameras()->stop();
    const std::int64_t first = RecordingFolder::firstTime / 1000;
    for (const qv::FisheyeImages &record : tap.all()) {
        ASSERT_EQ(record.images.size(), 2U);
        const auto index = (recordedUs(record.edgeTimestampUs, first, 80'000) - first) / 20'000;
        EXPECT_EQ(record.images[0].data.get()[0], RecordingFolder::grey(0, static_cast<int>(index)));
        EXPECT_EQ(record.images[1].data.get()[0], RecordingFolder::grey(1, static_cast<int>(index)));
    }
}

TEST(ReplayDevice, timesGoOnFromLoopToLoop)
{
    RecordingFolder folder;
    folder.addCamera(0, 3);
    const auto device = play(folder.path());
    ImagesTap tap(device->fisheyeCameras());
    device->fisheyeCameras()->start();
    ASSERT_TRUE(tap.waitForMore(10));
    const auto all = tap.all();
    for (std::size_t i = 1; i < all.size(); ++i) {
        const auto distance = all[i].edgeTimestampUs - all[i - 1].edgeTimestampUs;
        EXPECT_GT(distance, 0);
        EXPECT_EQ(distance % 20'000, 0);
    }
}

TEST(ReplayDevice, readingsAreInStepWithPictures)
{
    RecordingFolder folder;
    folder.addCamera(0, 10);
    folder.addImu(40);
    const auto device = play(folder.path());
    ImuTap imu(device->imuSensor());
    ImagesTap images(device->fisheyeCameras());
    device->imuSensor()->start();
    device->fisheyeCameras()->start();
    ASSERT_TRUE(imu.waitForMore(60));
    ASSERT_TRUE(images.waitForMore(3));
    const std::int64_t first = RecordingFolder::firstTime / 1000;
    for (const qv::Imu &reading : imu.all()) {
        const auto index = (recordedUs(reading.edgeTimestampUs, first, 200'000) - first) / 5'000;
        EXPECT_EQ(reading.gyro.z, static_cast<double>(index));
        EXPECT_EQ(reading.gyro.x, 0.1);
        EXPECT_EQ(reading.accel.y, -9.81);
    }
    // Both play the same part of the recording at one time: nothing of either is ahead of the clock.
    const double playedFor = imu.last().hostTimestamp - images.last().hostTimestamp;
    const double recordedFor =
        static_cast<double>(imu.last().edgeTimestampUs - images.last().edgeTimestampUs) * 1e-6;
    EXPECT_NEAR(playedFor, recordedFor, 1.0);
}

TEST(ReplayDevice, readingsOutsideThePicturesAreLeftOut)
{
    RecordingFolder folder;
    folder.addCamera(0, 2); // 40 ms
    folder.addImu(400); // 2 s
    const auto device = play(folder.path());
    ImuTap imu(device->imuSensor());
    device->imuSensor()->start();
    ASSERT_TRUE(imu.waitForMore(30));
    for (const qv::Imu &reading : imu.all())
        EXPECT_LT(reading.gyro.z, 8);
}

TEST(ReplayDevice, inertialReadingsAloneAreADevice)
{
    RecordingFolder folder;
    folder.addImu(20);
    const auto device = play(folder.path());
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->fisheyeCameras(), nullptr);
    ImuTap imu(device->imuSensor());
    device->imuSensor()->start();
    EXPECT_TRUE(imu.waitForMore(30));
}

TEST(ReplayDevice, sixteenBitPicturesPlay)
{
    RecordingFolder folder;
    folder.addCamera(0, 2);
    for (int i = 0; i < 2; ++i) {
        cv::Mat picture(20, 32, CV_16UC1, cv::Scalar(0x1234 + 0x1000 * i));
        cv::imwrite(folder.picture(0, RecordingFolder::time(i)).string(), picture);
    }
    const auto device = play(folder.path());
    ImagesTap tap(device->fisheyeCameras());
    device->fisheyeCameras()->start();
    EXPECT_TRUE(waitFor([&] { return greys(tap) == std::set<int>{0x12, 0x22}; }));
}

TEST(ReplayDevice, aMissingAndABrokenPictureAreOneMessageEachAndTheRestPlays)
{
    Stderr output;
    {
        RecordingFolder folder;
        folder.addCamera(0, 4);
        std::filesystem::remove(folder.picture(0, RecordingFolder::time(1)));
        RecordingFolder::write(folder.picture(0, RecordingFolder::time(2)), "no picture");
        const auto device = play(folder.path());
        ImagesTap tap(device->fisheyeCameras());
        device->fisheyeCameras()->start();
        ASSERT_TRUE(tap.waitForMore(10)) << "several loops";
        device->fisheyeCameras()->stop();
        EXPECT_EQ(greys(tap), (std::set<int>{RecordingFolder::grey(0, 0), RecordingFolder::grey(0, 3)}));
    }
    EXPECT_THAT(output.lines(),
        testing::UnorderedElementsAre(
            HasSubstr("is missing, its frame is left out"), HasSubstr("is broken, its frame is left out")));
}

TEST(ReplayDevice, aFolderWithOnlyMissingPicturesHarmsNobody)
{
    Stderr output;
    RecordingFolder folder;
    folder.addCamera(0, 2);
    std::filesystem::remove_all(folder.camera(0) / "data");
    const auto device = play(folder.path());
    ASSERT_NE(device, nullptr);
    EXPECT_TRUE(device->fisheyeCameras()->start());
    EXPECT_TRUE(waitFor([&] { return output.lines().size() == 2; }));
    EXPECT_TRUE(device->fisheyeCameras()->stop());
}

TEST(ReplayDevice, settingsOfARecordingAreRefused)
{
    RecordingFolder folder;
    folder.addCamera(0, 2);
    const auto cameras = extended(play(folder.path()));
    ASSERT_NE(cameras, nullptr);
    EXPECT_FALSE(cameras->setFramerate(20));
    EXPECT_FALSE(cameras->setExposure(1, 10, 10));
    EXPECT_FALSE(cameras->setResolution(3));
}

TEST(ReplayDevice, calibrationComesFromTheRecording)
{
    RecordingFolder folder;
    folder.addCamera(0, 2);
    folder.addCamera(1, 2);
    const auto device = play(folder.path());
    const auto cameras = extended(device);
    ASSERT_EQ(cameras->calibration().size(), 2U);
    EXPECT_EQ(cameras->calibration()[0].pdcm.at(0).fx, 25.5);
    EXPECT_EQ(cameras->calibrationsAtCurrentResolution()[1].cameraModels.at(0)->width(), 32);
    EXPECT_EQ(cameras->calibrationsAtCalibrationResolution().size(), 2U);
}

TEST(ReplayDevice, thePictureTellsItsSizeWhereTheCalibrationDoesNot)
{
    Stderr output;
    RecordingFolder folder;
    folder.addCamera(0, 2);
    std::filesystem::remove(folder.camera(0) / "sensor.yaml");
    const auto device = play(folder.path());
    EXPECT_EQ(extended(device)->calibrationsAtCurrentResolution()[0].cameraModels.at(0)->height(), 20);
}

TEST(ReplayDevice, isListedBesideOthersAndAnUnusableFolderIsNot)
{
    Stderr output;
    RecordingFolder folder;
    folder.addCamera(0, 2);
    RecordingFolder empty;
    DeviceRegistry registry(ConfigSource(parseShortForm("imu-only", folder.path() + ':' + empty.path())));
    EXPECT_EQ(registry.wait(0, nullptr).size(), 2U);
    EXPECT_THAT(output.lines(), ElementsAre(HasSubstr(empty.path())));
}

TEST(ReplayDevice, realStereoPlaysPixelForPixelAtItsRate)
{
    const std::string folder = shared("asl/euroc_v1_01_easy");
    if (!std::filesystem::exists(folder))
        GTEST_SKIP() << "the recorded data isn't here: " << folder;
    Stderr output;
    const auto device = play(folder);
    ASSERT_NE(device, nullptr);
    ImagesTap tap(device->fisheyeCameras());
    ImuTap imu(device->imuSensor());
    device->imuSensor()->start();
    device->fisheyeCameras()->start();
    std::set<std::int64_t> seen;
    const std::int64_t first = 1403715276512143;
    ASSERT_TRUE(waitFor(
        [&] {
            for (const qv::FisheyeImages &record : tap.all())
                seen.insert((record.edgeTimestampUs - first) % 1'500'000 / 50'000);
            return seen.size() == 30;
        },
        120000));
    device->fisheyeCameras()->stop();
    device->imuSensor()->stop();

    const auto all = tap.all();
    std::int64_t usual = 0;
    for (std::size_t i = 1; i < all.size(); ++i)
        usual += std::abs(all[i].edgeTimestampUs - all[i - 1].edgeTimestampUs - 50'000) < 2'000 ? 1 : 0;
    EXPECT_GT(usual, static_cast<std::int64_t>(all.size()) / 2);

    int compared = 0;
    for (const auto &entry : std::filesystem::directory_iterator(folder + "/mav0/cam0/data")) {
        const std::int64_t time = std::stoll(entry.path().stem().string()) / 1000;
        for (const qv::FisheyeImages &record : all) {
            if (std::abs(record.edgeTimestampUs - time) > 10)
                continue;
            for (int camera = 0; camera < 2; ++camera) {
                const cv::Mat expected = cv::imread(folder + "/mav0/cam" + std::to_string(camera) + "/data/"
                        + entry.path().filename().string(),
                    cv::IMREAD_UNCHANGED);
                const qv::FisheyeImage &image = record.images[static_cast<std::size_t>(camera)];
                ASSERT_EQ(image.width, 752U);
                ASSERT_EQ(std::memcmp(image.data.get(), expected.data, 752 * 480), 0);
            }
            ++compared;
        }
    }
    EXPECT_GT(compared, 0);
    EXPECT_GT(imu.count(), 0U);
    const auto cameras = extended(device);
    EXPECT_EQ(cameras->calibration().at(0).pdcm.at(0).fx, 458.654);
    EXPECT_EQ(cameras->calibration().at(1).pdcm.at(0).distor[1], 0.07451284);
    EXPECT_THAT(output.lines(), IsEmpty());
}

TEST(ReplayDevice, realFisheyePairPlays)
{
    const std::string folder = shared("asl/fisheye_mynteye_pair");
    if (!std::filesystem::exists(folder))
        GTEST_SKIP() << "the recorded data isn't here: " << folder;
    const auto device = play(folder);
    ASSERT_NE(device, nullptr);
    ImagesTap tap(device->fisheyeCameras());
    device->fisheyeCameras()->start();
    ASSERT_TRUE(tap.waitForMore(3)) << "one pair, again and again";
    EXPECT_EQ(tap.last().images.size(), 2U);
    EXPECT_EQ(tap.last().images[0].width, 752U);
    const auto cameras = extended(device);
    EXPECT_TRUE(cameras->calibration().at(0).pdcm.empty()) << "no record holds an equidistant lens";
    EXPECT_EQ(cameras->calibrationsAtCurrentResolution().at(0).cameraModels.at(0)->width(), 752);
    EXPECT_NEAR(cameras->calibration().at(1).translation[1], 0.122004189, 1e-9);
}
