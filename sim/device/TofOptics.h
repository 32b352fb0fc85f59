#pragma once

#include "core/Noise.h"
#include "device/TofMode.h"

#include <opencv2/core.hpp>

namespace sim {

/// What a ToF sensor makes of the true depth of its view. One thread at a time.
class TofOptics {
public:
    explicit TofOptics(std::uint64_t seed);

    /// `depth`: CV_32FC1, true metres in, readings out, 0 without one. `light` is how much the sensor gets, 1
    /// being its own choice: less makes noise. `moment` decides which noise; no reading is farther off than
    /// three deviations.
    void measure(cv::Mat &depth, const TofMode &mode, double light, std::uint64_t moment);

    /// How bright its own lamp makes what it sees: `reflectance` CV_8UC1, `depth` CV_32FC1 true metres, `out`
    /// CV_16UC1, 0 to 255. White at one metre is full at light 1; the amplitude goes by the square of the
    /// distance and is then raised to 1 / gamma.
    static void infrared(
        const cv::Mat &reflectance, const cv::Mat &depth, double light, double gamma, cv::Mat &out);

private:
    void prepareNoise(cv::Size size);
    void leaveOutEdges(cv::Mat &depth);

    const Noise m_noise;
    cv::Mat m_field; ///< CV_32FC1, deviation 1, larger than a picture
    cv::Mat m_low;
    cv::Mat m_high;
};

} // namespace sim
