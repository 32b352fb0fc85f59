#include "device/SimImuSensor.h"

#include <limits>

namespace sim {

namespace {

void makeUnreadable(qv::Imu &imu)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    imu.gyro = {nan, nan, nan};
    imu.accel = {infinity, -infinity, 1e300};
    imu.magn = {nan, 0, 0};
}

} // namespace

SimImuSensor::SimImuSensor(std::shared_ptr<DeviceState> device, std::unique_ptr<ImuSource> source)
    : StreamComponent("imu", std::move(device), source->schedule())
    , m_source(std::move(source))
{
}

void SimImuSensor::setSync(bool sync)
{
    m_source->setSync(sync);
    thread().reschedule();
}

void SimImuSensor::produce(double due, Defect defect)
{
    const int mode = this->device().imuMode;
    if (mode == VSlamOnly)
        return;
    std::optional<qv::Imu> imu = m_source->reading(due, mode == FusionOnHost);
    if (!imu)
        return;
    imu->edgeTimestampUs += this->device().imuOffset;
    imu->hostTimestamp = Clock::now();
    if (defect == Defect::Unknown)
        makeUnreadable(*imu);
    deliver(*imu);
}

} // namespace sim
