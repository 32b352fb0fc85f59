#include "device/DeviceAccess.h"
#include "device/SharedWorld.h"
#include "ui/Page.h"
#include "world/PolynomialModel.h"

#include <deque>
#include <mutex>

// Every image stream of the simulated headset, switched by clicks, and what the depth views read under the
// mouse beside the room itself.

using namespace ui;

namespace {

struct StreamOf {
    const char *button;
    const char *view;
};

// RGBD needs the two before it.
constexpr StreamOf streams[] = {{"imuButton", "imuView"}, {"stereoButton", "stereoView"},
    {"tofButton", "tofView"}, {"rgbButton", "rgbView"}, {"rgbdButton", "rgbdView"}, {"irButton", "irView"},
    {"rgb2Button", "rgb2View"}, {"sgbmButton", "sgbmView"}};

void set(const char *button, bool on)
{
    if (id(button)->property("checked").toBool() == on)
        return;
    setDrawer(true);
    WindowDriver::reveal(id(button));
    ASSERT_TRUE(waitFor([=] { return id(button)->isEnabled(); }, minute)) << button;
    WindowDriver::click(id(button));
    EXPECT_TRUE(waitFor([=] { return id(button)->property("checked").toBool() == on; }, minute)) << button;
}

bool isLive(const char *view)
{
    QQuickItem *item = id(view);
    return waitFor(
        [item] { return item->width() > 100 && item->isVisible() && colours(WindowDriver::grab(item)) > 8; },
        minute);
}

/// What the room has behind a pixel of the ToF camera, in millimetres along the camera's axis.
double roomDepth(const qv::Calibration &calibration, int x, int y, double t)
{
    const auto world = sim::SharedWorld::get(1);
    sim::Pose mount = sim::Pose::Identity();
    for (int row = 0; row < 3; ++row) {
        mount.translation()[row] = calibration.translation[row];
        for (int column = 0; column < 3; ++column)
            mount.linear()(row, column) = calibration.rotation[3 * row + column];
    }
    const sim::Pose camera = world->trajectory().pose(t) * mount;
    const Eigen::Vector3d ray = sim::PolynomialModel(calibration.pdcm.at(0)).unproject({x, y});
    const auto hit = world->scene()->cast(camera.translation(), camera.linear() * ray, t);
    return hit ? 1000 * (camera.inverse() * hit->point).z() : 0;
}

/// The moments of the latest depth pictures of the device.
class DepthTimes {
public:
    explicit DepthTimes(std::shared_ptr<qv::TofCamera> camera)
        : m_camera(std::move(camera))
        , m_id(m_camera->registerCallback([this](const qv::DepthImage &image) {
            const std::lock_guard lock(m_mutex);
            m_times.push_back(double(image.edgeTimestampUs) / 1e6);
            if (m_times.size() > 60)
                m_times.pop_front();
        }))
    {
    }
    ~DepthTimes() { m_camera->unregisterCallback(m_id); }

    std::deque<double> latest()
    {
        const std::lock_guard lock(m_mutex);
        return m_times;
    }

private:
    std::mutex m_mutex;
    std::deque<double> m_times;
    const std::shared_ptr<qv::TofCamera> m_camera;
    const int m_id;
};

} // namespace

QString prepare(const QString &home)
{
    Q_UNUSED(home)
    qputenv("QVSIM", "headset");
    return {};
}

TEST(Streams, everySwitchPutsItsStreamOnTheScreen)
{
    ASSERT_TRUE(pageAppears());
    for (const StreamOf &stream : streams) {
        set(stream.button, true);
        ASSERT_TRUE(isLive(stream.view)) << stream.view;
    }
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
        QQuickItem *view = id(stream.view);
        EXPECT_TRUE(waitFor([view] { return view->width() > 50 && view->isVisible(); }, minute))
            << stream.view;
    }
    WindowDriver::picture(QStringLiteral("all-streams-side"));
    content->setProperty("mode", 0);
    for (const StreamOf &stream : streams)
        EXPECT_TRUE(isLive(stream.view)) << stream.view;
}

TEST(Streams, depthUnderTheMouseIsThatOfTheRoom)
{
    for (const char *button :
        {"rgbdButton", "sgbmButton", "rgb2Button", "irButton", "rgbButton", "stereoButton"})
        set(button, false);
    QObject *tof = model("tof");
    const auto camera = DeviceAccess::device(tof)->tofCamera();
    const auto calibration = camera->calibration();
    ASSERT_EQ(calibration.size(), 1U);
    tof->setProperty("pixelShow", true);
    QQuickItem *view = id("tofView");
    ASSERT_TRUE(isLive("tofView"));
    QQuickItem *painter = WindowDriver::byName("painter", view);
    ASSERT_TRUE(waitFor([=] { return painter->property("imageRation").toDouble() > 0; }, minute));

    setDrawer(false);
    DepthTimes times(camera);
    int right = 0;
    for (const double part : {0.25, 0.4, 0.55, 0.7}) {
        const int x = int(painter->property("sourceWidth").toInt() * part);
        const int y = int(painter->property("sourceHeight").toInt() * 0.4);
        // The picture's place is that of the last paint, and the views have moved just before.
        ASSERT_TRUE(waitFor(
            [=] {
                const double ratio = painter->property("imageRation").toDouble();
                const QPointF corner = painter->property("topLeftPoint").toPointF();
                WindowDriver::hover(painter, corner + QPointF((x + 0.7) * ratio, (y + 0.7) * ratio));
                return qAbs(view->property("_x").toInt() - x) <= 1
                    && qAbs(view->property("_y").toInt() - y) <= 1;
            },
            minute))
            << view->property("_x").toInt() << ", not " << x;
        // The room moves past the pixel: the reading is right when it is that of one of the latest pictures.
        right += waitFor(
            [&] {
                const double read = tof->property("depth").toDouble();
                for (const double t : times.latest()) {
                    const double truth = roomDepth(
                        calibration[0], view->property("_x").toInt(), view->property("_y").toInt(), t);
                    if (read > 0 && std::abs(read - truth) <= 10)
                        return true;
                }
                return false;
            },
            minute);
        EXPECT_TRUE(WindowDriver::byName("depthLabel", view)
                        ->property("text")
                        .toString()
                        .contains(QStringLiteral("depth: ")));
    }
    EXPECT_EQ(right, 4);
    WindowDriver::picture(QStringLiteral("tof"));
}

TEST(Streams, everySwitchStopsItsStream)
{
    for (const StreamOf &stream : streams)
        set(stream.button, false);
    for (const StreamOf &stream : streams) {
        QQuickItem *view = id(stream.view);
        EXPECT_TRUE(waitFor([view] { return view->width() == 0 || !view->isVisible(); }, minute))
            << stream.view;
    }
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
