#include "replay/TimeStamp.h"

#include <charconv>
#include <cmath>

namespace sim {

namespace {

/// Seconds since 1970 don't get there before the year 5138, nanoseconds were there after a hundred seconds.
constexpr double largestSeconds = 1e11;

} // namespace

std::optional<std::int64_t> parseTimeStamp(const std::string &text)
{
    const char *end = text.data() + text.size();
    if (text.find_first_of(".eE") == std::string::npos) {
        std::int64_t value = 0;
        const auto [rest, error] = std::from_chars(text.data(), end, value);
        return error == std::errc() && rest == end && value >= 0 ? std::optional(value) : std::nullopt;
    }
    const std::optional<double> value = parseNumber(text);
    if (!value || *value < 0 || *value > 9e18)
        return std::nullopt;
    if (*value >= largestSeconds)
        return std::llround(*value);
    // The digits after the point by themselves: a double has none to spare for nanoseconds.
    const double whole = std::floor(*value);
    if (text.find_first_of("eE") != std::string::npos)
        return std::llround(*value * 1e9);
    std::string digits = text.substr(text.find('.') + 1).substr(0, 9);
    digits.resize(9, '0');
    return static_cast<std::int64_t>(whole) * 1000000000 + std::stoll(digits);
}

std::optional<double> parseNumber(const std::string &text)
{
    double value = 0;
    const char *end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc() || rest != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}

} // namespace sim
