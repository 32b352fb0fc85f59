#pragma once

#include "device/FisheyeRig.h"
#include "device/SharedWorld.h"
#include "world/Renderer.h"

namespace sim {

/// What a stereo matcher finds between a rig's first two cameras: depth in the left camera's picture, and
/// holes where a matcher has them: where the right camera sees something else or nothing, and where the
/// picture has too little texture across. One thread at a time.
class StereoMatcher {
public:
    struct Setup {
        cv::Size size;
        bool dewarp = true; ///< the picture of a pinhole, else that of the left camera's own lens
        double zoom = 1; ///< of the pinhole; 1 is `fieldOfView` wide
        bool thorough = false; ///< matches with less texture too

        bool operator==(const Setup &other) const;
    };

    /// Of the pinhole at zoom 1, in degrees.
    static constexpr double fieldOfView = 96;
    /// The focal length in pixels of a pinhole that is so wide, up to 180 degrees; 0 from there on.
    static double focalLength(int width, double degrees);

    StereoMatcher(std::shared_ptr<const SharedWorld> world, FisheyeRig rig);
    ~StereoMatcher();

    /// `z`: CV_32FC1, metres along the left camera's axis, 0 in holes.
    void match(double due, const Setup &setup, cv::Mat &z);

    /// The lens that pictures of a setup have; its place is the left camera's.
    std::shared_ptr<const CameraModel> lens(const Setup &setup) const;

private:
    struct Optics;

    void findOccluded(const cv::Mat &z);
    void findPlain(double least);
    void cutHoles(cv::Mat &z) const;

    const std::shared_ptr<const SharedWorld> m_world;
    const FisheyeRig m_rig;
    const Pose m_rightFromLeft;
    std::unique_ptr<Optics> m_optics;
    cv::Mat m_rightZ;
    cv::Mat m_grey;
    cv::Mat m_slope;
    cv::Mat m_steepness;
    cv::Mat m_texture;
    cv::Mat m_holes; ///< CV_8UC1, not 0 in holes, on the matching grid
};

} // namespace sim
