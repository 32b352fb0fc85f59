#pragma once

#include "core/Schedule.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sim {

/// The records of one recorded sensor, each at its time within an endless loop.
class LoopSchedule : public Schedule {
public:
    static constexpr double pictureBacklog = 0.1; ///< seconds
    static constexpr double readingBacklog = 0.5; ///< seconds, of what comes in small records

    struct Place {
        std::int64_t loop = 0;
        std::size_t index = 0;
    };

    /// `play` in seconds from the loop's start, ascending, below `duration`, at least one.
    /// `backlog` is how many seconds the stream may be behind before it leaves records out.
    LoopSchedule(std::vector<double> play, double duration, double origin, double backlog);

    double first(double now) const override;
    double next(double due, double now) const override;
    /// What plays at a time that the schedule gave.
    Place at(double due) const;

private:
    const std::vector<double> m_play;
    const double m_duration;
    const double m_origin;
    const double m_backlog;
};

} // namespace sim
