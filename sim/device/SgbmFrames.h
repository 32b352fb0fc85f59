#pragma once

#include "device/qv/Records.h"

#include <opencv2/core.hpp>

namespace sim {

/// Turns what a matcher has found into the samples of the unit's frames, with the unit's settings: what is
/// nearer or farther than they allow becomes 0, so does what has less than a pixel of disparity or more than
/// `maxDisparity`.
class SgbmFrames {
public:
    /// Frames of that mode have 16 bits a disparity, the lower five behind the point; all others have 8.
    static constexpr int fineMode = 3;

    SgbmFrames(const qv::SgbmConfig &config, int width);

    /// Of a point one metre away, in pixels: baseline times the focal length of a pinhole that is `fov`
    /// degrees wide, in a picture magnified by the zoom. 0 if there is no such lens.
    double disparityAtOneMetre() const { return m_scale; }
    bool fine() const { return m_fine; }

    /// `z`: CV_32FC1, metres, 0 for none; `out`: CV_16UC1, millimetres.
    void depth(const cv::Mat &z, cv::Mat &out) const;
    /// `out`: CV_8UC1 in whole pixels, or CV_16UC1 in 1/32 pixel.
    void disparity(const cv::Mat &z, cv::Mat &out) const;

private:
    template <class Sample, class Convert>
    void convert(const cv::Mat &z, cv::Mat &out, const Convert &sample) const;

    const double m_scale;
    const bool m_fine;
    float m_nearest; ///< millimetres
    float m_farthest;
};

/// The zoom that a setting stands for: 1 without dewarping and where it is no number.
double effectiveZoom(const qv::SgbmConfig &config);

} // namespace sim
