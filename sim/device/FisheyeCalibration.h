#pragma once

#include "device/FisheyeRig.h"
#include "device/qv/Records.h"
#include "world/UnifiedModel.h"

#include <vector>

namespace sim {

/// Extrinsics as the contract's records hold them: the camera's place in the body's frame, which is that of
/// the inertial sensor.
void setExtrinsics(qv::Calibration &record, const Pose &bodyFromCamera);

/// The polynomial model that is nearest to a unified one within `maxAngle` radians of the axis, by least
/// squares over the radius; a polynomial cannot hold a fisheye's whole field of view.
qv::PolynomialDistortionCameraModel nearestPolynomial(
    const qv::UnifiedCameraModel &lens, double maxAngle = 0.9);

/// The same lens in the enhanced unified model: alpha = xi / (1 + xi), beta = 1.
qv::EnhancedUnifiedCameraModel enhanced(const qv::UnifiedCameraModel &lens);

/// One record a camera, at a picture size.
std::vector<qv::CalibrationEx> calibrate(const FisheyeRig &rig, int width, int height);

} // namespace sim
