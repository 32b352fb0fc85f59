#include "replay/ReplayDevice.h"

#include "core/Clock.h"
#include "device/SimFisheyeCamerasEx.h"
#include "replay/PictureReader.h"
#include "replay/ReplayFisheye.h"
#include "replay/ReplayImu.h"
#include "replay/ReplayPoses.h"
#include "replay/RgbdRecording.h"
#include "replay/RgbdReplay.h"

namespace sim {

namespace {

constexpr double usualCameraRate = 20;

/// What sensor.yaml doesn't tell, the first picture that can be read does.
void completeSizes(Recording &recording)
{
    for (std::size_t camera = 0; camera < recording.cameras.size(); ++camera) {
        SensorYaml &sensor = recording.cameras[camera];
        for (std::size_t i = 0; i < recording.frames.size() && sensor.width == 0; ++i) {
            try {
                const qv::FisheyeImage picture = readPicture(recording.frames[i].files[camera]);
                sensor.width = static_cast<int>(picture.width);
                sensor.height = static_cast<int>(picture.height);
            } catch (const std::exception &) {
                // Whoever plays the frame tells.
            }
        }
    }
}

Timeline timelineOf(const Recording &recording)
{
    std::vector<std::int64_t> times;
    double rate = 0;
    if (recording.frames.empty() && recording.imu.empty())
        return timelineOf(recording.poses, Clock::now());
    if (recording.frames.empty()) {
        for (const ImuRow &row : recording.imu)
            times.push_back(row.time);
    } else {
        for (const Recording::Frame &frame : recording.frames)
            times.push_back(frame.time);
        rate = recording.cameras.front().rate;
    }
    const double period = Timeline::usualPeriod(times, 1 / (rate > 0 ? rate : usualCameraRate));
    return {std::move(times), period, Clock::now()};
}

} // namespace

SimDevice::Components replayComponents(const std::shared_ptr<DeviceState> &state)
{
    if (RgbdRecording::isOne(state->config().folder))
        return rgbdComponents(state);
    Recording recording = Recording::open(state->config().folder);
    completeSizes(recording);
    const Timeline timeline = timelineOf(recording);
    SimDevice::Components components;
    if (!recording.frames.empty())
        components.fisheye = std::make_shared<SimFisheyeCamerasEx>(
            state, std::make_shared<ReplayFisheye>(recording, timeline));
    if (auto imu = ReplayImu::make(recording, timeline))
        components.imu = std::make_shared<SimImuSensor>(state, std::move(imu));
    const Pose camera =
        recording.cameras.empty() ? Pose::Identity() : recording.cameras.front().bodyFromSensor;
    addReplayPoses(state, components, std::move(recording.poses), camera, timeline);
    return components;
}

} // namespace sim
