#include "world/PlaneMap.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <opencv2/imgproc.hpp>

namespace sim {
namespace {

constexpr double nodeSpacing = 0.25; ///< metres
constexpr int leastNodes = 6; ///< seen before a plane is reported
constexpr int shellSurfaces = 6;

/// The six sides of the room, and what is level and large enough to put something on.
bool isPlane(const Surface &surface)
{
    if (surface.id < shellSurfaces)
        return true;
    const bool furniture = std::strcmp(surface.part, "table") == 0
        || std::strcmp(surface.part, "sideboard") == 0 || std::strcmp(surface.part, "sofa") == 0;
    return furniture && surface.normal.y() < -0.9 && surface.width * surface.height > 0.4;
}

} // namespace

PlaneMap::PlaneMap(std::shared_ptr<const Scene> scene)
    : m_scene(std::move(scene))
{
    for (const Surface &surface : m_scene->surfaces()) {
        if (!isPlane(surface))
            continue;
        Grid grid;
        grid.id = static_cast<int>(m_grids.size()) + 1;
        grid.surface = &surface;
        grid.columns = std::max(2, static_cast<int>(std::lround(surface.width / nodeSpacing)) + 1);
        grid.rows = std::max(2, static_cast<int>(std::lround(surface.height / nodeSpacing)) + 1);
        m_grids.push_back(grid);
    }
    reset();
}

void PlaneMap::reset()
{
    for (Grid &grid : m_grids) {
        grid.seen.assign(static_cast<std::size_t>(grid.columns * grid.rows), false);
        grid.count = 0;
    }
}

Eigen::Vector3d PlaneMap::Grid::node(int column, int row) const
{
    return surface->at(surface->width * column / (columns - 1), surface->height * row / (rows - 1));
}

bool PlaneMap::observe(const CameraModel &model, const Pose &worldFromCamera, double t, double range)
{
    const Pose cameraFromWorld = worldFromCamera.inverse();
    const Eigen::Vector3d origin = worldFromCamera.translation();
    const cv::Size size = model.size();
    bool changed = false;
    for (Grid &grid : m_grids) {
        if (grid.surface->normal.dot(origin - grid.surface->corner) <= 0)
            continue;
        for (int row = 0; row < grid.rows; ++row) {
            for (int column = 0; column < grid.columns; ++column) {
                const auto index = static_cast<std::size_t>(row * grid.columns + column);
                if (grid.seen[index])
                    continue;
                const Eigen::Vector3d point = grid.node(column, row);
                if ((point - origin).squaredNorm() > range * range)
                    continue;
                const auto pixel = model.project(cameraFromWorld * point);
                if (!pixel || pixel->x() < 0 || pixel->y() < 0 || pixel->x() > size.width - 1
                    || pixel->y() > size.height - 1 || !m_scene->sees(origin, point, t, 0.03))
                    continue;
                grid.seen[index] = true;
                ++grid.count;
                changed = true;
            }
        }
    }
    return changed;
}

std::vector<Eigen::Vector3d> PlaneMap::outlineOf(const Grid &grid) const
{
    std::vector<cv::Point> nodes;
    for (int row = 0; row < grid.rows; ++row)
        for (int column = 0; column < grid.columns; ++column)
            if (grid.seen[static_cast<std::size_t>(row * grid.columns + column)])
                nodes.emplace_back(column, row);
    std::vector<cv::Point> hull;
    cv::convexHull(nodes, hull);
    std::vector<Eigen::Vector3d> out;
    if (hull.size() < 3)
        return out;
    for (const cv::Point &corner : hull)
        out.push_back(grid.node(corner.x, corner.y));
    return out;
}

std::vector<SeenPlane> PlaneMap::planes() const
{
    std::vector<SeenPlane> out;
    for (const Grid &grid : m_grids) {
        if (grid.count < std::min<int>(leastNodes, static_cast<int>(grid.seen.size())))
            continue;
        SeenPlane plane{grid.id, grid.surface->part, grid.surface->normal, outlineOf(grid)};
        if (!plane.outline.empty())
            out.push_back(plane);
    }
    return out;
}

std::vector<SeenPlane> PlaneMap::complete() const
{
    std::vector<SeenPlane> out;
    for (const Grid &grid : m_grids) {
        const Surface &surface = *grid.surface;
        out.push_back({grid.id, surface.part, surface.normal,
            {surface.at(0, 0), surface.at(surface.width, 0), surface.at(surface.width, surface.height),
                surface.at(0, surface.height)}});
    }
    return out;
}

} // namespace sim
