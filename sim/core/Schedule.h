#pragma once

namespace sim {

/// Says when the records of a stream are due, in seconds of the clock. Thread-safe.
class Schedule {
public:
    virtual ~Schedule() = default;
    /// The first due time at or after `now`.
    virtual double first(double now) const = 0;
    /// The due time after `due`. Records that are too far behind `now` are left out.
    virtual double next(double due, double now) const = 0;
};

} // namespace sim
