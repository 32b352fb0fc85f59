#pragma once

#include <cstddef>
#include <opencv2/core.hpp>

namespace sim {

/// Bytes of a pixel of `qv::DepthColorImage`: red, green, blue, and metres as a float.
constexpr std::size_t alignedPixel = 7;

/// CV_32FC1 metres to CV_16SC1 millimetres, rounded; what doesn't fit has no reading.
void toMillimetres(const cv::Mat &metres, cv::Mat &millimetres);

/// 16-bit signed millimetres to a CV_32FC1 picture in metres; negative ones have no reading.
cv::Mat metresOf(const unsigned char *millimetres, cv::Size size);

/// A copy of packed floats, which may start at any address.
cv::Mat floatsOf(const unsigned char *floats, cv::Size size);

/// `color` CV_8UC3 and `depth` CV_32FC1 of one size, pixel by pixel with nothing between.
void packAligned(const cv::Mat &color, const cv::Mat &depth, unsigned char *to);

/// 0 to 1.
double shareOfReadings(const cv::Mat &depth);

} // namespace sim
