#pragma once

#include "core/Noise.h"

#include <cstdint>
#include <opencv2/core.hpp>

namespace sim {

/// Read-out noise of a grey sensor, laid over a picture from a field made once: cheap enough for every
/// picture. One thread at a time.
class SensorNoise {
public:
    explicit SensorNoise(std::uint64_t seed);
    /// Adds noise of that deviation in grey levels; `moment` decides which.
    void add(cv::Mat &picture, double deviation, std::uint64_t moment);

private:
    void prepare(cv::Size size, double deviation);

    const Noise m_noise;
    cv::Size m_size;
    double m_deviation = -1;
    cv::Mat m_above; ///< CV_8UC1, what is added
    cv::Mat m_below; ///< CV_8UC1, what is taken away
};

} // namespace sim
