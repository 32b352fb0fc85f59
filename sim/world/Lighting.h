#pragma once

#include "world/Room.h"

#include <opencv2/core.hpp>

namespace sim {

/// How bright each part of the room's surfaces is: lamps and window with soft shadows, and less light from
/// all around in corners and under furniture.
class Lighting {
public:
    explicit Lighting(const Room &room);

    /// CV_32FC1: factors on the paint, about 1 in good light, on a grid of about ten centimetres over the
    /// surface.
    cv::Mat over(const Surface &surface) const;

private:
    struct Blocker {
        Eigen::Vector3d centre;
        Eigen::Vector3d half;
        double cosine;
        double sine;
        double radius2; ///< squared, of the ball about it
    };

    double at(const Eigen::Vector3d &point, const Eigen::Vector3d &normal) const;
    double direct(const Eigen::Vector3d &point, const Eigen::Vector3d &normal) const;
    double openness(const Eigen::Vector3d &point, const Eigen::Vector3d &normal) const;
    /// True if a box is met within `length` along a unit direction.
    bool blocked(const Eigen::Vector3d &from, const Eigen::Vector3d &direction, double length) const;

    const Room &m_room;
    std::vector<Blocker> m_blockers;
};

} // namespace sim
