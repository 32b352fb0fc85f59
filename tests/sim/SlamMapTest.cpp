#include "sim/SlamFixture.h"

#include "device/FisheyeRig.h"
#include "device/SlamMapper.h"
#include "world/UnifiedModel.h"

#include <cmath>
#include <fstream>
#include <set>
#include <sstream>

using namespace sim;
using Planes = qv::Slam::Planes;
using Map = std::shared_ptr<const qv::SlamMap>;

namespace {

/// A running SLAM of a room, and all that it tells.
struct Mapping {
    explicit Mapping(const DeviceConfig &config = slamConfig(), bool onEdge = false)
        : device(makeDevice(config))
        , slam(onEdge ? edgeOf(device) : device->slam())
        , poses(slam)
    {
        slam->registerMapCallback([this](Map map) { maps.set(std::move(map)); });
        slam->registerStereoPlanesCallback([this](Planes planes) { stereo.set(std::move(planes)); });
        slam->registerTofPlanesCallback([this](Planes planes) { tof.set(std::move(planes)); });
        EXPECT_TRUE(slam->start());
        EXPECT_TRUE(poses.waitForMore(1));
    }
    ~Mapping() { slam->stop(); }

    std::size_t size() const
    {
        const Map map = maps.get();
        return map ? map->points.size() : 0;
    }
    bool waitForPoints(std::size_t count)
    {
        return waitFor([&] { return size() >= count; }, 90'000);
    }

    Latest<Map> maps;
    Latest<Planes> stereo;
    Latest<Planes> tof;
    std::shared_ptr<SimDevice> device;
    std::shared_ptr<qv::Slam> slam;
    PoseTap poses;
};

/// The end of a save or a load.
struct End {
    std::atomic<int> count{0};
    std::atomic<int> status{-99};
    std::atomic<int> quality{-99};
    std::thread::id thread;
    std::vector<float> progress;
    std::size_t progressBefore = 0;

