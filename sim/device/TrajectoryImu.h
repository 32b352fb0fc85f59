#pragma once

#include "core/Noise.h"
#include "core/RateSchedule.h"
#include "device/ImuSource.h"
#include "device/SharedWorld.h"

namespace sim {

/// Inertial readings of a body on the world's trajectory: its derivatives, with white noise and, if raw, the
/// biases that the device's own calibration takes out.
class TrajectoryImu : public ImuSource {
public:
    TrajectoryImu(std::shared_ptr<const SharedWorld> world, double rate, unsigned seed);

    std::shared_ptr<const Schedule> schedule() const override { return m_schedule; }
    std::optional<qv::Imu> reading(double due, bool raw) const override;
    void setSync(bool sync) override;

private:
    qv::Vector3 noisy(
        const Eigen::Vector3d &ideal, double deviation, double bias, int sensor, double due) const;

    const std::shared_ptr<const SharedWorld> m_world;
    const std::shared_ptr<RateSchedule> m_schedule;
    const Noise m_noise;
    const Noise m_bias;
};

} // namespace sim
