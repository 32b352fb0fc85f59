#include "device/FisheyeRig.h"

namespace sim {

namespace {

/// Lenses of one make differ a little, and none is centred.
qv::UnifiedCameraModel lens(int width, int height, int number)
{
    static constexpr double shiftX[] = {1.7, -2.3, 0.6, -1.1};
    static constexpr double shiftY[] = {-0.9, 1.4, 2.1, -1.6};
    static constexpr double stretch[] = {1.0, 1.0021, 0.9985, 1.0012};
    const double focal = 495.0 * width / 640.0 * stretch[number];
    qv::UnifiedCameraModel model;
    model.w = width;
    model.h = height;
    model.fx = focal;
    model.fy = focal * 1.0004;
    model.u0 = (width - 1) / 2.0 + shiftX[number];
    model.v0 = (height - 1) / 2.0 + shiftY[number];
    model.xi = 0.98;
    return model;
}

} // namespace

FisheyeRig FisheyeRig::stereo(int width, int height)
{
    FisheyeRig rig;
    rig.mounts.push_back({mounted(-0.04, 0, 0.012, 0, 0, 0), lens(width, height, 0)});
    rig.mounts.push_back({mounted(0.04, 0, 0.012, 0, 0, 0), lens(width, height, 1)});
    return rig;
}

FisheyeRig FisheyeRig::quad(int width, int height)
{
    FisheyeRig rig;
    rig.mounts.push_back({mounted(-0.05, -0.025, 0.01, -8, 14, 0.3), lens(width, height, 0)});
    rig.mounts.push_back({mounted(0.05, -0.025, 0.01, 8, 14, -0.2), lens(width, height, 1)});
    rig.mounts.push_back({mounted(-0.06, 0.03, 0.005, -38, -22, -0.4), lens(width, height, 2)});
    rig.mounts.push_back({mounted(0.06, 0.03, 0.005, 38, -22, 0.1), lens(width, height, 3)});
    return rig;
}

} // namespace sim
