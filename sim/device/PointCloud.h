#pragma once

#include "device/qv/Records.h"

#include <array>
#include <vector>

namespace qv {

/// What the contract keeps closed: points of the ToF camera's frame, in metres.
class PointCloud {
public:
    std::vector<std::array<float, 3>> points;
};

} // namespace qv
