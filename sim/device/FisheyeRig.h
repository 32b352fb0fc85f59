#pragma once

#include "device/qv/Records.h"
#include "world/Pose.h"

#include <vector>

namespace sim {

/// Lenses of a device and where they sit.
struct FisheyeRig {
    struct Mount {
        Pose bodyFromCamera;
        qv::UnifiedCameraModel lens; ///< at the calibration's picture size
    };
    std::vector<Mount> mounts;

    /// Left and right, parallel, 80 mm apart, 130 degrees wide.
    static FisheyeRig stereo(int width, int height);
    /// Upper left, upper right, lower left, lower right: the upper ones look ahead and up, the lower ones
    /// outwards and down.
    static FisheyeRig quad(int width, int height);
};

} // namespace sim
