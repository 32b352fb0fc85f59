#pragma once

#include "device/qv/Records.h"
#include "replay/SensorYaml.h"

namespace sim {

/// A recording's calibration as far as the contract's records can hold it without a lie: pinhole with
/// radial-tangential distortion is a polynomial model, the omnidirectional model without distortion a unified
/// one, the enhanced one stays what it is. Any other lens, equidistant for one, has its picture size and its
/// place, but no model.
qv::CalibrationEx calibrationFrom(const SensorYaml &sensor);

} // namespace sim
