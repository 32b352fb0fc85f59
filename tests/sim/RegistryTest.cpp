#include "core/Clock.h"
#include "core/ConfigParser.h"
#include "device/DeviceRegistry.h"
#include "device/qv/DeviceEx.h"
#include "device/qv/FisheyeCamerasEx.h"
#include "sim/Records.h"
#include "sim/Stderr.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sim;
using ::testing::ElementsAre;

namespace {

void writeConfig(const std::string &path, const std::string &text)
{
    std::ofstream(path, std::ios::trunc) << text;
}

std::vector<std::string> keys(const DeviceRegistry::Devices &devices)
{
    std::vector<std::string> result;
    for (const auto &[uuid, device] : devices)
        result.push_back(uuid);
    return result;
}

/// Asks until the answer has those keys.
bool becomes(DeviceRegistry &registry, const std::vector<std::string> &wanted)
{
    return waitFor([&] { return keys(registry.wait(0.2, nullptr)) == wanted; });
}

const char *const imuA = R"({"profile": "imu-only", "uuid": "a"})";

std::string list(const std::string &devices)
{
    return '[' + devices + ']';
}

} // namespace

TEST(DeviceRegistry, answersAtOnceWhenTheSetHasChanged)
{
    DeviceRegistry registry(ConfigSource(parseShortForm("imu-only,headset", "")));
    const double start = Clock::now();
    EXPECT_THAT(keys(registry.wait(15, nullptr)), ElementsAre("QVH2-24A0001", "QVI1-24A0001"));
    EXPECT_LT(Clock::now() - start, 0.9);
}

TEST(DeviceRegistry, keysAreTheIds)
{
    DeviceRegistry registry(ConfigSource(parseShortForm("imu-only,headset", "")));
    for (const auto &[uuid, device] : registry.wait(15, nullptr))
        EXPECT_EQ(device->id(), uuid);
}

TEST(DeviceRegistry, anUnchangedSetIsAnsweredAfterASecondWhateverTheBound)
{
    DeviceRegistry registry(ConfigSource(parseShortForm("imu-only", "")));
    registry.wait(15, nullptr);
    const double start = Clock::now();
    EXPECT_EQ(registry.wait(15, nullptr).size(), 1U);
    EXPECT_GE(Clock::now() - start, 0.95);
    EXPECT_LT(Clock::now() - start, 5);
}

TEST(DeviceRegistry, withoutADeviceTheFirstAnswerTooWaits)
{
    DeviceRegistry registry(ConfigSource(std::vector<DeviceConfig>{}));
    const double start = Clock::now();
    EXPECT_TRUE(registry.wait(15, nullptr).empty());
    EXPECT_GE(Clock::now() - start, 0.95) << "else whoever asks over and over would spin";
    EXPECT_LT(Clock::now() - start, 5);
}

TEST(DeviceRegistry, theBoundHoldsIfItIsShorter)
{
    DeviceRegistry registry(ConfigSource(std::vector<DeviceConfig>{}));
    const double start = Clock::now();
    EXPECT_TRUE(registry.wait(0, nullptr).empty());
    EXPECT_TRUE(registry.wait(-3, nullptr).empty());
    EXPECT_LT(Clock::now() - start, 0.9);
}

TEST(DeviceRegistry, theFlagEndsTheWait)
{
    DeviceRegistry registry(ConfigSource(std::vector<DeviceConfig>{}));
    const bool stop = true;
    const double start = Clock::now();
    registry.wait(15, &stop);
    EXPECT_LT(Clock::now() - start, 0.9);
}

TEST(DeviceRegistry, theFileUnplugsAndPlugs)
{
    writeConfig("plug.json", list(imuA));
    DeviceRegistry registry(ConfigSource("plug.json"));
    const auto first = registry.wait(15, nullptr);
    ASSERT_THAT(keys(first), ElementsAre("a"));

    writeConfig("plug.json", R"([{"profile": "imu-only", "uuid": "a", "present": false}])");
    EXPECT_TRUE(becomes(registry, {}));
    EXPECT_FALSE(first.at("a")->imuSensor()->start()) << "the hardware has gone";

    writeConfig("plug.json", list(imuA));
    ASSERT_TRUE(becomes(registry, {"a"}));
    const auto second = registry.wait(0, nullptr);
    EXPECT_NE(second.at("a"), first.at("a"));
    EXPECT_TRUE(second.at("a")->imuSensor()->start()) << "what comes back is whole";
}

