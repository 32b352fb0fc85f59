#include "sim/SlamMapFixture.h"

#include "device/FisheyeRig.h"
#include "device/SlamMapper.h"
#include "world/UnifiedModel.h"

#include <cmath>
#include <set>

using namespace sim;

namespace {

double crossZ(const Eigen::Vector3d &a, const Eigen::Vector3d &b, const Eigen::Vector3d &c,
    const Eigen::Vector3d &normal)
{
    return (b - a).cross(c - b).dot(normal);
}

/// A plane as it was told: flat, convex, in the world's place.
void expectPlane(const qv::Plane &plane, const Pose &worldFromMap, const Scene &scene)
{
    ASSERT_GE(plane.points.size(), 3U);
    std::vector<Eigen::Vector3d> outline;
    for (const qv::Vector3 &point : plane.points)
        outline.push_back(worldFromMap * eigen(point));
    Eigen::Vector3d normal = Eigen::Vector3d::Zero();
    for (std::size_t i = 2; i < outline.size(); ++i)
        normal += (outline[i - 1] - outline[0]).cross(outline[i] - outline[0]);
    ASSERT_GT(normal.norm(), 0.01) << "it has an area";
    normal.normalize();
    const std::size_t count = outline.size();
    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_LT(std::abs(normal.dot(outline[i] - outline[0])), 0.005) << "flat";
        EXPECT_GT(crossZ(outline[i], outline[(i + 1) % count], outline[(i + 2) % count], normal), -1e-6)
            << "convex";
        EXPECT_TRUE(liesOnASurface(scene, outline[i])) << plane.id;
    }
    EXPECT_GT(std::stoi(plane.id), 0);
    EXPECT_EQ(std::to_string(std::stoi(plane.id)), plane.id);
}

std::set<std::string> idsOf(const Planes &planes)
{
    std::set<std::string> ids;
    for (const qv::Plane &plane : planes ? *planes : std::vector<qv::Plane>())
        EXPECT_TRUE(ids.insert(plane.id).second) << "no id twice";
    return ids;
}

/// Whether cameras that have looked from the road can have met a point: by the exact rays of the scene.
bool seenFrom(
    const Scene &scene, const Trajectory &trajectory, double from, double to, const Eigen::Vector3d &point)
{
    for (double t = from; t <= to; t += 0.1)
        for (const FisheyeRig::Mount &mount : FisheyeRig::stereo(640, 400).mounts)
            if (scene.sees((trajectory.pose(t) * mount.bodyFromCamera).translation(), point, t, 0.01))
                return true;
    return false;
}

} // namespace

TEST(SimSlamMap, growsOnTheSurfacesOfTheRoom)
{
    Mapping mapping;
    ASSERT_TRUE(mapping.waitForPoints(200));
    const std::size_t early = mapping.size();
    ASSERT_TRUE(mapping.waitForPoints(4000));
    EXPECT_GT(mapping.size(), early);
    mapping.slam->stop();
    const Map map = mapping.maps.get();
    const double first = seconds(mapping.poses.all().front());
    const Trajectory trajectory(1);
    const Scene scene(1);
    const Pose frame = frameAt(trajectory, first);
    int step = 0;
    for (const qv::Vector3 &point : map->points) {
        const Eigen::Vector3d inWorld = frame * eigen(point);
        ASSERT_TRUE(liesOnASurface(scene, inWorld)) << inWorld.transpose();
        if (step++ % 40 != 0)
            continue;
        EXPECT_TRUE(seenFrom(scene, trajectory, first, Clock::now(), inWorld)) << inWorld.transpose();
    }
}

