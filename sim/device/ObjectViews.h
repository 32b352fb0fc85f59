#pragma once

#include "device/FisheyeSource.h"
#include "device/SimObjectDetector.h"

namespace sim {

/// The left and the right camera at their present resolution.
SimObjectDetector::Views fisheyeViews(const std::shared_ptr<const FisheyeSource> &source);

SimObjectDetector::View defaultColorView();
SimObjectDetector::View defaultTofView();

} // namespace sim
