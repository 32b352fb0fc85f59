#pragma once

#include <atomic>

/// The order of plain numbers that one thread writes and another reads: nothing hangs on when they are seen.
inline constexpr auto relaxed = std::memory_order_relaxed;
