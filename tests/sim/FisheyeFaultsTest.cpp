#include "sim/FisheyeFixture.h"

using namespace sim;

using FisheyeFaults = FisheyeTest;

TEST_F(FisheyeFaults, faultsDamageEveryNthRecord)
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

TEST_F(FisheyeFaults, droppedRecordsLeaveGaps)
{
    config.faults.streams["fisheye"].dropEvery = 2;
    make();
    cameras->start();
    ASSERT_TRUE(tap->waitForMore(4));
    const auto all = tap->all();
    EXPECT_GE(all[1].edgeTimestampUs - all[0].edgeTimestampUs, 99'900) << "every second of 20 a second";
}

TEST_F(FisheyeFaults, lateRecordsAreOldWhenTheyCome)
{
    config.faults.streams["fisheye"].lateEvery = 1;
    config.faults.streams["fisheye"].lateMs = 40;
    make();
    cameras->start();
    const qv::FisheyeImages record = fresh();
    EXPECT_GE(record.hostTimestamp - static_cast<double>(record.edgeTimestampUs) * 1e-6, 0.039);
}

TEST_F(FisheyeFaults, aStalledStreamRunsButIsSilent)
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

TEST_F(FisheyeFaults, refusedSettingsChangeNothing)
{
    config.faults.refuse = {"setResolution", "fisheye.setFramerate", "setExposure"};
    make();
    EXPECT_FALSE(cameras->setResolution(3));
    EXPECT_FALSE(cameras->setFramerate(10));
    EXPECT_FALSE(cameras->setExposure(1, 10, 10));
    EXPECT_EQ(cameras->calibrationsAtCurrentResolution()[0].ucm[0].w, 160);
}

TEST_F(FisheyeFaults, aCallbackThatThrowsStopsNoStream)
{
    make();
    const int id = cameras->registerCallback(
        [](const qv::FisheyeImages &) { throw std::runtime_error("invalid vector<T> subscript"); });
    cameras->start();
    EXPECT_TRUE(tap->waitForMore(3));
    cameras->unregisterCallback(id);
}
