#pragma once

#include "device/FisheyeSource.h"
#include "device/SimObjectDetector.h"
#include "device/qv/Camera.h"

namespace sim {

/// The left and the right camera at their present resolution.
SimObjectDetector::Views fisheyeViews(const std::shared_ptr<const FisheyeSource> &source);

/// A camera whose calibration has a polynomial model first, as it says at the time.
std::function<SimObjectDetector::View()> polynomialView(std::shared_ptr<qv::Camera> camera);

} // namespace sim
