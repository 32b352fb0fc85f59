#pragma once

#include "device/PoseSource.h"
#include "device/SimDevice.h"
#include "replay/LoopSchedule.h"
#include "replay/PoseTrack.h"
#include "replay/Timeline.h"

namespace sim {

/// A recorded trajectory as a stream of poses, each at the time it was taken, in step with the recording's
/// other streams. Where it has a gap the device is lost.
class ReplayPoses : public PoseSource {
public:
    /// Null if no pose falls into the timeline.
    static std::shared_ptr<ReplayPoses> make(const std::vector<PoseRow> &track, const Timeline &timeline);

    std::shared_ptr<const Schedule> schedule() const override { return m_schedule; }
    std::optional<Estimate> estimate(const Request &request) override;

private:
    struct Entry {
        PoseRow row;
        double turnRate = 0; ///< rad/s
        bool gap = false; ///< no pose, but the beginning of a gap
    };

    ReplayPoses(std::vector<Entry> entries, std::vector<double> play, const Timeline &timeline);

    const std::vector<Entry> m_entries;
    const std::shared_ptr<const LoopSchedule> m_schedule;
    const double m_duration;
};

/// Gives a replayed device the poses of its recording, if it has any, as they are of the camera at
/// `bodyFromCamera` that looks along its z with y down.
void addReplayPoses(const std::shared_ptr<DeviceState> &state, SimDevice::Components &components,
    std::vector<PoseRow> track, const Pose &bodyFromCamera, const Timeline &timeline);

/// The times of a trajectory that comes without anything else.
Timeline timelineOf(const std::vector<PoseRow> &track, double origin);

} // namespace sim
