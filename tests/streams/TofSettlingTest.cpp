// While the camera settles the thread of the interface sleeps, so nothing on it can meet the lock closed:
// there are the moments beside it, and other threads.
#include "streams/TofData.h"
#include "support/FakeTofCamera.h"
#include "support/Wait.h"

#include <QElapsedTimer>
#include <atomic>
#include <functional>
#include <thread>

namespace {

class WatchedCamera : public FakeTofCamera {
public:
    using FakeTofCamera::start;

    bool start() override
    {
        watch();
        return FakeTofCamera::start();
    }

    bool stop() override
    {
        watch();
        return FakeTofCamera::stop();
    }

    std::function<void()> watch = [] {};
};

} // namespace

TEST(TofSettling, theSwitchIsFreeBeforeAndAfter)
{
    const auto camera = std::make_shared<WatchedCamera>();
    auto tof = std::make_unique<TofData>(camera, nullptr);
    std::vector<std::string> moments;
    const auto note = [&](const char *moment) {
        moments.push_back(std::string(moment) + (tof->isEnable() ? " free" : " locked")
            + (tof->isRunning() ? " running" : " idle"));
    };
    camera->watch = [&] { note("camera"); };
    QObject::connect(tof.get(), &TofData::tofRunning, [&](int v) { note(v == 0 ? "on" : "off"); });

    tof->control(true);
    tof->control(false);
    camera->watch = [] {};

    EXPECT_THAT(moments,
        testing::ElementsAre("camera free idle", "on free running", "camera free running", "off free idle"));
}

TEST(TofSettling, anotherThreadSeesItLockedAndTheStreamChangeOnlyAfterwards)
{
    TofData tof(std::make_shared<FakeTofCamera>(), nullptr);
    std::atomic<bool> begun{false}, done{false};
    std::atomic<int> locked{0};
    std::atomic<qint64> changedAfter{-1};
    bool target = true;
    QElapsedTimer since;
    const auto watch = [&] {
        begun = true;
        while (!done) {
            if (changedAfter < 0 && tof.isRunning() == target)
                changedAfter = since.elapsed();
            if (!tof.isEnable())
                ++locked;
            std::this_thread::yield();
        }
    };
    for (const bool enable : {true, false}) {
        target = enable;
        begun = done = false;
        locked = 0;
        changedAfter = -1;
        since.start();
        std::thread watcher(watch);
        while (!begun)
            std::this_thread::yield();
        tof.control(enable);
        EXPECT_TRUE(tof.isEnable());
        EXPECT_TRUE(waitFor([&] { return changedAfter >= 0; }));
        done = true;
        watcher.join();
        EXPECT_GT(locked, 0);
        EXPECT_GE(changedAfter, 99);
    }
}
