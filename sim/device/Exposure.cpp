#include "device/Exposure.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

/// A gain of 10 for 10 ms shows the world as it is.
constexpr double unitLight = 100;
constexpr double longestAutomatic = 12; // ms; a head turns too fast for more
constexpr double maximumFactor = 16;

double noiseOf(double gain)
{
    return 0.35 * std::sqrt(gain);
}

} // namespace

bool Exposure::set(bool automatic, int gain, double milliseconds)
{
    if (gain < 1 || gain > 255 || !(milliseconds > 0) || milliseconds > 1000)
        return false;
    m_automatic = automatic;
    m_gain = gain;
    m_milliseconds = milliseconds;
    return true;
}

Exposure::Effect Exposure::effect(double sceneMean) const
{
    if (!m_automatic) {
        const double gain = m_gain;
        const double milliseconds = m_milliseconds;
        return {gain * milliseconds / unitLight, noiseOf(gain), milliseconds};
    }
    const double factor = std::clamp(aim / std::max(sceneMean, 1.0), 1 / maximumFactor, maximumFactor);
    const double milliseconds = std::min(longestAutomatic, factor * unitLight / 4);
    return {factor, noiseOf(factor * unitLight / milliseconds), milliseconds};
}

} // namespace sim
