#include "replay/Timeline.h"

#include <algorithm>

namespace sim {

namespace {

constexpr double longestGap = 5; // seconds

double seconds(std::int64_t nanoseconds)
{
    return static_cast<double>(nanoseconds) * 1e-9;
}

} // namespace

Timeline::Timeline(std::vector<std::int64_t> times, double period, double origin)
    : m_times(std::move(times))
    , m_origin(origin)
{
    double play = 0;
    for (std::size_t i = 0; i < m_times.size(); ++i) {
        const double gap = i == 0 ? 0 : seconds(m_times[i] - m_times[i - 1]);
        play += gap > longestGap ? period : gap;
        m_play.push_back(play);
    }
    m_duration = play + period;
}

double Timeline::playTime(std::int64_t time) const
{
    const auto following = std::upper_bound(m_times.begin(), m_times.end(), time);
    if (following == m_times.begin())
        return seconds(time - m_times.front());
    const auto index = static_cast<std::size_t>(following - m_times.begin()) - 1;
    const double play = m_play[index] + seconds(time - m_times[index]);
    // Inside a gap that has been shortened there is no room.
    return following == m_times.end() ? play : std::min(play, m_play[index + 1]);
}

double Timeline::usualPeriod(const std::vector<std::int64_t> &times, double fallback)
{
    if (times.size() < 2)
        return fallback;
    std::vector<std::int64_t> distances;
    for (std::size_t i = 1; i < times.size(); ++i)
        distances.push_back(times[i] - times[i - 1]);
    const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
    std::nth_element(distances.begin(), middle, distances.end());
    return std::clamp(seconds(*middle), 0.001, longestGap);
}

} // namespace sim