TEST(DeviceRegistry, otherDevicesStayWhatTheyAre)
{
    writeConfig("other.json", list(imuA));
    DeviceRegistry registry(ConfigSource("other.json"));
    const auto before = registry.wait(15, nullptr);
    writeConfig("other.json", list(std::string(imuA) + R"(, {"profile": "imu-only", "uuid": "b"})"));
    ASSERT_TRUE(becomes(registry, {"a", "b"}));
    EXPECT_EQ(registry.wait(0, nullptr).at("a"), before.at("a"));
}

TEST(DeviceRegistry, faultsChangeWhileTheDeviceRuns)
{
    writeConfig("fault.json", list(imuA));
    DeviceRegistry registry(ConfigSource("fault.json"));
    const auto device = registry.wait(15, nullptr).at("a");
    EXPECT_TRUE(device->enableSync(true));
    writeConfig(
        "fault.json", R"([{"profile": "imu-only", "uuid": "a", "faults": {"refuse": ["enableSync"]}}])");
    EXPECT_TRUE(waitFor([&] {
        registry.wait(0, nullptr);
        return !device->enableSync(true);
    }));
    EXPECT_EQ(registry.wait(0, nullptr).at("a"), device);
}

TEST(DeviceRegistry, otherHardwareUnderTheSameUuidIsPluggedAnew)
{
    writeConfig("anew.json", list(imuA));
    DeviceRegistry registry(ConfigSource("anew.json"));
    const auto before = registry.wait(15, nullptr).at("a");
    writeConfig("anew.json", R"([{"profile": "headset", "uuid": "a"}])");
    EXPECT_TRUE(becomes(registry, {})) << "whoever looks once a second has to miss the old one";
    EXPECT_TRUE(becomes(registry, {"a"}));
    EXPECT_NE(registry.wait(0, nullptr).at("a")->fisheyeCameras(), nullptr);
    EXPECT_EQ(before->fisheyeCameras(), nullptr);
}

TEST(DeviceRegistry, aDeviceVanishesWhileItStreamsAndReturns)
{
    writeConfig("vanish.json",
        R"([{"profile": "imu-only", "uuid": "a", "faults": {"vanishAfter": 0.1, "returnAfter": 0.3}}])");
    DeviceRegistry registry(ConfigSource("vanish.json"));
    const auto device = registry.wait(15, nullptr).at("a");
    Tap<qv::Imu, qv::ImuSensor> tap(device->imuSensor());
    ASSERT_TRUE(device->imuSensor()->start());
    EXPECT_TRUE(tap.waitForMore(3));
    EXPECT_TRUE(becomes(registry, {}));
    EXPECT_FALSE(device->imuSensor()->stop());
    EXPECT_TRUE(becomes(registry, {"a"}));
}

TEST(DeviceRegistry, anUnusableFolderIsNoDeviceAndOneComplaint)
{
    Stderr output;
    DeviceRegistry registry(ConfigSource(parseShortForm("", "no/such/folder")));
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(registry.wait(0, nullptr).empty());
    EXPECT_THAT(output.lines(), ElementsAre(testing::HasSubstr("no/such/folder can't be used as a device")));
}

TEST(DeviceRegistry, pluggingEveryFewMillisecondsHarmsNobody)
{
    writeConfig("storm.json", "[]");
    DeviceRegistry registry(ConfigSource("storm.json"));
    std::atomic<int> records{0};
    std::vector<std::shared_ptr<qv::Device>> held;
    for (int round = 0; round < 40; ++round) {
        writeConfig("storm.json", list(imuA));
        ASSERT_TRUE(becomes(registry, {"a"}));
        const auto device = registry.wait(0, nullptr).at("a");
        device->imuSensor()->registerCallback([&records](const qv::Imu &) { ++records; });
        ASSERT_TRUE(device->imuSensor()->start());
        if (round % 4 == 0)
            held.push_back(device);
        if (round % 10 == 0) {
            EXPECT_TRUE(waitFor([&, before = records.load()] { return records > before; }));
        }
        writeConfig("storm.json", "[]");
        ASSERT_TRUE(becomes(registry, {}));
    }
    for (const auto &device : held)
        EXPECT_FALSE(device->imuSensor()->stop());
}

TEST(DeviceRegistry, manyThreadsMayAsk)
{
    writeConfig("threads.json", list(imuA));
    DeviceRegistry registry(ConfigSource("threads.json"));
    std::atomic<bool> ending{false};
    std::atomic<int> answers{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            while (!ending) {
                for (const auto &[uuid, device] : registry.wait(0.01, nullptr))
                    device->info();
                ++answers;
            }
        });
    }
    for (int i = 0; i < 20; ++i) {
        writeConfig("threads.json", i % 2 == 0 ? "[]" : list(imuA));
        EXPECT_TRUE(waitFor([&, before = answers.load()] { return answers >= before + 8; }));
    }
    ending = true;
    for (std::thread &thread : threads)
        thread.join();
}
