#include "device/DeviceAccess.h"
#include "device/SharedWorld.h"
#include "imaging/DepthColors.h"
#include "imaging/ImageData.h"
#include "streams/TofPictures.h"
#include "support/LogCatcher.h"
#include "support/SmallDisk.h"
#include "ui/CaptureFiles.h"
#include "ui/Page.h"
#include "ui/RecordPictures.h"
#include "ui/Recorder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTime>
#include <QtTest/QTest>

// One run of the program whose captures are read by other programs and held against what the device library
// handed out and against the simulated room, in a folder with blanks and letters of other languages.

using namespace ui;

namespace {

using ui::matrixOf;

QString folder;

qv::Device &device()
{
    return *DeviceAccess::device(model("stereo"));
}

bool isLive(const char *view)
{
    QQuickItem *item = id(view);
    return waitFor(
        [item] { return item->width() > 100 && item->isVisible() && colours(WindowDriver::grab(item)) > 8; },
        minute);
}

/// Clicks the view's button for pictures; answers the folder that the note tells.
QString save(const char *view)
{
    setDrawer(false);
    WindowDriver::click(WindowDriver::byName("imgBtn", id(view)));
    return id(view)->property("path").toString();
}

/// Saves again and again until the file and what has been recorded agree: the moment of a click lies between
/// two records, and the newer one may not have been noted yet.
template <class Agree>
bool agrees(const char *view, const QString &file, Agree agree)
{
    return waitFor(
        [&] {
            const QString path = save(view);
            EXPECT_TRUE(path.startsWith(folder + QLatin1String("/capture/"))) << qPrintable(path);
            QTest::qWait(200);
            return agree(QImage(path + QLatin1Char('/') + file));
        },
        minute);
}

/// The colours of a depth picture, pixel by pixel.
cv::Mat matrixOf(const qv::DepthImage &image)
{
    const double near = model("tof")->property("minDistance").toDouble();
    const double far = model("tof")->property("maxDistance").toDouble();
    cv::Mat picture(int(image.height), int(image.width), CV_8UC3);
    for (std::size_t i = 0; i < picture.total(); ++i) {
        const double depth = metresAt(image, i);
        const double level = depth <= 0.1 || depth > 9.5 ? 0 : (depth - near) / (far - near) * 255;
        const auto &color = depthColorTable[std::size_t(std::lround(std::clamp(level, 0.0, 255.0)))];
        picture.at<cv::Vec3b>(int(i)) = {color[2], color[1], color[0]};
    }
    return picture;
}

template <class Record>
std::vector<cv::Mat> matricesOf(const std::vector<Record> &records)
{
    std::vector<cv::Mat> matrices;
    for (const Record &record : records)
        matrices.push_back(matrixOf(record));
    return matrices;
}

std::vector<qv::DepthImage> depthsOf(std::vector<qv::DepthImage> records, bool isDepth = true)
{
    records.erase(std::remove_if(
                      records.begin(), records.end(), [=](const auto &r) { return (r.type < 2) != isDepth; }),
        records.end());
    return records;
}

/// How much of a cloud lies on the room's surfaces, seen from where the depth camera was at a time.
double shareOnSurfaces(const std::vector<std::array<double, 3>> &points, double t)
{
    const qv::Calibration calibration = device().tofCamera()->calibration().at(0);
    sim::Pose mount = sim::Pose::Identity();
    for (int row = 0; row < 3; ++row) {
        mount.translation()[row] = calibration.translation[std::size_t(row)];
        for (int column = 0; column < 3; ++column)
            mount.linear()(row, column) = calibration.rotation[std::size_t(3 * row + column)];
    }
    const auto world = sim::SharedWorld::get(1);
    const sim::Pose camera = world->trajectory().pose(t) * mount;
    int right = 0;
    int asked = 0;
    for (std::size_t i = 0; i < points.size(); i += 37) {
        const Eigen::Vector3d point(points[i][0], points[i][1], points[i][2]);
        const auto hit = world->scene()->cast(camera.translation(), camera.linear() * point, t);
        right += hit && std::abs(hit->distance - point.norm()) < 0.01 + 0.01 * point.norm();
        ++asked;
    }
    return asked ? double(right) / asked : 0;
}

/// First and last picture of a video are those of the records, as far apart there as in the file.
void expectRecorded(const QString &path, const std::vector<cv::Mat> &records, const char *rate, double loss,
    double repetitions = 0)
{
    SCOPED_TRACE(qPrintable(path));
    ASSERT_FALSE(records.empty());
    const captures::Video video = captures::probe(path);
    EXPECT_EQ(video.errors, QString());
    EXPECT_EQ(video.codec, QStringLiteral("h264"));
    EXPECT_EQ(video.rate, QLatin1String(rate));
    EXPECT_EQ(cv::Size(video.width, video.height), records.front().size());
    const std::vector<cv::Mat> pictures = captures::decode(path, records.front().channels() == 3);
    ASSERT_GE(pictures.size(), 10U);
    EXPECT_EQ(video.frames, int(pictures.size()));
    std::size_t first = 0;
    std::size_t last = 0;
    EXPECT_LT(nearest(pictures.front(), records, &first), loss);
    EXPECT_LT(nearest(pictures.back(), records, &last), loss);
    EXPECT_NEAR(double(last) - double(first) + 1, double(pictures.size()), repetitions)
        << "a record is missing from the video";
}

/// The stream goes on: its number of frames does.
bool goesOn(const char *view)
{
    QQuickItem *item = id(view);
    const QImage before = WindowDriver::grab(item);
    return waitFor([&] { return WindowDriver::grab(item) != before; }, minute);
}

void record(bool on)
{
    // Nothing visible offers it; the hidden button works all the same.
    WindowDriver::byName("saveVideoButton")->setProperty("checked", on);
}

QString recordingPath()
{
    return WindowDriver::byName("mainWindow")->property("path").toString();
}

/// Chooses the source, records its poses for a while by the view's button, and answers the folder.
QString recordedPoses(const char *source, const char *name)
{
    QQuickItem *view = id("slamView");
    QQuickItem *button = WindowDriver::byName("pathBtn", view);
    WindowDriver::click(WindowDriver::byName(source, view));
    // A burst of poses after the start would have the view start the source anew.
    EXPECT_TRUE(rateReaches(WindowDriver::byName("fpsLabel", view), 150, 550));
    WindowDriver::click(button);
    const QString path = button->property("path").toString();
    EXPECT_TRUE(path.startsWith(folder + QLatin1String("/capture/"))) << qPrintable(path);
    WindowDriver::hover(view, QPointF(view->width() / 2, view->height() / 2));
    QTest::qWait(4000);
    WindowDriver::picture(QLatin1String(name));
    WindowDriver::click(button);
    EXPECT_FALSE(button->property("checked").toBool());
    return path;
}

sim::Pose poseOf(const captures::PoseLine &line)
{
    const auto &[x, y, z, w] = line.orientation;
    sim::Pose pose = sim::Pose::Identity();
    pose.translation() = Eigen::Vector3d(line.position[0], line.position[1], line.position[2]);
    pose.linear() = Eigen::Quaterniond(w, x, y, z).toRotationMatrix();
    return pose;
}

/// The poses are those of the road through the room, but for their drift and noise, and none is left out.
void expectRoad(const QString &path, const char *name, const char *other, int intervalUs)
{
    SCOPED_TRACE(name);
    EXPECT_TRUE(captures::isEmptyPoseFile(path + QLatin1String(other))) << other;
    const std::vector<captures::PoseLine> lines = captures::posesOf(path + QLatin1String(name));
    ASSERT_GT(lines.size(), 300U);
    const auto world = sim::SharedWorld::get(1);
    const auto truth = [&](const captures::PoseLine &line) {
        return world->trajectory().pose(double(line.edgeTimestampUs) / 1e6);
    };
    sim::Pose origin = truth(lines.front()) * poseOf(lines.front()).inverse();
    const auto stepOf = [&lines](const auto &pose, std::size_t i) -> sim::Pose {
        return pose(lines[i - 1]).inverse() * pose(lines[i]);
    };
    double farthest = 0;
    double widest = 0;
    int gaps = 0;
    int restarts = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        // On a machine that stands still for a while the view may start the source anew all the same.
        if (i > 0 && (stepOf(truth, i).inverse() * stepOf(poseOf, i)).translation().norm() > 0.05) {
            origin = truth(lines[i]) * poseOf(lines[i]).inverse();
            ++restarts;
        }
        const sim::Pose error = truth(lines[i]).inverse() * origin * poseOf(lines[i]);
        farthest = std::max(farthest, error.translation().norm());
        widest = std::max(widest, Eigen::AngleAxisd(error.linear()).angle());
        if (i > 0)
            gaps += std::abs(lines[i].edgeTimestampUs - lines[i - 1].edgeTimestampUs - intervalUs) > 2;
    }
    EXPECT_LT(farthest, 0.04) << "metres";
    EXPECT_LT(widest, 0.02) << "radians";
    EXPECT_LE(gaps, int(lines.size() / 50)) << "of " << lines.size();
    EXPECT_LE(restarts, 2);
}

} // namespace

