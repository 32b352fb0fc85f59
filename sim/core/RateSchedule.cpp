#include "core/RateSchedule.h"

#include <cmath>

namespace sim {

RateSchedule::RateSchedule(double hz, double phase, double backlog)
    : m_rate(hz)
    , m_phase(phase)
    , m_backlog(backlog)
{
}

double RateSchedule::first(double now) const
{
    const double rate = m_rate;
    const double phase = m_phase;
    return (std::ceil(now * rate - phase) + phase) / rate;
}

double RateSchedule::next(double due, double now) const
{
    const double rate = m_rate;
    const double phase = m_phase;
    const double following = (std::floor(due * rate - phase + 0.5) + 1 + phase) / rate;
    return following < now - m_backlog ? first(now) : following;
}

double RateSchedule::rate() const
{
    return m_rate;
}

void RateSchedule::setRate(double hz)
{
    if (hz > 0 && std::isfinite(hz))
        m_rate = hz;
}

void RateSchedule::setPhase(double phase)
{
    m_phase = phase;
}

} // namespace sim
