#include "core/Clock.h"
#include "device/DeviceFactory.h"
#include "device/qv/DeviceEx.h"
#include "device/qv/FisheyeCamerasEx.h"
#include "sim/Records.h"
#include "world/Trajectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sim;

namespace {

using Bytes = std::vector<unsigned char>;
using ImuTap = Tap<qv::Imu, qv::ImuSensor>;

DeviceConfig config(Profile profile)
{
    DeviceConfig result;
    result.profile = profile;
    result.uuid = "test";
    return result;
}

std::shared_ptr<SimDevice> device(Profile profile)
{
    return makeDevice(config(profile));
}

std::shared_ptr<qv::DeviceEx> deviceEx(const std::shared_ptr<qv::Device> &any)
{
    return std::dynamic_pointer_cast<qv::DeviceEx>(any);
}

Bytes command(std::initializer_list<unsigned char> first)
{
    Bytes bytes(first);
    bytes.resize(63, 0);
    return bytes;
}

std::string text(const Bytes &reply)
{
    const std::string all(reply.begin() + 4, reply.end());
    return all.substr(0, all.find('\0'));
}

/// Deviation of one axis over some readings.
double deviation(
    const std::vector<qv::Imu> &readings, double qv::Vector3::*axis, qv::Vector3 qv::Imu::*sensor)
{
    double sum = 0;
    double squares = 0;
    for (const qv::Imu &imu : readings) {
        sum += imu.*sensor.*axis;
        squares += imu.*sensor.*axis * (imu.*sensor.*axis);
    }
    const auto count = static_cast<double>(readings.size());
    return std::sqrt(squares / count - sum / count * (sum / count));
}

} // namespace

TEST(SimDevice, profilesHaveTheirComponents)
{
    EXPECT_NE(device(Profile::Headset)->fisheyeCameras(), nullptr);
    EXPECT_NE(device(Profile::Module)->fisheyeCameras(), nullptr);
    EXPECT_NE(device(Profile::Quad)->fisheyeCameras(), nullptr);
    EXPECT_NE(device(Profile::Plain)->fisheyeCameras(), nullptr);
    EXPECT_EQ(device(Profile::ImuOnly)->fisheyeCameras(), nullptr);
    for (const Profile profile :
        {Profile::Headset, Profile::Module, Profile::Quad, Profile::Plain, Profile::ImuOnly})
        EXPECT_NE(device(profile)->imuSensor(), nullptr);
}

TEST(SimDevice, componentsAreTheSameOnEachCall)
{
    const auto headset = device(Profile::Headset);
    const auto same = [](const auto &first, const auto &second, const char *name) {
        EXPECT_NE(first, nullptr) << name;
        EXPECT_EQ(first, second) << name;
    };
    same(headset->slam(), headset->slam(), "slam");
    same(headset->imuSensor(), headset->imuSensor(), "imu");
    same(headset->fisheyeCameras(), headset->fisheyeCameras(), "fisheye");
    same(headset->colorCamera(), headset->colorCamera(), "colour");
    same(headset->tofCamera(), headset->tofCamera(), "tof");
    same(headset->vsc(), headset->vsc(), "vsc");
    same(headset->objectDetector(), headset->objectDetector(), "detector");
    same(deviceEx(headset)->edge(), deviceEx(headset)->edge(), "edge");
}

// Whoever asks may keep a plain pointer.
TEST(SimDevice, componentsLiveAsLongAsTheirDevice)
{
    auto headset = device(Profile::Headset);
    const auto extended = deviceEx(headset);
    std::vector<std::pair<const char *, std::weak_ptr<void>>> components{{"slam", headset->slam()},
        {"imu", headset->imuSensor()}, {"fisheye", headset->fisheyeCameras()},
        {"colour", headset->colorCamera()}, {"tof", headset->tofCamera()}, {"vsc", headset->vsc()},
        {"detector", headset->objectDetector()}, {"edge", extended->edge()}};
    for (const auto &[name, component] : components)
        EXPECT_FALSE(component.expired()) << name;
}

