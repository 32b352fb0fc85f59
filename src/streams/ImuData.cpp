#include "streams/ImuData.h"

#include "device/DeviceAccess.h"

#include <stdexcept>
#include <utility>

ImuData::ImuData(std::shared_ptr<qv::ImuSensor> imuSensor, QObject *parent)
    : AbstractData(parent)
    , m_imuSensor(std::move(imuSensor))
{
    if (!m_imuSensor)
        throw std::runtime_error("Invalid IMU sensor");
    m_accel = new ImuAxisData(this);
    m_gyro = new ImuAxisData(this);
    m_magn = new ImuAxisData(this);
    m_callbackId = m_imuSensor->registerCallback(
        m_callbacks.wrap([this](const qv::Imu &reading) { takeReading(reading); }));
    m_imuSensor->start();
}

ImuData::~ImuData()
{
    m_imuSensor->unregisterCallback(m_callbackId);
    m_callbacks.close();
}

ImuAxisData *ImuData::accel() const
{
    return m_accel;
}

ImuAxisData *ImuData::gyro() const
{
    return m_gyro;
}

ImuAxisData *ImuData::magn() const
{
    return m_magn;
}

int ImuData::mode() const
{
    return m_mode;
}

int ImuData::offset() const
{
    return m_offset;
}

void ImuData::setMode(int mode)
{
    m_mode = mode;
    emit modeChanged(mode);
    if (const auto device = DeviceAccess::deviceEx(this))
        device->setImuMode(mode);
}

void ImuData::setOffset(int offset)
{
    if (offset == m_offset)
        return;
    m_offset = offset;
    emit offsetChanged(offset);
    if (const auto device = DeviceAccess::deviceEx(this))
        device->setImuOffset(offset);
}

void ImuData::control(bool) { }

void ImuData::takeReading(const qv::Imu &reading)
{
    tick();
    m_accel->set(reading.accel.x, reading.accel.y, reading.accel.z);
    m_gyro->set(reading.gyro.x, reading.gyro.y, reading.gyro.z);
    m_magn->set(reading.magn.x, reading.magn.y, reading.magn.z);
}
