#include "device/DeviceAccess.h"
#include "device/FisheyeRig.h"
#include "device/SharedWorld.h"
#include "imaging/ImageData.h"
#include "streams/SgbmData.h"
#include "streams/TofData.h"
#include "ui/Page.h"
#include "world/PolynomialModel.h"

#include <QSignalSpy>
#include <algorithm>
#include <array>
#include <atomic>
#include <deque>
#include <functional>
#include <iostream>
#include <iterator>
#include <mutex>

// Every image stream of the simulated headset, switched by clicks, and what the depth views read under the
// mouse beside the room itself.

using namespace ui;

namespace {

struct StreamOf {
    const char *button;
    const char *view;
    const char *model;
    const char *rate; ///< the model's count of records a second
    double nominal; ///< records a second that the device is to send
};

// RGBD needs the two before it, and counts nothing. The inertial sensor never stops.
constexpr StreamOf streams[] = {{"imuButton", "imuView", "imu", "dataFrameRate", 500},
    {"stereoButton", "stereoView", "stereo", "dataFrameRate", 50},
    {"tofButton", "tofView", "tof", "dataFrameRate", 30},
    {"rgbButton", "rgbView", "rgb", "dataFrameRate", 30}, {"rgbdButton", "rgbdView", "rgbd", nullptr, 30},
    {"irButton", "irView", "tofIr", "dataFrameRate", 30},
    {"rgb2Button", "rgb2View", "rgb", "dataFrameRate2", 15},
    {"sgbmButton", "sgbmView", "sgbm", "frameRate", 30}};

/// The middle of a view: pictures and gauges, no labels and no buttons.
QImage middle(const char *view)
{
    const QImage all = WindowDriver::grab(id(view));
    return all.copy(all.width() / 4, all.height() / 4, all.width() / 2, all.height() / 2);
}

bool isPlaced(const char *view)
{
    return id(view)->width() > 50 && id(view)->isVisible();
}

/// Whether the middle of the view comes to show a picture, and then another one.
bool isLive(const char *view)
{
    QImage first;
    return waitFor(
               [&] {
                   if (!isPlaced(view))
                       return false;
                   first = middle(view);
                   return colours(first) > 8;
               },
               minute)
        && waitFor([&] { return colours(middle(view)) > 8 && middle(view) != first; }, minute);
}

double rate(const StreamOf &stream)
{
    return model(stream.model)->property(stream.rate).toDouble();
}

/// The frame holder that the view's painter draws; null where the view has none.
ImageData *frames(const StreamOf &stream)
{
    QQuickItem *painter = WindowDriver::byName("painter", id(stream.view));
    return painter ? qobject_cast<ImageData *>(painter->property("source").value<QObject *>()) : nullptr;
}

using Truth = std::function<double(int x, int y, double t)>;

/// What the room has behind a pixel of the ToF camera, in millimetres along the camera's axis.
Truth tofRoom(const qv::Calibration &calibration)
{
    sim::Pose mount = sim::Pose::Identity();
    for (int row = 0; row < 3; ++row) {
        mount.translation()[row] = calibration.translation[row];
        for (int column = 0; column < 3; ++column)
            mount.linear()(row, column) = calibration.rotation[3 * row + column];
    }
    const sim::PolynomialModel optics(calibration.pdcm.at(0));
    return [=](int x, int y, double t) {
        const auto world = sim::SharedWorld::get(1);
        const sim::Pose camera = world->trajectory().pose(t) * mount;
        const auto hit = world->scene()->cast(
            camera.translation(), camera.linear() * optics.unproject({double(x), double(y)}), t);
        return hit ? 1000 * (camera.inverse() * hit->point).z() : 0;
    };
}

// The stereo depth unit by default: pictures of 640x400, a view of 96 degrees, cameras 80 mm apart.
const double sgbmFocal = 320 / std::tan(48 * M_PI / 180);
constexpr double sgbmBaseline = 0.08;

/// The same for a pixel of the stereo depth unit, which looks straight ahead from the left camera.
double sgbmRoom(int x, int y, double t)
{
    const auto world = sim::SharedWorld::get(1);
    static const auto rig = sim::FisheyeRig::stereo(640, 400);
    const sim::Pose left = world->trajectory().pose(t) * rig.mounts[0].bodyFromCamera;
    const Eigen::Vector3d ray((x - 319.5) / sgbmFocal, (y - 199.5) / sgbmFocal, 1);
    const auto hit = world->scene()->cast(left.translation(), left.linear() * ray, t);
    return hit ? 1000 * hit->distance / ray.norm() : 0;
}

/// How far two neighbouring disparities of 1/32 pixel lie apart at a depth, in millimetres.
double sgbmStep(double depth)
{
    return depth * depth / (1000 * sgbmBaseline * sgbmFocal) / 32;
}

/// The moments of the latest records of a stream of the device.
template <class Component, class Record>
class RecordTimes {
public:
    explicit RecordTimes(std::shared_ptr<Component> component)
        : m_component(std::move(component))
        , m_id(m_component->registerCallback([this](const Record &record) {
            const std::lock_guard lock(m_mutex);
            m_times.push_back(double(record.edgeTimestampUs) / 1e6);
            if (m_times.size() > 60)
                m_times.pop_front();
        }))
    {
    }
    ~RecordTimes() { m_component->unregisterCallback(m_id); }

