#pragma once

#include <Eigen/Geometry>

namespace sim {

/// A rigid transform, named `targetFromSource`: `worldFromBody * pointInBody` is a point of the world.
/// Metres. Frames are right-handed. Camera and body: x right, y down, z forward. World: y down, its origin
/// where the body is at t = 0.
using Pose = Eigen::Isometry3d;

constexpr double radiansPerDegree = 0.017453292519943295;

/// bodyFromCamera of a camera that is mounted at (x, y, z) metres and turned by so many degrees to the right,
/// upwards and about its axis.
Pose mounted(double x, double y, double z, double yaw, double pitch, double roll);

} // namespace sim
