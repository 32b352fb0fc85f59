#include "world/CameraModels.h"
#include "world/ObjectFinder.h"
#include "world/PlaneMap.h"
#include "world/PointMap.h"
#include "world/Renderer.h"
#include "world/Trajectory.h"

#include <cstring>
#include <gtest/gtest.h>
#include <set>

using namespace sim;
using Eigen::Vector3d;

namespace {

std::shared_ptr<const Scene> scene()
{
    static const auto shared = std::make_shared<Scene>(1);
    return shared;
}

std::shared_ptr<CameraModel> camera()
{
    return std::make_shared<PolynomialModel>(
        qv::PolynomialDistortionCameraModel{640, 480, 330, 330, 319.5, 239.5, {0.02, -0.03, 0, 0, 0}});
}

Pose lookingAt(const Vector3d &point)
{
    Pose pose = Pose::Identity();
    const double yaw = std::atan2(point.x(), point.z());
    const double pitch = -std::atan2(point.y(), std::hypot(point.x(), point.z()));
    pose.linear() = (Eigen::AngleAxisd(yaw, Vector3d::UnitY()) * Eigen::AngleAxisd(pitch, Vector3d::UnitX()))
                        .toRotationMatrix();
    return pose;
}

} // namespace

TEST(WorldPerson, walksOnAClosedPathAtAWalkingPace)
{
    const Person person;
    for (double t = 0; t < 17; t += 0.5) {
        const double speed =
            (person.pose(t + 0.01).translation() - person.pose(t - 0.01).translation()).norm() / 0.02;
        EXPECT_GT(speed, 0.6);
        EXPECT_LT(speed, 1.0);
        EXPECT_TRUE(person.pose(t + 17).isApprox(person.pose(t), 1e-9));
        // They look where they go.
        const Vector3d ahead =
            (person.pose(t + 0.01).translation() - person.pose(t).translation()).normalized();
        EXPECT_GT(ahead.dot(person.pose(t).linear().col(2)), 0.999);
    }
}

TEST(WorldPerson, keyPointsAreABodyUprightOnTheFloor)
{
    const Person person;
    for (double t = 0; t < 17; t += 0.3) {
        const Person::KeyPoints world = person.keyPoints(t);
        Person::KeyPoints own;
        for (std::size_t i = 0; i < world.size(); ++i)
            own[i] = person.pose(t).inverse() * world[i];
        EXPECT_LT(own[0].y(), own[1].y()) << "nose above neck";
        EXPECT_GT(own[2].x(), 0.1) << "right shoulder on the right";
        EXPECT_LT(own[5].x(), -0.1);
        EXPECT_GT(own[8].x(), 0.05);
        EXPECT_GT(own[14].x(), own[15].x());
        EXPECT_NEAR((own[9] - own[8]).norm(), (own[12] - own[11]).norm(), 1e-9);
        EXPECT_LT(own[10].y(), 0.02) << "ankles above the floor";
        EXPECT_LT(own[13].y(), 0.02);
        EXPECT_GT(std::max(own[10].y(), own[13].y()), -0.2) << "one foot down";
    }
}

TEST(WorldPerson, staysClearOfFurniture)
{
    for (double t = 0; t < 17; t += 0.2) {
        const Eigen::AlignedBox3d bounds = scene()->person(t).bounds;
        for (const Surface &surface : scene()->surfaces()) {
            if (std::strcmp(surface.part, "floor") == 0 || std::strcmp(surface.part, "carpet") == 0)
                continue;
            Eigen::AlignedBox3d box(surface.at(0, 0));
            box.extend(surface.at(surface.width, surface.height));
            ASSERT_FALSE(box.intersects(bounds)) << surface.part << " at " << t;
        }
    }
}

TEST(WorldObjects, personIsFoundWithKeyPointsInTheirPixels)
{
    const ObjectFinder finder(scene());
    const auto model = camera();
    int found = 0;
    for (double t = 0; t < 17; t += 1.7) {
        const Scene::PersonState person = scene()->person(t);
        const Pose pose = lookingAt(person.bounds.center());
        const auto objects = finder.find(*model, pose, t);
        ASSERT_FALSE(objects.empty());
        ASSERT_TRUE(objects[0].isPerson);
        EXPECT_EQ(objects[0].type, "person");
        Renderer renderer(scene(), model);
        cv::Mat depth;
        cv::Mat ids;
        renderer.depth(pose, t, depth, &ids);
        const cv::Rect box(objects[0].box);
        // The box holds all of the person's pixels, give or take two for the roundness of bodies.
        const cv::Mat mask = ids >= scene()->firstPersonId();
        const cv::Rect wide = cv::Rect(box.x - 6, box.y - 6, box.width + 12, box.height + 12)
            & cv::Rect(0, 0, mask.cols, mask.rows);
        EXPECT_EQ(cv::countNonZero(mask), cv::countNonZero(mask(wide))) << t;
        EXPECT_GT(cv::countNonZero(mask(box)), box.area() / 8) << t;
        for (const Vector3d &point : objects[0].keyPoints) {
            if (point.z() == 0) {
                EXPECT_EQ(point.x(), -1);
                EXPECT_EQ(point.y(), -1);
                continue;
            }
            ++found;
            EXPECT_TRUE(wide.contains(cv::Point(int(point.x()), int(point.y())))) << t;
        }
    }
    EXPECT_GT(found, 150);
}

