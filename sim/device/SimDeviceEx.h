#pragma once

#include "device/SimDevice.h"
#include "device/qv/DeviceEx.h"

namespace sim {

/// A simulated device with the settings of those that compute poses themselves.
class SimDeviceEx : public SimDevice, public virtual qv::DeviceEx {
public:
    using SimDevice::SimDevice;

    std::shared_ptr<qv::Slam> edge() override { return components().edge; }
    void setImuOffset(int offset) override;
    /// Numbers that no mode has are ignored; so below.
    void setImuMode(int mode) override;
    void setUvcMode(int mode) override;
    void setEdgePrediction(int prediction) override;
};

} // namespace sim
