#pragma once

#include "device/qv/ImuSensor.h"
#include "streams/AbstractData.h"
#include "streams/CallbackGuard.h"
#include "streams/ImuAxisData.h"

#include <memory>

/// The inertial sensor of a device. Runs as long as it lives; what the interface switches is only its view.
class ImuData : public AbstractData {
    Q_OBJECT
    Q_PROPERTY(ImuAxisData *accel READ accel NOTIFY accelChanged)
    Q_PROPERTY(ImuAxisData *gyro READ gyro NOTIFY gyroChanged)
    Q_PROPERTY(ImuAxisData *magn READ magn NOTIFY magnChanged)
    Q_PROPERTY(int mode READ mode WRITE setMode NOTIFY modeChanged)
    Q_PROPERTY(int offset READ offset WRITE setOffset NOTIFY offsetChanged)

public:
    /// Throws `std::runtime_error` on a null sensor; starts it otherwise.
    explicit ImuData(std::shared_ptr<qv::ImuSensor> imuSensor, QObject *parent = nullptr);
    ~ImuData() override;

    /// In m/s^2.
    ImuAxisData *accel() const;
    /// In rad/s.
    ImuAxisData *gyro() const;
    /// In the device's own unit.
    ImuAxisData *magn() const;
    int mode() const;
    int offset() const;

public slots:
    /// 0 VSlam only, 1 VSlam and IMU, 2 IMU only, 4 fusion on the host. Signals and reaches the device
    /// always.
    void setMode(int mode);
    /// Microseconds.
    void setOffset(int offset);
    /// Does nothing: the stream never stops.
    void control(bool enable);

signals:
    void accelChanged(ImuAxisData *accel);
    void gyroChanged(ImuAxisData *gyro);
    void magnChanged(ImuAxisData *magn);
    void modeChanged(int mode);
    void offsetChanged(int offset);

private:
    void takeReading(const qv::Imu &reading);

    const std::shared_ptr<qv::ImuSensor> m_imuSensor;
    int m_callbackId = -1;
    ImuAxisData *m_accel = nullptr;
    ImuAxisData *m_gyro = nullptr;
    ImuAxisData *m_magn = nullptr;
    int m_offset = 0;
    int m_mode = 1;
    CallbackGuard m_callbacks;
};
