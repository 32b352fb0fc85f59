#pragma once

#include "world/Ellipsoid.h"
#include "world/Pose.h"

#include <array>
#include <vector>

namespace sim {

/// Someone who walks round and round the room on a closed path, clear of the device's trajectory and of the
/// furniture. Immutable: any thread may ask.
class Person {
public:
    static constexpr std::size_t keyPointCount = 18;
    /// Nose, neck, right shoulder, elbow, wrist, the same on the left, right hip, knee, ankle, the same on
    /// the left, right eye, left eye, right ear, left ear. World, metres.
    using KeyPoints = std::array<Eigen::Vector3d, keyPointCount>;

    explicit Person(unsigned seed = 1);

    /// worldFromPerson: the origin is on the floor, z ahead, y down, x to the person's right.
    Pose pose(double t) const;
    KeyPoints keyPoints(double t) const;
    /// The body at a time; ids count from `firstId`. The number and order never change.
    std::vector<Ellipsoid> bodies(double t, int firstId) const;
    static std::size_t bodyCount();

private:
    KeyPoints localPoints(double t) const;
    double angle(double t) const;

    double m_start = 0; ///< radians along the path at t = 0
};

} // namespace sim
