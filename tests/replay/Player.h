#pragma once

#include "core/DeviceConfig.h"
#include "device/DeviceFactory.h"

#include <memory>
#include <string>

/// A device that plays a folder; `codec` is that of the colour pictures that it sends.
inline std::shared_ptr<sim::SimDevice> play(const std::string &folder, const std::string &codec = "")
{
    sim::DeviceConfig config;
    config.profile = sim::Profile::Replay;
    config.uuid = "recording";
    config.folder = folder;
    config.streams["color"].codec = codec;
    return makeDevice(config);
}

/// A file or folder of the recordings that are not part of the project.
inline std::string shared(const std::string &name)
{
    return std::string(QV_SOURCE_DIR) + "/../shared/data/" + name;
}
