#pragma once

#include <cstdint>

namespace sim {

/// Random numbers that are a function of a seed and an index, not of history: the same moment of the same
/// sensor reads the same however many readings went before. Mixer: splitmix64 (Steele, Lea and Flood, 2014).
class Noise {
public:
    explicit Noise(std::uint64_t seed);

    std::uint64_t bits(std::uint64_t index) const;
    /// 0 to below 1.
    double uniform(std::uint64_t index) const;
    /// Mean 0, deviation 1 (Box and Muller).
    double gaussian(std::uint64_t index) const;

private:
    std::uint64_t m_seed;
};

} // namespace sim
