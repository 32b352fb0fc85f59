#pragma once

#include "world/CameraModel.h"
#include "world/Pose.h"
#include "world/Scene.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace sim {

/// Something with a name that a camera sees, as an object detector would report it.
struct SeenObject {
    std::string type; ///< "person", "chair", "tv", "sofa", ...
    bool isPerson = false;
    cv::Rect2d box; ///< pixels, inside the picture
    double visible = 0; ///< how much of it is in the picture and not hidden, 0 to 1
    /// Of a person: pixel x and y, and 1; (-1, -1, 0) where the point is out of the picture or hidden by
    /// something else than the person. Order as in `Person::KeyPoints`.
    std::array<Eigen::Vector3d, Person::keyPointCount> keyPoints;
};

/// Finds the person and the furniture in a camera's view from the geometry. Immutable: any thread may ask.
class ObjectFinder {
public:
    explicit ObjectFinder(std::shared_ptr<const Scene> scene);

    /// The person first, if seen at all; nothing of which less than a quarter shows or that is only some
    /// pixels wide.
    std::vector<SeenObject> find(const CameraModel &model, const Pose &worldFromCamera, double t) const;

private:
    struct Item {
        std::string type;
        Eigen::AlignedBox3d bounds;
        std::vector<Eigen::Vector3d> points; ///< world, all over its outline
    };
    struct View {
        const CameraModel &model;
        const Pose &worldFromCamera;
        double t;
    };

    std::optional<SeenObject> look(const Item &item, const View &view) const;
    std::optional<SeenObject> lookAtPerson(const View &view) const;
    bool isSeen(const Eigen::Vector3d &point, const Eigen::AlignedBox3d &bounds, const View &view) const;

    std::shared_ptr<const Scene> m_scene;
    std::vector<Item> m_items;
};

} // namespace sim
