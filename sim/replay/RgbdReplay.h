#pragma once

#include "device/SimDevice.h"

namespace sim {

/// The cameras that play a recording in the TUM RGB-D layout, from now on. Throws std::runtime_error with a
/// text for people if there is nothing to play.
SimDevice::Components rgbdComponents(const std::shared_ptr<DeviceState> &state);

} // namespace sim
