#pragma once

#include "world/Surface.h"

namespace sim {

/// An upright box, turned about the vertical only. Walls, furniture and pictures are made of these.
struct Box {
    enum Face : unsigned { Front = 1, Back = 2, Left = 4, Right = 8, Top = 16, Bottom = 32, All = 63 };

    const char *part = "";
    Eigen::Vector3d centre = Eigen::Vector3d::Zero();
    Eigen::Vector3d size = Eigen::Vector3d::Ones(); ///< along its own x, y, z
    double yaw = 0; ///< radians, about the world's y
    Paint paint = Paint::White;
    unsigned variant = 0;
    unsigned faces = All; ///< those that can be seen; the front looks along its own -z
};

} // namespace sim
