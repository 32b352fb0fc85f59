#pragma once

#include "core/Clock.h"
#include "device/DeviceFactory.h"
#include "sim/Records.h"

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

namespace sim {

inline cv::Mat matOf(const qv::SgbmImage &image)
{
    const bool bytes = image.dataSize == image.width * image.height;
    return {static_cast<int>(image.height), static_cast<int>(image.width), bytes ? CV_8UC1 : CV_16UC1,
        const_cast<unsigned char *>(image.data.get())};
}

/// A small, slow stereo depth unit: enough to see every effect and quick under a sanitizer.
struct VscTest : ::testing::Test {
    enum Type { Disparity = 0, Depth = 1 };
    using FrameTap = Tap<qv::SgbmImage, qv::Vsc>;

    DeviceConfig config;
    std::shared_ptr<SimDevice> device;
    std::shared_ptr<qv::Vsc> vsc;
    std::unique_ptr<FrameTap> tap;

    VscTest()
    {
        config.uuid = "test";
        config.streams["vsc"] = {20, 160, 100, ""};
    }
    ~VscTest() override
    {
        if (vsc)
            vsc->stop();
    }

    void make(Profile profile = Profile::Headset)
    {
        config.profile = profile;
        device = makeDevice(config);
        vsc = device->vsc();
        tap = std::make_unique<FrameTap>(vsc);
    }

    /// The frames of one moment after now, the disparity frame first.
    std::vector<qv::SgbmImage> freshPair()
    {
        const auto now = Clock::microseconds(Clock::now());
        std::vector<qv::SgbmImage> pair;
        EXPECT_TRUE(waitFor([&] {
            const auto all = tap->all();
            for (std::size_t i = 0; i + 1 < all.size(); ++i) {
                if (all[i].edgeTimestampUs <= now || all[i].edgeTimestampUs != all[i + 1].edgeTimestampUs)
                    continue;
                pair = {all[i], all[i + 1]};
                return true;
            }
            return false;
        }));
        return pair;
    }

    /// A frame that was begun after now.
    qv::SgbmImage fresh()
    {
        const auto now = Clock::microseconds(Clock::now());
        EXPECT_TRUE(waitFor([&] { return tap->count() > 0 && tap->last().edgeTimestampUs > now; }));
        return tap->last();
    }
};

} // namespace sim
