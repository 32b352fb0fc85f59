#include "core/Clock.h"

#include <cmath>

namespace sim {

std::chrono::steady_clock::time_point Clock::origin()
{
    static const auto start = std::chrono::steady_clock::now();
    return start;
}

double Clock::now()
{
    const auto start = origin();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::chrono::steady_clock::time_point Clock::at(double seconds)
{
    const auto offset = std::chrono::duration<double>(seconds);
    return origin() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(offset);
}

std::int64_t Clock::microseconds(double seconds)
{
    return std::llround(seconds * 1e6);
}

} // namespace sim
