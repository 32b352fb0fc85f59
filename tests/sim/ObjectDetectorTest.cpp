#include "core/Clock.h"
#include "device/DeviceFactory.h"
#include "device/ObjectViews.h"
#include "device/RenderedFisheye.h"
#include "device/qv/FisheyeCamerasEx.h"
#include "sim/Records.h"
#include "world/CameraModels.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <unistd.h>

using namespace sim;

namespace {

namespace fs = std::filesystem;
using Objects = std::vector<qv::Object>;

/// Detects at moments of the test's choice.
class Exposed : public SimObjectDetector {
public:
    using SimObjectDetector::produce;
    using SimObjectDetector::SimObjectDetector;
};

struct ObjectDetectorTest : ::testing::Test {
    const std::string folder = fs::temp_directory_path() / ("detector-" + std::to_string(::getpid()));
    const std::string model = folder + "/model.blob";
    const std::string descriptor = folder + "/descriptor.json";
    const std::shared_ptr<const SharedWorld> world = SharedWorld::get(1);
    const std::shared_ptr<RenderedFisheye> fisheye =
        std::make_shared<RenderedFisheye>(world, FisheyeRig::stereo(640, 400), 50, 1);
    const std::shared_ptr<SimDevice> headset = makeDevice(DeviceConfig());
    const std::shared_ptr<DeviceState> state = std::make_shared<DeviceState>(DeviceConfig());
    const std::shared_ptr<Exposed> detector = std::make_shared<Exposed>(state, world, views(), 20);
    Objects objects;
    std::atomic<int> records{0};

    ObjectDetectorTest()
    {
        fs::create_directories(folder);
        write(model, "weights");
        detector->registerCallback([this](const Objects &list) {
            objects = list;
            ++records;
        });
    }
    ~ObjectDetectorTest() override
    {
        detector->stop();
        fs::remove_all(folder);
    }

    static void write(const std::string &path, const std::string &text) { std::ofstream(path) << text; }

    SimObjectDetector::Views views() const
    {
        SimObjectDetector::Views all = fisheyeViews(fisheye);
        all[SimObjectDetector::Color] = polynomialView(headset->colorCamera());
        all[SimObjectDetector::Tof] = polynomialView(headset->tofCamera());
        return all;
    }

    const Objects &at(double t, Defect defect = Defect::None)
    {
        detector->produce(t, defect);
        return objects;
    }

    const qv::Object *personAt(double t)
    {
        const Objects &all = at(t);
        const auto found =
            std::find_if(all.begin(), all.end(), [](const qv::Object &o) { return o.type == "person"; });
        return found == all.end() ? nullptr : &*found;
    }
};

} // namespace

TEST(ObjectDetectorDevice, headsetAndModuleHaveOne)
{
    DeviceConfig config;
    config.uuid = "test";
    for (const Profile profile : {Profile::Headset, Profile::Module}) {
        config.profile = profile;
        const auto device = makeDevice(config);
        ASSERT_NE(device->objectDetector(), nullptr);
        EXPECT_EQ(device->objectDetector(), device->objectDetector());
        EXPECT_EQ(device->info().at("cnnAvailable"), "true");
    }
    for (const Profile profile : {Profile::Quad, Profile::Plain, Profile::ImuOnly}) {
        config.profile = profile;
        EXPECT_EQ(makeDevice(config)->objectDetector(), nullptr);
        EXPECT_EQ(makeDevice(config)->info().at("cnnAvailable"), "false");
    }
}

TEST_F(ObjectDetectorTest, startsOnlyWithAModel)
{
    EXPECT_FALSE(detector->start());
    EXPECT_FALSE(detector->setModel(folder + "/missing.blob"));
    EXPECT_FALSE(detector->setModel(folder)) << "a folder is no model";
    EXPECT_FALSE(detector->setModel(""));
    write(folder + "/empty.blob", "");
    EXPECT_FALSE(detector->setModel(folder + "/empty.blob"));
    EXPECT_FALSE(detector->start());
    EXPECT_TRUE(detector->setModel(model));
    EXPECT_TRUE(detector->start());
    EXPECT_TRUE(detector->start()) << "it runs already";
    EXPECT_TRUE(waitFor([&] { return records > 2; }));
    EXPECT_TRUE(detector->stop());
    EXPECT_FALSE(detector->stop());
}

TEST_F(ObjectDetectorTest, aStartWithoutAModelIsMadeUpForOnceOneIsSet)
{
    EXPECT_FALSE(detector->start());
    EXPECT_FALSE(detector->setModel(folder + "/missing.blob"));
    EXPECT_TRUE(detector->setDescriptor("empty"));
    EXPECT_FALSE(detector->stop()) << "it runs without a model";
    EXPECT_FALSE(detector->start());
    EXPECT_TRUE(detector->setModel(model));
    EXPECT_TRUE(waitFor([&] { return records > 2; }));
    EXPECT_TRUE(detector->setModel(model)) << "another one doesn't disturb it";
    EXPECT_TRUE(detector->stop());
}

