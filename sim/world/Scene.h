#pragma once

#include "world/Person.h"
#include "world/Room.h"

#include <Eigen/Geometry>
#include <optional>
#include <vector>

namespace sim {

struct Hit {
    double distance = 0; ///< metres from the origin of the ray
    int surface = -1; ///< id of the surface or of the ellipsoid
    Eigen::Vector3d point = Eigen::Vector3d::Zero(); ///< world
    Eigen::Vector2d uv =
        Eigen::Vector2d::Zero(); ///< metres from the surface's top left corner; 0 on ellipsoids
    Eigen::Vector3d normal = Eigen::Vector3d::Zero(); ///< world, towards the origin of the ray
};

/// All that can be seen: the room and the person who walks in it. Immutable: any thread may ask.
///
/// Ids: the room's surfaces first, then its ellipsoids, then the person's, with no gaps.
class Scene {
public:
    struct PersonState {
        Pose pose; ///< worldFromPerson
        Person::KeyPoints keyPoints; ///< world
        Eigen::AlignedBox3d bounds; ///< world
    };

    explicit Scene(unsigned seed = 1);

    unsigned seed() const { return m_seed; }
    const Room &room() const { return m_room; }
    const std::vector<Surface> &surfaces() const { return m_room.surfaces(); }
    /// Those of the room, then those of the person at time t.
    std::vector<Ellipsoid> ellipsoids(double t) const;
    PersonState person(double t) const;
    /// The id from which on a body belongs to the person.
    int firstPersonId() const { return m_firstPersonId; }
    int idCount() const { return m_firstPersonId + static_cast<int>(Person::bodyCount()); }

    /// The nearest thing along a ray (of any length but 0) at time t. Exact and slow: the reference of all
    /// pictures.
    std::optional<Hit> cast(const Eigen::Vector3d &origin, const Eigen::Vector3d &direction, double t) const;
    /// True where nothing lies between two points but within `margin` metres of the second. The person
    /// counts.
    bool sees(const Eigen::Vector3d &from, const Eigen::Vector3d &to, double t, double margin = 0.005) const;

private:
    unsigned m_seed;
    Room m_room;
    Person m_person;
    int m_firstPersonId = 0;
};

} // namespace sim
