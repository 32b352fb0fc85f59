#include "imaging/DepthColors.h"

#include <opencv2/imgproc.hpp>

namespace {

/// Rises from 0 to 255 over a sixth of the wheel. Not a plain rounding of 255 / 60 a step: its halves go
/// down first and up later.
constexpr unsigned char ramp[61] = {0, 4, 8, 12, 17, 21, 25, 29, 34, 38, 42, 46, 51, 55, 59, 64, 68, 72, 76,
    81, 85, 89, 93, 98, 102, 106, 110, 115, 119, 123, 128, 132, 136, 140, 145, 149, 153, 157, 162, 166, 170,
    174, 179, 183, 187, 191, 196, 200, 204, 209, 213, 217, 221, 226, 230, 234, 238, 243, 247, 251, 255};

constexpr std::array<unsigned char, 3> hue(int degrees)
{
    switch (degrees / 60) {
    case 0:
        return {255, ramp[degrees], 0};
    case 1:
        return {ramp[120 - degrees], 255, 0};
    case 2:
        return {0, 255, ramp[degrees - 120]};
    case 3:
        return {0, ramp[240 - degrees], 255};
    default:
        return {ramp[degrees - 240], 0, 255};
    }
}

constexpr ColorTable makeDepthColorTable()
{
    ColorTable table{};
    for (int row = 1; row < 255; ++row)
        table[static_cast<std::size_t>(row)] = hue(row);
    // The ends leave the wheel: unmeasured pixels are told from the nearest, and the farthest are pure blue.
    table[0] = {255, 12, 0};
    table[255] = {0, 0, 255};
    return table;
}

DepthPalette tablePalette()
{
    DepthPalette palette;
    for (std::size_t level = 0; level < palette.levels.size(); ++level) {
        const auto &[red, green, blue] = depthColorTable[level];
        palette.levels[level] = qRgb(red, green, blue);
    }
    palette.unmeasured = palette.levels[0];
    return palette;
}

DepthPalette mapPalette(int colorMap)
{
    cv::Mat levels(1, 256, CV_8UC1);
    for (int level = 0; level < levels.cols; ++level)
        levels.at<unsigned char>(level) = static_cast<unsigned char>(255 - level);
    cv::Mat colors;
    cv::applyColorMap(levels, colors, colorMap);
    DepthPalette palette;
    for (std::size_t level = 0; level < palette.levels.size(); ++level) {
        const auto &bgr = colors.at<cv::Vec3b>(static_cast<int>(level));
        palette.levels[level] = qRgb(bgr[2], bgr[1], bgr[0]);
    }
    return palette;
}

} // namespace

constexpr ColorTable depthColorTable = makeDepthColorTable();

cv::Mat depthColorLut()
{
    return {1, 256, CV_8UC3, const_cast<unsigned char *>(depthColorTable.front().data())};
}

void depthLevels(const float *metres, int count, const DepthRange &range, unsigned char *levels)
{
    const cv::Mat depth(1, count, CV_32FC1, const_cast<float *>(metres));
    cv::Mat grey(1, count, CV_8UC1, levels);
    const double span = range.far - range.near;
    depth.convertTo(grey, CV_8U, 255 / span, -255 * range.near / span);
}

DepthPalette depthPalette(int colorIndex)
{
    return colorIndex == 0 ? tablePalette() : mapPalette(colorIndex);
}
