#pragma once

#include "core/Faults.h"

#include <map>
#include <string>

namespace sim {

enum class Profile { Headset, Module, Quad, ImuOnly, Plain, Replay };

/// What one stream is asked to be; 0 and empty leave the profile's choice.
struct StreamConfig {
    double rate = 0; ///< per second
    int width = 0; ///< pixels
    int height = 0; ///< pixels
    std::string codec; ///< of colour pictures: "yuyv", "yuv420p", "jpeg"

    bool operator==(const StreamConfig &other) const;
};

/// One device as the configuration describes it.
struct DeviceConfig {
    Profile profile = Profile::Headset;
    std::string uuid;
    bool present = true;
    std::string version; ///< of the firmware; empty leaves the profile's
    std::map<std::string, std::string> info; ///< entries added to or put over the profile's
    unsigned seed = 1; ///< of the world and of the noise
    std::string folder; ///< of the recording, for the profile replay
    std::map<std::string, StreamConfig> streams; ///< by component: "imu", "fisheye", ...
    Faults faults;

    StreamConfig stream(const std::string &component) const;
    /// Whether a device of the other description has to be plugged anew; faults may change as it runs.
    bool sameHardware(const DeviceConfig &other) const;
    bool operator==(const DeviceConfig &other) const;
};

} // namespace sim
