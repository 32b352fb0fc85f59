#pragma once

#include "core/Clock.h"
#include "device/DeviceFactory.h"
#include "device/qv/DeviceEx.h"
#include "device/qv/FisheyeCamerasEx.h"
#include "sim/Records.h"

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

namespace sim {

using ImagesTap = Tap<qv::FisheyeImages, qv::FisheyeCameras>;

inline cv::Mat matOf(const qv::FisheyeImage &image)
{
    return {static_cast<int>(image.height), static_cast<int>(image.width), CV_8UC1,
        const_cast<unsigned char *>(image.data.get())};
}

inline double meanOf(const qv::FisheyeImages &record)
{
    return cv::mean(matOf(record.images.at(0)))[0];
}

/// One small, slow set of cameras: enough to see every effect and quick under a sanitizer.
struct FisheyeTest : ::testing::Test {
    DeviceConfig config;
    std::shared_ptr<SimDevice> device;
    std::shared_ptr<qv::FisheyeCamerasEx> cameras;
    std::unique_ptr<ImagesTap> tap;

    FisheyeTest()
    {
        config.uuid = "test";
        config.streams["fisheye"] = {20, 160, 100, ""};
    }
    ~FisheyeTest() override
    {
        if (cameras)
            cameras->stop();
    }

    void make(Profile profile = Profile::Headset)
    {
        config.profile = profile;
        device = makeDevice(config);
        cameras = std::dynamic_pointer_cast<qv::FisheyeCamerasEx>(device->fisheyeCameras());
        tap = std::make_unique<ImagesTap>(device->fisheyeCameras());
    }

    std::shared_ptr<qv::DeviceEx> ex() const
    {
        return std::dynamic_pointer_cast<qv::DeviceEx>(std::shared_ptr<qv::Device>(device));
    }

    /// A record that was begun after now.
    qv::FisheyeImages fresh()
    {
        const auto now = Clock::microseconds(Clock::now());
        EXPECT_TRUE(waitFor([&] { return tap->count() > 0 && tap->last().edgeTimestampUs > now; }));
        return tap->last();
    }
};

} // namespace sim
