#pragma once

#include "device/qv/Camera.h"
#include "device/qv/Stream.h"

namespace qv {

class TofCamera : public virtual Stream<DepthImage>, public virtual Camera {
public:
    virtual int registerColorDepthImageCallback(std::function<void(const DepthColorImage &)> callback) = 0;
    virtual bool unregisterColorDepthImageCallback(int id) = 0;
    virtual std::shared_ptr<PointCloud> depthImageToPointCloud(const DepthImage &image) = 0;
    virtual bool setStreamMode(int mode) = 0;
    virtual bool setDistanceMode(int mode) = 0;
    /// Sensor family, 0 or 1.
    virtual int manufacturer() = 0;
    virtual bool setLibWorkMode(int mode) = 0;
    virtual bool enableIr(bool enable) = 0;
    /// Three indices: 0 to 5, 0 to 1, 0 to 5.
    virtual bool setSonyTofSetting(int workMode, int resolution, int fps) = 0;
    virtual bool setTofIrGamma(double gamma) = 0;
};

} // namespace qv
