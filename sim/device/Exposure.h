#pragma once

#include <atomic>

namespace sim {

/// Exposure of a grey sensor: how bright, how noisy and how blurred a picture becomes. Thread-safe.
class Exposure {
public:
    struct Effect {
        double factor = 1; ///< of brightness; 1 shows the scene as the world has it
        double noise = 0; ///< deviation in grey levels
        double milliseconds = 0; ///< how long the shutter is open
    };

    /// Gain 1 and up, exposure above 0; false if they can't be.
    bool set(bool automatic, int gain, double milliseconds);
    /// `sceneMean` is the mean grey level at factor 1, which automatic exposure brings to its aim.
    Effect effect(double sceneMean) const;
    bool automatic() const { return m_automatic; }

    static constexpr double aim = 110; ///< mean grey level
    static constexpr double sharpMilliseconds = 8; ///< a shutter that is open longer smears what moves

private:
    std::atomic<bool> m_automatic{true};
    std::atomic<int> m_gain{10};
    std::atomic<double> m_milliseconds{10};
};

} // namespace sim