    std::deque<double> latest()
    {
        const std::lock_guard lock(m_mutex);
        return m_times;
    }

private:
    std::mutex m_mutex;
    std::deque<double> m_times;
    const std::shared_ptr<Component> m_component;
    const int m_id;
};

/// RGBD first: its switch is usable only while both colour cameras have been left alone.
const std::vector<int> orderOfStops{4, 7, 6, 5, 3, 2, 1, 0};

void switchOffAllBut(const QString &button)
{
    for (const int index : orderOfStops) {
        if (button != QLatin1String(streams[index].button))
            setSwitch(streams[index].button, false);
    }
}

/// Points at eight places of the picture, and counts those where the reading comes to be that of the room.
/// The room moves past the pixel: a reading is right when it is that of one of the latest records.
template <class Times>
int rightReadings(const char *viewName, QObject *depth, int index, Times &times, const Truth &truth,
    const std::function<double(double depth)> &tolerance)
{
    QQuickItem *view = id(viewName);
    QQuickItem *painter = WindowDriver::byName("painter", view);
    int right = 0;
    double worst = 0;
    for (const double part : {0.25, 0.32, 0.4, 0.47, 0.55, 0.62, 0.7, 0.77}) {
        EXPECT_TRUE(pointAt(view, int(painter->property("sourceWidth").toInt() * part),
            int(painter->property("sourceHeight").toInt() * 0.4)));
        const int x = view->property("_x").toInt() + index;
        const int y = view->property("_y").toInt();
        right += waitFor(
            [&] {
                const double read = depth->property("depth").toDouble();
                double nearest = HUGE_VAL;
                for (const double t : times.latest()) {
                    const double real = truth(x, y, t);
                    if (read > 0 && real > 0 && std::abs(read - real) <= tolerance(real))
                        nearest = std::min(nearest, std::abs(read - real));
                }
                if (nearest < HUGE_VAL)
                    worst = std::max(worst, nearest);
                return nearest < HUGE_VAL;
            },
            minute / 6);
        EXPECT_TRUE(WindowDriver::byName("depthLabel", view)
                        ->property("text")
                        .toString()
                        .contains(QStringLiteral("depth: ")));
    }
    std::cout << viewName << ": " << right << " of 8 readings are the room's, to " << worst << " mm"
              << std::endl;
    return right;
}

/// How long a mouse move takes to reach the read-out: until the first reading that was taken after it is on
/// show. A machine that is busy takes longer, so that nothing is expected of it.
template <class Model>
void printLatency(const char *viewName, const Model &model)
{
    QQuickItem *view = id(viewName);
    QQuickItem *painter = WindowDriver::byName("painter", view);
    const double width = painter->property("sourceWidth").toDouble();
    const double height = painter->property("sourceHeight").toDouble();
    ASSERT_TRUE(pointAt(view, int(0.2 * width), int(height / 2)));
    std::atomic<int> readings{0};
    const auto connection = QObject::connect(&model, &Model::depthChanged, [&readings] { ++readings; });
    std::vector<qint64> answers;
    for (const double part : {0.3, 0.4, 0.5, 0.6, 0.7}) {
        const double ratio = painter->property("imageRation").toDouble();
        const QPointF corner = painter->property("topLeftPoint").toPointF();
        QElapsedTimer timer;
        timer.start();
        WindowDriver::hover(painter, corner + QPointF(part * width, height / 2) * ratio);
        const int before = readings;
        EXPECT_NEAR(view->property("_x").toInt(), part * width, 1);
        EXPECT_TRUE(waitFor([&] { return readings > before; }, minute));
        QCoreApplication::processEvents();
        answers.push_back(timer.elapsed());
    }
    QObject::disconnect(connection);
    std::sort(answers.begin(), answers.end());
    std::cout << viewName << ": a mouse move changes the read-out within " << answers[answers.size() / 2]
              << " ms, the median of " << answers.size() << " from " << answers.front() << " to "
              << answers.back() << std::endl;
}

/// The pictures of five seconds in which nothing is switched and nothing is grabbed, as they come on the
/// library's threads, beside the rate that the device is to send. On a busy machine some are lost, so that
/// nothing is expected of it.
void printRates()
{
    // One of the library's threads may still be counting when this ends.
    static std::array<std::atomic<int>, std::size(streams)> counts{};
    QObject context;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (const ImageData *image = frames(streams[i]))
            QObject::connect(
                image, &ImageData::update, &context, [i] { ++counts[i]; }, Qt::DirectConnection);
    }
    QElapsedTimer timer;
    timer.start();
    waitFor([&] { return timer.hasExpired(5000); });
    const double seconds = double(timer.elapsed()) / 1000;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (frames(streams[i]))
            std::cout << streams[i].view << ": " << counts[i] / seconds << " of " << streams[i].nominal
                      << " a second, " << qRound(100 * counts[i] / seconds / streams[i].nominal) << " %"
                      << std::endl;
    }
}

} // namespace

