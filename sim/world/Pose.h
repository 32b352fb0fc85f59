#pragma once

#include <Eigen/Geometry>

namespace sim {

/// A rigid transform, named `targetFromSource`: `worldFromBody * pointInBody` is a point of the world.
/// Metres. Frames are right-handed. Camera and body: x right, y down, z forward. World: y down, its origin
/// where the body is at t = 0.
using Pose = Eigen::Isometry3d;

} // namespace sim
