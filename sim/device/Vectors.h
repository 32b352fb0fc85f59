#pragma once

#include "device/qv/Records.h"

#include <Eigen/Core>

namespace sim {

/// As the contract's records hold it.
inline qv::Vector3 vector3(const Eigen::Vector3d &v)
{
    return {v.x(), v.y(), v.z()};
}

} // namespace sim
