#pragma once

#include <cstdint>
#include <vector>

namespace sim {

/// Recorded times laid out on the clock in an endless loop, from the moment on at which the recording was
/// plugged in. Gaps of more than five seconds, as a recorder leaves that was stopped, are shortened to one
/// period.
class Timeline {
public:
    /// `times` in ns, ascending, at least one; `period` in seconds is the distance from the last one to the
    /// first of the next loop.
    Timeline(std::vector<std::int64_t> times, double period, double origin);

    /// Seconds of the clock at which the first loop begins.
    double origin() const { return m_origin; }
    double duration() const { return m_duration; }
    const std::vector<double> &playTimes() const { return m_play; }
    /// Seconds from the loop's start at which a recorded time plays; below 0 or from `duration` on if it is
    /// outside.
    double playTime(std::int64_t time) const;

    /// The usual distance of two times in seconds; `fallback` if there are not two.
    static double usualPeriod(const std::vector<std::int64_t> &times, double fallback);

private:
    std::vector<std::int64_t> m_times;
    std::vector<double> m_play;
    double m_duration;
    double m_origin;
};

} // namespace sim
