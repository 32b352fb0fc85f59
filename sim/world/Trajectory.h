#pragma once

#include "world/Pose.h"

#include <array>
#include <vector>

namespace sim {

/// The one smooth road of the device's body through the room: sums of sines with incommensurate periods,
/// eased in from rest, so that it never repeats and has derivatives of every order. All times are seconds
/// since the clock's start; the pose at 0 is the identity, at rest. Immutable after construction: any thread
/// may ask.
class Trajectory {
public:
    static constexpr double gravity = 9.81; ///< m/s^2, along the world's +y

    explicit Trajectory(unsigned seed = 1);

    /// worldFromBody.
    Pose pose(double t) const;
    /// World frame, m/s.
    Eigen::Vector3d velocity(double t) const;
    /// World frame, m/s^2.
    Eigen::Vector3d acceleration(double t) const;
    /// Body frame, rad/s.
    Eigen::Vector3d angularVelocity(double t) const;
    /// Body frame, m/s^2: what an ideal accelerometer reads, (0, -9.81, 0) at rest and level.
    Eigen::Vector3d specificForce(double t) const;
    /// Body frame, microtesla.
    Eigen::Vector3d magneticField(double t) const;

private:
    /// One term, amplitude * sin(phase + bend * sin(phase)) with phase = 2 pi s / period: the bend makes some
    /// turns quicker than others.
    struct Wave {
        double amplitude;
        double period;
        double bend;
    };
    struct Jet {
        double value = 0;
        double first = 0;
        double second = 0;
    };
    using Sum = std::vector<Wave>;

    static Jet ease(double t);
    static Jet evaluate(const Sum &sum, const Jet &time);
    void jitter(unsigned seed);

    std::array<Sum, 3> m_position;
    std::array<Sum, 3> m_angles; ///< yaw about y, pitch about x, roll about z, applied in this order
};

} // namespace sim
