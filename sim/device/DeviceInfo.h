#pragma once

#include "device/SimDevice.h"

#include <map>
#include <string>

namespace sim {

/// The information map of a device: the profile's entries, the features that its components have, and on top
/// what the description says.
std::map<std::string, std::string> makeInfo(
    const DeviceConfig &config, const SimDevice::Components &components);

} // namespace sim
