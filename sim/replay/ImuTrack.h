#pragma once

#include <Eigen/Core>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace sim {

/// One recorded inertial reading.
struct ImuRow {
    std::int64_t time = 0; ///< ns
    Eigen::Vector3d gyro = Eigen::Vector3d::Zero(); ///< rad/s
    Eigen::Vector3d accel = Eigen::Vector3d::Zero(); ///< m/s^2
};

/// The rows of an imu0 folder in order of time; a time that comes twice counts once. Nothing if there is no
/// such folder. Complains, once a file, about what it can't read.
std::vector<ImuRow> readImuTrack(const std::filesystem::path &folder);

} // namespace sim
