#include "replay/LoopSchedule.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

/// Far below the distance of two records, far above the rounding of a clock of days.
constexpr double instant = 1e-6;

} // namespace

LoopSchedule::LoopSchedule(std::vector<double> play, double duration, double origin, double backlog)
    : m_play(std::move(play))
    , m_duration(duration)
    , m_origin(origin)
    , m_backlog(backlog)
{
}

double LoopSchedule::first(double now) const
{
    double loop = std::max(0.0, std::floor((now - m_origin) / m_duration));
    const double within = now - m_origin - loop * m_duration;
    auto found = std::lower_bound(m_play.begin(), m_play.end(), within);
    if (found == m_play.end()) {
        found = m_play.begin();
        ++loop;
    }
    return m_origin + loop * m_duration + *found;
}

double LoopSchedule::next(double due, double now) const
{
    const double following = first(due + instant);
    return following < now - m_backlog ? first(now) : following;
}

LoopSchedule::Place LoopSchedule::at(double due) const
{
    const double position = due + instant - m_origin;
    double loop = std::max(0.0, std::floor(position / m_duration));
    auto found = std::upper_bound(m_play.begin(), m_play.end(), position - loop * m_duration);
    if (found == m_play.begin()) {
        found = m_play.end();
        loop = std::max(0.0, loop - 1);
    }
    return {static_cast<std::int64_t>(loop), static_cast<std::size_t>(found - m_play.begin()) - 1};
}

} // namespace sim
