#pragma once

#include "replay/PictureList.h"
#include "replay/Timeline.h"

#include "device/qv/Records.h"

namespace sim {

/// A recording in the TUM RGB-D layout: rgb.txt and depth.txt list pictures with their times, one of the two
/// is enough. What can't be read in it is complained about once and left out.
struct RgbdRecording {
    std::vector<PictureRow> color; ///< in order of time, no time twice
    std::vector<PictureRow> depth; ///< the same
    /// Of both cameras, whose pictures such recordings bring to one lens; the layout's usual focal length of
    /// 525 pixels unless a calibration.txt tells: fx fy cx cy width height scale.
    qv::PolynomialDistortionCameraModel lens;
    double depthScale = 5000; ///< steps of the depth pictures in a metre

    /// Whether the folder looks like one.
    static bool isOne(const std::filesystem::path &folder);
    /// Throws std::runtime_error with a text for people if there is nothing to play.
    static RgbdRecording open(const std::filesystem::path &folder);

    /// Both cameras' times, from `origin` seconds of the clock on.
    Timeline timeline(double origin) const;
};

} // namespace sim
