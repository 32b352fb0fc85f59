#pragma once

#include "device/SimDevice.h"

namespace sim {

/// The device that a description asks for; null, after a complaint, if it can't be made.
std::shared_ptr<SimDevice> makeDevice(const DeviceConfig &config);

} // namespace sim
