#include "streams/SgbmPictures.h"

#include "streams/FrameSize.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numeric>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace {

constexpr int sampleValues = 65536;
constexpr int wideDisparityMode = 3;
constexpr double disparityGain = 2.5;

/// Toward zero, and 0 for what is no number.
unsigned char toByte(double value)
{
    return value >= 255 ? 255 : value > 0 ? static_cast<unsigned char>(value) : 0;
}

unsigned char depthLevel(unsigned short sample, double near, double far)
{
    const double low = near * 1000, high = far * 1000;
    const double clamped = std::min(std::max(double(sample), low), high);
    return toByte((clamped - low) / ((far - near) * 1000) * 255);
}

/// One channel of the jet colours: up, flat and down again over half of the range.
unsigned char jet(double place)
{
    return toByte(std::clamp(1.5 - std::abs(1 - 4 * place), 0.0, 1.0) * 255);
}

void depthHue(unsigned short sample, double near, double far, unsigned char *rgb)
{
    const double depth = sample / 1000.0;
    if (depth <= near || depth > far) {
        std::fill_n(rgb, 3, static_cast<unsigned char>(0));
        return;
    }
    const double place = (depth - near) / (far - near);
    rgb[0] = jet(place - 0.5);
    rgb[1] = jet(place - 0.25);
    rgb[2] = jet(place);
}

cv::Mat inJet(const cv::Mat &levels)
{
    cv::Mat colored;
    cv::applyColorMap(levels, colored, cv::COLORMAP_JET);
    cv::cvtColor(colored, colored, cv::COLOR_BGR2RGB);
    return colored;
}

cv::Mat wideDisparity(const qv::SgbmImage &frame)
{
    cv::Mat levels(int(frame.height), int(frame.width), CV_8UC1);
    for (std::size_t i = 0; i < levels.total(); ++i) {
        unsigned short sample;
        std::memcpy(&sample, frame.data.get() + i * sizeof(sample), sizeof(sample));
        levels.data[i] = static_cast<unsigned char>(sample >> 5);
    }
    return inJet(levels);
}

cv::Mat narrowDisparity(const qv::SgbmImage &frame)
{
    const cv::Mat levels(
        int(frame.height), int(frame.width), CV_8UC1, const_cast<unsigned char *>(frame.data.get()));
    cv::Mat scaled, blurred, mask;
    levels.convertTo(scaled, CV_8U, disparityGain);
    const cv::Mat colored = inJet(scaled);
    cv::medianBlur(scaled, blurred, 3);
    cv::inRange(blurred, 1, 255, mask);
    cv::Mat result = cv::Mat::zeros(scaled.size(), CV_8UC3);
    colored.copyTo(result, mask);
    return result;
}

} // namespace

/// What each sample looks like, with a fourth byte for whole words.
struct SgbmColors::Table {
    using Color = std::array<unsigned char, 4>;

    Table(const DepthRange &tableRange, std::optional<int> tableColorMap)
        : range(tableRange)
        , colorMap(tableColorMap)
        , colors(sampleValues)
    {
        if (colorMap)
            setLevels(*colorMap);
        else
            setHues();
    }

    void setHues()
    {
        for (int sample = 0; sample < sampleValues; ++sample)
            depthHue(static_cast<unsigned short>(sample), range.near, range.far,
                colors[std::size_t(sample)].data());
    }

    void setLevels(int map)
    {
        cv::Mat levels(1, 256, CV_8UC1), bgr;
        std::iota(levels.data, levels.data + 256, static_cast<unsigned char>(0));
        cv::applyColorMap(levels, bgr, map);
        for (int sample = 0; sample < sampleValues; ++sample) {
            const int level = depthLevel(static_cast<unsigned short>(sample), range.near, range.far);
            const auto &color = bgr.at<cv::Vec3b>(level);
            colors[std::size_t(sample)] = {color[2], color[1], color[0], 0};
        }
    }

    DepthRange range;
    std::optional<int> colorMap;
    std::vector<Color> colors;
};

std::shared_ptr<const SgbmColors::Table> SgbmColors::table(
    const DepthRange &range, std::optional<int> colorMap)
{
    const std::lock_guard lock(m_mutex);
    if (!m_table || !(m_table->range == range) || m_table->colorMap != colorMap)
        m_table = std::make_shared<Table>(range, colorMap);
    return m_table;
}

void SgbmColors::depthToPixels(const unsigned char *samples, std::size_t count, const DepthRange &range,
    std::optional<int> colorMap, unsigned char *rgb)
{
    if (count == 0)
        return;
    const auto table = this->table(range, colorMap);
    const Table::Color *colors = table->colors.data();
    const auto colorAt = [&](std::size_t i) {
        unsigned short sample;
        std::memcpy(&sample, samples + i * sizeof(sample), sizeof(sample));
        return colors[sample].data();
    };
    // Four bytes at a time: the fourth is overwritten by the next pixel.
    for (std::size_t i = 0; i + 1 < count; ++i)
        std::memcpy(rgb + 3 * i, colorAt(i), 4);
    std::memcpy(rgb + 3 * (count - 1), colorAt(count - 1), 3);
}

cv::Mat disparityPicture(const qv::SgbmImage &frame, int mode)
{
    const bool wide = mode == wideDisparityMode;
    if (!isWhole(frame, wide ? 2 : 1))
        return {};
    return wide ? wideDisparity(frame) : narrowDisparity(frame);
}
