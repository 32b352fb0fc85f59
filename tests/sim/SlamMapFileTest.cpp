#include "sim/SlamMapFixture.h"

#include "device/MapFile.h"

#include <fstream>
#include <sstream>

using namespace sim;

namespace {

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

} // namespace

TEST(SimSlamMapFile, savesAFileThatAnotherDeviceFindsItselfIn)
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

TEST(SimSlamMapFile, theEdgeSavesAndLoadsToo)
{
    const std::string file = savedMap();
    Mapping mapping(slamConfig(), true);
    std::stringbuf buffer(file, std::ios_base::in | std::ios_base::binary);
    End end;
    EXPECT_TRUE(mapping.slam->loadMapAndSwitchToCslam(buffer, end.loaded(), end.told()));
    ASSERT_TRUE(end.wait());
    EXPECT_GT(end.quality, 0);
}

TEST(SimSlamMapFile, badFilesAreRefusedAndTheNextTryWorks)
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
        EXPECT_EQ(end.count, 0) << "a map was switched to: " << name;
        EXPECT_TRUE(end.progress.empty());
    }
    std::filebuf unopened;
    End closed;
    EXPECT_FALSE(mapping.slam->loadMapAndSwitchToCslam(unopened, closed.loaded(), nullptr));
    EXPECT_EQ(closed.count, 0);
    std::stringbuf buffer(good, std::ios_base::in | std::ios_base::binary);
    End end;
    EXPECT_TRUE(mapping.slam->loadMapAndSwitchToCslam(buffer, end.loaded(), end.told()));
    ASSERT_TRUE(end.wait());
    EXPECT_GT(end.quality, 0);
}

TEST(SimSlamMapFile, aMapOfAnotherRoomIsNeverFoundInThisOne)
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

TEST(SimSlamMapFile, withoutAStreamNothingIsSavedOrLoaded)
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
    EXPECT_EQ(load.count, 0);
    EXPECT_FALSE(device->slam()->saveMapAndSwitchToCslam(buffer, nullptr, nullptr));
}

TEST(SimSlamMapFile, aFileThatCannotBeWrittenIsTold)
{
    Mapping mapping;
    std::filebuf unopened;
    End end;
    EXPECT_TRUE(mapping.slam->saveMapAndSwitchToCslam(unopened, end.done(), end.told()));
    ASSERT_TRUE(end.wait());
    EXPECT_NE(end.status, 0);
    EXPECT_EQ(end.quality, 0);
}

TEST(SimSlamMapFile, savedFilesAreDamagedOnRequest)
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

TEST(SimSlamMapFile, aSecondSaveToTheSameFileEndsWithTheFirst)
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

TEST(SimSlamMapFile, aLoadIsRefusedWhileASaveIsUnderWay)
{
    StoredMap sound;
    sound.landmarks.push_back({7, {1.0, 2.0, 3.0}});
    std::stringbuf other(MapFile::encode(sound), std::ios_base::in | std::ios_base::binary);
    Mapping mapping;
    ASSERT_TRUE(mapping.waitForPoints(200));
    std::stringbuf file;
    End save;
    End load;
    EXPECT_TRUE(mapping.slam->saveMapAndSwitchToCslam(file, save.done(), nullptr));
    EXPECT_FALSE(mapping.slam->loadMapAndSwitchToCslam(other, load.loaded(), load.told()));
    ASSERT_TRUE(save.wait());
    EXPECT_EQ(save.status, 0) << "it goes on";
    EXPECT_EQ(load.count, 0);
    EXPECT_TRUE(load.progress.empty());
}

TEST(SimSlamMapFile, stopResetAndANewLoadInterruptALoad)
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

TEST(SimSlamMapFile, destroyedWhileSavingItEndsFirst)
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

TEST(SimSlamMapFile, aVanishedDeviceEndsASave)
{
    Mapping mapping;
    std::stringbuf file;
    End end;
    EXPECT_TRUE(mapping.slam->saveMapAndSwitchToCslam(file, end.done(), nullptr));
    mapping.device->unplug();
    ASSERT_TRUE(end.wait());
    EXPECT_NE(end.status, 0);
}

TEST(SimSlamMapFile, stopFromItsOwnEndDoesNotHang)
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
