#include "replay/RgbdReplay.h"

#include "core/Clock.h"
#include "replay/ReplayColor.h"
#include "replay/ReplayPoses.h"
#include "replay/ReplayTof.h"

namespace sim {

SimDevice::Components rgbdComponents(const std::shared_ptr<DeviceState> &state)
{
    RgbdRecording recording = RgbdRecording::open(state->config().folder);
    recording.completeSize();
    const Timeline timeline = recording.timeline(Clock::now());
    const ColorCodec codec = colorCodecByName(state->config().stream("color").codec, ColorCodec::Yuyv);
    SimDevice::Components components;
    if (const auto color = ReplayColor::make(recording, timeline, codec))
        components.color = std::make_shared<SimColorCamera>(state, color, nullptr);
    if (const auto depth = ReplayTof::make(recording, timeline)) {
        SimTofCamera::Setup setup;
        setup.family = SimTofCamera::First;
        setup.depth = SimTofCamera::Depth::Millimetres;
        if (components.color)
            setup.colorStreams = [weak = std::weak_ptr<SimColorCamera>(components.color)] {
                const auto alive = weak.lock();
                return alive && alive->streaming();
            };
        components.tof = std::make_shared<SimTofCamera>(state, depth, setup);
    }
    addReplayPoses(state, components, readPoseTrack(state->config().folder), Pose::Identity(), timeline);
    return components;
}

} // namespace sim
