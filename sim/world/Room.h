#pragma once

#include "world/Box.h"
#include "world/Ellipsoid.h"

#include <Eigen/Geometry>
#include <string>
#include <vector>

namespace sim {

/// The furnished room: all that stands still. Every surface's id is its index.
class Room {
public:
    static constexpr double floorY = 1.2;
    static constexpr double ceilingY = -1.45;
    static constexpr double leftX = -3.7;
    static constexpr double rightX = 3.7;
    static constexpr double backZ = -3.2;
    static constexpr double frontZ = 3.6;

    /// Something that an object detector would name, with the box about it.
    struct Item {
        std::string type;
        Eigen::AlignedBox3d bounds;
    };
    /// A rectangle of light, for shading.
    struct Light {
        Eigen::Vector3d centre;
        Eigen::Vector3d right; ///< half its width
        Eigen::Vector3d down; ///< half its height
        Eigen::Vector3d normal;
        double power;
    };

    explicit Room(unsigned seed = 1);

    const std::vector<Surface> &surfaces() const { return m_surfaces; }
    const std::vector<Box> &boxes() const { return m_boxes; }
    const std::vector<Ellipsoid> &ellipsoids() const { return m_ellipsoids; }
    const std::vector<Item> &items() const { return m_items; }
    const std::vector<Light> &lights() const { return m_lights; }

private:
    struct Span {
        double low;
        double high;
    };

    void addShell();
    void addOpenings();
    void addDesk();
    void addChair();
    void addSideboard();
    void addShelf();
    void addShelfContents(unsigned seed);
    void addCorners();
    void addSofa();
    void addPlant(unsigned seed);
    void addWallDecoration();
    void addLamps();

    void addSurface(Surface surface);
    void addBox(Box box);
    /// Heights are above the floor.
    Box box(const char *part, Paint paint, Span x, Span z, Span height, unsigned faces = Box::All,
        double yaw = 0);
    void place(const char *part, Paint paint, Span x, Span z, Span height, unsigned faces = Box::All,
        double yaw = 0);
    void addItem(const char *type, Span x, Span z, Span height);

    std::vector<Surface> m_surfaces;
    std::vector<Box> m_boxes;
    std::vector<Ellipsoid> m_ellipsoids;
    std::vector<Item> m_items;
    std::vector<Light> m_lights;
    unsigned m_variant = 0;
};

} // namespace sim
