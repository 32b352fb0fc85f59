#include "device/DepthPacking.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace sim {

void toMillimetres(const cv::Mat &metres, cv::Mat &millimetres)
{
    millimetres.create(metres.size(), CV_16SC1);
    for (int y = 0; y < metres.rows; ++y) {
        const auto *from = metres.ptr<float>(y);
        auto *to = millimetres.ptr<std::int16_t>(y);
        for (int x = 0; x < metres.cols; ++x) {
            const float rounded = from[x] * 1000 + 0.5F;
            to[x] = static_cast<std::int16_t>(rounded < 32768 ? rounded : 0);
        }
    }
}

cv::Mat metresOf(const unsigned char *millimetres, cv::Size size)
{
    cv::Mat metres(size, CV_32FC1);
    auto *to = metres.ptr<float>();
    for (std::size_t i = 0; i < metres.total(); ++i) {
        std::int16_t sample = 0;
        std::memcpy(&sample, millimetres + 2 * i, sizeof sample);
        to[i] = std::max<float>(sample, 0) / 1000;
    }
    return metres;
}

cv::Mat floatsOf(const unsigned char *floats, cv::Size size)
{
    cv::Mat copy(size, CV_32FC1);
    std::memcpy(copy.data, floats, copy.total() * sizeof(float));
    return copy;
}

void packAligned(const cv::Mat &color, const cv::Mat &depth, unsigned char *to)
{
    for (int y = 0; y < depth.rows; ++y) {
        const unsigned char *rgb = color.ptr(y);
        const auto *metres = depth.ptr<float>(y);
        for (int x = 0; x < depth.cols; ++x, rgb += 3, to += alignedPixel) {
            std::memcpy(to, rgb, 3);
            std::memcpy(to + 3, metres + x, sizeof(float));
        }
    }
}

double shareOfReadings(const cv::Mat &depth)
{
    return depth.empty() ? 0 : cv::countNonZero(depth) / static_cast<double>(depth.total());
}

} // namespace sim
