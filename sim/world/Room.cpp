#include "world/Room.h"

#include <cmath>
#include <random>

namespace sim {
namespace {

using Eigen::Vector3d;

/// A rectangle about `centre` that faces along `normal`, with its edges named as a viewer in front of it sees
/// them.
Surface rectangle(const char *part, Paint paint, const Vector3d &centre, const Vector3d &normal,
    const Vector3d &right, double width, double height)
{
    Surface out;
    out.part = part;
    out.paint = paint;
    out.normal = normal;
    out.right = right;
    out.down = right.cross(normal);
    out.width = width;
    out.height = height;
    out.corner = centre - out.right * width / 2 - out.down * height / 2;
    return out;
}

constexpr unsigned onFloor = Box::All & ~Box::Bottom;

} // namespace

Room::Room(unsigned seed)
{
    addShell();
    addOpenings();
    addLamps();
    addDesk();
    addChair();
    addSideboard();
    addShelf();
    addShelfContents(seed);
    addCorners();
    addSofa();
    addPlant(seed);
    addWallDecoration();
}

void Room::addSurface(Surface surface)
{
    surface.id = static_cast<int>(m_surfaces.size());
    surface.variant = m_variant++;
    m_surfaces.push_back(surface);
}

void Room::addBox(Box box)
{
    box.variant = m_variant++;
    m_boxes.push_back(box);
    const Eigen::Matrix3d turn = Eigen::AngleAxisd(box.yaw, Vector3d::UnitY()).toRotationMatrix();
    const Vector3d x = turn.col(0);
    const Vector3d y = turn.col(1);
    const Vector3d z = turn.col(2);
    const Vector3d half = box.size / 2;
    auto face = [&](unsigned bit, const Vector3d &normal, double offset, const Vector3d &right, double width,
                    double height) {
        if (box.faces & bit)
            addSurface(
                rectangle(box.part, box.paint, box.centre + normal * offset, normal, right, width, height));
    };
    face(Box::Front, -z, half.z(), x, box.size.x(), box.size.y());
    face(Box::Back, z, half.z(), -x, box.size.x(), box.size.y());
    face(Box::Left, -x, half.x(), -z, box.size.z(), box.size.y());
    face(Box::Right, x, half.x(), z, box.size.z(), box.size.y());
    face(Box::Top, -y, half.y(), x, box.size.x(), box.size.z());
    face(Box::Bottom, y, half.y(), x, box.size.x(), box.size.z());
}

Box Room::box(const char *part, Paint paint, Span x, Span z, Span height, unsigned faces, double yaw)
{
    Box out;
    out.part = part;
    out.paint = paint;
    out.centre = {(x.low + x.high) / 2, floorY - (height.low + height.high) / 2, (z.low + z.high) / 2};
    out.size = {x.high - x.low, height.high - height.low, z.high - z.low};
    out.yaw = yaw;
    out.faces = faces;
    return out;
}

void Room::place(const char *part, Paint paint, Span x, Span z, Span height, unsigned faces, double yaw)
{
    addBox(box(part, paint, x, z, height, faces, yaw));
}

void Room::addItem(const char *type, Span x, Span z, Span height)
{
    m_items.push_back({type,
        Eigen::AlignedBox3d(
            Vector3d(x.low, floorY - height.high, z.low), Vector3d(x.high, floorY - height.low, z.high))});
}

/// The six sides come first, so that their ids are 0 to 5: front, back, left, right, floor, ceiling.
void Room::addShell()
{
    const double cx = (leftX + rightX) / 2;
    const double cy = (floorY + ceilingY) / 2;
    const double cz = (backZ + frontZ) / 2;
    const double w = rightX - leftX;
    const double h = floorY - ceilingY;
    const double d = frontZ - backZ;
    const Vector3d x = Vector3d::UnitX();
    const Vector3d y = Vector3d::UnitY();
    const Vector3d z = Vector3d::UnitZ();
    addSurface(rectangle("wall", Paint::AccentWall, {cx, cy, frontZ}, -z, x, w, h));
    addSurface(rectangle("wall", Paint::Wall, {cx, cy, backZ}, z, -x, w, h));
    addSurface(rectangle("wall", Paint::Wall, {leftX, cy, cz}, x, z, d, h));
    addSurface(rectangle("wall", Paint::Wall, {rightX, cy, cz}, -x, -z, d, h));
    addSurface(rectangle("floor", Paint::Boards, {cx, floorY, cz}, -y, x, w, d));
    addSurface(rectangle("ceiling", Paint::Tiles, {cx, ceilingY, cz}, y, x, w, d));

    const double t = 0.018;
    place("skirting", Paint::White, {leftX, rightX}, {frontZ - t, frontZ}, {0, 0.09}, Box::Front | Box::Top);
    place("skirting", Paint::White, {leftX, 0.55}, {backZ, backZ + t}, {0, 0.09}, Box::Back | Box::Top);
    place("skirting", Paint::White, {1.65, rightX}, {backZ, backZ + t}, {0, 0.09}, Box::Back | Box::Top);
    place("skirting", Paint::White, {leftX, leftX + t}, {backZ, frontZ}, {0, 0.09}, Box::Right | Box::Top);
    place("skirting", Paint::White, {rightX - t, rightX}, {backZ, frontZ}, {0, 0.09}, Box::Left | Box::Top);
    place("carpet", Paint::Carpet, {-1.5, 1.5}, {-1.0, 1.5}, {0, 0.012}, onFloor);
}

void Room::addOpenings()
{
    // The window, in the right wall, with a radiator below.
    const double r = rightX;
    place("window", Paint::Window, {r - 0.01, r}, {-1.6, 0.8}, {0.9, 2.2}, Box::Left);
    for (const double z : {-1.64, -0.82, -0.02, 0.8})
        place("window", Paint::White, {r - 0.07, r}, {z, z + 0.05}, {0.9, 2.2});
    place("window", Paint::White, {r - 0.07, r}, {-1.64, 0.85}, {2.2, 2.26});
    place("window", Paint::White, {r - 0.055, r}, {-1.64, 0.85}, {1.82, 1.86});
    place("window", Paint::White, {r - 0.24, r}, {-1.72, 0.93}, {0.86, 0.9});
    place("radiator", Paint::Radiator, {r - 0.13, r - 0.03}, {-1.4, 0.6}, {0.12, 0.72});

    // The door, in the back wall.
    const double b = backZ;
    place("door", Paint::Door, {0.65, 1.55}, {b, b + 0.025}, {0, 2.03}, onFloor & ~Box::Front);
    place("door", Paint::White, {0.55, 0.65}, {b, b + 0.045}, {0, 2.12}, onFloor & ~Box::Front);
    place("door", Paint::White, {1.55, 1.65}, {b, b + 0.045}, {0, 2.12}, onFloor & ~Box::Front);
    place(
        "door", Paint::White, {0.65, 1.55}, {b, b + 0.045}, {2.03, 2.12}, Box::Back | Box::Top | Box::Bottom);
    place("door", Paint::Metal, {0.70, 0.83}, {b + 0.06, b + 0.08}, {1.02, 1.045});
    place("door", Paint::Metal, {0.70, 0.72}, {b + 0.02, b + 0.06}, {1.02, 1.045});
    place("switch", Paint::White, {0.36, 0.44}, {b, b + 0.015}, {1.06, 1.14});
    m_lights.push_back({{r - 0.02, floorY - 1.55, -0.4}, {0, 0, 1.2}, {0, 0.65, 0}, {-1, 0, 0}, 1.5});
}

void Room::addLamps()
{
    for (const double x : {-1.6, 1.6}) {
        for (const double z : {-1.3, 1.7}) {
            const double h = floorY - ceilingY;
            place("lamp", Paint::Lamp, {x - 0.62, x + 0.62}, {z - 0.16, z + 0.16}, {h - 0.05, h},
                Box::All & ~Box::Top);
            m_lights.push_back({{x, ceilingY + 0.06, z}, {0.6, 0, 0}, {0, 0, 0.15}, {0, 1, 0}, 1.0});
        }
    }
}

void Room::addDesk()
{
    place("table", Paint::Wood, {-3.55, -1.65}, {2.75, 3.52}, {0.71, 0.74});
    for (const double x : {-3.52, -1.73}) {
        place("table", Paint::Metal, {x, x + 0.05}, {2.8, 2.85}, {0, 0.71}, onFloor & ~Box::Top);
        place("table", Paint::Metal, {x, x + 0.05}, {3.43, 3.48}, {0, 0.71}, onFloor & ~Box::Top);
    }
    place("table", Paint::White, {-3.47, -2.2}, {3.44, 3.46}, {0.32, 0.70});
    place("drawers", Paint::Drawers, {-2.2, -1.78}, {2.9, 3.45}, {0.03, 0.62});
    addItem("diningtable", {-3.55, -1.65}, {2.75, 3.52}, {0, 0.74});

    place("monitor", Paint::Plastic, {-2.78, -2.48}, {3.2, 3.4}, {0.74, 0.755}, onFloor);
    place("monitor", Paint::Plastic, {-2.67, -2.59}, {3.33, 3.36}, {0.755, 0.95}, Box::All & ~Box::Bottom);
    place("monitor", Paint::Plastic, {-3.0, -2.26}, {3.29, 3.33}, {0.87, 1.31});
    place("monitor", Paint::Monitor, {-2.985, -2.275}, {3.285, 3.29}, {0.885, 1.295}, Box::Front);
    addItem("tv", {-3.0, -2.26}, {3.28, 3.33}, {0.87, 1.31});
    place("keyboard", Paint::Keyboard, {-2.85, -2.4}, {2.92, 3.07}, {0.74, 0.762}, onFloor, 0.03);
    place("mouse", Paint::Plastic, {-2.3, -2.24}, {2.95, 3.05}, {0.74, 0.77}, onFloor, 0.2);
    place("book", Paint::Cardboard, {-3.45, -3.13}, {3.0, 3.22}, {0.74, 0.775}, onFloor, 0.15);
    place("book", Paint::Books, {-3.42, -3.16}, {3.02, 3.2}, {0.775, 0.815}, onFloor, -0.25);
    place("box", Paint::Folders, {-2.1, -1.82}, {3.1, 3.42}, {0.74, 1.03}, onFloor, 0.06);
    place("cup", Paint::Pot, {-2.14, -2.06}, {2.88, 2.96}, {0.74, 0.84}, onFloor, 0.4);
    addItem("cup", {-2.14, -2.06}, {2.88, 2.96}, {0.74, 0.84});
    place("bin", Paint::Plastic, {-1.5, -1.22}, {3.2, 3.48}, {0, 0.34}, onFloor);
}

void Room::addChair()
{
    const double yaw = 0.42;
    const Vector3d seat(-2.45, 0, 2.3);
    const Eigen::Matrix3d turn = Eigen::AngleAxisd(yaw, Vector3d::UnitY()).toRotationMatrix();
    auto part = [&](Paint paint, const Vector3d &offset, const Vector3d &size) {
        Box out;
        out.part = "chair";
        out.paint = paint;
        out.size = size;
        out.yaw = yaw;
        out.centre = seat + turn * Vector3d(offset.x(), 0, offset.z());
        out.centre.y() = floorY - offset.y();
        addBox(out);
    };
    part(Paint::Fabric, {0, 0.465, 0}, {0.47, 0.07, 0.46});
    part(Paint::Fabric, {0, 0.80, -0.235}, {0.42, 0.44, 0.055});
    part(Paint::Plastic, {0, 0.52, -0.24}, {0.07, 0.16, 0.03});
    part(Paint::Metal, {0, 0.25, 0}, {0.05, 0.36, 0.05});
    part(Paint::Plastic, {0, 0.06, 0}, {0.56, 0.035, 0.05});
    part(Paint::Plastic, {0, 0.06, 0}, {0.05, 0.035, 0.56});
    part(Paint::Plastic, {-0.25, 0.66, -0.02}, {0.05, 0.03, 0.26});
    part(Paint::Plastic, {0.25, 0.66, -0.02}, {0.05, 0.03, 0.26});
    part(Paint::Plastic, {-0.25, 0.56, -0.08}, {0.03, 0.18, 0.04});
    part(Paint::Plastic, {0.25, 0.56, -0.08}, {0.03, 0.18, 0.04});
    addItem("chair", {-2.78, -2.12}, {1.97, 2.63}, {0, 1.02});
}

void Room::addSideboard()
{
    const double z = frontZ;
    place("sideboard", Paint::Cupboard, {-0.95, 1.25}, {z - 0.45, z}, {0.06, 0.6}, onFloor & ~Box::Back);
    place("sideboard", Paint::DarkWood, {-0.97, 1.27}, {z - 0.47, z}, {0.6, 0.63});
    place("sideboard", Paint::DarkWood, {-0.9, 1.2}, {z - 0.4, z}, {0, 0.06},
        onFloor & ~(Box::Back | Box::Top));
    place("television", Paint::Plastic, {-0.62, 0.92}, {z - 0.07, z - 0.02}, {0.88, 1.76});
    place(
        "television", Paint::Television, {-0.605, 0.905}, {z - 0.075, z - 0.07}, {0.895, 1.745}, Box::Front);
    addItem("tv", {-0.62, 0.92}, {z - 0.075, z - 0.02}, {0.88, 1.76});
    place("box", Paint::Cardboard, {-0.85, -0.57}, {z - 0.36, z - 0.12}, {0.63, 0.81}, onFloor, -0.2);
    place("box", Paint::Chessboard, {-0.35, -0.05}, {z - 0.3, z - 0.27}, {0.63, 0.85}, onFloor, 0.25);
    place("speaker", Paint::Plastic, {1.0, 1.16}, {z - 0.28, z - 0.1}, {0.63, 0.86}, onFloor);
    Ellipsoid vase;
    vase.part = "vase";
    vase.centre = {0.5, floorY - 0.73, z - 0.24};
    vase.radii = {0.075, 0.12, 0.075};
    vase.color = {0.16, 0.38, 0.46};
    vase.stripes = 28;
    m_ellipsoids.push_back(vase);
    addItem("vase", {0.42, 0.58}, {z - 0.32, z - 0.16}, {0.61, 0.85});
}

void Room::addShelf()
{
    const double x0 = rightX - 0.36;
    const double x1 = rightX;
    place("shelf", Paint::Wood, {x0, x1}, {1.5, 1.525}, {0, 2.05}, onFloor & ~Box::Right);
    place("shelf", Paint::Wood, {x0, x1}, {3.355, 3.38}, {0, 2.05}, onFloor & ~Box::Right);
    place("shelf", Paint::Wood, {x0, x1}, {2.43, 2.455}, {0.06, 2.02}, Box::Front | Box::Back | Box::Left);
    for (const double h : {0.06, 0.46, 0.86, 1.26, 1.66, 2.025})
        place("shelf", Paint::Wood, {x0, x1}, {1.525, 3.355}, {h, h + 0.025},
            Box::Left | Box::Top | Box::Bottom);
    place("shelf", Paint::DarkWood, {x1 - 0.01, x1}, {1.525, 3.355}, {0.06, 2.03}, Box::Left);
}

/// Fills the ten compartments from left to right with rows of books, folders and boxes, and leaves gaps.
void Room::addShelfContents(unsigned seed)
{
    std::mt19937 random(seed * 7919 + 3);
    auto unit = [&random] { return static_cast<double>(random() >> 8) / double(1 << 24); };
    const Paint kinds[] = {
        Paint::Books, Paint::Folders, Paint::Cardboard, Paint::Books, Paint::White, Paint::Books};
    for (const double h : {0.085, 0.485, 0.885, 1.285, 1.685}) {
        for (const double start : {1.54, 2.47}) {
            double z = start;
            while (z < start + 0.72) {
                const double width = 0.16 + 0.3 * unit();
                const double depth = 0.2 + 0.1 * unit();
                const double height = 0.17 + 0.14 * unit();
                const double end = std::min(z + width, start + 0.87);
                const Paint paint = kinds[random() % 6];
                if (unit() < 0.85)
                    place("shelved", paint, {rightX - 0.03 - depth, rightX - 0.03}, {z, end}, {h, h + height},
                        Box::Front | Box::Back | Box::Left | Box::Top);
                z = end + 0.01 + 0.05 * unit();
            }
        }
    }
    place("box", Paint::Cardboard, {3.36, 3.66}, {1.7, 2.15}, {2.05, 2.34}, Box::All, 0.05);
    place("box", Paint::White, {3.36, 3.64}, {2.6, 3.0}, {2.05, 2.26}, Box::All, -0.08);
    addItem("book", {rightX - 0.36, rightX}, {1.5, 3.38}, {0, 2.05});
}

void Room::addCorners()
{
    // Back right: a tall cupboard. Back left: boxes.
    place(
        "cupboard", Paint::Cupboard, {2.55, 3.65}, {backZ, backZ + 0.5}, {0.05, 1.85}, onFloor & ~Box::Front);
    place("cupboard", Paint::Plastic, {2.6, 3.6}, {backZ, backZ + 0.45}, {0, 0.05}, Box::Back | Box::Left);
    place("box", Paint::Cardboard, {2.75, 3.3}, {backZ + 0.05, backZ + 0.45}, {1.85, 2.15}, Box::All, 0.1);
    place("box", Paint::Cardboard, {-2.45, -1.85}, {-3.1, -2.6}, {0, 0.42}, onFloor, 0.12);
    place("box", Paint::Cardboard, {-2.38, -1.95}, {-3.05, -2.68}, {0.42, 0.72}, onFloor, -0.2);
    place("box", Paint::Folders, {-1.72, -1.38}, {-3.05, -2.75}, {0, 0.31}, onFloor, -0.35);
}

void Room::addSofa()
{
    const double x = leftX + 0.03;
    place("sofa", Paint::Fabric, {x, x + 0.88}, {-2.0, -0.1}, {0.08, 0.30}, onFloor);
    place("sofa", Paint::Fabric, {x, x + 0.24}, {-2.0, -0.1}, {0.30, 0.84}, onFloor);
    place("sofa", Paint::Fabric, {x, x + 0.88}, {-2.16, -2.0}, {0.08, 0.62}, onFloor);
    place("sofa", Paint::Fabric, {x, x + 0.88}, {-0.1, 0.06}, {0.08, 0.62}, onFloor);
    place("sofa", Paint::Fabric, {x + 0.22, x + 0.86}, {-1.99, -1.06}, {0.30, 0.44}, onFloor);
    place("sofa", Paint::Fabric, {x + 0.22, x + 0.86}, {-1.04, -0.11}, {0.30, 0.44}, onFloor);
    place("sofa", Paint::DarkWood, {x + 0.05, x + 0.8}, {-2.1, 0.0}, {0, 0.08}, onFloor & ~Box::Top);
    place("cushion", Paint::Cushion, {x + 0.26, x + 0.4}, {-1.9, -1.48}, {0.44, 0.84}, onFloor, 0.12);
    place("cushion", Paint::Cushion, {x + 0.26, x + 0.4}, {-0.62, -0.2}, {0.44, 0.82}, onFloor, -0.15);
    addItem("sofa", {x, x + 0.88}, {-2.16, 0.06}, {0, 0.84});
}

void Room::addPlant(unsigned seed)
{
    const Vector3d foot(-3.25, floorY, -2.72);
    place("plant", Paint::Pot, {foot.x() - 0.17, foot.x() + 0.17}, {foot.z() - 0.17, foot.z() + 0.17},
        {0, 0.36}, onFloor, 0.35);
    place("plant", Paint::DarkWood, {foot.x() - 0.02, foot.x() + 0.02}, {foot.z() - 0.02, foot.z() + 0.02},
        {0.36, 0.95}, Box::All & ~Box::Bottom);
    std::mt19937 random(seed * 104729 + 11);
    auto unit = [&random] { return static_cast<double>(random() >> 8) / double(1 << 24); };
    for (int i = 0; i < 22; ++i) {
        const double round = 2.4 * i;
        const double rise = 0.55 + 0.9 * i / 22 + 0.1 * unit();
        const double reach = 0.18 + 0.12 * unit() - 0.1 * i / 22;
        Ellipsoid leaf;
        leaf.part = "plant";
        leaf.axes = (Eigen::AngleAxisd(round, Vector3d::UnitY())
            * Eigen::AngleAxisd(-0.3 - 0.7 * unit(), Vector3d::UnitX()))
                        .toRotationMatrix();
        leaf.centre = foot + Vector3d(0, -rise, 0) + leaf.axes * Vector3d(0, 0, reach);
        leaf.radii = {0.06 + 0.02 * unit(), 0.014, 0.15 + 0.05 * unit()};
        leaf.color = Vector3d(0.16, 0.40, 0.15) * (0.75 + 0.5 * unit());
        m_ellipsoids.push_back(leaf);
    }
    addItem("pottedplant", {foot.x() - 0.38, foot.x() + 0.38}, {foot.z() - 0.38, foot.z() + 0.38}, {0, 1.55});
}

void Room::addWallDecoration()
{
    const double d = 0.022;
    auto onLeft = [&](Paint frame, Paint paint, Span z, Span h) {
        place("picture", frame, {leftX, leftX + d}, z, h, Box::All & ~Box::Left);
        place("picture", paint, {leftX + d, leftX + d + 0.002}, {z.low + 0.03, z.high - 0.03},
            {h.low + 0.03, h.high - 0.03}, Box::Right);
    };
    onLeft(Paint::DarkWood, Paint::Landscape, {-1.75, -0.75}, {1.25, 1.92});
    onLeft(Paint::DarkWood, Paint::Portrait, {-0.5, 0.0}, {1.25, 1.92});
    onLeft(Paint::Metal, Paint::Whiteboard, {0.55, 2.35}, {0.92, 1.98});
    place("tray", Paint::Metal, {leftX, leftX + 0.07}, {1.0, 1.9}, {0.9, 0.92});

    auto onBack = [&](Paint frame, Paint paint, Span x, Span h) {
        place("picture", frame, x, {backZ, backZ + d}, h, Box::All & ~Box::Front);
        place("picture", paint, {x.low + 0.025, x.high - 0.025}, {backZ + d, backZ + d + 0.002},
            {h.low + 0.025, h.high - 0.025}, Box::Back);
    };
    onBack(Paint::Wood, Paint::Noticeboard, {-1.5, -0.1}, {1.1, 1.95});
    onBack(Paint::Plastic, Paint::Poster, {-2.75, -2.1}, {1.05, 1.95});
    onBack(Paint::Plastic, Paint::Chessboard, {1.78, 2.42}, {1.2, 1.95});

    auto onFront = [&](Paint frame, Paint paint, Span x, Span h) {
        place("picture", frame, x, {frontZ - d, frontZ}, h, Box::All & ~Box::Back);
        place("picture", paint, {x.low + 0.025, x.high - 0.025}, {frontZ - d - 0.002, frontZ - d},
            {h.low + 0.025, h.high - 0.025}, Box::Front);
    };
    onFront(Paint::DarkWood, Paint::Abstract, {1.6, 2.5}, {1.05, 1.85});
    onFront(Paint::DarkWood, Paint::Portrait, {-1.75, -1.2}, {1.2, 1.95});
    onFront(Paint::White, Paint::Poster, {2.65, 3.15}, {1.2, 1.95});
    place("clock", Paint::Metal, {rightX - 0.03, rightX}, {1.05, 1.3}, {1.95, 2.2}, Box::All & ~Box::Right);
}

} // namespace sim
