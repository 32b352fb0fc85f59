#include "streams/ImuData.h"

#include "support/AllocationCounter.h"
#include "support/FakeDevice.h"
#include "support/FakeImuSensor.h"
#include "support/FakeOwner.h"
#include "support/LogCatcher.h"
#include "support/Timers.h"

#include <QFile>
#include <atomic>
#include <gmock/gmock.h>
#include <thread>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

qv::Imu reading(double start)
{
    qv::Imu imu;
    imu.gyro = {start, start + 1, start + 2};
    imu.accel = {start + 3, start + 4, start + 5};
    imu.temperature = 1000;
    imu.magn = {start + 6, start + 7, start + 8};
    return imu;
}

class Imu : public testing::Test {
protected:
    void SetUp() override
    {
        owner.held = device;
        imu = std::make_unique<ImuData>(sensor, &owner);
    }

    void TearDown() override { imu.reset(); }

    FakeOwner owner;
    std::shared_ptr<FakeDeviceEx> device = std::make_shared<FakeDeviceEx>();
    std::shared_ptr<FakeImuSensor> sensor = std::make_shared<FakeImuSensor>();
    std::unique_ptr<ImuData> imu;
};

} // namespace

TEST(ImuData, aNullSensorIsRefused)
{
    try {
        const ImuData imu(nullptr, nullptr);
        FAIL() << "made of nothing";
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "Invalid IMU sensor");
    }
}

TEST_F(Imu, startsInItsConstructor)
{
    EXPECT_THAT(sensor->calls(), ElementsAre("registerCallback", "start"));
    EXPECT_EQ(imu->mode(), 1);
    EXPECT_EQ(imu->offset(), 0);
    EXPECT_THAT(device->calls(), IsEmpty());
}

TEST_F(Imu, aReadingReachesTheThreeAxes)
{
    sensor->deliver(reading(1));
    EXPECT_EQ(imu->gyro()->vector(), QVector3D(1, 2, 3));
    EXPECT_EQ(imu->accel()->vector(), QVector3D(4, 5, 6));
    EXPECT_EQ(imu->magn()->vector(), QVector3D(7, 8, 9));
}

TEST_F(Imu, theAxesAreSetAccelFirst)
{
    QStringList order;
    QObject::connect(imu->accel(), &ImuAxisData::vectorChanged, [&] { order << "accel"; });
    QObject::connect(imu->gyro(), &ImuAxisData::vectorChanged, [&] { order << "gyro"; });
    QObject::connect(imu->magn(), &ImuAxisData::vectorChanged, [&] { order << "magn"; });
    sensor->deliver(reading(1));
    EXPECT_EQ(order, (QStringList{"accel", "gyro", "magn"}));
}

TEST_F(Imu, equalReadingsCountButSignalNothing)
{
    sensor->deliver(reading(1));
    QSignalSpy changed(imu->accel(), &ImuAxisData::vectorChanged);
    for (int i = 0; i < 9; ++i)
        sensor->deliver(reading(1));
    EXPECT_EQ(changed.count(), 0);
    fireTimers(*imu);
    EXPECT_EQ(imu->dataFrameRate(), 10.0);
}

TEST_F(Imu, controlChangesNothing)
{
    sensor->takeCalls();
    imu->control(false);
    imu->control(true);
    EXPECT_THAT(sensor->calls(), IsEmpty());
    sensor->deliver(reading(1));
    fireTimers(*imu);
    EXPECT_EQ(imu->dataFrameRate(), 1.0);
}

TEST_F(Imu, modeAlwaysSignalsAndReachesTheDevice)
{
    QSignalSpy mode(imu.get(), &ImuData::modeChanged);
    imu->setMode(1);
    imu->setMode(4);
    imu->setMode(4);
    ASSERT_EQ(mode.count(), 3);
    EXPECT_EQ(mode[0][0].toInt(), 1);
    EXPECT_EQ(mode[2][0].toInt(), 4);
    EXPECT_EQ(imu->mode(), 4);
    EXPECT_THAT(device->calls(), ElementsAre("setImuMode(1)", "setImuMode(4)", "setImuMode(4)"));
}