TEST_F(ObjectDetectorTest, aStartThatWasTakenBackIsNotMadeUpFor)
{
    EXPECT_FALSE(detector->start());
    EXPECT_FALSE(detector->stop());
    EXPECT_TRUE(detector->setModel(model));
    EXPECT_FALSE(detector->stop()) << "it has started";
    EXPECT_TRUE(detector->start());
    EXPECT_TRUE(detector->stop());
    EXPECT_TRUE(detector->setModel(model));
    EXPECT_TRUE(detector->setDescriptor("empty"));
    EXPECT_FALSE(detector->stop()) << "it has started again";
}

TEST_F(ObjectDetectorTest, aStopThatIsRefusedTakesNothingBack)
{
    Faults faults;
    faults.refuse = {"objects.stop"};
    EXPECT_FALSE(detector->start());
    state->setFaults(faults);
    EXPECT_FALSE(detector->stop());
    state->setFaults({});
    EXPECT_TRUE(detector->setModel(model));
    EXPECT_TRUE(detector->stop());
}

TEST_F(ObjectDetectorTest, aRefusedModelLeavesTheOneOfBefore)
{
    EXPECT_TRUE(detector->setModel(model));
    EXPECT_FALSE(detector->setModel(folder + "/missing.blob"));
    EXPECT_TRUE(detector->start());
}

TEST_F(ObjectDetectorTest, doesNotStartOnceAFileHasGone)
{
    write(descriptor, "{}");
    ASSERT_TRUE(detector->setModel(model));
    ASSERT_TRUE(detector->setDescriptor(descriptor));
    fs::remove(descriptor);
    EXPECT_FALSE(detector->start());
    EXPECT_TRUE(detector->setDescriptor("empty"));
    EXPECT_TRUE(waitFor([&] { return records > 0; })) << "now it does";
    EXPECT_TRUE(detector->stop());
    fs::remove(model);
    EXPECT_FALSE(detector->start());
}

TEST_F(ObjectDetectorTest, aDescriptorChoosesClassesAndConfidence)
{
    detector->setSource(SimObjectDetector::Left);
    std::set<std::string> seen;
    for (double t = 0; t < 40; t += 2) {
        for (const qv::Object &object : at(t))
            seen.insert(object.type);
    }
    ASSERT_GT(seen.size(), 3U);
    ASSERT_EQ(seen.count("person"), 1U);

    write(descriptor, R"({"classes": ["person"], "minConfidence": 0.6})");
    ASSERT_TRUE(detector->setDescriptor(descriptor));
    int persons = 0;
    for (double t = 0; t < 40; t += 2) {
        for (const qv::Object &object : at(t)) {
            EXPECT_EQ(object.type, "person");
            EXPECT_GE(object.confidence, 0.6);
            ++persons;
        }
    }
    EXPECT_GT(persons, 0);
    ASSERT_TRUE(detector->setDescriptor("empty"));
    std::set<std::string> again;
    for (double t = 0; t < 40; t += 2) {
        for (const qv::Object &object : at(t))
            again.insert(object.type);
    }
    EXPECT_EQ(again, seen) << "without a descriptor all of them";
}

TEST_F(ObjectDetectorTest, aDescriptorMayNameItsCamera)
{
    write(descriptor, R"({"source": "left"})");
    EXPECT_TRUE(detector->setDescriptor(descriptor));
    EXPECT_EQ(detector->source(), 0);
    write(descriptor, R"({"source": "tof"})");
    EXPECT_TRUE(detector->setDescriptor(descriptor));
    EXPECT_EQ(detector->source(), 3);
}

TEST_F(ObjectDetectorTest, whatIsNoDescriptorChangesNothing)
{
    write(descriptor, R"({"classes": ["nothing"], "source": "right"})");
    ASSERT_TRUE(detector->setDescriptor(descriptor));
    const char *const broken[] = {"", "{", "[]", "\xff\xfe\x00garbage", R"({"classes": 7})",
        R"({"source": "back"})", R"({"source": 1})", R"({"minConfidence": "much"})"};
    for (const char *text : broken) {
        write(folder + "/broken.json", text);
        EXPECT_FALSE(detector->setDescriptor(folder + "/broken.json")) << text;
    }
    EXPECT_FALSE(detector->setDescriptor(folder + "/missing.json"));
    EXPECT_FALSE(detector->setDescriptor(folder));
    EXPECT_FALSE(detector->setDescriptor(""));
    EXPECT_EQ(detector->source(), 1);
    EXPECT_TRUE(at(3).empty()) << "still only that class, which nothing has";
}

