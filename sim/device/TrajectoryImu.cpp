#include "device/TrajectoryImu.h"

#include "core/Clock.h"

#include <cmath>

namespace sim {

namespace {

// Of a consumer part read at a few hundred hertz.
constexpr double gyroNoise = 0.002; // rad/s
constexpr double accelNoise = 0.02; // m/s^2
constexpr double magnNoise = 0.25; // microtesla
constexpr double gyroBias = 0.01; // rad/s
constexpr double accelBias = 0.08; // m/s^2
constexpr double magnBias = 3; // microtesla

constexpr double imuPhase = 0.31;
/// Readings are never left out for a short delay, as pictures are: whoever integrates them would go astray.
constexpr double imuBacklog = 0.5;

enum Sensor { Gyro, Accel, Magn, Temperature };

} // namespace

TrajectoryImu::TrajectoryImu(std::shared_ptr<const SharedWorld> world, double rate, unsigned seed)
    : m_world(std::move(world))
    , m_schedule(std::make_shared<RateSchedule>(rate, imuPhase, imuBacklog))
    , m_noise(0x1000U + seed)
    , m_bias(0x2000U + seed)
{
}

std::optional<qv::Imu> TrajectoryImu::reading(double due, bool raw) const
{
    const double bias = raw ? 1 : 0;
    const Trajectory &trajectory = m_world->trajectory();
    qv::Imu imu;
    imu.gyro = noisy(trajectory.angularVelocity(due), gyroNoise, bias * gyroBias, Gyro, due);
    imu.accel = noisy(trajectory.specificForce(due), accelNoise, bias * accelBias, Accel, due);
    imu.magn = noisy(trajectory.magneticField(due), magnNoise, bias * magnBias, Magn, due);
    imu.temperature = 31.5 + 3 * (1 - std::exp(-due / 300));
    imu.edgeTimestampUs = Clock::microseconds(due);
    return imu;
}

void TrajectoryImu::setSync(bool sync)
{
    m_schedule->setPhase(sync ? 0 : imuPhase);
}

qv::Vector3 TrajectoryImu::noisy(
    const Eigen::Vector3d &ideal, double deviation, double bias, int sensor, double due) const
{
    const auto moment = static_cast<std::uint64_t>(Clock::microseconds(due));
    qv::Vector3 out;
    for (unsigned axis = 0; axis < 3; ++axis) {
        const auto channel = static_cast<std::uint64_t>(sensor) * 3 + axis;
        const double offset = bias * (2 * m_bias.uniform(channel) - 1);
        out[axis] = ideal[axis] + offset + deviation * m_noise.gaussian(moment * 16 + channel);
    }
    return out;
}

} // namespace sim
