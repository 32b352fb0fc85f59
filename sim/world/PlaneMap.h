#pragma once

#include "world/CameraModel.h"
#include "world/Pose.h"
#include "world/Scene.h"

#include <memory>
#include <string>
#include <vector>

namespace sim {

/// A flat part of the room as far as it has been seen.
struct SeenPlane {
    int id = 0; ///< stays the same for the same plane
    std::string part; ///< "floor", "wall", "table", ...
    Eigen::Vector3d normal = Eigen::Vector3d::Zero(); ///< world, into the room
    std::vector<Eigen::Vector3d> outline; ///< world, convex, in order round the edge
};

/// Collects the large planes of the room as a plane detector does: what has been looked at grows. Not
/// thread-safe.
class PlaneMap {
public:
    explicit PlaneMap(std::shared_ptr<const Scene> scene);

    /// Adds what the camera sees at time t within `range` metres. True if an outline changed.
    bool observe(const CameraModel &model, const Pose &worldFromCamera, double t, double range = 6);
    /// Those of which enough has been seen, by id.
    std::vector<SeenPlane> planes() const;
    /// All of them to their edges, whether seen or not, by id.
    std::vector<SeenPlane> complete() const;
    void reset();

private:
    struct Grid {
        int id = 0;
        const Surface *surface = nullptr;
        int columns = 0;
        int rows = 0;
        std::vector<bool> seen;
        int count = 0;

        Eigen::Vector3d node(int column, int row) const;
    };

    std::vector<Eigen::Vector3d> outlineOf(const Grid &grid) const;

    std::shared_ptr<const Scene> m_scene;
    std::vector<Grid> m_grids;
};

} // namespace sim