QString prepare(const QString &home)
{
    folder = home + QString::fromUtf8("/récords of 実験室");
    QDir().mkpath(folder);
    QDir::setCurrent(folder);
    QFile file(home + QLatin1String("/devices.json"));
    if (!file.open(QIODevice::WriteOnly))
        return QStringLiteral("the configuration can't be written");
    file.write(R"({"devices": [{ "profile": "headset", "streams": {
        "fisheye": { "rate": 10 }, "color": { "rate": 5, "codec": "yuv420p" } }}]})");
    qputenv("QVSIM_CONFIG", file.fileName().toLocal8Bit());
    return {};
}

TEST(Capture, colourPictureIsTheCamerasPicture)
{
    ASSERT_TRUE(pageAppears());
    setSwitch("rgbButton", true);
    ASSERT_TRUE(isLive("rgbView"));
    const Recorder<qv::ColorImage> recorder(device().colorCamera(), 12);
    double best = 256;
    EXPECT_TRUE(agrees("rgbView", QStringLiteral("rgb.png"), [&](const QImage &picture) {
        return (best = std::min(best, nearest(matrixOf(picture), matricesOf(recorder.records())))) < 1.5;
    })) << best;
}

TEST(Capture, depthPictureHasTheColoursOfItsDistances)
{
    setSwitch("rgbButton", false);
    setSwitch("tofButton", true);
    ASSERT_TRUE(isLive("tofView"));
    // At the usual metre the room is of one colour.
    id("maxDistanceSlider")->setProperty("value", 5);
    setDrawer(false);
    EXPECT_TRUE(waitFor([] { return colours(WindowDriver::grab(id("tofView"))) > 50; }, minute));
    WindowDriver::picture(QStringLiteral("depth"));
    const Recorder<qv::DepthImage> recorder(device().tofCamera(), 30);
    double best = 256;
    EXPECT_TRUE(agrees("tofView", QStringLiteral("tof.png"), [&](const QImage &picture) {
        best = std::min(best, nearest(matrixOf(picture), matricesOf(depthsOf(recorder.records()))));
        return best < 0.5;
    })) << best;
}

