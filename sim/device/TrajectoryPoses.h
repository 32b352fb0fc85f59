#pragma once

#include "core/Noise.h"
#include "core/RateSchedule.h"
#include "device/PoseSource.h"
#include "device/SharedWorld.h"

namespace sim {

/// Poses of a body on the world's trajectory as odometry finds them: with a drift that grows to its bound in
/// half a minute, and with noise. Both begin at nothing when the origin is taken.
class TrajectoryPoses : public PoseSource {
public:
    struct Setup {
        double rate = 200; ///< per second
        double phase = 0; ///< of the schedule
        double drift = 0.01; ///< metres, in each direction; a map leaves a fifth of it
        double driftAngle = 0.002; ///< radians of heading
        double noise = 0.0002; ///< metres, deviation
        double noiseAngle = 0.0002; ///< radians, deviation
        unsigned seed = 1;

        /// Computed with the host's power; "Mixed" in the viewer.
        static Setup host(unsigned seed);
        /// Computed on the device: more often, and rougher.
        static Setup edge(unsigned seed);
    };

    TrajectoryPoses(std::shared_ptr<const SharedWorld> world, const Setup &setup);

    std::shared_ptr<const Schedule> schedule() const override { return m_schedule; }
    /// A prediction goes on at the present speeds, so it errs with what changes them.
    std::optional<Estimate> estimate(const Request &request) override;
    void setSync(bool sync) override;
    bool limitRate(double hz) override;

private:
    Pose drift(double t, double amount) const;
    Pose noise(double t, double amount) const;

    const std::shared_ptr<const SharedWorld> m_world;
    const Setup m_setup;
    const std::shared_ptr<RateSchedule> m_schedule;
    const Noise m_noise;
};

} // namespace sim
