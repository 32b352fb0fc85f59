#include "imaging/DepthColors.h"

#include <opencv2/imgproc.hpp>

namespace {

constexpr int u[61] = {0, 4, 8, 12, 17, 21, 25, 29, 34, 38, 42, 46, 51, 55, 59, 64, 68, 72, 76, 81, 85, 89,
    93, 98, 102, 106, 110, 115, 119, 123, 128, 132, 136, 140, 145, 149, 153, 157, 162, 166, 170, 174, 179,
    183, 187, 191, 196, 200, 204, 209, 213, 217, 221, 226, 230, 234, 238, 243, 247, 251, 255};

std::vector<int> row(int i)
{
    if (i == 0)
        return {255, 12, 0};
    if (i == 255)
        return {0, 0, 255};
    if (i < 60)
        return {255, u[i], 0};
    if (i < 120)
        return {u[120 - i], 255, 0};
    if (i < 180)
        return {0, 255, u[i - 120]};
    if (i < 240)
        return {0, u[240 - i], 255};
    return {u[i - 240], 0, 255};
}

} // namespace

TEST(DepthColors, tableIsTheHueWheelWithTwoOwnEnds)
{
    for (int i = 0; i < 256; ++i) {
        const auto &bytes = depthColorTable[static_cast<std::size_t>(i)];
        EXPECT_EQ(std::vector<int>(bytes.begin(), bytes.end()), row(i)) << i;
    }
}

TEST(DepthColors, lutIsOneRowOfThreeChannels)
{
    const cv::Mat lut = depthColorLut();
    ASSERT_EQ(lut.size(), cv::Size(256, 1));
    ASSERT_EQ(lut.type(), CV_8UC3);
    cv::Mat pixel(1, 1, CV_8UC3, cv::Scalar(100, 100, 100));
    cv::LUT(pixel, lut, pixel);
    EXPECT_EQ(pixel.at<cv::Vec3b>(0), cv::Vec3b(85, 255, 0));
}

TEST(DepthColors, paletteZeroIsTheTable)
{
    const DepthPalette palette = depthPalette(0);
    EXPECT_EQ(palette.unmeasured, qRgb(255, 12, 0));
    EXPECT_EQ(palette.levels[100], qRgb(85, 255, 0));
}

TEST(DepthColors, otherPalettesAreColourMapsRunBackwards)
{
    for (const int map : {1, 2, 3, 5, 6, 17}) {
        const DepthPalette palette = depthPalette(map);
        EXPECT_EQ(palette.unmeasured, qRgb(0, 0, 0));
        for (int level = 0; level < 256; ++level) {
            cv::Mat pixel(1, 1, CV_8UC1, cv::Scalar(255 - level));
            cv::Mat color;
            cv::applyColorMap(pixel, color, map);
            const auto &bgr = color.at<cv::Vec3b>(0);
            EXPECT_EQ(palette.levels[static_cast<std::size_t>(level)], qRgb(bgr[2], bgr[1], bgr[0])) << map;
        }
    }
}

TEST(DepthColors, unknownColourMapThrows)
{
    EXPECT_THROW(depthPalette(1000), cv::Exception);
    EXPECT_THROW(depthPalette(-1), cv::Exception);
}