    std::function<void(int, int)> done()
    {
        return [this](int endStatus, int endQuality) {
            thread = std::this_thread::get_id();
            progressBefore = progress.size();
            status = endStatus;
            quality = endQuality;
            ++count;
        };
    }
    std::function<void(int)> loaded()
    {
        return [end = done()](int endQuality) { end(0, endQuality); };
    }
    std::function<void(float)> told()
    {
        return [this](float share) { progress.push_back(share); };
    }
    bool wait()
    {
        return waitFor([&] { return count > 0; });
    }
};

void expectRising(const End &end)
{
    ASSERT_GT(end.progress.size(), 100U);
    EXPECT_LT(end.progress.front(), 0.2F);
    EXPECT_EQ(end.progress.back(), 1.0F);
    for (std::size_t i = 1; i < end.progress.size(); ++i)
        EXPECT_GE(end.progress[i], end.progress[i - 1]);
    EXPECT_EQ(end.progress.size(), end.progressBefore) << "done comes last";
    EXPECT_EQ(end.count, 1);
    EXPECT_NE(end.thread, std::this_thread::get_id());
}

/// A map file of the room, made by a device of its own.
std::string savedMap(unsigned seed = 1)
{
    DeviceConfig config = slamConfig();
    config.seed = seed;
    Mapping mapping(config);
    EXPECT_TRUE(mapping.waitForPoints(3000));
    std::stringbuf file;
    End end;
    EXPECT_TRUE(mapping.slam->saveMapAndSwitchToCslam(file, end.done(), end.told()));
    EXPECT_TRUE(end.wait());
    EXPECT_EQ(end.status, 0);
    return file.str();
}

/// How far from the nearest surface of the scene a point of the room is, by rays from all six sides.
bool liesOnASurface(const Scene &scene, const Eigen::Vector3d &point)
{
    return std::any_of(scene.surfaces().begin(), scene.surfaces().end(), [&](const Surface &surface) {
        const Eigen::Vector3d away = point - surface.corner;
        const double a = surface.right.dot(away);
        const double b = surface.down.dot(away);
        return std::abs(surface.normal.dot(away)) < 0.005 && a > -0.005 && b > -0.005
            && a < surface.width + 0.005 && b < surface.height + 0.005;
    });
}

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

TEST(SimSlamMap, savesAFileThatAnotherDeviceFindsItselfIn)
{
    std::string file;
    Pose saver;
    {
        Mapping mapping;
        ASSERT_TRUE(mapping.waitForPoints(3000));
        std::stringbuf buffer;
        End end;
        EXPECT_TRUE(mapping.slam->saveMapAndSwitchToCslam(buffer, end.done(), end.told()));
        EXPECT_EQ(end.count, 0) << "it comes later";
        ASSERT_TRUE(end.wait());
        expectRising(end);
        EXPECT_EQ(end.status, 0);
        EXPECT_GT(end.quality, 10);
        EXPECT_LE(end.quality, 100);
        file = buffer.str();
        EXPECT_GT(file.size(), 3000U * 32);
        saver = frameAt(Trajectory(1), seconds(mapping.poses.all().front()));
    }
    Mapping other(slamConfig(Profile::Module));
    ASSERT_TRUE(other.poses.waitForMore(400)) << "elsewhere by now";
    std::stringbuf buffer(file, std::ios_base::in | std::ios_base::binary);
    End end;
    EXPECT_TRUE(other.slam->loadMapAndSwitchToCslam(buffer, end.loaded(), end.told()));
    EXPECT_EQ(end.count, 0) << "it comes later";
    ASSERT_TRUE(end.wait());
    expectRising(end);
    EXPECT_GT(end.quality, 10);
    // From now on its poses are in the frame of the one who saved, and so is the map.
    other.poses.clear();
    ASSERT_TRUE(other.poses.waitForMore(20));
    const Trajectory trajectory(1);
    for (const qv::Pose &pose : other.poses.all()) {
        const Pose truth = saver.inverse() * trajectory.pose(seconds(pose));
        EXPECT_LT((eigen(pose.translation) - truth.translation()).norm(), 0.02);
    }
    ASSERT_TRUE(other.waitForPoints((file.size() - 28) / 32));
    const Scene scene(1);
    const Map map = other.maps.get();
    for (const qv::Vector3 &point : map->points)
        ASSERT_TRUE(liesOnASurface(scene, saver * eigen(point)));
}

TEST(SimSlamMap, theEdgeSavesAndLoadsToo)
{
    const std::string file = savedMap();
    Mapping mapping(slamConfig(), true);
    std::stringbuf buffer(file, std::ios_base::in | std::ios_base::binary);
    End end;
    EXPECT_TRUE(mapping.slam->loadMapAndSwitchToCslam(buffer, end.loaded(), end.told()));
    ASSERT_TRUE(end.wait());
    EXPECT_GT(end.quality, 0);
}

TEST(SimSlamMap, badFilesAreRefusedAndTheNextTryWorks)
{
    const std::string good = savedMap();
    Mapping mapping;
    std::string damaged = good;
    damaged[good.size() / 3] = static_cast<char>(damaged[good.size() / 3] ^ 4);
    const std::pair<const char *, std::string> bad[] = {{"empty", ""},
        {"short", good.substr(0, good.size() / 2)}, {"header only", good.substr(0, 24)}, {"damaged", damaged},
        {"longer", good + "more"}, {"of another kind", std::string(5000, 'x')}};
    for (const auto &[name, bytes] : bad) {
        std::stringbuf buffer(bytes, std::ios_base::in | std::ios_base::binary);
        End end;
        EXPECT_FALSE(mapping.slam->loadMapAndSwitchToCslam(buffer, end.loaded(), end.told())) << name;
        EXPECT_EQ(end.count, 1) << "whoever opened the file learns that he may close it: " << name;
        EXPECT_EQ(end.quality, 0);
        EXPECT_TRUE(end.progress.empty());
    }
    std::filebuf unopened;
    End closed;
    EXPECT_FALSE(mapping.slam->loadMapAndSwitchToCslam(unopened, closed.loaded(), nullptr));
    EXPECT_EQ(closed.count, 1);
    std::stringbuf buffer(good, std::ios_base::in | std::ios_base::binary);
    End end;
    EXPECT_TRUE(mapping.slam->loadMapAndSwitchToCslam(buffer, end.loaded(), end.told()));
    ASSERT_TRUE(end.wait());
    EXPECT_GT(end.quality, 0);
}

TEST(SimSlamMap, aMapOfAnotherRoomIsNeverFoundInThisOne)
{
    const std::string elsewhere = savedMap(9);
    Mapping mapping;
    const Pose frame = frameAt(Trajectory(1), seconds(mapping.poses.all().front()));
    std::stringbuf buffer(elsewhere, std::ios_base::in | std::ios_base::binary);
    End end;
    EXPECT_TRUE(mapping.slam->loadMapAndSwitchToCslam(buffer, end.loaded(), end.told()));
    ASSERT_TRUE(end.wait());
    EXPECT_EQ(end.quality, 0);
    EXPECT_EQ(end.progress.back(), 0.0F);
    const qv::Pose pose = mapping.poses.last();
    const Pose truth = frame.inverse() * Trajectory(1).pose(seconds(pose));
    EXPECT_LT((eigen(pose.translation) - truth.translation()).norm(), 0.02) << "it stays in its own frame";
}

TEST(SimSlamMap, withoutAStreamNothingIsSavedOrLoaded)
{
    const auto device = makeDevice(slamConfig());
    std::stringbuf buffer;
    End save;
    EXPECT_FALSE(device->slam()->saveMapAndSwitchToCslam(buffer, save.done(), nullptr));
    EXPECT_EQ(save.count, 1);
    EXPECT_NE(save.status, 0);
    EXPECT_NE(save.thread, std::this_thread::get_id());
    EXPECT_EQ(buffer.str(), "");
    End load;
    EXPECT_FALSE(device->slam()->loadMapAndSwitchToCslam(buffer, load.loaded(), nullptr));
    EXPECT_EQ(load.count, 1);
    EXPECT_FALSE(device->slam()->saveMapAndSwitchToCslam(buffer, nullptr, nullptr));
}

TEST(SimSlamMap, aFileThatCannotBeWrittenIsTold)
{
    Mapping mapping;
    std::filebuf unopened;
    End end;
    EXPECT_TRUE(mapping.slam->saveMapAndSwitchToCslam(unopened, end.done(), end.told()));
    ASSERT_TRUE(end.wait());
    EXPECT_NE(end.status, 0);
    EXPECT_EQ(end.quality, 0);
}

TEST(SimSlamMap, savedFilesAreDamagedOnRequest)
{
    DeviceConfig config = slamConfig();
    config.faults.damageMap = true;
    Mapping mapping(config);
    std::stringbuf file;
    End saved;
    mapping.slam->saveMapAndSwitchToCslam(file, saved.done(), nullptr);
    ASSERT_TRUE(saved.wait());
    EXPECT_EQ(saved.status, 0);
    std::stringbuf again(file.str(), std::ios_base::in | std::ios_base::binary);
    End end;
    EXPECT_FALSE(mapping.slam->loadMapAndSwitchToCslam(again, end.loaded(), nullptr));
}

TEST(SimSlamMap, aSecondSaveToTheSameFileEndsWithTheFirst)
{
    Mapping mapping;
    std::stringbuf file;
    std::stringbuf otherFile;
    End first;
    End second;
    End other;
    EXPECT_TRUE(mapping.slam->saveMapAndSwitchToCslam(file, first.done(), nullptr));
    EXPECT_TRUE(mapping.slam->saveMapAndSwitchToCslam(file, second.done(), nullptr));
    EXPECT_FALSE(mapping.slam->saveMapAndSwitchToCslam(otherFile, other.done(), nullptr));
    EXPECT_EQ(other.count, 1);
    EXPECT_NE(other.status, 0);
    ASSERT_TRUE(first.wait());
    ASSERT_TRUE(second.wait());
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(second.status, 0);
}

TEST(SimSlamMap, stopResetAndANewLoadInterruptALoad)
{
    const std::string file = savedMap();
    Mapping mapping;
    std::stringbuf buffers[3];
    End ends[3];
    for (int i = 0; i < 3; ++i) {
        buffers[i].str(file);
        EXPECT_TRUE(mapping.slam->loadMapAndSwitchToCslam(buffers[i], ends[i].loaded(), ends[i].told()));
        if (i == 1)
            mapping.slam->reset();
        if (i == 2)
            mapping.slam->stop();
        if (i > 0) {
            EXPECT_EQ(ends[i - 1].count, 1);
            EXPECT_EQ(ends[i - 1].quality, 0);
        }
    }
    EXPECT_EQ(ends[2].count, 1);
    EXPECT_EQ(ends[2].quality, 0);
}

TEST(SimSlamMap, destroyedWhileSavingItEndsFirst)
{
    for (int round = 0; round < 5; ++round) {
        auto end = std::make_unique<End>();
        auto file = std::make_unique<std::stringbuf>();
        {
            const auto device = makeDevice(slamConfig(Profile::Module));
            PoseTap tap(device->slam());
            device->slam()->start();
            ASSERT_TRUE(tap.waitForMore(static_cast<std::size_t>(1 + 60 * round)));
            EXPECT_TRUE(device->slam()->saveMapAndSwitchToCslam(*file, end->done(), end->told()));
        }
        ASSERT_TRUE(end->wait());
        EXPECT_NE(end->status, 0);
        // The stream may go now; the address sanitizer watches.
        file.reset();
        end.reset();
    }
}

TEST(SimSlamMap, aVanishedDeviceEndsASave)
{
    Mapping mapping;
    std::stringbuf file;
    End end;
    EXPECT_TRUE(mapping.slam->saveMapAndSwitchToCslam(file, end.done(), nullptr));
    mapping.device->unplug();
    ASSERT_TRUE(end.wait());
    EXPECT_NE(end.status, 0);
}

TEST(SimSlamMap, stopFromItsOwnEndDoesNotHang)
{
    Mapping mapping;
    std::stringbuf file;
    std::atomic<int> ends{0};
    mapping.slam->saveMapAndSwitchToCslam(
        file,
        [&](int, int) {
            mapping.slam->stop();
            ++ends;
        },
        nullptr);
    EXPECT_TRUE(waitFor([&] { return ends == 1; }));
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
