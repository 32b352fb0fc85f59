#include "replay/ReplayImu.h"

#include "core/Clock.h"
#include "device/Vectors.h"

namespace sim {

std::unique_ptr<ReplayImu> ReplayImu::make(const Recording &recording, const Timeline &timeline)
{
    std::vector<ImuRow> rows;
    std::vector<double> play;
    for (const ImuRow &row : recording.imu) {
        const double time = timeline.playTime(row.time);
        if (time < 0 || time >= timeline.duration() || (!play.empty() && time <= play.back()))
            continue;
        rows.push_back(row);
        play.push_back(time);
    }
    if (rows.empty())
        return nullptr;
    return std::unique_ptr<ReplayImu>(new ReplayImu(std::move(rows), std::move(play), timeline));
}

ReplayImu::ReplayImu(std::vector<ImuRow> rows, std::vector<double> play, const Timeline &timeline)
    : m_rows(std::move(rows))
    , m_schedule(std::make_shared<const LoopSchedule>(
          std::move(play), timeline.duration(), timeline.origin(), LoopSchedule::readingBacklog))
    , m_duration(timeline.duration())
{
}

std::optional<qv::Imu> ReplayImu::reading(double due, bool) const
{
    const LoopSchedule::Place place = m_schedule->at(due);
    const ImuRow &row = m_rows[place.index];
    qv::Imu imu;
    imu.gyro = vector3(row.gyro);
    imu.accel = vector3(row.accel);
    imu.edgeTimestampUs = row.time / 1000 + Clock::microseconds(static_cast<double>(place.loop) * m_duration);
    return imu;
}

} // namespace sim