QString prepare(const QString &home)
{
    Q_UNUSED(home)
    qputenv("QVSIM", "headset");
    return {};
}

TEST(Streams, theFarthestDistanceBringsTheRoomIntoTheDepthPicture)
{
    ASSERT_TRUE(pageAppears());
    setSwitch("tofButton", true);
    ASSERT_TRUE(waitFor([] { return isPlaced("tofView"); }, minute));
    WindowDriver::click(id("tofText"));
    QQuickItem *slider = id("maxDistanceSlider");
    ASSERT_TRUE(waitFor([=] { return slider->isVisible(); }, minute));
    QQuickItem *painter = WindowDriver::byName("painter", id("tofView"));
    EXPECT_NEAR(painter->property("maxDistance").toDouble(), 1.0, 1e-6);
    clickSlider(slider, 0.8);
    EXPECT_GT(slider->property("value").toDouble(), 5);
    EXPECT_NEAR(painter->property("maxDistance").toDouble(), slider->property("value").toDouble(), 1e-3);
    EXPECT_NEAR(model("tof")->property("maxDistance").toDouble(), slider->property("value").toDouble(), 1e-6);
    EXPECT_TRUE(isLive("tofView"));
    EXPECT_TRUE(waitFor([] { return colours(middle("tofView")) > 100; }, minute))
        << colours(middle("tofView")) << " colours";
}

TEST(Streams, everySwitchPutsItsStreamOnTheScreen)
{
    for (const StreamOf &stream : streams) {
        setSwitch(stream.button, true);
        EXPECT_TRUE(isLive(stream.view)) << stream.view;
        if (stream.rate) {
            EXPECT_TRUE(waitFor([&] { return rate(stream) > 0; }, minute)) << stream.view;
        }
    }
    printRates();
    // At the usual metre the room's depth is of one colour.
    id("maxDistanceSlider")->setProperty("value", 5);
    EXPECT_TRUE(waitFor([] { return colours(WindowDriver::grab(id("tofView"))) > 50; }, minute));
    WindowDriver::picture(QStringLiteral("all-streams"));
}

