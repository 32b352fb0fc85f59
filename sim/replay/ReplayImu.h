#pragma once

#include "device/ImuSource.h"
#include "replay/LoopSchedule.h"
#include "replay/Recording.h"
#include "replay/Timeline.h"

namespace sim {

/// Recorded inertial readings at the times they were taken, in step with the recording's pictures. There is
/// no magnetometer in such recordings.
class ReplayImu : public ImuSource {
public:
    /// Null if no reading falls into the timeline.
    static std::unique_ptr<ReplayImu> make(const Recording &recording, const Timeline &timeline);

    std::shared_ptr<const Schedule> schedule() const override { return m_schedule; }
    std::optional<qv::Imu> reading(double due, bool raw) const override;

private:
    ReplayImu(std::vector<ImuRow> rows, std::vector<double> play, const Timeline &timeline);

    const std::vector<ImuRow> m_rows;
    const std::shared_ptr<const LoopSchedule> m_schedule;
    const double m_duration;
};

} // namespace sim
