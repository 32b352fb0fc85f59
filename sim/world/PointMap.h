#pragma once

#include "world/Features.h"

#include <memory>
#include <vector>

namespace sim {

/// The features that cameras have met so far, as the points of a map. Not thread-safe.
class PointMap {
public:
    explicit PointMap(std::shared_ptr<const Features> features);

    /// Adds up to `limit` of those that the camera sees at time t; answers how many were new.
    std::size_t observe(
        const CameraModel &model, const Pose &worldFromCamera, double t, std::size_t limit = 400);
    /// Adds what the camera sees at time t, looking at up to `budget` points that aren't in the map; whoever
    /// calls often gets all. Answers how many were new.
    std::size_t explore(const CameraModel &model, const Pose &worldFromCamera, double t, std::size_t budget);
    /// Adds a point that is known from elsewhere.
    void add(int id);
    /// Ids in the order in which they were first met; they index `Features::all`.
    const std::vector<int> &ids() const { return m_ids; }
    /// World, in the same order.
    std::vector<Eigen::Vector3d> points() const;
    void reset();

private:
    std::shared_ptr<const Features> m_features;
    std::vector<int> m_ids;
    std::vector<bool> m_known;
    std::size_t m_cursor = 0;
};

} // namespace sim