TEST(Streams, theOtherLayoutShowsThemToo)
{
    QQuickItem *content = id("content");
    content->setProperty("mode", 1);
    for (const StreamOf &stream : streams) {
        EXPECT_TRUE(waitFor([&] { return isPlaced(stream.view); }, minute)) << stream.view;
    }
    WindowDriver::picture(QStringLiteral("all-streams-side"));
    EXPECT_EQ(std::count_if(std::begin(streams), std::end(streams),
                  [=](const StreamOf &stream) { return id(stream.view)->width() > content->width() / 2; }),
        1)
        << "one view is big";
    // The strip holds more than can be seen at once.
    const auto isLiveInItsPlace = [](const char *view) {
        WindowDriver::reveal(id(view));
        return isLive(view);
    };
    for (const StreamOf &stream : streams)
        EXPECT_TRUE(isLiveInItsPlace(stream.view)) << stream.view;
    // The last that came is the big one.
    for (const StreamOf &stream : streams) {
        setSwitch(stream.button, false);
        EXPECT_TRUE(waitFor([&] { return !isPlaced(stream.view); }, minute)) << stream.view;
        // Some streams take others along.
        for (const StreamOf &other : streams)
            setSwitch(other.button, true);
        EXPECT_TRUE(isLiveInItsPlace(stream.view)) << stream.view;
    }
    content->setProperty("mode", 0);
    for (const StreamOf &stream : streams)
        EXPECT_TRUE(isLive(stream.view)) << stream.view;
}

TEST(Streams, everySwitchStopsItsStream)
{
    for (const int index : orderOfStops) {
        const StreamOf &stream = streams[index];
        ImageData *image = frames(stream);
        setSwitch(stream.button, false);
        EXPECT_TRUE(waitFor([&] { return !isPlaced(stream.view); }, minute)) << stream.view;
        if (index == 0) {
            EXPECT_GT(rate(stream), 0);
            EXPECT_EQ(WindowDriver::byName("infoLabel", id(stream.view))->property("text").toString(), "");
        } else if (stream.rate) {
            EXPECT_TRUE(waitFor([&] { return rate(stream) == 0; }, minute)) << stream.view;
        }
        if (!image)
            continue;
        // Long enough for many frames.
        QSignalSpy updates(image, &ImageData::update);
        QElapsedTimer second;
        second.start();
        waitFor([&] { return second.hasExpired(1000); });
        EXPECT_EQ(updates.count(), 0) << stream.view;
    }
}

TEST(Streams, theDrawerLeavesTheMouseToTheViews)
{
    setSwitch("tofButton", true);
    ASSERT_TRUE(isLive("tofView"));
    QQuickItem *view = id("tofView");
    QQuickItem *painter = WindowDriver::byName("painter", view);
    for (const bool open : {true, false}) {
        setDrawer(open);
        ASSERT_TRUE(waitFor([=] { return painter->property("imageRation").toDouble() > 0; }, minute));
        for (const int x : {200, 400}) {
            EXPECT_TRUE(pointAt(view, x, 240)) << view->property("_x").toInt() << ", not " << x;
        }
    }
}

TEST(Streams, depthUnderTheMouseIsThatOfTheRoom)
{
    QObject *tof = model("tof");
    const auto camera = DeviceAccess::device(tof)->tofCamera();
    const auto calibration = camera->calibration();
    ASSERT_EQ(calibration.size(), 1U);
    tof->setProperty("pixelShow", true);
    ASSERT_TRUE(isLive("tofView"));
    setDrawer(false);
    RecordTimes<qv::TofCamera, qv::DepthImage> times(camera);
    // The reading is that of the pixel to the left.
    EXPECT_EQ(
        rightReadings("tofView", tof, -1, times, tofRoom(calibration[0]), [](double) { return 10.0; }), 8);
    printLatency("tofView", *qobject_cast<TofData *>(tof));
    WindowDriver::picture(QStringLiteral("tof"));
}

TEST(Streams, stereoDepthUnderTheMouseIsThatOfTheRoom)
{
    setSwitch("sgbmButton", true);
    switchOffAllBut(QStringLiteral("sgbmButton"));
    QObject *sgbm = model("sgbm");
    sgbm->setProperty("pixelShow", true);
    ASSERT_TRUE(isLive("sgbmView"));
    setDrawer(false);
    RecordTimes<qv::Vsc, qv::SgbmImage> times(DeviceAccess::device(sgbm)->vsc());
    // Some places have nothing that could be matched.
    EXPECT_GE(
        rightReadings("sgbmView", sgbm, 0, times, sgbmRoom, [](double real) { return 1 + sgbmStep(real); }),
        6);
    printLatency("sgbmView", *qobject_cast<SgbmData *>(sgbm));
    WindowDriver::picture(QStringLiteral("sgbm"));
}

TEST(Streams, nothingUnexpectedIsLogged)
{
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
