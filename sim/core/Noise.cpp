#include "core/Noise.h"

#include <cmath>

namespace sim {

namespace {

std::uint64_t mix(std::uint64_t z)
{
    z += 0x9e3779b97f4a7c15U;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31);
}

constexpr double twoPi = 6.283185307179586;

} // namespace

Noise::Noise(std::uint64_t seed)
    : m_seed(mix(seed))
{
}

std::uint64_t Noise::bits(std::uint64_t index) const
{
    return mix(m_seed ^ mix(index));
}

double Noise::uniform(std::uint64_t index) const
{
    return static_cast<double>(bits(index) >> 11) * 0x1.0p-53;
}

double Noise::gaussian(std::uint64_t index) const
{
    const double radius = std::sqrt(-2.0 * std::log(1.0 - uniform(2 * index)));
    return radius * std::cos(twoPi * uniform(2 * index + 1));
}

} // namespace sim
