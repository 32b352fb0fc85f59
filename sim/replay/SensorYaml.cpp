#include "replay/SensorYaml.h"

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <yaml-cpp/yaml.h>

namespace sim {

namespace {

/// OpenCV's "%YAML:1.0" is no directive that YAML knows, and other first lines with % say nothing either.
std::string withoutDirectives(const std::string &text)
{
    static const std::string mark = "\xef\xbb\xbf";
    std::stringstream lines(text.compare(0, mark.size(), mark) == 0 ? text.substr(mark.size()) : text);
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line[0] != '%')
            result += line;
        result += '\n';
    }
    return result;
}

template <class T>
void take(const YAML::Node &node, const char *key, T &value)
{
    if (node[key])
        value = node[key].as<T>();
}

Eigen::Isometry3d transform(const YAML::Node &node)
{
    const auto numbers = (node.IsMap() ? node["data"] : node).as<std::vector<double>>();
    if (numbers.size() != 16)
        throw std::runtime_error("T_BS needs 16 numbers");
    const Eigen::Map<const Eigen::Matrix<double, 4, 4, Eigen::RowMajor>> matrix(numbers.data());
    Eigen::Isometry3d result = Eigen::Isometry3d::Identity();
    result.linear() = matrix.topLeftCorner<3, 3>();
    result.translation() = matrix.topRightCorner<3, 1>();
    return result;
}

SensorYaml fromNode(const YAML::Node &node)
{
    SensorYaml sensor;
    if (node["T_BS"])
        sensor.bodyFromSensor = transform(node["T_BS"]);
    take(node, "rate_hz", sensor.rate);
    take(node, "camera_model", sensor.cameraModel);
    take(node, "intrinsics", sensor.intrinsics);
    take(node, "distortion_model", sensor.distortionModel);
    take(node, "distortion_coefficients", sensor.distortion);
    std::vector<int> size;
    take(node, "resolution", size);
    if (size.size() == 2) {
        sensor.width = size[0];
        sensor.height = size[1];
    }
    return sensor;
}

} // namespace

SensorYaml SensorYaml::parse(const std::string &text)
{
    try {
        const YAML::Node node = YAML::Load(withoutDirectives(text));
        if (!node.IsMap())
            throw std::runtime_error("it has no keys");
        return fromNode(node);
    } catch (const YAML::Exception &error) {
        throw std::runtime_error(error.what());
    }
}

SensorYaml SensorYaml::read(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    if (!file)
        throw std::runtime_error("it can't be read");
    return parse(text.str());
}

} // namespace sim