TEST(WorldObjects, furnitureIsFoundWhereItStandsAndNotBehindTheCamera)
{
    const ObjectFinder finder(scene());
    const auto model = camera();
    auto types = [&](const Pose &pose) {
        std::set<std::string> out;
        for (const SeenObject &object : finder.find(*model, pose, 9.0)) {
            out.insert(object.type);
            EXPECT_GE(object.box.x, 0);
            EXPECT_LE(object.box.br().x, 640);
            EXPECT_LE(object.box.br().y, 480);
            EXPECT_GE(object.visible, 0.25);
        }
        return out;
    };
    const auto front = types(lookingAt({-1.4, 0.5, 3}));
    EXPECT_TRUE(front.count("chair"));
    EXPECT_TRUE(front.count("tv"));
    EXPECT_FALSE(front.count("sofa"));
    const auto back = types(lookingAt({-3, 0.8, -1.6}));
    EXPECT_TRUE(back.count("sofa"));
    EXPECT_TRUE(back.count("pottedplant"));
    EXPECT_FALSE(back.count("tv"));
}

TEST(WorldObjects, planesGrowAsTheyAreSeenAndKeepTheirIds)
{
    PlaneMap map(scene());
    const auto model = camera();
    const Trajectory trajectory;
    EXPECT_TRUE(map.planes().empty());
    EXPECT_TRUE(map.observe(*model, trajectory.pose(0), 0));
    EXPECT_FALSE(map.observe(*model, trajectory.pose(0), 0));
    const std::size_t first = map.planes().size();
    EXPECT_GE(first, 1U);
    for (double t = 0; t < 90; t += 1)
        map.observe(*model, trajectory.pose(t), t);
    const auto planes = map.planes();
    EXPECT_GT(planes.size(), first);
    const auto complete = map.complete();
    std::set<std::string> parts;
    for (const SeenPlane &plane : planes) {
        parts.insert(plane.part);
        ASSERT_GE(plane.outline.size(), 3U);
        const SeenPlane &whole = complete[static_cast<std::size_t>(plane.id) - 1];
        EXPECT_EQ(whole.id, plane.id);
        EXPECT_EQ(whole.part, plane.part);
        double turn = 0;
        for (std::size_t i = 0; i < plane.outline.size(); ++i) {
            const Vector3d &a = plane.outline[i];
            const Vector3d &b = plane.outline[(i + 1) % plane.outline.size()];
            const Vector3d &c = plane.outline[(i + 2) % plane.outline.size()];
            EXPECT_NEAR(plane.normal.dot(a - whole.outline[0]), 0, 1e-9);
            const double corner = plane.normal.dot((b - a).cross(c - b));
            EXPECT_GE(corner * (turn == 0 ? corner : turn), 0) << "convex";
            turn = corner;
        }
    }
    EXPECT_TRUE(parts.count("floor"));
    EXPECT_TRUE(parts.count("wall"));
    EXPECT_TRUE(parts.count("sideboard"));
    map.reset();
    EXPECT_TRUE(map.planes().empty());
}

TEST(WorldObjects, mapHoldsEachPointOnceInTheOrderMet)
{
    const auto features = std::make_shared<Features>(scene());
    PointMap map(features);
    const auto model = camera();
    const Trajectory trajectory;
    const std::size_t first = map.observe(*model, trajectory.pose(0), 0, 150);
    EXPECT_EQ(first, 150U);
    EXPECT_EQ(map.observe(*model, trajectory.pose(0), 0, 150), 0U);
    const std::vector<int> before = map.ids();
    for (double t = 0; t < 30; t += 1)
        map.observe(*model, trajectory.pose(t), t, 150);
    EXPECT_GT(map.ids().size(), 400U);
    EXPECT_TRUE(std::equal(before.begin(), before.end(), map.ids().begin()));
    EXPECT_EQ(std::set<int>(map.ids().begin(), map.ids().end()).size(), map.ids().size());
    const auto points = map.points();
    ASSERT_EQ(points.size(), map.ids().size());
    EXPECT_EQ(points[5], features->all()[static_cast<std::size_t>(map.ids()[5])].position);
    map.reset();
    EXPECT_TRUE(map.points().empty());
}
