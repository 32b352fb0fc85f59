#pragma once

#include "world/Pose.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace sim {

/// One pose of a recorded trajectory.
struct PoseRow {
    std::int64_t time = 0; ///< ns
    Pose worldFromBody = Pose::Identity();
};

/// The trajectory of a recording, in order of time; a time that comes twice counts once. In the EuRoC and
/// TUM-VI layouts that is state_groundtruth_estimate0 or mocap0, a data.csv of time, x, y, z, qw, qx, qy, qz;
/// in the TUM RGB-D layout groundtruth.txt, of time x y z qx qy qz qw. A file is read as the latter. Nothing
/// if there is none. Complains, once a file, about what it can't read.
std::vector<PoseRow> readPoseTrack(const std::filesystem::path &recording);

/// The same poses in a world whose y points down, as they are of a camera that looks along z with y down. A
/// trajectory doesn't tell where down is in its world: it is taken to be the axis that the camera's own down
/// is nearest to on the whole.
void turnUpright(std::vector<PoseRow> &track);

} // namespace sim