TEST(Capture, pointCloudLiesOnTheRoomsSurfaces)
{
    const Recorder<qv::DepthImage> recorder(device().tofCamera(), 120);
    QString path;
    // A request that meets an infrared frame is dropped: another click makes another.
    ASSERT_TRUE(waitFor(
        [&] {
            path = save("tofView") + QLatin1String("/tof.pcd");
            return waitFor([&] { return QFileInfo::exists(path); }, 1000);
        },
        minute));
    // The file is there before it is whole, and before its frame has come to the recorder.
    const auto latest = [&recorder] { return recorder.records().back().edgeTimestampUs; };
    for (int newer = 0; newer < 3; ++newer)
        ASSERT_TRUE(waitFor([&latest, before = latest()] { return latest() != before; }, minute));
    const std::vector<qv::DepthImage> depths = depthsOf(recorder.records());
    std::vector<std::array<double, 3>> points;
    const auto isWholeFrame = [&points](const qv::DepthImage &image) {
        std::size_t measured = 0;
        for (std::size_t i = 0; i < image.width * image.height; ++i)
            measured += metresAt(image, i) > 0;
        return measured == points.size();
    };
    EXPECT_TRUE(waitFor(
        [&] {
            points = captures::pointsOf(path);
            return std::any_of(depths.begin(), depths.end(), isWholeFrame);
        },
        minute))
        << points.size();
    EXPECT_GT(points.size(), 10000U);
    double best = 0;
    for (const qv::DepthImage &image : depths)
        best = std::max(best, shareOnSurfaces(points, double(image.edgeTimestampUs) / 1e6));
    EXPECT_GT(best, 0.97);
}

