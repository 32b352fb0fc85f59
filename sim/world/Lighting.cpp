#include "world/Lighting.h"

#include <algorithm>
#include <cmath>

namespace sim {
namespace {

using Eigen::Vector3d;

constexpr double nodeSize = 0.125;
constexpr double reach = 0.9; ///< how far off things still darken a corner, metres

} // namespace

Lighting::Lighting(const Room &room)
    : m_room(room)
{
    for (const Box &box : room.boxes()) {
        // Small and flat things throw shadows too small for the grid.
        if (box.paint == Paint::Lamp || box.size.maxCoeff() < 0.25 || box.size.minCoeff() < 0.024)
            continue;
        const double radius = box.size.norm() / 2;
        m_blockers.push_back(
            {box.centre, box.size / 2, std::cos(box.yaw), std::sin(box.yaw), radius * radius});
    }
}

bool Lighting::blocked(const Vector3d &from, const Vector3d &direction, double length) const
{
    for (const Blocker &box : m_blockers) {
        const Vector3d offset = from - box.centre;
        const double closest = std::clamp(-offset.dot(direction), 0.0, length);
        if ((offset + closest * direction).squaredNorm() > box.radius2)
            continue;
        const double origin[3] = {box.cosine * offset.x() - box.sine * offset.z(), offset.y(),
            box.sine * offset.x() + box.cosine * offset.z()};
        const double along[3] = {box.cosine * direction.x() - box.sine * direction.z(), direction.y(),
            box.sine * direction.x() + box.cosine * direction.z()};
        double enter = 0.002;
        double leave = length;
        for (int k = 0; k < 3 && enter <= leave; ++k) {
            if (std::abs(along[k]) < 1e-9) {
                if (std::abs(origin[k]) > box.half[k])
                    leave = -1;
                continue;
            }
            const double a = (-box.half[k] - origin[k]) / along[k];
            const double b = (box.half[k] - origin[k]) / along[k];
            enter = std::max(enter, std::min(a, b));
            leave = std::min(leave, std::max(a, b));
        }
        if (enter < leave)
            return true;
    }
    return false;
}

double Lighting::direct(const Vector3d &point, const Vector3d &normal) const
{
    double sum = 0;
    for (const Room::Light &light : m_room.lights()) {
        const double area = 4 * light.right.norm() * light.down.norm();
        for (const double part : {-0.66, 0.0, 0.66}) {
            const Vector3d source = light.centre + part * light.right + (part == 0 ? 0.4 : -0.2) * light.down;
            const Vector3d way = source - point;
            const double distance = way.norm();
            const Vector3d direction = way / distance;
            const double facing = normal.dot(direction) * -light.normal.dot(direction);
            if (normal.dot(direction) > 0 && facing > 0 && !blocked(point, direction, distance - 0.05))
                sum += light.power * area / 3 * facing / (distance * distance + 0.05);
        }
    }
    return sum;
}

double Lighting::openness(const Vector3d &point, const Vector3d &normal) const
{
    // Ten directions over the hemisphere, from the golden angle.
    constexpr int count = 10;
    const Vector3d a = normal.unitOrthogonal();
    const Vector3d b = normal.cross(a);
    double open = 0;
    for (int i = 0; i < count; ++i) {
        const double rise = std::sqrt((i + 0.5) / count);
        const double round = 2.39996 * i;
        const double flat = std::sqrt(1 - rise * rise);
        const Vector3d direction = rise * normal + flat * (std::cos(round) * a + std::sin(round) * b);
        const Vector3d end = point + reach * direction;
        const bool inside = end.x() > Room::leftX && end.x() < Room::rightX && end.y() > Room::ceilingY
            && end.y() < Room::floorY && end.z() > Room::backZ && end.z() < Room::frontZ;
        open += blocked(point, direction, reach) ? 0 : inside ? 1 : 0.6;
    }
    return open / count;
}

double Lighting::at(const Vector3d &point, const Vector3d &normal) const
{
    const Vector3d start = point + 0.006 * normal;
    return std::min(1.2, 0.33 + 0.42 * openness(start, normal) + 0.92 * direct(start, normal));
}

cv::Mat Lighting::over(const Surface &surface) const
{
    const int columns = std::max(2, static_cast<int>(surface.width / nodeSize));
    const int rows = std::max(2, static_cast<int>(surface.height / nodeSize));
    cv::Mat out(rows, columns, CV_32FC1);
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x)
            out.at<float>(y, x) = static_cast<float>(
                at(surface.at(surface.width * (x + 0.5) / columns, surface.height * (y + 0.5) / rows),
                    surface.normal));
    return out;
}

} // namespace sim
