#pragma once

#include <chrono>
#include <cstdint>

namespace sim {

/// The one clock that all devices and the world share: seconds since the library was first used. It never
/// goes back.
class Clock {
public:
    static double now();
    /// The moment at which `now` answers `seconds`.
    static std::chrono::steady_clock::time_point at(double seconds);
    static std::int64_t microseconds(double seconds);

private:
    static std::chrono::steady_clock::time_point origin();
};

} // namespace sim
