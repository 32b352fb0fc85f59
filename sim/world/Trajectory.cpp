#include "world/Trajectory.h"

#include <cmath>
#include <random>

namespace sim {
namespace {

/// How long the start from rest takes, seconds.
constexpr double easing = 2.5;

/// Earth's field as in central Europe, in the world frame: mostly down, north a little right of ahead.
/// Microtesla.
const Eigen::Vector3d earthField(5.2, 44.1, 19.3);

Eigen::Matrix3d rotationFrom(double yaw, double pitch, double roll)
{
    return (Eigen::AngleAxisd(yaw, Eigen::Vector3d::UnitY())
        * Eigen::AngleAxisd(pitch, Eigen::Vector3d::UnitX())
        * Eigen::AngleAxisd(roll, Eigen::Vector3d::UnitZ()))
        .toRotationMatrix();
}

} // namespace

Trajectory::Trajectory(unsigned seed)
    : m_position{Sum{{0.52, 23.9, 0}, {0.24, -13.3, 0}, {0.006, 1.31, 0}},
        Sum{{-0.13, 16.7, 0}, {0.09, 9.7, 0}, {0.009, 1.07, 0}},
        Sum{{0.50, 29.9, 0}, {0.26, 15.1, 0}, {0.005, 0.93, 0}}}
    , m_angles{Sum{{1.45, 67.0, 0}, {-1.0, 38.3, 0}, {0.42, 20.9, 1.3}, {0.006, 1.19, 0}},
          Sum{{0.13, 12.7, 0}, {-0.09, 7.9, 0}, {0.006, 0.89, 0}},
          Sum{{0.07, 9.1, 0}, {-0.05, 14.9, 0}, {0.004, 1.03, 0}}}
{
    jitter(seed);
}

/// Other seeds give other roads of the same character.
void Trajectory::jitter(unsigned seed)
{
    if (seed == 1)
        return;
    std::mt19937 random(seed);
    auto unit = [&random] { return static_cast<double>(random() >> 8) / double(1 << 24); };
    for (auto *sums : {&m_position, &m_angles}) {
        for (Sum &sum : *sums) {
            const double sign = unit() < 0.5 ? -1 : 1;
            for (Wave &wave : sum) {
                wave.period *= 0.97 + 0.15 * unit();
                wave.amplitude *= sign;
            }
        }
    }
}

/// The road's own time: t^3 / (t^2 + e^2) begins with speed and acceleration 0 and soon runs as t does.
Trajectory::Jet Trajectory::ease(double t)
{
    const double e2 = easing * easing;
    const double q = t * t + e2;
    return {t * t * t / q, t * t * (t * t + 3 * e2) / (q * q), 2 * e2 * t * (3 * e2 - t * t) / (q * q * q)};
}

Trajectory::Jet Trajectory::evaluate(const Sum &sum, const Jet &time)
{
    Jet out;
    for (const Wave &wave : sum) {
        const double w = 2 * M_PI / wave.period;
        const double phase = w * time.value;
        const double inner = phase + wave.bend * std::sin(phase);
        const double rate = w * (1 + wave.bend * std::cos(phase));
        const double rateChange = -w * w * wave.bend * std::sin(phase);
        out.value += wave.amplitude * std::sin(inner);
        out.first += wave.amplitude * std::cos(inner) * rate;
        out.second += wave.amplitude * (std::cos(inner) * rateChange - std::sin(inner) * rate * rate);
    }
    out.second = out.second * time.first * time.first + out.first * time.second;
    out.first *= time.first;
    return out;
}

Pose Trajectory::pose(double t) const
{
    const Jet time = ease(t);
    Pose pose = Pose::Identity();
    for (std::size_t axis = 0; axis < 3; ++axis)
        pose.translation()[static_cast<Eigen::Index>(axis)] = evaluate(m_position[axis], time).value;
    pose.linear() = rotationFrom(evaluate(m_angles[0], time).value, evaluate(m_angles[1], time).value,
        evaluate(m_angles[2], time).value);
    return pose;
}

Eigen::Vector3d Trajectory::velocity(double t) const
{
    const Jet time = ease(t);
    return {evaluate(m_position[0], time).first, evaluate(m_position[1], time).first,
        evaluate(m_position[2], time).first};
}

Eigen::Vector3d Trajectory::acceleration(double t) const
{
    const Jet time = ease(t);
    return {evaluate(m_position[0], time).second, evaluate(m_position[1], time).second,
        evaluate(m_position[2], time).second};
}

Eigen::Vector3d Trajectory::angularVelocity(double t) const
{
    const Jet time = ease(t);
    const Jet yaw = evaluate(m_angles[0], time);
    const Jet pitch = evaluate(m_angles[1], time);
    const Jet roll = evaluate(m_angles[2], time);
    const Eigen::AngleAxisd unroll(-roll.value, Eigen::Vector3d::UnitZ());
    const Eigen::AngleAxisd unpitch(-pitch.value, Eigen::Vector3d::UnitX());
    return unroll * (unpitch * Eigen::Vector3d(0, yaw.first, 0) + Eigen::Vector3d(pitch.first, 0, 0))
        + Eigen::Vector3d(0, 0, roll.first);
}

Eigen::Vector3d Trajectory::specificForce(double t) const
{
    return pose(t).linear().transpose() * (acceleration(t) - Eigen::Vector3d(0, gravity, 0));
}

Eigen::Vector3d Trajectory::magneticField(double t) const
{
    return pose(t).linear().transpose() * earthField;
}

} // namespace sim
