#include "device/FocusBlur.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace sim {

namespace {

constexpr double aperture = 0.002; // metres
/// Deviations in pixels of the pictures that are blended; the first is the picture itself.
constexpr float deviations[] = {0, 1.2F, 2.8F, 6.4F};
/// How much smaller the picture may be made before it is blurred, and by how much it then is.
constexpr struct {
    int shrink;
    double deviation;
} recipes[] = {{1, 0}, {1, 1.2}, {2, 1.3}, {4, 1.5}};
constexpr float hardlySeen = 0.25F;

/// Where a deviation lies between those of the list.
float placeOf(float deviation)
{
    for (int i = 1; i < 4; ++i) {
        if (deviation < deviations[i])
            return static_cast<float>(i - 1)
                + (deviation - deviations[i - 1]) / (deviations[i] - deviations[i - 1]);
    }
    return 3;
}

} // namespace

double FocusBlur::middle(const cv::Mat &depth)
{
    const int w = std::max(1, depth.cols / 5);
    const int h = std::max(1, depth.rows / 5);
    const cv::Mat part = depth(cv::Rect((depth.cols - w) / 2, (depth.rows - h) / 2, w, h)).clone();
    std::vector<float> depths(part.begin<float>(), part.end<float>());
    const auto half = depths.begin() + static_cast<std::ptrdiff_t>(depths.size() / 2);
    std::nth_element(depths.begin(), half, depths.end());
    return *half;
}

void FocusBlur::apply(cv::Mat &rgb, const cv::Mat &depth, double focus, double focal)
{
    // A disc of diameter d has the deviation d / 4 along either axis.
    const auto scale = static_cast<float>(aperture * focal / 4);
    const auto inverse = static_cast<float>(1 / std::max(focus, nearest));
    m_place.create(depth.size(), CV_32FC1);
    float worst = 0;
    for (int y = 0; y < depth.rows; ++y) {
        const auto *from = depth.ptr<float>(y);
        auto *to = m_place.ptr<float>(y);
        for (int x = 0; x < depth.cols; ++x) {
            const float deviation = from[x] > 0 ? scale * std::abs(1 / from[x] - inverse) : 0;
            worst = std::max(worst, deviation);
            to[x] = placeOf(deviation);
        }
    }
    if (worst < hardlySeen)
        return;
    blur(rgb);
    cv::resize(m_place, m_fullPlace, rgb.size(), 0, 0, cv::INTER_LINEAR);
    blend(rgb);
}

void FocusBlur::blur(const cv::Mat &rgb)
{
    m_levels[0] = rgb.clone();
    for (int i = 1; i < 4; ++i) {
        const auto &[shrink, deviation] = recipes[i];
        const cv::Size size(std::max(1, rgb.cols / shrink), std::max(1, rgb.rows / shrink));
        cv::resize(rgb, m_small, size, 0, 0, cv::INTER_AREA);
        cv::GaussianBlur(m_small, m_small, {0, 0}, deviation);
        cv::resize(m_small, m_levels[i], rgb.size(), 0, 0, cv::INTER_LINEAR);
    }
}

void FocusBlur::blend(cv::Mat &rgb) const
{
    for (int y = 0; y < rgb.rows; ++y) {
        const auto *place = m_fullPlace.ptr<float>(y);
        const unsigned char *levels[4];
        for (int i = 0; i < 4; ++i)
            levels[i] = m_levels[i].ptr(y);
        unsigned char *to = rgb.ptr(y);
        for (int x = 0; x < rgb.cols; ++x) {
            const int fixed = static_cast<int>(place[x] * 256);
            const int level = std::min(fixed >> 8, 2);
            const int part = fixed - (level << 8);
            const unsigned char *a = levels[level] + std::ptrdiff_t(3) * x;
            const unsigned char *b = levels[level + 1] + std::ptrdiff_t(3) * x;
            for (int c = 0; c < 3; ++c)
                to[3 * x + c] = static_cast<unsigned char>((a[c] * (256 - part) + b[c] * part) >> 8);
        }
    }
}

} // namespace sim
