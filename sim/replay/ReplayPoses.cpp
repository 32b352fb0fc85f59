#include "replay/ReplayPoses.h"

#include "core/Clock.h"

#include <algorithm>

namespace sim {

namespace {

constexpr double shortestGap = 0.5; // seconds
constexpr double gapPeriods = 5;
constexpr double usualPosePeriod = 0.01; // seconds
/// Hand-held recordings turn faster than the simulated devices do.
constexpr double turnLimit = 2; // rad/s

std::vector<std::int64_t> timesOf(const std::vector<PoseRow> &track)
{
    std::vector<std::int64_t> times;
    times.reserve(track.size());
    for (const PoseRow &row : track)
        times.push_back(row.time);
    return times;
}

double turnRate(const PoseRow &before, const PoseRow &after)
{
    const double seconds = static_cast<double>(after.time - before.time) * 1e-9;
    const Eigen::Matrix3d turn = before.worldFromBody.linear().transpose() * after.worldFromBody.linear();
    return std::abs(Eigen::AngleAxisd(turn).angle()) / seconds;
}

} // namespace

std::shared_ptr<ReplayPoses> ReplayPoses::make(const std::vector<PoseRow> &track, const Timeline &timeline)
{
    const double gap =
        std::max(shortestGap, gapPeriods * Timeline::usualPeriod(timesOf(track), usualPosePeriod));
    std::vector<Entry> entries;
    std::vector<double> play;
    for (const PoseRow &row : track) {
        const double time = timeline.playTime(row.time);
        if (time < 0 || time >= timeline.duration() || (!play.empty() && time <= play.back()))
            continue;
        Entry entry{row, 0, false};
        if (!play.empty() && time - play.back() > gap) {
            entries.push_back({entries.back().row, 0, true});
            play.push_back(play.back() + gap / 2);
        } else if (!play.empty()) {
            entry.turnRate = turnRate(entries.back().row, row);
        }
        entries.push_back(entry);
        play.push_back(time);
    }
    if (entries.empty())
        return nullptr;
    return std::shared_ptr<ReplayPoses>(new ReplayPoses(std::move(entries), std::move(play), timeline));
}

ReplayPoses::ReplayPoses(std::vector<Entry> entries, std::vector<double> play, const Timeline &timeline)
    : m_entries(std::move(entries))
    , m_schedule(std::make_shared<const LoopSchedule>(
          std::move(play), timeline.duration(), timeline.origin(), LoopSchedule::readingBacklog))
    , m_duration(timeline.duration())
{
}

std::optional<PoseSource::Estimate> ReplayPoses::estimate(const Request &request)
{
    const LoopSchedule::Place place = m_schedule->at(request.due);
    const Entry &entry = m_entries[place.index];
    if (entry.gap)
        return std::nullopt;
    // Later loops go on in time, as a device's clock does.
    return Estimate{entry.row.worldFromBody, entry.turnRate,
        entry.row.time / 1000 + Clock::microseconds(static_cast<double>(place.loop) * m_duration)};
}

void addReplayPoses(const std::shared_ptr<DeviceState> &state, SimDevice::Components &components,
    std::vector<PoseRow> track, const Pose &bodyFromCamera, const Timeline &timeline)
{
    for (PoseRow &row : track)
        row.worldFromBody = row.worldFromBody * bodyFromCamera;
    turnUpright(track);
    SimSlam::Setup setup;
    setup.poses = ReplayPoses::make(track, timeline);
    setup.cameras = components.fisheye;
    setup.turnLimit = turnLimit;
    if (setup.poses)
        components.slam = std::make_shared<SimSlam>(state, std::move(setup));
}

Timeline timelineOf(const std::vector<PoseRow> &track, double origin)
{
    std::vector<std::int64_t> times = timesOf(track);
    const double period = Timeline::usualPeriod(times, usualPosePeriod);
    return {std::move(times), period, origin};
}

} // namespace sim
