#include "device/DeviceAccess.h"
#include "imaging/ImageData.h"
#include "streams/TofData.h"
#include "ui/Page.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <mutex>

// One run of the program on a recorded sequence of colour and depth, which is kept outside the tree.

using namespace ui;

namespace {

QString recording()
{
    return QFileInfo(QStringLiteral(QV_SOURCE_DIR "/../shared/data/rgbd/7scenes_redkitchen"))
        .absoluteFilePath();
}

/// All pictures of one kind, as their files have them.
std::vector<QImage> recorded(const char *kind)
{
    std::vector<QImage> pictures;
    const QDir folder(recording() + QLatin1Char('/') + QLatin1String(kind));
    for (const QFileInfo &file : folder.entryInfoList({QStringLiteral("*.png")}, QDir::Files, QDir::Name))
        pictures.push_back(QImage(file.filePath()));
    return pictures;
}

const std::vector<QImage> &recordedDepth()
{
    static const std::vector<QImage> pictures = recorded("depth");
    return pictures;
}

/// The sample of a depth picture; the recording's calibration says that one step is a millimetre.
int sample(const QImage &picture, int x, int y)
{
    return reinterpret_cast<const quint16 *>(picture.constScanLine(y))[x];
}

ImageData::Frame held(const char *name)
{
    return model(name)->property("image").value<ImageData *>()->frame();
}

bool isFrameOf(const QImage &picture, const ImageData::Frame &frame)
{
    const auto *metres = reinterpret_cast<const float *>(frame.data.get());
    if (!metres || frame.width != picture.width() || frame.height != picture.height())
        return false;
    for (int y = 0; y < frame.height; ++y)
        for (int x = 0; x < frame.width; ++x)
            if (std::lround(1000 * metres[y * frame.width + x]) != sample(picture, x, y))
                return false;
    return true;
}

/// The recorded depth picture that the frame shows; null where it is none of them.
const QImage *shownIn(const ImageData::Frame &frame)
{
    const auto found = std::find_if(recordedDepth().begin(), recordedDepth().end(),
        [&](const QImage &picture) { return isFrameOf(picture, frame); });
    return found == recordedDepth().end() ? nullptr : &*found;
}

/// What the model reads under the mouse, each with the frame that it reads it in. Both come on the camera's
/// thread, the reading first, and a callback of the camera after that of the model.
class Readings {
public:
    struct Reading {
        int depth = 0;
        ImageData::Frame frame;
    };

    explicit Readings(const TofData &tof)
        : m_camera(DeviceAccess::device(&tof)->tofCamera())
        , m_depth(
              QObject::connect(&tof, &TofData::depthChanged, [this](int depth) { m_latest.store(depth); }))
        , m_id(m_camera->registerCallback([this, &tof](const qv::DepthImage &) {
            const std::lock_guard lock(m_mutex);
            const int depth = m_latest.exchange(nothing);
            if (depth != nothing)
                m_readings.push_back({depth, tof.image()->frame()});
        }))
    {
    }

    ~Readings()
    {
        m_camera->unregisterCallback(m_id);
        QObject::disconnect(m_depth);
    }

    /// The next readings, that of the frame under way left out.
    std::vector<Reading> next(std::size_t count)
    {
        const auto taken = [this] {
            const std::lock_guard lock(m_mutex);
            return m_readings;
        };
        const std::size_t first = taken().size() + 1;
        waitFor([&] { return taken().size() >= first + count; }, minute);
        const std::vector<Reading> all = taken();
        return {all.begin() + std::ptrdiff_t(std::min(first, all.size())), all.end()};
    }

private:
    static constexpr int nothing = std::numeric_limits<int>::min();

    std::mutex m_mutex;
    std::vector<Reading> m_readings;
    std::atomic<int> m_latest{nothing};
    const std::shared_ptr<qv::TofCamera> m_camera;
    const QMetaObject::Connection m_depth;
    const int m_id;
};

TofData &tof()
{
    return *qobject_cast<TofData *>(model("tof"));
}

QImage shot(const char *view)
{
    return WindowDriver::grab(id(view));
}

/// Whether the view comes to show a picture, and then another one.
bool isLive(const char *view)
{
    QImage first;
    return waitFor([&] { return id(view)->isVisible() && colours(first = shot(view)) > 100; }, minute)
        && waitFor([&] { return shot(view) != first; }, minute);
}

} // namespace

QString prepare(const QString &home)
{
    Q_UNUSED(home)
    return playRecording(recording());
}

