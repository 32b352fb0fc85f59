#include "world/Lighting.h"

#include <algorithm>
#include <cmath>

namespace sim {
namespace {

using Eigen::Vector3d;

constexpr double lightNodeSize = 0.125;
constexpr double openReach = 0.9; ///< how far off things still darken a corner, metres

} // namespace

Lighting::Lighting(const Room &room)
    : m_room(room)
{
    // Small and flat things throw shadows too small for the grid.
    for (const Box &box : room.boxes())
        if (box.paint != Paint::Lamp && box.size.maxCoeff() >= 0.25 && box.size.minCoeff() >= 0.024)
            addBlocker(box);
}

void Lighting::addBlocker(const Box &box)
{
    m_blockers.x.push_back(static_cast<float>(box.centre.x()));
    m_blockers.y.push_back(static_cast<float>(box.centre.y()));
    m_blockers.z.push_back(static_cast<float>(box.centre.z()));
    m_blockers.radius2.push_back(static_cast<float>(box.size.squaredNorm() / 4));
    m_blockers.halfX.push_back(static_cast<float>(box.size.x() / 2));
    m_blockers.halfY.push_back(static_cast<float>(box.size.y() / 2));
    m_blockers.halfZ.push_back(static_cast<float>(box.size.z() / 2));
    m_blockers.cosine.push_back(static_cast<float>(std::cos(box.yaw)));
    m_blockers.sine.push_back(static_cast<float>(std::sin(box.yaw)));
}

bool Lighting::meets(const Ray &ray, std::size_t blocker) const
{
    const float x = ray.x - m_blockers.x[blocker];
    const float z = ray.z - m_blockers.z[blocker];
    const float cosine = m_blockers.cosine[blocker];
    const float sine = m_blockers.sine[blocker];
    const float origin[3] = {cosine * x - sine * z, ray.y - m_blockers.y[blocker], sine * x + cosine * z};
    const float along[3] = {cosine * ray.dx - sine * ray.dz, ray.dy, sine * ray.dx + cosine * ray.dz};
    const float half[3] = {m_blockers.halfX[blocker], m_blockers.halfY[blocker], m_blockers.halfZ[blocker]};
    float enter = 0.002F;
    float leave = ray.length;
    for (int k = 0; k < 3; ++k) {
        if (std::abs(along[k]) < 1e-7F) {
            if (std::abs(origin[k]) > half[k])
                return false;
            continue;
        }
        const float a = (-half[k] - origin[k]) / along[k];
        const float b = (half[k] - origin[k]) / along[k];
        enter = std::max(enter, std::min(a, b));
        leave = std::min(leave, std::max(a, b));
    }
    return enter < leave;
}

bool Lighting::blocked(const Vector3d &from, const Vector3d &direction, double length) const
{
    const Ray ray{static_cast<float>(from.x()), static_cast<float>(from.y()), static_cast<float>(from.z()),
        static_cast<float>(direction.x()), static_cast<float>(direction.y()),
        static_cast<float>(direction.z()), static_cast<float>(length)};
    const std::size_t count = m_blockers.x.size();
    const float *x = m_blockers.x.data();
    const float *y = m_blockers.y.data();
    const float *z = m_blockers.z.data();
    const float *radius2 = m_blockers.radius2.data();
    for (std::size_t i = 0; i < count; ++i) {
        const float ox = x[i] - ray.x;
        const float oy = y[i] - ray.y;
        const float oz = z[i] - ray.z;
        const float along = ox * ray.dx + oy * ray.dy + oz * ray.dz;
        const float closest = along < 0 ? 0 : along > ray.length ? ray.length : along;
        const float px = ox - closest * ray.dx;
        const float py = oy - closest * ray.dy;
        const float pz = oz - closest * ray.dz;
        if (px * px + py * py + pz * pz <= radius2[i] && meets(ray, i))
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
        const Vector3d end = point + openReach * direction;
        const bool inside = end.x() > Room::leftX && end.x() < Room::rightX && end.y() > Room::ceilingY
            && end.y() < Room::floorY && end.z() > Room::backZ && end.z() < Room::frontZ;
        open += blocked(point, direction, openReach) ? 0 : inside ? 1 : 0.6;
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
    const int columns = std::max(2, static_cast<int>(surface.width / lightNodeSize));
    const int rows = std::max(2, static_cast<int>(surface.height / lightNodeSize));
    cv::Mat out(rows, columns, CV_32FC1);
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x)
            out.at<float>(y, x) = static_cast<float>(
                at(surface.at(surface.width * (x + 0.5) / columns, surface.height * (y + 0.5) / rows),
                    surface.normal));
    return out;
}

} // namespace sim
