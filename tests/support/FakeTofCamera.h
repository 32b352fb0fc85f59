#pragma once

#include "device/qv/TofCamera.h"
#include "support/FakePointCloud.h"
#include "support/FakeStream.h"

class FakeTofCamera : public FakeCamera<qv::TofCamera, qv::DepthImage> {
public:
    int registerColorDepthImageCallback(std::function<void(const qv::DepthColorImage &)> callback) override
    {
        log->add("registerColorDepthImageCallback");
        return colorDepth.add(std::move(callback));
    }

    bool unregisterColorDepthImageCallback(int id) override
    {
        log->add("unregisterColorDepthImageCallback", id);
        return colorDepth.remove(id);
    }

    std::shared_ptr<qv::PointCloud> depthImageToPointCloud(const qv::DepthImage &image) override
    {
        log->add("depthImageToPointCloud", image.type);
        return cloud;
    }

    bool setStreamMode(int mode) override { return answer(true, "setStreamMode", mode); }
    bool setDistanceMode(int mode) override { return answer(distanceModeResult, "setDistanceMode", mode); }

    int manufacturer() override
    {
        log->add("manufacturer");
        return manufacturerResult;
    }

    bool setLibWorkMode(int mode) override { return answer(libWorkModeResult, "setLibWorkMode", mode); }
    bool enableIr(bool enable) override { return answer(enableIrResult, "enableIr", enable); }

    bool setSonyTofSetting(int workMode, int resolution, int fps) override
    {
        return answer(sonyTofSettingResult, "setSonyTofSetting", workMode, resolution, fps);
    }

    bool setTofIrGamma(double gamma) override { return answer(true, "setTofIrGamma", gamma); }

    FakeCallbacks<const qv::DepthColorImage &> colorDepth;
    std::shared_ptr<qv::PointCloud> cloud = std::make_shared<qv::PointCloud>();
    int manufacturerResult = 0;
    bool distanceModeResult = true;
    bool libWorkModeResult = true;
    bool enableIrResult = true;
    bool sonyTofSettingResult = true;

private:
    template <class... Arguments>
    bool answer(bool result, const Arguments &...arguments) const
    {
        log->add(arguments...);
        return result;
    }
};