TEST(SimDevice, unregisteringWhatNoOneRegisteredLeavesTheOthers)
{
    const auto headset = device(Profile::Headset);
    const auto leaves = [](const auto &component, auto record, const char *name) {
        const auto calls = std::make_shared<std::atomic<int>>(0);
        const int id = component->registerCallback([calls](const decltype(record) &) { ++*calls; });
        EXPECT_GE(id, 0) << name;
        component->unregisterCallback(-1);
        component->unregisterCallback(id + 1);
        EXPECT_TRUE(component->start()) << name;
        EXPECT_TRUE(waitFor([&calls] { return *calls > 0; })) << name << " calls no more";
        component->stop();
        component->unregisterCallback(id);
        component->unregisterCallback(-1);
    };
    leaves(headset->imuSensor(), qv::Imu(), "imu");
    leaves(headset->fisheyeCameras(), qv::FisheyeImages(), "fisheye");
    leaves(headset->colorCamera(), qv::ColorImage(), "colour");
    leaves(headset->tofCamera(), qv::DepthImage(), "tof");
    leaves(headset->slam(), qv::Pose(), "slam");
    leaves(headset->vsc(), qv::SgbmImage(), "vsc");
}

TEST(SimDevice, onlyThePlainOneHasNoExtensions)
{
    const std::shared_ptr<qv::Device> plain = device(Profile::Plain);
    EXPECT_EQ(deviceEx(plain), nullptr);
    EXPECT_EQ(std::dynamic_pointer_cast<qv::FisheyeCamerasEx>(plain->fisheyeCameras()), nullptr);
    const std::shared_ptr<qv::Device> headset = device(Profile::Headset);
    EXPECT_NE(deviceEx(headset), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<qv::FisheyeCamerasEx>(headset->fisheyeCameras()), nullptr);
}

TEST(SimDevice, informationTellsVersionSerialAndFeatures)
{
    const auto info = device(Profile::Headset)->info();
    EXPECT_FALSE(info.at("version").empty());
    EXPECT_EQ(info.at("serialNumber"), "test");
    EXPECT_EQ(info.at("stereoAvailable"), "true");
    EXPECT_EQ(device(Profile::ImuOnly)->info().at("stereoAvailable"), "false");
    for (const char *feature : {"rgb2Available", "downsampleAvailable", "fisheyeSwitchAvailable",
             "afRGBAvailable", "edge6dofAvailable"})
        EXPECT_THAT(info.at(feature), testing::AnyOf("true", "false"));
}

TEST(SimDevice, theDescriptionOverridesTheInformation)
{
    DeviceConfig own = config(Profile::Headset);
    own.version = "7.7";
    own.info = {{"rgb2Available", "true"}, {"owner", "lab"}};
    const auto info = makeDevice(own)->info();
    EXPECT_EQ(info.at("version"), "7.7");
    EXPECT_EQ(info.at("rgb2Available"), "true");
    EXPECT_EQ(info.at("owner"), "lab");
}

TEST(SimDevice, informationThrowsOnRequest)
{
    DeviceConfig own = config(Profile::ImuOnly);
    own.faults.throwInfo = true;
    EXPECT_THROW(makeDevice(own)->info(), std::runtime_error);
}

TEST(SimDevice, hidEchoesWhatItDoesNotKnow)
{
    const Bytes sent = command({0x12, 0x34, 0x00, 0xff});
    Bytes reply(63, 0);
    EXPECT_TRUE(device(Profile::ImuOnly)->hidWriteAndRead(sent, reply));
    EXPECT_EQ(reply, sent);
    EXPECT_TRUE(device(Profile::ImuOnly)->hidWriteAndRead(Bytes(63, 0), reply));
    EXPECT_EQ(reply, Bytes(63, 0));
}

TEST(SimDevice, hidAnswersVersionAndSerial)
{
    const auto any = device(Profile::ImuOnly);
    Bytes reply(63, 0);
    EXPECT_TRUE(any->hidWriteAndRead(command({0x02, 0xfe, 0x55, 0x01}), reply));
    EXPECT_EQ(text(reply), any->info().at("version"));
    EXPECT_EQ(Bytes(reply.begin(), reply.begin() + 4), (Bytes{0x02, 0xfe, 0x55, 0x01}));
    EXPECT_TRUE(any->hidWriteAndRead(command({0x02, 0xfe, 0x55, 0x02}), reply));
    EXPECT_EQ(text(reply), "test");
}

TEST(SimDevice, hidTellsTheSettings)
{
    const auto any = device(Profile::Headset);
    deviceEx(any)->setImuMode(4);
    deviceEx(any)->setUvcMode(5);
    deviceEx(any)->setImuOffset(-2);
    deviceEx(any)->setEdgePrediction(0x0102);
    any->enableSync(true);
    Bytes reply(63, 0);
    EXPECT_TRUE(any->hidWriteAndRead(command({0x02, 0xfe, 0x55, 0x03}), reply));
    const Bytes settings(reply.begin() + 4, reply.begin() + 16);
    EXPECT_EQ(settings, (Bytes{4, 5, 1, 0, 0xfe, 0xff, 0xff, 0xff, 0x02, 0x01, 0, 0}));
}

