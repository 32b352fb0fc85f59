#pragma once

#include <Eigen/Core>

namespace sim {

/// What a surface is painted with; `Painter` knows how each one looks.
enum class Paint {
    Wall,
    AccentWall,
    Boards,
    Tiles,
    Carpet,
    Lamp,
    Wood,
    DarkWood,
    White,
    Metal,
    Plastic,
    Fabric,
    Cushion,
    Cardboard,
    Books,
    Folders,
    Cupboard,
    Drawers,
    Door,
    Radiator,
    Window,
    Monitor,
    Television,
    Keyboard,
    Whiteboard,
    Landscape,
    Abstract,
    Portrait,
    Poster,
    Chessboard,
    Noticeboard,
    Pot,
};

/// A plane rectangle, seen from the side that its normal points to only. The point (a, b) of it, in metres
/// from its top left corner, is `corner + a * right + b * down`.
struct Surface {
    int id = -1;
    const char *part = ""; ///< what it belongs to: "wall", "floor", "table", ...
    Eigen::Vector3d corner = Eigen::Vector3d::Zero();
    Eigen::Vector3d right = Eigen::Vector3d::UnitX();
    Eigen::Vector3d down = Eigen::Vector3d::UnitY();
    Eigen::Vector3d normal = -Eigen::Vector3d::UnitZ();
    double width = 0;
    double height = 0;
    Paint paint = Paint::White;
    unsigned variant = 0; ///< tells equal paints apart

    Eigen::Vector3d at(double a, double b) const { return corner + a * right + b * down; }
};

} // namespace sim
