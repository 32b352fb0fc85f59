#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace sim {

/// Nanoseconds from text: whole numbers are nanoseconds, numbers with a point or an exponent are seconds
/// unless they are too large for that. Nothing if the text is no time.
std::optional<std::int64_t> parseTimeStamp(const std::string &text);

/// A finite number; nothing if the text has anything else in it.
std::optional<double> parseNumber(const std::string &text);

} // namespace sim
