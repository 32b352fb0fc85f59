#pragma once

#include "core/DeviceConfig.h"

#include <optional>
#include <vector>

namespace sim {

std::optional<Profile> profileByName(const std::string &name);
const char *profileName(Profile profile);

/// Gives every device that has none a uuid made from its profile and its place among its kind.
void nameDevices(std::vector<DeviceConfig> &devices);

/// Reads descriptions of devices; docs/simulated-devices.md tells the format. Throws std::runtime_error
/// with a text for people if the text can't be used. Keys that it doesn't know are told in `unknown`.
std::vector<DeviceConfig> parseConfig(const std::string &json, std::vector<std::string> &unknown);

/// From the environment's short form, e.g. "headset,module", and "folder:folder". What can't be used is left
/// out with a complaint. One headset if both are empty.
std::vector<DeviceConfig> parseShortForm(const std::string &profiles, const std::string &folders);

} // namespace sim
