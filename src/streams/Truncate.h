#pragma once

#include <limits>

/// Toward zero, and defined for what no int can hold: its limits, and 0 for what is no number.
inline int truncated(double value)
{
    constexpr double limit = 2147483648.0;
    if (value >= limit)
        return std::numeric_limits<int>::max();
    if (value <= -limit - 1)
        return std::numeric_limits<int>::min();
    return value == value ? int(value) : 0;
}
