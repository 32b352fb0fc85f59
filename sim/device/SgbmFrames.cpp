#include "device/SgbmFrames.h"

#include "device/StereoMatcher.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

constexpr double smallestZoom = 0.5;
constexpr double largestZoom = 10;
constexpr double smallestDisparity = 1;
constexpr double absurdScale = 1e9;

double scaleOf(const qv::SgbmConfig &config, int width)
{
    const double focal =
        effectiveZoom(config) * StereoMatcher::focalLength(width, static_cast<double>(config.fov));
    const double scale = static_cast<double>(config.baseline) * focal;
    return scale > 0 && scale < absurdScale ? scale : 0;
}

} // namespace

double effectiveZoom(const qv::SgbmConfig &config)
{
    const double zoom = static_cast<double>(config.dewarpZoomFactor);
    if (config.enableDewarp == 0 || std::isnan(zoom))
        return 1;
    return std::clamp(zoom, smallestZoom, largestZoom);
}

SgbmFrames::SgbmFrames(const qv::SgbmConfig &config, int width)
    : m_scale(scaleOf(config, width))
    , m_fine(config.mode == fineMode)
    , m_nearest(config.minDistance)
    , m_farthest(static_cast<float>(std::min<double>(config.maxDistance, 1000 * m_scale / smallestDisparity)))
{
    // Nothing is found at all among no disparities.
    if (config.maxDisparity == 0 || m_scale <= 0)
        m_farthest = -1;
    else
        m_nearest = std::max(m_nearest, static_cast<float>(1000 * m_scale / config.maxDisparity));
}

template <class Sample, class Convert>
void SgbmFrames::convert(const cv::Mat &z, cv::Mat &out, const Convert &sample) const
{
    const float nearest = m_nearest;
    const float farthest = m_farthest;
    for (int y = 0; y < z.rows; ++y) {
        const float *from = z.ptr<float>(y);
        Sample *to = out.ptr<Sample>(y);
        for (int x = 0; x < z.cols; ++x) {
            const float millimetres = 1000 * from[x];
            const bool found = millimetres > 0 && millimetres >= nearest && millimetres <= farthest;
            // Of something harmless where nothing is found, so that all lanes may be worked out at once.
            const float value = sample(found ? millimetres : nearest + 1);
            to[x] = static_cast<Sample>(found ? static_cast<int>(value + 0.5F) : 0);
        }
    }
}

void SgbmFrames::depth(const cv::Mat &z, cv::Mat &out) const
{
    out.create(z.size(), CV_16UC1);
    convert<unsigned short>(z, out, [](float millimetres) { return millimetres; });
}

void SgbmFrames::disparity(const cv::Mat &z, cv::Mat &out) const
{
    out.create(z.size(), m_fine ? CV_16UC1 : CV_8UC1);
    const auto whole = static_cast<float>(1000 * m_scale);
    if (m_fine)
        convert<unsigned short>(z, out, [whole](float millimetres) { return 32 * whole / millimetres; });
    else
        convert<unsigned char>(z, out, [whole](float millimetres) { return whole / millimetres; });
}

} // namespace sim
