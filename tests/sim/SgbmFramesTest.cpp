#include "device/SgbmFrames.h"

#include <gtest/gtest.h>

using namespace sim;

namespace {

// With width 640, 96 degrees and 80 mm: 320 / tan(48 degrees) * 0.08 = 23.0503 pixels at a metre.

unsigned depthOf(const qv::SgbmConfig &config, double metres)
{
    cv::Mat out;
    SgbmFrames(config, 640).depth(cv::Mat(1, 1, CV_32FC1, cv::Scalar(metres)), out);
    return out.at<unsigned short>(0, 0);
}

unsigned disparityOf(const qv::SgbmConfig &config, double metres, int width = 640)
{
    cv::Mat out;
    SgbmFrames(config, width).disparity(cv::Mat(1, 1, CV_32FC1, cv::Scalar(metres)), out);
    return out.type() == CV_8UC1 ? out.at<unsigned char>(0, 0) : out.at<unsigned short>(0, 0);
}

qv::SgbmConfig with(const std::function<void(qv::SgbmConfig &)> &change)
{
    qv::SgbmConfig config;
    change(config);
    return config;
}

} // namespace

TEST(SgbmFrames, depthIsInMillimetres)
{
    EXPECT_EQ(depthOf({}, 1.2344), 1234U);
    EXPECT_EQ(depthOf({}, 1.2346), 1235U);
    EXPECT_EQ(depthOf({}, 0), 0U);
}

TEST(SgbmFrames, disparityIsBaselineTimesFocalLengthByDepth)
{
    EXPECT_EQ(disparityOf({}, 1), 23U);
    EXPECT_EQ(disparityOf({}, 2.305), 10U);
    EXPECT_EQ(disparityOf({}, 1, 1280), 46U);
    EXPECT_EQ(disparityOf({}, 0), 0U);
}

TEST(SgbmFrames, theFineModeHasFiveBitsBehindThePoint)
{
    const qv::SgbmConfig fine = with([](qv::SgbmConfig &c) { c.mode = 3; });
    EXPECT_TRUE(SgbmFrames(fine, 640).fine());
    EXPECT_EQ(disparityOf(fine, 1), 738U) << "32 * 23.0503";
    EXPECT_EQ(disparityOf(fine, 1) >> 5, 23U);
}

TEST(SgbmFrames, baselineScalesTheDisparityAndNotTheDepth)
{
    const qv::SgbmConfig half = with([](qv::SgbmConfig &c) { c.baseline = 0.04F; });
    EXPECT_EQ(disparityOf(half, 0.5), 23U);
    EXPECT_EQ(disparityOf(half, 1), 12U);
    EXPECT_EQ(depthOf(half, 1), 1000U);
}

TEST(SgbmFrames, fieldOfViewScalesTheDisparityAndNotTheDepth)
{
    const qv::SgbmConfig narrow = with([](qv::SgbmConfig &c) { c.fov = 60; });
    EXPECT_EQ(disparityOf(narrow, 1), 44U) << "320 / tan(30 degrees) * 0.08 = 44.34";
    EXPECT_EQ(depthOf(narrow, 1), 1000U);
}

TEST(SgbmFrames, zoomScalesTheDisparityWhileThePictureIsDewarped)
{
    qv::SgbmConfig zoomed = with([](qv::SgbmConfig &c) { c.dewarpZoomFactor = 2; });
    EXPECT_EQ(disparityOf(zoomed, 1), 46U);
    zoomed.enableDewarp = 0;
    EXPECT_EQ(disparityOf(zoomed, 1), 23U);
}

TEST(SgbmFrames, distancesCutBothKinds)
{
    const qv::SgbmConfig config = with([](qv::SgbmConfig &c) {
        c.minDistance = 500;
        c.maxDistance = 3000;
    });
    EXPECT_EQ(depthOf(config, 0.499), 0U);
    EXPECT_EQ(depthOf(config, 0.501), 501U);
    EXPECT_EQ(depthOf(config, 2.999), 2999U);
    EXPECT_EQ(depthOf(config, 3.001), 0U);
    EXPECT_EQ(disparityOf(config, 0.499), 0U);
    EXPECT_EQ(disparityOf(config, 3.001), 0U);
    EXPECT_EQ(disparityOf(config, 2.305), 10U);
}

TEST(SgbmFrames, crossedDistancesLeaveNothing)
{
    const qv::SgbmConfig config = with([](qv::SgbmConfig &c) {
        c.minDistance = 3000;
        c.maxDistance = 1001;
    });
    for (const double metres : {0.5, 1.5, 2.5, 5.0})
        EXPECT_EQ(depthOf(config, metres), 0U);
}

TEST(SgbmFrames, disparitiesAboveTheGreatestAreCut)
{
    const qv::SgbmConfig config = with([](qv::SgbmConfig &c) { c.maxDisparity = 20; });
    EXPECT_EQ(depthOf(config, 1.1), 0U) << "20.95 pixels";
    EXPECT_EQ(disparityOf(config, 1.1), 0U);
    EXPECT_EQ(depthOf(config, 1.2), 1200U) << "19.2 pixels";
    EXPECT_EQ(disparityOf(config, 1.2), 19U);
    const qv::SgbmConfig none = with([](qv::SgbmConfig &c) { c.maxDisparity = 0; });
    EXPECT_EQ(depthOf(none, 2), 0U);
}

TEST(SgbmFrames, lessThanAPixelOfDisparityIsNoMatch)
{
    const qv::SgbmConfig close = with([](qv::SgbmConfig &c) { c.baseline = 0.001F; });
    EXPECT_EQ(depthOf(close, 0.25), 250U) << "1.15 pixels";
    EXPECT_EQ(depthOf(close, 0.3), 0U) << "0.96 pixels";
}

TEST(SgbmFrames, settingsThatNoLensHasLeaveNothing)
{
    for (const float fov : {0.0F, -10.0F, 180.0F, 300.0F, std::nanf("")}) {
        const qv::SgbmConfig config = with([fov](qv::SgbmConfig &c) { c.fov = fov; });
        EXPECT_EQ(depthOf(config, 1), 0U) << fov;
        EXPECT_EQ(disparityOf(config, 1), 0U) << fov;
    }
    for (const float baseline : {0.0F, -0.08F, std::nanf(""), std::numeric_limits<float>::infinity()}) {
        const qv::SgbmConfig config = with([baseline](qv::SgbmConfig &c) { c.baseline = baseline; });
        EXPECT_EQ(depthOf(config, 1), 0U) << baseline;
    }
}

TEST(SgbmFrames, zoomStaysInItsLimits)
{
    const auto zoom = [](float factor) {
        return effectiveZoom(with([factor](qv::SgbmConfig &c) { c.dewarpZoomFactor = factor; }));
    };
    EXPECT_EQ(zoom(5), 5);
    EXPECT_EQ(zoom(0), 0.5);
    EXPECT_EQ(zoom(-3), 0.5);
    EXPECT_EQ(zoom(1e9F), 10);
    EXPECT_EQ(zoom(std::nanf("")), 1);
}
