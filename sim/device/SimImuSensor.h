#pragma once

#include "device/ImuSource.h"
#include "device/StreamComponent.h"
#include "device/qv/ImuSensor.h"

namespace sim {

/// The inertial sensor: readings of a source, as the device's settings let them out. Mode 0 "VSlam only"
/// keeps them inside the device, mode 4 "fusion on host" leaves the biases in, the offset shifts their times.
class SimImuSensor : public virtual qv::ImuSensor, public StreamComponent<qv::Imu> {
public:
    SimImuSensor(std::shared_ptr<DeviceState> device, std::unique_ptr<ImuSource> source);
    /// Streams that are synchronous take their records at the same moments.
    void setSync(bool sync);

protected:
    void produce(double due, Defect defect) override;

private:
    const std::unique_ptr<ImuSource> m_source;
};

} // namespace sim