TEST_F(ObjectDetectorTest, sourcesAreTheCamerasThereAre)
{
    EXPECT_EQ(detector->source(), 2) << "colour at first";
    for (const int source : {0, 1, 2, 3, 255}) {
        EXPECT_TRUE(detector->setSource(source));
        EXPECT_EQ(detector->source(), source);
    }
    for (const int unknown : {-1, 4, 254, 256}) {
        EXPECT_FALSE(detector->setSource(unknown));
        EXPECT_EQ(detector->source(), 255);
    }
    Exposed pairOnly(state, world, fisheyeViews(fisheye), 20);
    EXPECT_EQ(pairOnly.source(), 0);
    EXPECT_FALSE(pairOnly.setSource(2));
}

TEST_F(ObjectDetectorTest, withoutASourceThereIsNothingToSee)
{
    detector->setSource(SimObjectDetector::None);
    for (double t = 0; t < 20; t += 1)
        EXPECT_TRUE(at(t).empty());
    EXPECT_EQ(records, 20) << "but the records come";
}

TEST_F(ObjectDetectorTest, boxesLieInThePictureOfTheSource)
{
    for (const auto &[source, view] : views()) {
        ASSERT_TRUE(detector->setSource(source));
        const cv::Size size = view().lens->size();
        int count = 0;
        for (double t = 0; t < 40; t += 1) {
            for (const qv::Object &object : at(t)) {
                ++count;
                EXPECT_GE(object.x, 0);
                EXPECT_GE(object.y, 0);
                EXPECT_GT(object.width, 0);
                EXPECT_GT(object.height, 0);
                EXPECT_LE(object.x + object.width, size.width);
                EXPECT_LE(object.y + object.height, size.height);
                EXPECT_GT(object.confidence, 0.2);
                EXPECT_LT(object.confidence, 1);
                EXPECT_EQ(object.shape, object.type == "person" ? 1 : 0);
                EXPECT_EQ(object.keypoints.size(), object.type == "person" ? 18U : 0U);
            }
        }
        EXPECT_GT(count, 20) << source;
    }
}

TEST_F(ObjectDetectorTest, theBoxHoldsThePersonInThePicture)
{
    const SimObjectDetector::View view = views()[SimObjectDetector::Left]();
    detector->setSource(SimObjectDetector::Left);
    Renderer renderer(world->scene(), view.lens);
    cv::Mat z;
    cv::Mat ids;
    int seen = 0;
    for (double t = 0; t < 40; t += 0.7) {
        const qv::Object *person = personAt(t);
        if (!person)
            continue;
        renderer.depth(world->trajectory().pose(t) * view.bodyFromCamera, t, z, &ids);
        cv::Mat body = ids >= world->scene()->firstPersonId();
        if (cv::countNonZero(body) == 0)
            continue;
        ++seen;
        // Round limbs reach a little past the ends of their axes.
        const double slack = 3 + 0.04 * std::max(person->width, person->height);
        const cv::Rect around = cv::boundingRect(body);
        EXPECT_GE(around.x, person->x - slack) << t;
        EXPECT_GE(around.y, person->y - slack) << t;
        EXPECT_LE(around.br().x, person->x + person->width + slack) << t;
        EXPECT_LE(around.br().y, person->y + person->height + slack) << t;
    }
    EXPECT_GT(seen, 5);
}

TEST_F(ObjectDetectorTest, skeletonPointsLieOnTheJointsAndHiddenOnesAreMarked)
{
    const Scene &scene = *world->scene();
    int shown = 0;
    int hidden = 0;
    for (const auto &[source, viewOf] : views()) {
        ASSERT_TRUE(detector->setSource(source));
        const SimObjectDetector::View view = viewOf();
        const cv::Size size = view.lens->size();
        for (double t = 0; t < 60; t += 0.9) {
            const qv::Object *person = personAt(t);
            if (!person)
                continue;
            ASSERT_EQ(person->keypoints.size(), 18U);
            const Pose camera = world->trajectory().pose(t) * view.bodyFromCamera;
            const Person::KeyPoints joints = scene.person(t).keyPoints;
            for (std::size_t i = 0; i < 18; ++i) {
                const qv::Vector3 &point = person->keypoints[i];
                const auto pixel = view.lens->project(camera.inverse() * joints[i]);
                const bool inside = pixel && pixel->x() >= -0.5 && pixel->y() >= -0.5
                    && pixel->x() < size.width - 0.5 && pixel->y() < size.height - 0.5;
                const auto hit = scene.cast(camera.translation(), joints[i] - camera.translation(), t);
                const bool covered = hit && hit->surface < scene.firstPersonId()
                    && hit->distance < (joints[i] - camera.translation()).norm() - 0.01;
                if (inside && !covered) {
                    ++shown;
                    EXPECT_NEAR(point.x, pixel->x(), 0.01);
                    EXPECT_NEAR(point.y, pixel->y(), 0.01);
                } else {
                    ++hidden;
                    EXPECT_EQ(point.x, -1);
                    EXPECT_EQ(point.y, -1);
                }
            }
        }
    }
    EXPECT_GT(shown, 200);
    EXPECT_GT(hidden, 20);
}

