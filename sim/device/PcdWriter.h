#pragma once

#include "device/PointCloud.h"

#include <string>

namespace sim {

/// Writes version 0.7 of the Point Cloud Data format, x, y and z as floats; `precision` is the number of
/// significant digits where it is text. False if the file can't be written whole.
bool writePcd(const std::string &path, const qv::PointCloud &cloud, int precision, bool binary);

} // namespace sim
