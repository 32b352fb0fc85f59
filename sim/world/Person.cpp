#include "world/Person.h"

#include "world/Room.h"

#include <cmath>

namespace sim {
namespace {

using Eigen::Vector3d;

constexpr double lapSeconds = 17;
constexpr double pathX = 2.2; ///< half axes of the path, metres
constexpr double pathZ = 2.15;
constexpr double pathCentreZ = 0.2;
constexpr double strideMetres = 1.35;

const Vector3d skin(0.80, 0.60, 0.49);
const Vector3d hair(0.16, 0.11, 0.08);
const Vector3d shirt(0.62, 0.20, 0.17);
const Vector3d trousers(0.19, 0.23, 0.36);
const Vector3d shoes(0.13, 0.12, 0.12);

struct Limb {
    std::size_t from;
    std::size_t to;
    double thickness;
    const Vector3d *color;
    double stripes;
};
const Limb limbs[] = {{2, 3, 0.056, &shirt, 24}, {3, 4, 0.043, &skin, 0}, {5, 6, 0.056, &shirt, 24},
    {6, 7, 0.043, &skin, 0}, {8, 9, 0.092, &trousers, 0}, {9, 10, 0.066, &trousers, 0},
    {11, 12, 0.092, &trousers, 0}, {12, 13, 0.066, &trousers, 0}};

struct Lump {
    Vector3d offset; ///< from its key point, or from the person's origin
    Vector3d radii;
    const Vector3d *color;
    int keyPoint;
    double stripes;
};
const Lump lumps[] = {
    {{0, -1.605, 0.012}, {0.076, 0.118, 0.098}, &skin, -1, 0},
    {{0, -1.655, -0.018}, {0.086, 0.092, 0.103}, &hair, -1, 0},
    {{0, -1.60, 0.108}, {0.014, 0.022, 0.02}, &skin, -1, 0},
    {{0, -1.47, -0.005}, {0.055, 0.10, 0.058}, &skin, -1, 0},
    {{0, -1.27, 0}, {0.185, 0.235, 0.118}, &shirt, -1, 24},
    {{0, -1.06, 0}, {0.155, 0.17, 0.11}, &shirt, -1, 24},
    {{0, -0.94, 0}, {0.165, 0.13, 0.122}, &trousers, -1, 0},
    {{0, 0, 0}, {0.066, 0.066, 0.066}, &shirt, 2, 24},
    {{0, 0, 0}, {0.066, 0.066, 0.066}, &shirt, 5, 24},
    {{0, 0.05, 0.01}, {0.03, 0.075, 0.045}, &skin, 4, 0},
    {{0, 0.05, 0.01}, {0.03, 0.075, 0.045}, &skin, 7, 0},
    {{0, 0, 0}, {0.064, 0.064, 0.064}, &trousers, 9, 0},
    {{0, 0, 0}, {0.064, 0.064, 0.064}, &trousers, 12, 0},
    {{0, 0.04, 0.065}, {0.048, 0.042, 0.135}, &shoes, 10, 0},
    {{0, 0.04, 0.065}, {0.048, 0.042, 0.135}, &shoes, 13, 0},
};

/// A point `length` away from `origin`, hanging down and swung forward by `swing` radians.
Vector3d hang(const Vector3d &origin, double length, double swing)
{
    return origin + length * Vector3d(0, std::cos(swing), std::sin(swing));
}

} // namespace

Person::Person(unsigned seed)
    : m_start(0.9 + 2.4 * (seed - 1.0))
{
}

std::size_t Person::bodyCount()
{
    return std::size(lumps) + std::size(limbs);
}

double Person::angle(double t) const
{
    return m_start + 2 * M_PI * t / lapSeconds;
}

Pose Person::pose(double t) const
{
    const double a = angle(t);
    Pose out = Pose::Identity();
    out.translation() = Vector3d(pathX * std::cos(a), Room::floorY, pathCentreZ + pathZ * std::sin(a));
    const double heading = std::atan2(-pathX * std::sin(a), pathZ * std::cos(a));
    out.linear() = Eigen::AngleAxisd(heading, Vector3d::UnitY()).toRotationMatrix();
    return out;
}

/// A plain gait: legs and arms swing against each other, knees and elbows bend on the way forward.
Person::KeyPoints Person::localPoints(double t) const
{
    const double phase = angle(t) * (pathX + pathZ) / 2 / strideMetres * 2 * M_PI;
    const double bob = 0.018 * std::cos(2 * phase);
    KeyPoints out;
    out[0] = {0, -1.605 + bob, 0.118};
    out[1] = {0, -1.44 + bob, 0};
    for (int side = 0; side < 2; ++side) {
        const double sign = side == 0 ? 1 : -1;
        const double own = phase + (side == 0 ? 0 : M_PI);
        const double arm = -0.42 * std::sin(own);
        const double elbow = arm + 0.32 + 0.22 * std::max(0.0, -std::sin(own));
        const double leg = 0.40 * std::sin(own);
        const double knee = leg - 0.10 - 0.62 * std::pow(std::max(0.0, std::cos(own + 0.35)), 2);
        const std::size_t shoulder = side == 0 ? 2 : 5;
        const std::size_t hip = side == 0 ? 8 : 11;
        const auto face = static_cast<std::size_t>(side);
        out[shoulder] = {sign * 0.195, -1.40 + bob, 0};
        out[shoulder + 1] = hang(out[shoulder] + Vector3d(sign * 0.025, 0, 0), 0.29, arm);
        out[shoulder + 2] = hang(out[shoulder + 1], 0.26, elbow);
        out[hip] = {sign * 0.095, -0.92 + bob, 0};
        out[hip + 1] = hang(out[hip], 0.42, leg);
        out[hip + 2] = hang(out[hip + 1], 0.40, knee);
        out[14 + face] = {sign * 0.034, -1.635 + bob, 0.098};
        out[16 + face] = {sign * 0.078, -1.61 + bob, 0.005};
    }
    return out;
}

Person::KeyPoints Person::keyPoints(double t) const
{
    KeyPoints out = localPoints(t);
    const Pose world = pose(t);
    for (Vector3d &point : out)
        point = world * point;
    return out;
}

std::vector<Ellipsoid> Person::bodies(double t, int firstId) const
{
    const KeyPoints local = localPoints(t);
    const Pose world = pose(t);
    const double bob = local[1].y() + 1.44;
    std::vector<Ellipsoid> out;
    out.reserve(bodyCount());
    auto add = [&](Ellipsoid body) {
        body.id = firstId + static_cast<int>(out.size());
        body.part = "person";
        body.centre = world * body.centre;
        body.axes = world.linear() * body.axes;
        out.push_back(body);
    };
    for (const Lump &lump : lumps) {
        Ellipsoid body;
        body.centre = lump.offset
            + (lump.keyPoint < 0 ? Vector3d(0, bob, 0) : local[static_cast<std::size_t>(lump.keyPoint)]);
        body.radii = lump.radii;
        body.color = *lump.color;
        body.stripes = lump.stripes;
        add(body);
    }
    for (const Limb &limb : limbs) {
        const Vector3d along = local[limb.to] - local[limb.from];
        Ellipsoid body;
        body.centre = (local[limb.to] + local[limb.from]) / 2;
        body.radii = {limb.thickness, along.norm() / 2 + 0.5 * limb.thickness, limb.thickness};
        body.axes.col(1) = along.normalized();
        body.axes.col(0) =
            Vector3d::UnitX().cross(body.axes.col(1)).cross(body.axes.col(1)).normalized() * -1;
        body.axes.col(2) = body.axes.col(0).cross(body.axes.col(1));
        body.color = *limb.color;
        body.stripes = limb.stripes;
        add(body);
    }
    return out;
}

} // namespace sim