TEST(SimDevice, hidReadsTheLogInPieces)
{
    const auto any = device(Profile::Headset);
    deviceEx(any)->setUvcMode(3);
    const Bytes question = command({0x02, 0xfe, 0x55, 0x04});
    std::string log;
    Bytes reply(63, 0);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(any->hidWriteAndRead(question, reply));
        ASSERT_EQ(reply.size(), 63U);
        if (reply[4] == 0 || reply[5] == 0)
            break;
        log += text(reply) + '\n';
    }
    EXPECT_EQ(reply[4], 0) << "the end";
    EXPECT_THAT(log, testing::HasSubstr("power on"));
    EXPECT_THAT(log, testing::HasSubstr("setUvcMode 3\n"));
    any->enableSync(true);
    ASSERT_TRUE(any->hidWriteAndRead(question, reply));
    EXPECT_THAT(text(reply), testing::HasSubstr("sync on")) << "and what has come since";
}

TEST(SimDevice, hidCopesWithVectorsOfAnyLength)
{
    const auto any = device(Profile::ImuOnly);
    Bytes reply;
    EXPECT_TRUE(any->hidWriteAndRead({}, reply));
    EXPECT_EQ(reply.size(), 63U);
    EXPECT_TRUE(any->hidWriteAndRead({0x02, 0xfe, 0x55, 0x01}, reply));
    EXPECT_FALSE(any->hidWriteAndRead(Bytes(64, 1), reply));
}

TEST(SimDevice, hidRefusesAndWaitsOnRequest)
{
    DeviceConfig own = config(Profile::ImuOnly);
    own.faults.hidDelayMs = 60;
    const auto slow = makeDevice(own);
    Bytes reply(63, 9);
    const double start = Clock::now();
    EXPECT_TRUE(slow->hidWriteAndRead(command({1}), reply));
    EXPECT_GE(Clock::now() - start, 0.059);
    own.faults = {};
    own.faults.refuse = {"hid"};
    Bytes untouched(63, 9);
    EXPECT_FALSE(makeDevice(own)->hidWriteAndRead(command({1}), untouched));
    EXPECT_EQ(untouched, Bytes(63, 9));
}

