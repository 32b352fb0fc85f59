#include "world/Room.h"
#include "world/Scene.h"
#include "world/Trajectory.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace sim;
using Eigen::Vector3d;

namespace {

constexpr double step = 1e-4;

Vector3d numericVelocity(const Trajectory &trajectory, double t)
{
    return (trajectory.pose(t + step).translation() - trajectory.pose(t - step).translation()) / (2 * step);
}

/// Body rates from the turn between two close poses.
Vector3d numericRates(const Trajectory &trajectory, double t)
{
    const Eigen::Matrix3d turn =
        trajectory.pose(t - step).linear().transpose() * trajectory.pose(t + step).linear();
    const Eigen::AngleAxisd angle(turn);
    return angle.axis() * angle.angle() / (2 * step);
}

} // namespace

TEST(WorldTrajectory, startsAtTheOriginAtRest)
{
    const Trajectory trajectory;
    EXPECT_TRUE(trajectory.pose(0).isApprox(Pose::Identity(), 1e-12));
    EXPECT_LT(trajectory.velocity(0).norm(), 1e-12);
    EXPECT_LT(trajectory.acceleration(0).norm(), 1e-12);
    EXPECT_LT(trajectory.angularVelocity(0).norm(), 1e-12);
    EXPECT_TRUE(trajectory.specificForce(0).isApprox(Vector3d(0, -9.81, 0), 1e-12));
}

TEST(WorldTrajectory, derivativesAgreeWithDifferences)
{
    for (const unsigned seed : {1U, 2U, 7U}) {
        const Trajectory trajectory(seed);
        for (double t = 0.05; t < 120; t += 0.37) {
            EXPECT_LT((trajectory.velocity(t) - numericVelocity(trajectory, t)).norm(), 1e-6) << t;
            const Vector3d acceleration =
                (trajectory.velocity(t + step) - trajectory.velocity(t - step)) / (2 * step);
            EXPECT_LT((trajectory.acceleration(t) - acceleration).norm(), 1e-5) << t;
            EXPECT_LT((trajectory.angularVelocity(t) - numericRates(trajectory, t)).norm(), 1e-5) << t;
        }
    }
}

TEST(WorldTrajectory, accelerometerReadsAccelerationMinusGravityInTheBody)
{
    const Trajectory trajectory;
    for (double t = 1; t < 60; t += 1.7) {
        const Vector3d world = trajectory.pose(t).linear() * trajectory.specificForce(t);
        EXPECT_LT((world - trajectory.acceleration(t) + Vector3d(0, 9.81, 0)).norm(), 1e-9);
    }
}

TEST(WorldTrajectory, magneticFieldIsOneFieldOfTheWorld)
{
    const Trajectory trajectory;
    const Vector3d north = trajectory.magneticField(0);
    EXPECT_NEAR(north.norm(), 48.5, 1.5);
    for (double t = 1; t < 60; t += 3.1)
        EXPECT_LT((trajectory.pose(t).linear() * trajectory.magneticField(t) - north).norm(), 1e-9);
}

TEST(WorldTrajectory, moveIsGentleButLively)
{
    const Trajectory trajectory;
    double fastest = 0;
    double quickest = 0;
    double rates = 0;
    int count = 0;
    for (double t = 0; t < 900; t += 0.05, ++count) {
        fastest = std::max(fastest, trajectory.velocity(t).norm());
        quickest = std::max(quickest, trajectory.angularVelocity(t).norm());
        rates += trajectory.angularVelocity(t).norm();
    }
    EXPECT_LT(fastest, 0.55);
    EXPECT_GT(fastest, 0.25);
    EXPECT_LT(quickest * 180 / M_PI, 75);
    EXPECT_GT(quickest * 180 / M_PI, 35);
    EXPECT_LT(rates / count * 180 / M_PI, 25);
    EXPECT_GT(rates / count * 180 / M_PI, 8);
}

TEST(WorldTrajectory, keepsClearOfFurnitureAndOfThePerson)
{
    const Scene scene;
    const Trajectory trajectory;
    for (double t = 0; t < 600; t += 0.25) {
        const Vector3d at = trajectory.pose(t).translation();
        for (const Surface &surface : scene.surfaces()) {
            const Vector3d offset = at - surface.corner;
            const double a = std::clamp(offset.dot(surface.right), 0.0, surface.width);
            const double b = std::clamp(offset.dot(surface.down), 0.0, surface.height);
            ASSERT_GT((at - surface.at(a, b)).norm(), 0.6) << surface.part << " at " << t;
        }
        ASSERT_GT(scene.person(t).bounds.exteriorDistance(at), 0.25) << t;
    }
}

TEST(WorldTrajectory, otherSeedsGiveOtherRoads)
{
    EXPECT_GT((Trajectory(1).pose(20).translation() - Trajectory(2).pose(20).translation()).norm(), 0.01);
    EXPECT_TRUE(Trajectory(2).pose(20).isApprox(Trajectory(2).pose(20), 0));
}
