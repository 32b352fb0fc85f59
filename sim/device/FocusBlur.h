#pragma once

#include <opencv2/core.hpp>

namespace sim {

/// What a lens that is focused somewhere else does to a picture: each pixel is spread over its circle of
/// confusion, aperture * |1 / depth - 1 / focus| in radians. One thread at a time.
class FocusBlur {
public:
    /// The nearest distance that the lens can be focused at, metres.
    static constexpr double nearest = 0.05;

    /// `rgb`: CV_8UC3. `depth`: CV_32FC1 of the same view, of any size, metres; `focal` is the focal length
    /// in pixels of `rgb`. Leaves a picture that is sharp all over as it is.
    void apply(cv::Mat &rgb, const cv::Mat &depth, double focus, double focal);

    /// The depth in the middle of the picture, at which automatic focus settles, metres.
    static double middle(const cv::Mat &depth);

private:
    void blur(const cv::Mat &rgb);
    void blend(cv::Mat &rgb) const;

    cv::Mat m_place; ///< CV_32FC1, 0 the sharp picture, 1 the next blurred one, ...
    cv::Mat m_fullPlace;
    cv::Mat m_levels[4];
    cv::Mat m_small;
};

} // namespace sim
