#pragma once

#include "world/CameraModel.h"
#include "world/Pose.h"
#include "world/Scene.h"
#include "world/Textures.h"

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace sim {

/// A point that a tracker would find again: a corner of the texture of something that stands still.
struct Feature {
    int id = -1; ///< its index in `Features::all`
    Eigen::Vector3d position = Eigen::Vector3d::Zero(); ///< world
    int surface = -1;
};

/// The key points of the scene. Immutable: any thread may ask.
class Features {
public:
    explicit Features(std::shared_ptr<const Scene> scene, unsigned seed = 1);

    /// Those of a scene, made once and shared; the ones asked for last stay.
    static std::shared_ptr<const Features> of(const std::shared_ptr<const Scene> &scene);

    /// At least 20 000, on all surfaces of the room.
    const std::vector<Feature> &all() const { return m_all; }

    /// Ids and pixels of those that a camera sees at time t: in the picture and not hidden; at most `limit`.
    /// The choice goes by a fixed rank of each point, distinct ones first, so that the same are chosen from
    /// frame to frame.
    std::vector<std::pair<int, Eigen::Vector2f>> visible(
        const CameraModel &model, const Pose &worldFromCamera, double t, std::size_t limit) const;

    /// Ids of those that a camera sees at time t, without those that are marked as known. Goes round the
    /// points, from `cursor` on, and looks at no more than `budget` that are in the picture: seeing all at
    /// once takes long.
    std::vector<int> explore(const CameraModel &model, const Pose &worldFromCamera, double t,
        const std::vector<bool> &known, std::size_t &cursor, std::size_t budget) const;

private:
    /// Where the camera would have a point that nothing hides.
    std::optional<Eigen::Vector2d> pixelOf(const Feature &feature, const CameraModel &model,
        const Pose &worldFromCamera, const Pose &cameraFromWorld) const;
    void collect(const Surface &surface, const Texture &texture, std::vector<float> &strengths);

    std::shared_ptr<const Scene> m_scene;
    std::vector<Feature> m_all;
    std::vector<std::size_t> m_ranked; ///< indices into `m_all`
};

} // namespace sim
