#pragma once

#include <Eigen/Core>

namespace sim {

/// A round body of one colour: limbs, leaves, vases.
struct Ellipsoid {
    int id = -1;
    const char *part = "";
    Eigen::Vector3d centre = Eigen::Vector3d::Zero();
    Eigen::Matrix3d axes = Eigen::Matrix3d::Identity(); ///< world from local; columns are the axes
    Eigen::Vector3d radii = Eigen::Vector3d::Ones();
    Eigen::Vector3d color = Eigen::Vector3d::Ones(); ///< red, green, blue, 0 to 1
    double stripes = 0; ///< stripes a metre along the local y axis; 0 is plain

    /// Takes the ellipsoid to the unit ball about the origin (once `centre` is subtracted).
    Eigen::Matrix3d toBall() const { return radii.cwiseInverse().asDiagonal() * axes.transpose(); }
};

} // namespace sim