TEST(Rgbd, clicksBringColourAndDepthAndBothInOne)
{
    ASSERT_TRUE(pageAppears());
    ASSERT_GT(recordedDepth().size(), 10U);
    for (const QImage &picture : recordedDepth())
        ASSERT_EQ(picture.format(), QImage::Format_Grayscale16);
    EXPECT_FALSE(id("rgbdButton")->isEnabled());
    setSwitch("tofButton", true);
    WindowDriver::click(id("tofText"));
    // At the usual metre a room is of one colour.
    QQuickItem *slider = id("maxDistanceSlider");
    ASSERT_TRUE(waitFor([=] { return slider->isVisible(); }, minute));
    clickSlider(slider, 0.5);
    EXPECT_NEAR(tof().maxDistance(), 3.8, 0.4);
    for (const char *button : {"rgbButton", "rgbdButton"})
        setSwitch(button, true);
    for (const char *view : {"tofView", "rgbView", "rgbdView"})
        EXPECT_TRUE(isLive(view)) << view;
    const auto text = [](const char *view) {
        return WindowDriver::byName("infoLabel", id(view))->property("text");
    };
    EXPECT_THAT(text("tofView").toString().toStdString(), ::testing::StartsWith("[TOF]  640x480@"));
    EXPECT_THAT(text("rgbView").toString().toStdString(), ::testing::StartsWith("[RGB]  640x480@"));
}

TEST(Rgbd, alignedColoursAreThoseOfTheRecordedPictures)
{
    std::vector<QImage> expected;
    for (const QImage &picture : recorded("rgb"))
        expected.push_back(picture.convertToFormat(QImage::Format_RGB888));
    ASSERT_GT(expected.size(), 10U);
    QImage last;
    for (int different = 0; different < 5; ++different) {
        QImage now;
        ASSERT_TRUE(waitFor(
            [&] {
                const ImageData::Frame frame = held("rgbd");
                if (frame.data)
                    now = QImage(
                        frame.data.get(), frame.width, frame.height, 3 * frame.width, QImage::Format_RGB888)
                              .copy();
                return !now.isNull() && now != last;
            },
            minute));
        last = now;
        ASSERT_NE(std::find(expected.begin(), expected.end(), now), expected.end());
    }
}

TEST(Rgbd, depthUnderTheMouseIsThatOfTheRecordedPicture)
{
    WindowDriver::click(id("tofShowDepthSwitch"));
    ASSERT_TRUE(waitFor([] { return tof().pixelShow(); }, minute));
    setDrawer(false);
    QQuickItem *view = id("tofView");
    QQuickItem *label = WindowDriver::byName("depthLabel", view);
    Readings readings(tof());
    int ofItsOwn = 0;
    for (const QPoint place : {QPoint(60, 60), QPoint(440, 150), QPoint(200, 150), QPoint(150, 350),
             QPoint(500, 350), QPoint(320, 240)}) {
        ASSERT_TRUE(pointAt(view, place.x(), place.y()));
        const int x = view->property("_x").toInt();
        const int y = view->property("_y").toInt();
        const auto taken = readings.next(3);
        ASSERT_GE(taken.size(), 3U);
        for (const Readings::Reading &reading : taken) {
            const QImage *picture = shownIn(reading.frame);
            ASSERT_TRUE(picture) << "none of the recorded pictures";
            // The reading is that of the pixel to the left.
            EXPECT_EQ(reading.depth, sample(*picture, x - 1, y)) << x << ", " << y;
            ofItsOwn += reading.depth > 0 && reading.depth != sample(*picture, x, y);
        }
        const QString before = QStringLiteral("x: %1 ,y: %2 depth: ").arg(x).arg(y);
        EXPECT_TRUE(waitFor(
            [&] {
                const QString text = label->property("text").toString();
                return std::any_of(
                    recordedDepth().begin(), recordedDepth().end(), [&](const QImage &picture) {
                        return text == before + QString::number(sample(picture, x - 1, y)) + "mm ";
                    });
            },
            minute))
            << qPrintable(label->property("text").toString());
    }
    EXPECT_GT(ofItsOwn, 0) << "neighbours were the same everywhere";
    WindowDriver::picture(QStringLiteral("rgbd"));
}

TEST(Rgbd, clicksStopThemAgain)
{
    for (const char *button : {"rgbdButton", "rgbButton", "tofButton"})
        setSwitch(button, false);
    for (const char *view : {"tofView", "rgbView", "rgbdView"})
        EXPECT_TRUE(waitFor([=] { return !id(view)->isVisible() || id(view)->width() < 50; }, minute))
            << view;
    EXPECT_FALSE(id("rgbdButton")->isEnabled());
}

TEST(Rgbd, nothingUnexpectedIsInTheLog)
{
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