TEST(SimDevice, hidMayBeUsedFromManyThreadsWhileStreamsRun)
{
    const auto any = device(Profile::ImuOnly);
    any->imuSensor()->start();
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (unsigned char i = 0; i < 4; ++i) {
        threads.emplace_back([&any, &wrong, i] {
            for (int round = 0; round < 300; ++round) {
                Bytes reply(63, 0);
                const Bytes sent = command({i, 1, 2});
                if (!any->hidWriteAndRead(sent, reply) || reply != sent)
                    ++wrong;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(SimDevice, unpluggedItFailsAndDoesNoHarm)
{
    const auto any = device(Profile::Headset);
    const auto imu = any->imuSensor();
    const auto fisheye = std::dynamic_pointer_cast<qv::FisheyeCamerasEx>(any->fisheyeCameras());
    ImuTap tap(imu);
    ASSERT_TRUE(imu->start());
    ASSERT_TRUE(tap.waitForMore(3));
    any->unplug();

    Bytes reply(63, 0);
    EXPECT_FALSE(any->hidWriteAndRead(command({1}), reply));
    EXPECT_FALSE(any->enableSync(true));
    EXPECT_FALSE(imu->start());
    EXPECT_FALSE(fisheye->start());
    EXPECT_FALSE(fisheye->setFramerate(20));
    EXPECT_FALSE(fisheye->setExposure(1, 5, 5));
    EXPECT_FALSE(fisheye->setResolution(3));
    deviceEx(any)->setUvcMode(0);
    EXPECT_EQ(any->state().uvcMode, 2);
    EXPECT_FALSE(imu->stop());
    const std::size_t count = tap.count();
    any->info();
    EXPECT_EQ(fisheye->calibration().size(), 2U);
    EXPECT_EQ(tap.count(), count);
    EXPECT_EQ(any->id(), "test");
}

TEST(SimDevice, maybeDroppedFromItsOwnCallback)
{
    auto holder = std::make_shared<std::shared_ptr<qv::Device>>(device(Profile::ImuOnly));
    std::atomic<bool> called{false};
    const std::weak_ptr<qv::Device> watch = *holder;
    const auto start = (*holder)->imuSensor();
    start->registerCallback([holder, &called](const qv::Imu &) {
        holder->reset();
        called = true;
    });
    start->start();
    EXPECT_TRUE(waitFor([&] { return called && watch.expired(); }));
}

TEST(SimDevice, componentsOutliveTheDevice)
{
    const auto imu = device(Profile::ImuOnly)->imuSensor();
    EXPECT_FALSE(imu->start());
    EXPECT_FALSE(imu->stop());
}

TEST(SimImuSensor, streamsFollowStartAndStop)
{
    const auto any = device(Profile::ImuOnly);
    ImuTap tap(any->imuSensor());
    EXPECT_FALSE(any->imuSensor()->stop()) << "it isn't running";
    EXPECT_TRUE(any->imuSensor()->start());
    EXPECT_TRUE(any->imuSensor()->start());
    EXPECT_TRUE(tap.waitForMore(5));
    EXPECT_TRUE(any->imuSensor()->stop());
    EXPECT_FALSE(any->imuSensor()->stop());
}

TEST(SimImuSensor, hasTheRateOfItsProfileOrOfTheDescription)
{
    DeviceConfig own = config(Profile::ImuOnly);
    own.streams["imu"].rate = 250;
    for (const auto &[asked, periodUs] : {std::pair(config(Profile::Headset), 2000),
             std::pair(config(Profile::ImuOnly), 5000), std::pair(own, 4000)}) {
        const auto any = makeDevice(asked);
        ImuTap tap(any->imuSensor());
        any->imuSensor()->start();
        ASSERT_TRUE(tap.waitForMore(20));
        any->imuSensor()->stop();
        const auto all = tap.all();
        for (std::size_t i = 1; i < all.size(); ++i)
            EXPECT_EQ((all[i].edgeTimestampUs - all[i - 1].edgeTimestampUs + 1) / 10 * 10 % periodUs, 0);
    }
}

TEST(SimImuSensor, readsTheTrajectoryOfTheWorld)
{
    DeviceConfig own = config(Profile::ImuOnly);
    own.seed = 5;
    const auto any = makeDevice(own);
    ImuTap tap(any->imuSensor());
    any->imuSensor()->start();
    ASSERT_TRUE(tap.waitForMore(100));
    any->imuSensor()->stop();
    const Trajectory trajectory(5);
    for (const qv::Imu &imu : tap.all()) {
        const double t = static_cast<double>(imu.edgeTimestampUs) * 1e-6;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            // Six deviations of the noise and what the rounding of the time to microseconds makes.
            EXPECT_NEAR(imu.gyro[axis], trajectory.angularVelocity(t)[static_cast<int>(axis)], 0.0125);
            EXPECT_NEAR(imu.accel[axis], trajectory.specificForce(t)[static_cast<int>(axis)], 0.125);
            EXPECT_NEAR(imu.magn[axis], trajectory.magneticField(t)[static_cast<int>(axis)], 1.6);
        }
    }
}

TEST(SimImuSensor, sameSeedAndTimeGiveTheSameReading)
{
    const auto one = device(Profile::ImuOnly);
    const auto two = device(Profile::ImuOnly);
    ImuTap tapOne(one->imuSensor());
    ImuTap tapTwo(two->imuSensor());
    one->imuSensor()->start();
    two->imuSensor()->start();
    const auto common = [&] {
        int found = 0;
        for (const qv::Imu &a : tapOne.all()) {
            for (const qv::Imu &b : tapTwo.all()) {
                if (a.edgeTimestampUs != b.edgeTimestampUs)
                    continue;
                ++found;
                EXPECT_EQ(a.gyro.x, b.gyro.x);
                EXPECT_EQ(a.accel.z, b.accel.z);
            }
        }
        return found;
    };
    EXPECT_TRUE(tapOne.waitForMore(20));
    EXPECT_TRUE(tapTwo.waitForMore(20));
    EXPECT_GT(common(), 0);
}

TEST(SimImuSensor, offsetShiftsTheTimes)
{
    const auto any = device(Profile::Headset);
    ImuTap tap(any->imuSensor());
    deviceEx(any)->setImuOffset(50'000'000);
    any->imuSensor()->start();
    ASSERT_TRUE(tap.waitForMore(2));
    const auto now = Clock::microseconds(Clock::now());
    EXPECT_GT(tap.last().edgeTimestampUs, now + 40'000'000);
    EXPECT_LT(tap.last().hostTimestamp, Clock::now());
}

TEST(SimImuSensor, modeVSlamOnlyKeepsReadingsInside)
{
    const auto any = device(Profile::Headset);
    ImuTap tap(any->imuSensor());
    any->imuSensor()->start();
    ASSERT_TRUE(tap.waitForMore(3));
    deviceEx(any)->setImuMode(0);
    const auto now = Clock::microseconds(Clock::now());
    const auto other = device(Profile::Headset);
    ImuTap witness(other->imuSensor());
    other->imuSensor()->start();
    ASSERT_TRUE(witness.waitForMore(25));
    EXPECT_TRUE(tap.noneDueAfter(now));
    deviceEx(any)->setImuMode(1);
    EXPECT_TRUE(tap.waitForMore(3));
}

TEST(SimImuSensor, fusionOnHostLeavesTheBiasesIn)
{
    const auto any = device(Profile::Headset);
    const Trajectory trajectory(1);
    ImuTap tap(any->imuSensor());
    const auto meanError = [&] {
        tap.clear();
        EXPECT_TRUE(tap.waitForMore(200));
        double sum = 0;
        const auto all = tap.all();
        for (const qv::Imu &imu : all) {
            const double t = static_cast<double>(imu.edgeTimestampUs) * 1e-6;
            sum += imu.accel.x - trajectory.specificForce(t).x();
        }
        return std::abs(sum / static_cast<double>(all.size()));
    };
    any->imuSensor()->start();
    const double calibrated = meanError();
    deviceEx(any)->setImuMode(4);
    tap.waitForMore(2);
    EXPECT_LT(calibrated, 0.01);
    EXPECT_GT(meanError(), 2 * calibrated + 0.005);
}

TEST(SimImuSensor, modesThatDoNotExistAreIgnored)
{
    const auto any = device(Profile::Headset);
    deviceEx(any)->setImuMode(3);
    deviceEx(any)->setImuMode(-1);
    deviceEx(any)->setUvcMode(6);
    EXPECT_EQ(any->state().imuMode, 1);
    EXPECT_EQ(any->state().uvcMode, 2);
}

TEST(SimImuSensor, noiseIsThereAndSmall)
{
    const auto any = device(Profile::Headset);
    ImuTap tap(any->imuSensor());
    any->imuSensor()->start();
    ASSERT_TRUE(tap.waitForMore(5));
    any->imuSensor()->stop();
    const auto readings = tap.all();
    EXPECT_GT(deviation({readings.begin(), readings.begin() + 5}, &qv::Vector3::x, &qv::Imu::magn), 0);
}

TEST(SimImuSensor, syncPutsReadingsOnTheCommonGrid)
{
    const auto any = device(Profile::ImuOnly);
    ImuTap tap(any->imuSensor());
    any->imuSensor()->start();
    ASSERT_TRUE(tap.waitForMore(3));
    EXPECT_NE(tap.last().edgeTimestampUs % 5000, 0);
    EXPECT_TRUE(any->enableSync(true));
    ASSERT_TRUE(tap.waitForMore(3));
    EXPECT_EQ(tap.last().edgeTimestampUs % 5000, 0);
}

TEST(SimImuSensor, faultsAreThoseAskedFor)
{
    DeviceConfig own = config(Profile::ImuOnly);
    own.faults.streams["imu"].unknownEvery = 2;
    own.faults.refuse = {"imu.stop"};
    const auto any = makeDevice(own);
    ImuTap tap(any->imuSensor());
    EXPECT_TRUE(any->imuSensor()->start());
    ASSERT_TRUE(tap.waitForMore(4));
    const auto all = tap.all();
    EXPECT_TRUE(std::isfinite(all[0].gyro.x));
    EXPECT_TRUE(std::isnan(all[1].gyro.x));
    EXPECT_FALSE(any->imuSensor()->stop());
    EXPECT_TRUE(tap.waitForMore(2)) << "a refused stop stops nothing";
    any->state().setFaults({});
    EXPECT_TRUE(any->imuSensor()->stop());
}

TEST(SimImuSensor, refusedStartStartsNothing)
{
    DeviceConfig own = config(Profile::ImuOnly);
    own.faults.refuse = {"start"};
    const auto any = makeDevice(own);
    EXPECT_FALSE(any->imuSensor()->start());
    EXPECT_FALSE(any->imuSensor()->stop());
}
