// While the camera settles the thread of the interface sleeps, so nothing on it can meet the lock closed;
// these are the moments beside it that can be met.
#include "streams/TofData.h"
#include "support/FakeTofCamera.h"

#include <functional>

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
