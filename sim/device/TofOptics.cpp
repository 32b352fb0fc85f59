#include "device/TofOptics.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace sim {

namespace {

constexpr int depthFieldSlack = 64; // pixels that the field is larger than a picture, each way
constexpr float widestNoise = 3; // deviations
constexpr float edgeRatio = 1.04F; // of the depths about a pixel that can't be sure of its own
constexpr int gammaSteps = 1024;

void measureRow(float *depth, const float *noise, int count, const TofMode &mode, float deviation)
{
    for (int x = 0; x < count; ++x) {
        const float z = depth[x];
        const float read = z + deviation * (0.5F + 0.25F * z) * noise[x];
        depth[x] = z >= mode.nearest && z <= mode.farthest ? read : 0;
    }
}

} // namespace

TofOptics::TofOptics(std::uint64_t seed)
    : m_noise(seed)
{
}

void TofOptics::measure(cv::Mat &depth, const TofMode &mode, double light, std::uint64_t moment)
{
    if (mode.mix == TofMode::M2mix)
        cv::blur(depth, depth, {3, 3}, {-1, -1}, cv::BORDER_REPLICATE);
    prepareNoise(depth.size());
    const std::uint64_t bits = m_noise.bits(moment);
    const int left = static_cast<int>(bits % depthFieldSlack);
    const int top = static_cast<int>((bits >> 16) % depthFieldSlack);
    const auto deviation = mode.noise * static_cast<float>(std::clamp(1 / std::sqrt(light), 0.5, 8.0));
    if (mode.mix == TofMode::Labelize)
        leaveOutEdges(depth);
    for (int y = 0; y < depth.rows; ++y)
        measureRow(depth.ptr<float>(y), m_field.ptr<float>(y + top) + left, depth.cols, mode, deviation);
}

void TofOptics::leaveOutEdges(cv::Mat &depth)
{
    cv::erode(depth, m_low, {});
    cv::dilate(depth, m_high, {});
    for (int y = 0; y < depth.rows; ++y) {
        auto *to = depth.ptr<float>(y);
        const auto *low = m_low.ptr<float>(y);
        const auto *high = m_high.ptr<float>(y);
        for (int x = 0; x < depth.cols; ++x)
            to[x] = high[x] > low[x] * edgeRatio ? 0 : to[x];
    }
}

void TofOptics::prepareNoise(cv::Size size)
{
    const cv::Size wanted(size.width + depthFieldSlack, size.height + depthFieldSlack);
    if (m_field.size() == wanted)
        return;
    m_field.create(wanted, CV_32FC1);
    cv::RNG random(m_noise.bits(0));
    random.fill(m_field, cv::RNG::NORMAL, 0, 1);
    cv::min(m_field, widestNoise, m_field);
    cv::max(m_field, -widestNoise, m_field);
}

void TofOptics::infrared(
    const cv::Mat &reflectance, const cv::Mat &depth, double light, double gamma, cv::Mat &out)
{
    std::uint16_t curve[gammaSteps + 1];
    for (int i = 0; i <= gammaSteps; ++i)
        curve[i] = static_cast<std::uint16_t>(
            std::lround(255 * std::pow(double(i) / gammaSteps, 1 / std::max(gamma, 0.05))));
    out.create(depth.size(), CV_16UC1);
    const auto scale = static_cast<float>(light * gammaSteps / 255);
    for (int y = 0; y < depth.rows; ++y) {
        const auto *grey = reflectance.ptr(y);
        const auto *z = depth.ptr<float>(y);
        auto *to = out.ptr<std::uint16_t>(y);
        for (int x = 0; x < depth.cols; ++x) {
            const float amplitude = scale * static_cast<float>(grey[x]) / std::max(z[x] * z[x], 0.01F);
            const bool seen = z[x] > 0;
            to[x] = seen ? curve[static_cast<int>(std::min(amplitude, float(gammaSteps)))] : 0;
        }
    }
}

} // namespace sim
