#include "world/Scene.h"

#include <cmath>

namespace sim {
namespace {

using Eigen::Vector3d;

void castSurface(const Surface &surface, const Vector3d &origin, const Vector3d &direction, Hit &best)
{
    const double slope = surface.normal.dot(direction);
    if (!(slope < 0))
        return;
    const double distance = surface.normal.dot(surface.corner - origin) / slope;
    if (!(distance > 0) || distance >= best.distance)
        return;
    const Vector3d point = origin + distance * direction;
    const double a = surface.right.dot(point - surface.corner);
    const double b = surface.down.dot(point - surface.corner);
    if (a < 0 || b < 0 || a > surface.width || b > surface.height)
        return;
    best = {distance, surface.id, point, {a, b}, surface.normal};
}

void castEllipsoid(const Ellipsoid &body, const Vector3d &origin, const Vector3d &direction, Hit &best)
{
    const Eigen::Matrix3d toBall = body.toBall();
    const Vector3d o = toBall * (origin - body.centre);
    const Vector3d d = toBall * direction;
    const double a = d.squaredNorm();
    const double b = o.dot(d);
    const double c = o.squaredNorm() - 1;
    const double discriminant = b * b - a * c;
    if (discriminant < 0 || b >= 0 || c <= 0)
        return;
    const double distance = c / (-b + std::sqrt(discriminant));
    if (distance >= best.distance)
        return;
    const Vector3d normal = toBall.transpose() * (o + distance * d);
    best = {distance, body.id, origin + distance * direction, {0, 0}, normal.normalized()};
}

} // namespace

Scene::Scene(unsigned seed)
    : m_seed(seed)
    , m_room(seed)
    , m_person(seed)
    , m_firstPersonId(static_cast<int>(m_room.surfaces().size() + m_room.ellipsoids().size()))
{
}

std::vector<Ellipsoid> Scene::ellipsoids(double t) const
{
    std::vector<Ellipsoid> out = m_room.ellipsoids();
    int id = static_cast<int>(m_room.surfaces().size());
    for (Ellipsoid &body : out)
        body.id = id++;
    for (const Ellipsoid &body : m_person.bodies(t, m_firstPersonId))
        out.push_back(body);
    return out;
}

Scene::PersonState Scene::person(double t) const
{
    PersonState out{m_person.pose(t), m_person.keyPoints(t), {}};
    for (const Ellipsoid &body : m_person.bodies(t, m_firstPersonId)) {
        const Vector3d reach = (body.axes * body.radii.asDiagonal()).rowwise().norm();
        out.bounds.extend(Vector3d(body.centre - reach));
        out.bounds.extend(Vector3d(body.centre + reach));
    }
    return out;
}

std::optional<Hit> Scene::cast(const Vector3d &origin, const Vector3d &direction, double t) const
{
    const Vector3d unit = direction.normalized();
    Hit best;
    best.distance = std::numeric_limits<double>::infinity();
    for (const Surface &surface : m_room.surfaces())
        castSurface(surface, origin, unit, best);
    for (const Ellipsoid &body : ellipsoids(t))
        castEllipsoid(body, origin, unit, best);
    if (best.surface < 0)
        return std::nullopt;
    return best;
}

bool Scene::sees(const Vector3d &from, const Vector3d &to, double t, double margin) const
{
    const std::optional<Hit> hit = cast(from, to - from, t);
    return !hit || hit->distance >= (to - from).norm() - margin;
}

} // namespace sim