TEST(SimSlamMap, aLongWalkGivesTwentyThousandPoints)
{
    const auto world = SharedWorld::get(1);
    SlamMapper::Cameras cameras;
    for (const FisheyeRig::Mount &mount : FisheyeRig::stereo(640, 400).mounts)
        cameras.stereo.push_back({mount.bodyFromCamera, std::make_shared<UnifiedModel>(mount.lens)});
    SlamMapper mapper(world, cameras);
    std::size_t before = 0;
    for (double t = 10; t < 130; t += 0.1) {
        mapper.observePoints(t);
        EXPECT_GE(mapper.pointCount(), before);
        before = mapper.pointCount();
    }
    EXPECT_GE(mapper.pointCount(), 20'000U);
    std::set<std::tuple<double, double, double>> different;
    const Map map = mapper.map(Pose::Identity());
    for (const qv::Vector3 &point : map->points)
        different.insert({point.x, point.y, point.z});
    EXPECT_GE(different.size(), 20'000U) << "no point twice";
}

TEST(SimSlamMap, planesLieOnTheirSurfacesAndKeepTheirIds)
{
    Mapping mapping;
    const auto grown = [&] {
        return idsOf(mapping.stereo.get()).size() >= 3 && !idsOf(mapping.tof.get()).empty();
    };
    ASSERT_TRUE(waitFor(grown));
    const std::set<std::string> before = idsOf(mapping.stereo.get());
    const int updates = mapping.stereo.count();
    waitFor([&] { return mapping.stereo.count() > updates + 2; }, 5000);
    mapping.slam->stop();
    const Scene scene(1);
    const Pose frame = frameAt(Trajectory(1), seconds(mapping.poses.all().front()));
    for (const Planes &planes : {mapping.stereo.get(), mapping.tof.get()})
        for (const qv::Plane &plane : *planes)
            expectPlane(plane, frame, scene);
    const std::set<std::string> after = idsOf(mapping.stereo.get());
    for (const std::string &id : before)
        EXPECT_EQ(after.count(id), 1U) << id;
    // The same id is the same plane for both.
    const Planes tofPlanes = mapping.tof.get();
    const Planes stereoPlanes = mapping.stereo.get();
    for (const qv::Plane &tof : *tofPlanes)
        for (const qv::Plane &stereo : *stereoPlanes)
            if (tof.id == stereo.id) {
                const Eigen::Vector3d a = eigen(stereo.points[0]);
                const Eigen::Vector3d n =
                    (eigen(stereo.points[1]) - a).cross(eigen(stereo.points[2]) - a).normalized();
                EXPECT_NEAR(n.dot(eigen(tof.points[0]) - a), 0, 0.005);
            }
}

TEST(SimSlamMap, devicesWithoutATofCameraHaveStereoPlanesOnly)
{
    Mapping mapping(slamConfig(Profile::Quad));
    ASSERT_TRUE(waitFor([&] { return !idsOf(mapping.stereo.get()).empty(); }));
    EXPECT_EQ(mapping.tof.count(), 0);
}

TEST(SimSlamMap, clearedPlanesComeBackWithTheirIds)
{
    Mapping mapping;
    EXPECT_FALSE(makeDevice(slamConfig())->slam()->clearStereoPlanes()) << "it isn't running";
    ASSERT_TRUE(waitFor([&] { return idsOf(mapping.stereo.get()).size() >= 3; }));
    const std::set<std::string> before = idsOf(mapping.stereo.get());
    const int updates = mapping.stereo.count();
    EXPECT_TRUE(mapping.slam->clearStereoPlanes());
    EXPECT_TRUE(mapping.slam->clearTofPlanes());
    ASSERT_TRUE(waitFor([&] { return mapping.stereo.count() > updates; }));
    ASSERT_TRUE(waitFor([&] { return !idsOf(mapping.stereo.get()).empty(); }));
    bool common = false;
    for (const std::string &id : idsOf(mapping.stereo.get()))
        common |= before.count(id) > 0;
    EXPECT_TRUE(common);
}

TEST(SimSlamMap, resetBeginsANewMap)
{
    Mapping mapping;
    ASSERT_TRUE(mapping.waitForPoints(3000));
    EXPECT_TRUE(mapping.slam->reset());
    EXPECT_TRUE(waitFor([&] { return mapping.size() < 2500; }));
    EXPECT_TRUE(mapping.waitForPoints(2500));
    EXPECT_TRUE(waitFor([&] { return !idsOf(mapping.stereo.get()).empty(); }));
}

TEST(SimSlamMap, withoutPicturesTheHostLearnsNothing)
{
    const auto device = makeDevice(slamConfig());
    std::dynamic_pointer_cast<qv::DeviceEx>(device)->setUvcMode(0);
    const auto slam = device->slam();
    Latest<Map> maps;
    Latest<Planes> tof;
    slam->registerMapCallback([&](Map map) { maps.set(std::move(map)); });
    slam->registerTofPlanesCallback([&](Planes planes) { tof.set(std::move(planes)); });
    slam->start();
    ASSERT_TRUE(waitFor([&] { return !idsOf(tof.get()).empty(); })) << "by then there would be points";
    EXPECT_TRUE(!maps.get() || maps.get()->points.empty());
    slam->stop();
}

TEST(SimSlamMap, strangeMapsAndPlanesComeOnRequest)
{
    DeviceConfig config = slamConfig();
    config.faults.streams["map"].unknownEvery = 1;
    config.faults.streams["planes"].unknownEvery = 1;
    {
        Mapping mapping(config);
        ASSERT_TRUE(waitFor([&] { return mapping.maps.count() > 0 && mapping.stereo.count() > 0; }));
        EXPECT_TRUE(std::isnan((mapping.maps.get()->points.end() - 3)->x));
        EXPECT_EQ((mapping.stereo.get()->end() - 4)->id, "wall");
        EXPECT_TRUE((mapping.stereo.get()->end() - 4)->points.empty());
    }
    config.faults.streams["map"] = {};
    config.faults.streams["map"].nullEvery = 1;
    config.faults.streams["planes"] = {};
    config.faults.streams["planes"].emptyEvery = 1;
    Mapping mapping(config);
    ASSERT_TRUE(waitFor([&] { return mapping.maps.count() > 0 && mapping.stereo.count() > 2; }));
    EXPECT_EQ(mapping.maps.get(), nullptr);
    EXPECT_TRUE(mapping.stereo.get()->empty());
}