TEST(Capture, infraredPictureHasTheGreysOfItsSamples)
{
    setSwitch("irButton", true);
    ASSERT_TRUE(isLive("irView"));
    const Recorder<qv::DepthImage> recorder(device().tofCamera(), 30);
    EXPECT_TRUE(agrees("irView", QStringLiteral("tofIr.png"), [&](const QImage &picture) {
        for (const qv::DepthImage &image : depthsOf(recorder.records(), false)) {
            const auto *samples = reinterpret_cast<const std::uint16_t *>(image.data.get());
            bool same = picture.size() == QSize(int(image.width), int(image.height));
            for (std::size_t i = 0; same && i < image.width * image.height; ++i) {
                const auto &color = irColorTable[std::min<std::size_t>(255, samples[i] * 255U / 2494U)];
                const int grey = (color[0] + color[1] + color[2]) / 3;
                same = picture.pixel(int(i % image.width), int(i / image.width)) == qRgb(grey, grey, grey);
            }
            if (same)
                return true;
        }
        return false;
    }));
    setSwitch("irButton", false);
}

TEST(Capture, stereoDepthPictureHasTheBytesOfItsFrame)
{
    setSwitch("tofButton", false);
    setSwitch("sgbmButton", true);
    ASSERT_TRUE(isLive("sgbmView"));
    // The device hands out depths; what is saved is the head of the colours made of them.
    auto *image = model("sgbm")->property("image").value<ImageData *>();
    ASSERT_TRUE(image);
    std::vector<ImageData::Frame> frames;
    QObject listener;
    QObject::connect(
        image, &ImageData::update, &listener, [&] { frames.push_back(image->frame()); },
        Qt::QueuedConnection);
    EXPECT_TRUE(agrees("sgbmView", QStringLiteral("sbgm.png"), [&](const QImage &picture) {
        const QImage grey = picture.convertToFormat(QImage::Format_Grayscale8);
        return std::any_of(frames.begin(), frames.end(), [&grey](const ImageData::Frame &frame) {
            return grey
                == QImage(
                    frame.data.get(), frame.width, frame.height, frame.width, QImage::Format_Grayscale8);
        });
    }));
    setSwitch("sgbmButton", false);
}

TEST(Capture, videosHoldEveryFrameAtTheirSizeAndRate)
{
    setSwitch("stereoButton", true);
    setSwitch("rgbButton", true);
    setSwitch("tofButton", true);
    for (const char *view : {"stereoView", "rgbView", "tofView"})
        ASSERT_TRUE(isLive(view));
    // Small colour pictures and few depths: stopping waits for the encoders.
    model("rgb")->setProperty("resolution", 2);
    ASSERT_TRUE(waitFor([] { return model("rgb")->property("sourceWidth").toInt() == 640; }, minute));
    model("tof")->setProperty("framerate", 10);
    const Recorder<qv::FisheyeImages> fisheyes(device().fisheyeCameras(), 400);
    const Recorder<qv::ColorImage> colors(device().colorCamera(), 400);
    const Recorder<qv::DepthImage> depths(device().tofCamera(), 400);
    record(true);
    const QString path = recordingPath();
    ASSERT_TRUE(path.startsWith(folder + QLatin1String("/capture/"))) << qPrintable(path);
    QTest::qWait(4000);
    record(false);
    const std::vector<qv::FisheyeImages> sets = fisheyes.records();
    const std::vector<cv::Mat> colorPictures = matricesOf(colors.records());
    // An infrared frame writes the depth before it once more.
    std::vector<cv::Mat> depthPictures;
    for (const qv::DepthImage &image : depths.records()) {
        if (image.type < 2)
            depthPictures.push_back(matrixOf(image));
        else if (!depthPictures.empty())
            depthPictures.push_back(depthPictures.back());
    }
    for (const std::size_t camera : {0U, 1U}) {
        std::vector<qv::FisheyeImage> images;
        for (const qv::FisheyeImages &set : sets)
            images.push_back(set.images.at(camera));
        expectRecorded(
            path + QLatin1String(camera == 0 ? "/left.avi" : "/right.avi"), matricesOf(images), "100/1", 6);
    }
    expectRecorded(path + QLatin1String("/rgb.avi"), colorPictures, "30/1", 6);
    // Each depth is there twice, and while the room rests the next pair is like it: either end may be taken
    // for an earlier one.
    expectRecorded(path + QLatin1String("/tof.avi"), depthPictures, "10/1", 12, 3);
}

