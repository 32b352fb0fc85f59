#pragma once

#include "device/SimDevice.h"

namespace sim {

/// The components that play the recording of a description's folder, in step with each other, from now on.
/// Throws std::runtime_error with a text for people if there is nothing to play.
SimDevice::Components replayComponents(const std::shared_ptr<DeviceState> &state);

} // namespace sim
