#pragma once

#include "world/Room.h"

#include <opencv2/core.hpp>
#include <vector>

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
    /// The boxes' bounding balls side by side, and each box; plain numbers, since millions of rays are tried.
    struct Blockers {
        std::vector<float> x;
        std::vector<float> y;
        std::vector<float> z;
        std::vector<float> radius2;
        std::vector<float> halfX;
        std::vector<float> halfY;
        std::vector<float> halfZ;
        std::vector<float> cosine;
        std::vector<float> sine;
    };
    struct Ray {
        float x;
        float y;
        float z;
        float dx;
        float dy;
        float dz;
        float length;
    };

    void addBlocker(const Box &box);
    bool meets(const Ray &ray, std::size_t blocker) const;
    double at(const Eigen::Vector3d &point, const Eigen::Vector3d &normal) const;
    double direct(const Eigen::Vector3d &point, const Eigen::Vector3d &normal) const;
    double openness(const Eigen::Vector3d &point, const Eigen::Vector3d &normal) const;
    /// True if a box is met within `length` along a unit direction.
    bool blocked(const Eigen::Vector3d &from, const Eigen::Vector3d &direction, double length) const;

    const Room &m_room;
    Blockers m_blockers;
};

} // namespace sim
