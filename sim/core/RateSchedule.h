#pragma once

#include "core/Schedule.h"

#include <atomic>

namespace sim {

/// A steady rate on a fixed grid, (k + phase) / rate, so that it doesn't drift and two streams of one rate
/// and phase have the same times.
class RateSchedule : public Schedule {
public:
    /// `backlog` is how many seconds a stream may be behind before it leaves records out.
    explicit RateSchedule(double hz, double phase = 0, double backlog = 0.03);

    double first(double now) const override;
    double next(double due, double now) const override;

    double rate() const;
    /// Ignores what isn't above zero.
    void setRate(double hz);
    /// A fraction of the period, 0 to 1.
    void setPhase(double phase);

private:
    std::atomic<double> m_rate;
    std::atomic<double> m_phase;
    const double m_backlog;
};

} // namespace sim
