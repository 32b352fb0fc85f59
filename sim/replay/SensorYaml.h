#pragma once

#include <Eigen/Geometry>
#include <filesystem>
#include <string>
#include <vector>

namespace sim {

/// What a recording's sensor.yaml tells of one sensor. Whatever is missing keeps its initial value.
struct SensorYaml {
    Eigen::Isometry3d bodyFromSensor = Eigen::Isometry3d::Identity();
    double rate = 0; ///< per second
    int width = 0; ///< pixels
    int height = 0; ///< pixels
    std::string cameraModel;
    std::vector<double> intrinsics;
    std::string distortionModel;
    std::vector<double> distortion;

    /// Throws std::runtime_error with a text for people if the file can't be used.
    static SensorYaml read(const std::filesystem::path &path);
    static SensorYaml parse(const std::string &text);
};

} // namespace sim
