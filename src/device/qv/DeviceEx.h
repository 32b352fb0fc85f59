#pragma once

#include "device/qv/Device.h"

namespace qv {

/// A device that computes poses itself; reached by a dynamic cast.
class DeviceEx : public virtual Device {
public:
    virtual std::shared_ptr<Slam> edge() = 0;
    /// Microseconds.
    virtual void setImuOffset(int offset) = 0;
    /// 0 VSlam only, 1 VSlam and IMU, 2 IMU only, 4 fusion on the host.
    virtual void setImuMode(int mode) = 0;
    /// 0 no stream, 1 video, 2 demo, 5 demo with points, 3 debug, 4 debug with points.
    virtual void setUvcMode(int mode) = 0;
    /// Microseconds.
    virtual void setEdgePrediction(int prediction) = 0;
};

} // namespace qv
