#pragma once

#include "replay/ImuTrack.h"
#include "replay/PoseTrack.h"
#include "replay/SensorYaml.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace sim {

/// A recording in the EuRoC or TUM-VI layout, mav0/cam0, cam1, ..., imu0, each with a data.csv and a
/// sensor.yaml, and the trajectory that the device has taken. What can't be read in it is complained about
/// once and left out.
struct Recording {
    /// The pictures that all cameras took at one time; one file a camera.
    struct Frame {
        std::int64_t time = 0; ///< ns
        std::vector<std::filesystem::path> files;
    };

    std::vector<SensorYaml> cameras;
    std::vector<Frame> frames; ///< in order of time, no time twice
    std::vector<ImuRow> imu; ///< in order of time, no time twice
    std::vector<PoseRow> poses; ///< the same

    /// The folder that holds mav0, or mav0 itself; also a trajectory by itself, as a file or in a folder.
    /// Throws std::runtime_error with a text for people if there is nothing to play.
    static Recording open(const std::filesystem::path &folder);
};

} // namespace sim
