#include "world/ObjectFinder.h"

#include <algorithm>
#include <cstring>

namespace sim {
namespace {

using Eigen::Vector3d;

constexpr double leastVisible = 0.25;
constexpr double leastSide = 8; ///< pixels

void addRim(const Surface &surface, std::vector<Vector3d> &out)
{
    for (const double a : {0.0, 0.5, 1.0})
        for (const double b : {0.0, 0.5, 1.0})
            out.push_back(surface.at(a * surface.width, b * surface.height));
}

void addExtremes(const Ellipsoid &body, std::vector<Vector3d> &out)
{
    for (Eigen::Index axis = 0; axis < 3; ++axis)
        for (const double sign : {-1.0, 1.0})
            out.push_back(body.centre + sign * body.radii(axis) * body.axes.col(axis));
}

bool isShell(const Surface &surface)
{
    for (const char *part : {"wall", "floor", "ceiling", "carpet", "skirting"})
        if (std::strcmp(surface.part, part) == 0)
            return true;
    return false;
}

std::optional<Eigen::Vector2d> pixelOf(
    const Vector3d &point, const CameraModel &model, const Pose &cameraFromWorld)
{
    return model.project(cameraFromWorld * point);
}

bool isInside(const Eigen::Vector2d &pixel, const cv::Size &size)
{
    return pixel.x() >= -0.5 && pixel.y() >= -0.5 && pixel.x() < size.width - 0.5
        && pixel.y() < size.height - 0.5;
}

/// The box about all points that project, clipped to the picture.
cv::Rect2d boxAbout(
    const std::vector<Vector3d> &points, const CameraModel &model, const Pose &cameraFromWorld)
{
    double left = 1e9;
    double top = 1e9;
    double right = -1e9;
    double bottom = -1e9;
    for (const Vector3d &point : points) {
        const auto pixel = pixelOf(point, model, cameraFromWorld);
        if (!pixel)
            continue;
        left = std::min(left, pixel->x());
        right = std::max(right, pixel->x());
        top = std::min(top, pixel->y());
        bottom = std::max(bottom, pixel->y());
    }
    const cv::Size size = model.size();
    left = std::clamp(left, 0.0, double(size.width));
    right = std::clamp(right, 0.0, double(size.width));
    top = std::clamp(top, 0.0, double(size.height));
    bottom = std::clamp(bottom, 0.0, double(size.height));
    return {left, top, std::max(0.0, right - left), std::max(0.0, bottom - top)};
}

} // namespace

ObjectFinder::ObjectFinder(std::shared_ptr<const Scene> scene)
    : m_scene(std::move(scene))
{
    for (const Room::Item &item : m_scene->room().items()) {
        Item own{item.type, item.bounds, {}};
        Eigen::AlignedBox3d inside = item.bounds;
        inside.extend(Vector3d(item.bounds.min().array() - 0.03));
        inside.extend(Vector3d(item.bounds.max().array() + 0.03));
        for (const Surface &surface : m_scene->surfaces())
            if (!isShell(surface) && inside.contains(surface.at(0, 0))
                && inside.contains(surface.at(surface.width, surface.height)))
                addRim(surface, own.points);
        for (const Ellipsoid &body : m_scene->room().ellipsoids())
            if (inside.contains(body.centre))
                addExtremes(body, own.points);
        if (!own.points.empty())
            m_items.push_back(own);
    }
}

/// Nothing else than the thing itself may come first on the way to a point of it.
bool ObjectFinder::isSeen(const Vector3d &point, const Eigen::AlignedBox3d &bounds, const View &view) const
{
    const Vector3d origin = view.worldFromCamera.translation();
    const auto hit = m_scene->cast(origin, point - origin, view.t);
    return !hit || hit->distance > (point - origin).norm() - 0.02
        || bounds.squaredExteriorDistance(hit->point) < 0.02 * 0.02;
}

std::optional<SeenObject> ObjectFinder::look(const Item &item, const View &view) const
{
    const Pose cameraFromWorld = view.worldFromCamera.inverse();
    SeenObject out;
    out.type = item.type;
    out.box = boxAbout(item.points, view.model, cameraFromWorld);
    if (out.box.width < leastSide || out.box.height < leastSide)
        return std::nullopt;
    // Some forty of its points stand for the whole.
    const std::size_t step = std::max<std::size_t>(1, item.points.size() / 40);
    int seen = 0;
    int asked = 0;
    for (std::size_t i = 0; i < item.points.size(); i += step, ++asked) {
        const auto pixel = pixelOf(item.points[i], view.model, cameraFromWorld);
        seen += pixel && isInside(*pixel, view.model.size()) && isSeen(item.points[i], item.bounds, view);
    }
    out.visible = double(seen) / asked;
    if (out.visible < leastVisible)
        return std::nullopt;
    return out;
}

std::optional<SeenObject> ObjectFinder::lookAtPerson(const View &view) const
{
    const Pose cameraFromWorld = view.worldFromCamera.inverse();
    const Scene::PersonState person = m_scene->person(view.t);
    std::vector<Vector3d> points;
    for (const Ellipsoid &body : m_scene->ellipsoids(view.t))
        if (body.id >= m_scene->firstPersonId())
            addExtremes(body, points);
    SeenObject out;
    out.type = "person";
    out.isPerson = true;
    out.box = boxAbout(points, view.model, cameraFromWorld);
    if (out.box.width < leastSide || out.box.height < leastSide)
        return std::nullopt;
    int seen = 0;
    const Vector3d origin = view.worldFromCamera.translation();
    for (std::size_t i = 0; i < Person::keyPointCount; ++i) {
        out.keyPoints[i] = {-1, -1, 0};
        const Vector3d &point = person.keyPoints[i];
        const auto pixel = pixelOf(point, view.model, cameraFromWorld);
        if (!pixel || !isInside(*pixel, view.model.size()))
            continue;
        const auto hit = m_scene->cast(origin, point - origin, view.t);
        if (hit && hit->surface < m_scene->firstPersonId() && hit->distance < (point - origin).norm() - 0.01)
            continue;
        out.keyPoints[i] = {pixel->x(), pixel->y(), 1};
        ++seen;
    }
    out.visible = double(seen) / Person::keyPointCount;
    if (out.visible < leastVisible)
        return std::nullopt;
    return out;
}

std::vector<SeenObject> ObjectFinder::find(
    const CameraModel &model, const Pose &worldFromCamera, double t) const
{
    const View view{model, worldFromCamera, t};
    std::vector<SeenObject> out;
    if (const auto person = lookAtPerson(view))
        out.push_back(*person);
    for (const Item &item : m_items)
        if (const auto seen = look(item, view))
            out.push_back(*seen);
    return out;
}

} // namespace sim