TEST(Capture, twoOfOneSecondShareTheirFolder)
{
    setSwitch("rgbButton", false);
    setDrawer(false);
    const auto press = [](const char *view) {
        QTest::mouseClick(WindowDriver::window(), Qt::LeftButton, Qt::NoModifier,
            WindowDriver::centre(WindowDriver::byName("imgBtn", id(view))));
        return id(view)->property("path").toString();
    };
    // A second may turn between the two clicks; then they are tried again.
    EXPECT_TRUE(waitFor(
        [&] {
            const QString before = id("stereoView")->property("path").toString();
            const QString stereo = press("stereoView");
            const QString tof = press("tofView");
            QTest::qWait(600); // no double clicks
            return stereo != before && stereo == tof && !QImage(stereo + QLatin1String("/left.png")).isNull()
                && !QImage(tof + QLatin1String("/tof.png")).isNull();
        },
        minute));
}

TEST(Capture, aFullDiskCostsThePictureAndNothingElse)
{
    const QString path = folder + QLatin1String("/small");
    QDir().mkpath(path);
    const SmallDisk disk(path);
    if (!disk.isMounted())
        GTEST_SKIP() << "no right to mount a small disk";
    QDir::setCurrent(path);
    {
        const LogCatcher log;
        EXPECT_TRUE(save("stereoView").startsWith(path + QLatin1String("/capture/")));
        EXPECT_THAT(log.lines(), ::testing::Contains(QStringLiteral("debug: Failed to create left image")));
    }
    // Here the log tells nothing: the depth camera answers only whether it runs.
    EXPECT_TRUE(save("tofView").startsWith(path + QLatin1String("/capture/")));
    EXPECT_TRUE(goesOn("tofView"));
    record(true);
    EXPECT_TRUE(goesOn("stereoView"));
    QTest::qWait(2000);
    record(false);
    EXPECT_TRUE(goesOn("stereoView"));
    QDir::setCurrent(folder);
    EXPECT_TRUE(goesOn("tofView"));
    EXPECT_EQ(QImage(save("stereoView") + QLatin1String("/left.png")).size(), QSize(640, 400));
    const QImage depth(save("tofView") + QLatin1String("/tof.png"));
    EXPECT_EQ(depth.width(), model("tof")->property("sourceWidth").toInt());
    EXPECT_EQ(depth.height(), model("tof")->property("sourceHeight").toInt());
    EXPECT_GT(depth.width(), 0);
}

TEST(Capture, whereNothingCanBeWrittenTheStreamsReportIt)
{
    // Not even root may write here, and a file stands in the place of the folder of pictures.
    QFile obstacle(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    QDir::setCurrent(QStringLiteral("/proc"));
    {
        const LogCatcher log;
        const QString path = save("stereoView");
        EXPECT_TRUE(path.startsWith(QLatin1Char('/'))) << qPrintable(path);
        EXPECT_FALSE(QFileInfo::exists(path + QLatin1String("/left.png")));
        EXPECT_THAT(log.lines(), ::testing::Contains(QStringLiteral("debug: Failed to create left image")));
        EXPECT_THAT(log.lines(), ::testing::Contains(QStringLiteral("debug: Failed to create right image")));
    }
    EXPECT_TRUE(goesOn("stereoView"));
    obstacle.remove();
    QDir::setCurrent(folder);
    EXPECT_FALSE(QImage(save("stereoView") + QLatin1String("/left.png")).isNull());
    setSwitch("tofButton", false);
}

TEST(Capture, poseFilesFollowTheRoadThroughTheRoom)
{
    setSwitch("slamButton", true);
    ASSERT_TRUE(waitFor([] { return id("slamView")->width() > 100; }, minute));
    setDrawer(false);
    // Only the source that is chosen runs; the other's file holds its line of names.
    expectRoad(recordedPoses("slamSourceButton", "slam"), "/host.csv", "/edge.csv", 5000);
    expectRoad(recordedPoses("edgeSourceButton", "edge"), "/edge.csv", "/host.csv", 2000);
    setSwitch("slamButton", false);
}

TEST(Capture, nothingUnexpectedIsInTheLog)
{
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