TEST_F(Imu, offsetDoesSoOnlyWhenItDiffers)
{
    QSignalSpy offset(imu.get(), &ImuData::offsetChanged);
    imu->setOffset(0);
    imu->setOffset(-300);
    imu->setOffset(-300);
    ASSERT_EQ(offset.count(), 1);
    EXPECT_EQ(offset[0][0].toInt(), -300);
    EXPECT_EQ(imu->offset(), -300);
    EXPECT_THAT(device->calls(), ElementsAre("setImuOffset(-300)"));
}

TEST_F(Imu, settingsAreToldBeforeTheDeviceHasThem)
{
    std::vector<std::size_t> callsSoFar;
    const auto note = [&] { callsSoFar.push_back(device->calls().size()); };
    QObject::connect(imu.get(), &ImuData::modeChanged, note);
    QObject::connect(imu.get(), &ImuData::offsetChanged, note);
    imu->setMode(2);
    imu->setOffset(500);
    EXPECT_THAT(callsSoFar, ElementsAre(0U, 1U));
    EXPECT_THAT(device->calls(), ElementsAre("setImuMode(2)", "setImuOffset(500)"));
}

TEST_F(Imu, aRefusedStartIsIgnored)
{
    const auto refusing = std::make_shared<FakeImuSensor>();
    refusing->startResult = false;
    ImuData other(refusing, nullptr);
    EXPECT_THAT(refusing->calls(), ElementsAre("registerCallback", "start"));
    refusing->deliver(reading(1));
    EXPECT_EQ(other.gyro()->vector(), QVector3D(1, 2, 3));
}

TEST_F(Imu, aPlainDeviceOrNoneTakesTheSettingsInSilence)
{
    const LogCatcher log;
    const auto plain = std::make_shared<FakeDevice>();
    owner.held = plain;
    imu->setMode(2);
    imu->setOffset(5);
    EXPECT_THAT(plain->calls(), IsEmpty());

    ImuData alone(sensor, nullptr);
    alone.setMode(2);
    alone.setOffset(5);
    EXPECT_EQ(alone.mode(), 2);
    EXPECT_EQ(alone.offset(), 5);
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(Imu, recordingWritesNoReadings)
{
    imu->setRecordPath("imu.csv");
    imu->setRecording(true);
    sensor->deliver(reading(1));
    imu->setRecording(false);
    QFile file("imu.csv");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.size(), 0);
}

TEST_F(Imu, aReadingAllocatesNothing)
{
    if (!AllocationCounter::works())
        GTEST_SKIP() << "the sanitizer has its own allocator, nothing can be counted";
    sensor->deliver(reading(0));
    const auto callback = sensor->callbacks.held().at(0);
    const AllocationCounter counter;
    for (int i = 1; i < 10; ++i)
        callback(reading(i));
    EXPECT_EQ(counter.count(), 0U);
}

TEST_F(Imu, destructionUnregistersAndDoesNotStop)
{
    sensor->takeCalls();
    const auto callback = sensor->callbacks.held().at(0);
    imu.reset();
    EXPECT_THAT(sensor->calls(), ElementsAre("unregisterCallback(1)"));
    callback(reading(1)); // still on its way: finds the model gone
}

TEST_F(Imu, itMayGoWhileReadingsComeAndItsValuesAreRead)
{
    const auto callback = sensor->callbacks.held().at(0);
    std::atomic<bool> done{false};
    std::atomic<int> count{0};
    std::thread library([&] {
        for (double value = 0; !done; ++value, ++count)
            callback(reading(value));
    });
    while (count < 1000) {
        const QVector3D accel = imu->accel()->vector();
        EXPECT_GE(accel.x(), 0);
        fireTimers(*imu);
    }
    imu.reset();
    done = true;
    library.join();
}
