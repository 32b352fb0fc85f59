#pragma once

#include "core/Clock.h"
#include "device/DeviceFactory.h"
#include "device/RenderedColor.h"
#include "device/RenderedTof.h"
#include "device/qv/DeviceEx.h"
#include "sim/Records.h"

#include <gtest/gtest.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

namespace sim {

using ColorTap = Tap<qv::ColorImage, qv::ColorCamera>;
using DepthTap = Tap<qv::DepthImage, qv::TofCamera>;

inline cv::Mat bytesOf(const std::shared_ptr<const unsigned char> &data, int rows, int columns, int type)
{
    return {rows, columns, type, const_cast<unsigned char *>(data.get())};
}

/// Red, green, blue, unpacked by OpenCV.
inline cv::Mat rgbOf(const qv::ColorImage &image)
{
    const int width = static_cast<int>(image.width);
    const int height = static_cast<int>(image.height);
    cv::Mat rgb;
    if (image.codec == 0)
        cv::cvtColor(bytesOf(image.data, height, width, CV_8UC2), rgb, cv::COLOR_YUV2RGB_YUY2);
    else if (image.codec == 1)
        cv::cvtColor(bytesOf(image.data, height * 3 / 2, width, CV_8UC1), rgb, cv::COLOR_YUV2RGB_I420);
    else
        cv::cvtColor(
            cv::imdecode(bytesOf(image.data, 1, static_cast<int>(image.dataSize), CV_8UC1), cv::IMREAD_COLOR),
            rgb, cv::COLOR_BGR2RGB);
    return rgb;
}

inline cv::Mat greyOf(const qv::ColorImage &image)
{
    cv::Mat grey;
    cv::cvtColor(rgbOf(image), grey, cv::COLOR_RGB2GRAY);
    return grey;
}

/// Depth in metres or infrared samples, as they are.
inline cv::Mat matOf(const qv::DepthImage &image)
{
    static constexpr int types[] = {CV_16SC1, CV_32FC1, CV_16UC1};
    return bytesOf(
        image.data, static_cast<int>(image.height), static_cast<int>(image.width), types[image.type]);
}

inline Pose poseOf(const qv::Calibration &calibration)
{
    Pose pose = Pose::Identity();
    for (int i = 0; i < 3; ++i) {
        pose.translation()[i] = calibration.translation[i];
        for (int j = 0; j < 3; ++j)
            pose.linear()(i, j) = calibration.rotation[3 * i + j];
    }
    return pose;
}

/// Mean square of what a sharp picture has and a blurred one lacks.
inline double sharpness(const cv::Mat &grey)
{
    cv::Mat edges;
    cv::Laplacian(grey, edges, CV_32F);
    return cv::norm(edges, cv::NORM_L2SQR) / static_cast<double>(edges.total());
}

/// Small, slow cameras: enough to see every effect and quick under a sanitizer.
struct ColorTofTest : ::testing::Test {
    DeviceConfig config;
    std::shared_ptr<SimDevice> device;
    std::shared_ptr<qv::ColorCamera> color;
    std::shared_ptr<qv::TofCamera> tof;
    std::unique_ptr<ColorTap> colors;
    std::unique_ptr<DepthTap> depths;

    ColorTofTest()
    {
        config.uuid = "test";
        config.streams["color"] = {20, 160, 90, ""};
        config.streams["color2"] = {10, 128, 72, ""};
        config.streams["tof"] = {20, 160, 120, ""};
    }
    ~ColorTofTest() override
    {
        if (color) {
            color->stopCamera(1);
            color->stop();
        }
        if (tof)
            tof->stop();
    }

    void make(Profile profile = Profile::Headset)
    {
        config.profile = profile;
        device = makeDevice(config);
        color = device->colorCamera();
        tof = device->tofCamera();
        colors = std::make_unique<ColorTap>(color);
        depths = std::make_unique<DepthTap>(tof);
    }

    /// A picture that was begun after now.
    qv::ColorImage freshColor()
    {
        const auto now = Clock::microseconds(Clock::now());
        EXPECT_TRUE(waitFor([&] { return colors->count() > 0 && colors->last().edgeTimestampUs > now; }));
        return colors->last();
    }

    /// The same, of one type of depth picture.
    qv::DepthImage freshDepth(int type)
    {
        const auto now = Clock::microseconds(Clock::now());
        qv::DepthImage found;
        EXPECT_TRUE(waitFor([&] {
            for (const qv::DepthImage &image : depths->all()) {
                if (image.type == type && image.edgeTimestampUs > now) {
                    found = image;
                    return true;
                }
            }
            return false;
        })) << "of type "
            << type;
        return found;
    }
};

inline RenderedColor::Setup colorSetupFor(cv::Size size, ColorCodec codec = ColorCodec::Yuv420p)
{
    RenderedColor::Setup setup;
    setup.mount = PinholeMount::color();
    setup.size = size;
    setup.codec = codec;
    return setup;
}

inline RenderedTof::Setup tofSetupFor(cv::Size size, bool secondFamily = true)
{
    RenderedTof::Setup setup;
    setup.mount = PinholeMount::tof();
    setup.size = size;
    setup.secondFamily = secondFamily;
    return setup;
}

} // namespace sim