TEST_F(ObjectDetectorTest, pixelsAreThoseOfTheCamerasResolution)
{
    detector->setSource(SimObjectDetector::Left);
    const Objects small = at(4);
    ASSERT_TRUE(fisheye->setResolution(3));
    const Objects large = at(4);
    ASSERT_FALSE(small.empty());
    ASSERT_EQ(large.front().type, small.front().type);
    EXPECT_NEAR(large.front().width, 2 * small.front().width, 8);
}

TEST_F(ObjectDetectorTest, pixelsFollowTheColourCamerasResolution)
{
    double t = 0;
    while (t < 60 && at(t).empty())
        t += 1;
    const Objects full = objects;
    ASSERT_FALSE(full.empty());
    headset->colorCamera()->setResolution(1);
    const Objects smaller = at(t);
    ASSERT_FALSE(smaller.empty());
    ASSERT_EQ(smaller.front().type, full.front().type);
    EXPECT_NEAR(smaller.front().width, full.front().width / 1.5, 1) << "1280 of 1920";
}

TEST_F(ObjectDetectorTest, sameSeedAndTimeGiveTheSameObjects)
{
    Exposed other(std::make_shared<DeviceState>(DeviceConfig()), SharedWorld::get(1), views(), 5);
    Objects theirs;
    other.registerCallback([&](const Objects &list) { theirs = list; });
    at(1);
    at(9.5);
    other.produce(9.5, Defect::None);
    ASSERT_EQ(objects.size(), theirs.size());
    ASSERT_FALSE(objects.empty());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        EXPECT_EQ(objects[i].type, theirs[i].type);
        EXPECT_EQ(objects[i].x, theirs[i].x);
        EXPECT_EQ(objects[i].confidence, theirs[i].confidence);
    }
}

TEST_F(ObjectDetectorTest, faultsDamageRecords)
{
    detector->setSource(SimObjectDetector::Left);
    double t = 0;
    while (t < 60 && !personAt(t))
        t += 1;
    ASSERT_NE(personAt(t), nullptr);
    const qv::Object whole = *personAt(t);
    EXPECT_TRUE(at(t, Defect::Empty).empty());
    EXPECT_TRUE(at(t, Defect::NullData).empty());
    EXPECT_EQ(at(t, Defect::ZeroSize).at(0).width, 0);
    EXPECT_EQ(at(t, Defect::Short).at(0).keypoints.size(), 9U);
    EXPECT_GT(at(t, Defect::Unknown).at(0).shape, 1);
    EXPECT_EQ(at(t, Defect::Resize).at(0).width, 4 * whole.width);
}

TEST_F(ObjectDetectorTest, refusedOperationsChangeNothing)
{
    Faults faults;
    faults.refuse = {"setModel", "setSource", "objects.setDescriptor"};
    state->setFaults(faults);
    EXPECT_FALSE(detector->setModel(model));
    EXPECT_FALSE(detector->setSource(0));
    EXPECT_FALSE(detector->setDescriptor("empty"));
    EXPECT_EQ(detector->source(), 2);
    state->setFaults({});
    EXPECT_TRUE(detector->setModel(model));
}

TEST_F(ObjectDetectorTest, unpluggedItFailsAndDoesNoHarm)
{
    ASSERT_TRUE(detector->setModel(model));
    ASSERT_TRUE(detector->start());
    ASSERT_TRUE(waitFor([&] { return records > 0; }));
    state->setGone();
    EXPECT_FALSE(detector->stop());
    EXPECT_FALSE(detector->start());
    EXPECT_FALSE(detector->setModel(model));
    EXPECT_FALSE(detector->setDescriptor("empty"));
    EXPECT_FALSE(detector->setSource(0));
    EXPECT_EQ(detector->source(), 2) << "what it was";
    const int id = detector->registerCallback([](const Objects &) {});
    detector->unregisterCallback(id);
}

TEST_F(ObjectDetectorTest, unregisteringWhatNoOneRegisteredLeavesTheOthers)
{
    detector->unregisterCallback(-1);
    ASSERT_TRUE(detector->setModel(model));
    ASSERT_TRUE(detector->start());
    EXPECT_TRUE(waitFor([&] { return records > 0; }));
}
