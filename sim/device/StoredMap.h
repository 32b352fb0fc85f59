#pragma once

#include <Eigen/Core>
#include <cstdint>
#include <vector>

namespace sim {

/// What a map file keeps: points that can be recognised, and where they are.
struct StoredMap {
    struct Landmark {
        std::uint64_t descriptor =
            0; ///< of how it looks: the same point has the same one whenever it is seen
        Eigen::Vector3d position = Eigen::Vector3d::Zero(); ///< in the map's own frame, metres
    };
    std::vector<Landmark> landmarks;
    int quality = 0; ///< 0 to 100
};

} // namespace sim
