#include "core/StreamThread.h"

#include "core/Clock.h"
#include "core/RateSchedule.h"
#include "sim/Records.h"

#include <gtest/gtest.h>

using sim::Clock;
using sim::RateSchedule;
using sim::StreamThread;

namespace {

struct Fixture : ::testing::Test {
    std::shared_ptr<RateSchedule> schedule = std::make_shared<RateSchedule>(200.0);
    std::shared_ptr<int> owner = std::make_shared<int>(0);
    Records<double> ticks;

    /// Passes when another thread on the same schedule has ticked that often.
    bool witness(std::size_t count)
    {
        Records<double> seen;
        StreamThread other("witness", schedule, [&seen](double due) { seen.add(due); });
        const auto alive = std::make_shared<int>(0);
        return other.start(alive) && seen.waitForMore(count);
    }
};

} // namespace

using StreamThreadTest = Fixture;

TEST_F(StreamThreadTest, ticksUntilItIsStopped)
{
    StreamThread thread("test", schedule, [this](double due) { ticks.add(due); });
    EXPECT_FALSE(thread.running());
    EXPECT_TRUE(thread.start(owner));
    EXPECT_TRUE(thread.running());
    EXPECT_TRUE(ticks.waitForMore(10));
    EXPECT_TRUE(thread.stop());
    EXPECT_FALSE(thread.running());
    const std::size_t count = ticks.count();
    EXPECT_TRUE(witness(20));
    EXPECT_EQ(ticks.count(), count);
}

TEST_F(StreamThreadTest, startAndStopTwiceAreHarmless)
{
    StreamThread thread("test", schedule, [this](double due) { ticks.add(due); });
    EXPECT_FALSE(thread.stop());
    EXPECT_TRUE(thread.start(owner));
    EXPECT_TRUE(thread.start(owner));
    EXPECT_TRUE(ticks.waitForMore(3));
    EXPECT_TRUE(thread.stop());
    EXPECT_FALSE(thread.stop());
    EXPECT_TRUE(thread.start(owner));
    EXPECT_TRUE(ticks.waitForMore(3));
}

TEST_F(StreamThreadTest, dueTimesLieOnTheGridOfTheRate)
{
    StreamThread thread("test", schedule, [this](double due) { ticks.add(due); });
    thread.start(owner);
    ASSERT_TRUE(ticks.waitForMore(50));
    thread.stop();
    double last = -1;
    for (const double due : ticks.all()) {
        EXPECT_NEAR(due * 200, std::round(due * 200), 1e-6);
        EXPECT_GT(due, last);
        last = due;
    }
}

TEST_F(StreamThreadTest, ticksNeverComeBeforeTheyAreDue)
{
    std::atomic<int> early{0};
    StreamThread thread("test", schedule, [&](double due) {
        if (Clock::now() < due - 1e-4)
            ++early;
        ticks.add(due);
    });
    thread.start(owner);
    EXPECT_TRUE(ticks.waitForMore(50));
    thread.stop();
    EXPECT_EQ(early, 0);
}

TEST_F(StreamThreadTest, changeOfRateCutsALongWaitShort)
{
    schedule->setRate(0.001);
    StreamThread thread("test", schedule, [this](double due) { ticks.add(due); });
    thread.start(owner);
    schedule->setRate(500);
    thread.reschedule();
    EXPECT_TRUE(ticks.waitForMore(5));
}

TEST_F(StreamThreadTest, mayStopAndStartItselfFromATick)
{
    std::atomic<bool> stopped{false};
    StreamThread *self = nullptr;
    StreamThread thread("test", schedule, [&](double due) {
        ticks.add(due);
        if (ticks.count() == 3) {
            stopped = self->stop();
            self->start(owner);
        }
    });
    self = &thread;
    thread.start(owner);
    EXPECT_TRUE(ticks.waitForMore(10));
    EXPECT_TRUE(stopped);
    EXPECT_TRUE(thread.stop());
}

TEST_F(StreamThreadTest, endsWhenItsOwnerHasGone)
{
    StreamThread thread("test", schedule, [this](double due) { ticks.add(due); });
    thread.start(owner);
    ASSERT_TRUE(ticks.waitForMore(2));
    owner.reset();
    std::size_t count = 0;
    EXPECT_TRUE(waitFor([&] {
        const std::size_t before = std::exchange(count, ticks.count());
        return witness(20) && before == ticks.count();
    }));
}

TEST_F(StreamThreadTest, mayBeDestroyedFromItsOwnTick)
{
    struct Owner {
        std::unique_ptr<StreamThread> thread;
    };
    auto last = std::make_shared<std::shared_ptr<Owner>>(std::make_shared<Owner>());
    const std::weak_ptr<Owner> watch = *last;
    std::atomic<bool> ticked{false};
    (*last)->thread = std::make_unique<StreamThread>("test", schedule, [last, &ticked](double) {
        last->reset();
        ticked = true;
    });
    watch.lock()->thread->start(watch);
    EXPECT_TRUE(waitFor([&] { return ticked && watch.expired(); }));
}

TEST_F(StreamThreadTest, survivesATickThatThrows)
{
    StreamThread thread("test", schedule, [this](double due) {
        ticks.add(due);
        throw std::runtime_error("no");
    });
    thread.start(owner);
    EXPECT_TRUE(ticks.waitForMore(5));
}

TEST_F(StreamThreadTest, stopEndsASleepInATick)
{
    std::atomic<bool> sleeping{false};
    StreamThread *self = nullptr;
    StreamThread thread("test", schedule, [&](double) {
        sleeping = true;
        self->sleep(3600);
    });
    self = &thread;
    thread.start(owner);
    ASSERT_TRUE(waitFor([&] { return sleeping.load(); }));
    EXPECT_TRUE(thread.stop());
}

TEST(RateSchedule, firstIsNeverInThePast)
{
    const RateSchedule schedule(50, 0.5);
    EXPECT_DOUBLE_EQ(schedule.first(0), 0.01);
    EXPECT_DOUBLE_EQ(schedule.first(0.0101), 0.03);
    EXPECT_GE(schedule.first(7.123), 7.123);
}

TEST(RateSchedule, doesNotDrift)
{
    const RateSchedule schedule(30);
    double due = schedule.first(0);
    for (int i = 0; i < 30 * 3600; ++i)
        due = schedule.next(due, due);
    EXPECT_NEAR(due, 3600, 1e-9);
}

TEST(RateSchedule, leavesOutWhatIsTooFarBehind)
{
    const RateSchedule schedule(100, 0, 0.025);
    EXPECT_NEAR(schedule.next(1.0, 1.03), 1.01, 1e-12) << "a little late is made up for";
    EXPECT_NEAR(schedule.next(1.0, 2.005), 2.01, 1e-12) << "too late is left out";
}

TEST(RateSchedule, ignoresRatesThatCanNotBe)
{
    RateSchedule schedule(100);
    schedule.setRate(0);
    schedule.setRate(-5);
    schedule.setRate(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(schedule.rate(), 100);
}
