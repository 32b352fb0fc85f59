#pragma once

/// How often the streams count their frames, in milliseconds.
inline constexpr int rateIntervalMs = 1000;

/// How long a camera gets to settle after it was switched, in milliseconds.
inline constexpr unsigned long settleMs = 100;
