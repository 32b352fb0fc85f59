#include "device/CameraDevice.h"

#include "device/FullDevice.h"
#include "support/FullDisk.h"
#include "support/LogCatcher.h"
#include "support/Pictures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <QTime>
#include <opencv2/videoio.hpp>
#include <random>

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// A device object in a working directory of its own.
class Capture : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(QDir::setCurrent(m_folder.path())); }
    void TearDown() override { QDir::setCurrent(m_before); }

    /// The log of `saveImages`, but for its first line, which is the path.
    QStringList save(const QString &name)
    {
        const LogCatcher log;
        m_path = m_camera.saveImages(name);
        QStringList lines = log.lines();
        EXPECT_EQ(lines.takeFirst(), QStringLiteral("debug: \"%1\"").arg(m_path));
        return lines;
    }

    QStringList files() const { return QDir(m_path).entryList(QDir::Files, QDir::Name); }

    const QString m_before = QDir::currentPath();
    const QTemporaryDir m_folder;
    const FullDevice m_full;
    CameraDevice m_camera{m_full.device, nullptr};
    QString m_path;
};

QStringList foldersBelowCapture()
{
    return QDir(QStringLiteral("capture")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
}

/// A picture that no format makes smaller.
qv::FisheyeImage noise(unsigned seed)
{
    constexpr std::size_t width = 640;
    constexpr std::size_t height = 400;
    std::vector<unsigned char> pixels(width * height);
    std::minstd_rand random(seed);
    for (unsigned char &pixel : pixels)
        pixel = static_cast<unsigned char>(random() >> 8);
    return {width, height, pictures::bufferOf(pixels)};
}

int framesIn(const QString &path)
{
    cv::VideoCapture video(path.toStdString());
    int count = 0;
    for (cv::Mat frame; video.read(frame);)
        ++count;
    return count;
}

QList<QByteArray> linesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().split('\n') : QList<QByteArray>();
}

/// The time names the folder: the next second has one of its own.
void awaitNextSecond()
{
    const QTime now = QTime::currentTime();
    QTest::qWait(1001 - now.msec());
}

} // namespace

TEST_F(Capture, otherNamesMakeAnEmptyFolder)
{
    for (const char *name : {"", "edge", "Stereo", "tof ", "TOF", "tofir", "TofIr", "RGB", "Sgbm", "sbgm"}) {
        EXPECT_THAT(save(QString::fromLatin1(name)), IsEmpty());
        EXPECT_TRUE(QDir::isAbsolutePath(m_path));
        EXPECT_TRUE(QDir(m_path).exists());
        EXPECT_THAT(files(), IsEmpty());
    }
}

TEST_F(Capture, withoutAnArgumentNothingIsSaved)
{
    QString path;
    ASSERT_TRUE(QMetaObject::invokeMethod(&m_camera, "saveImages", Q_RETURN_ARG(QString, path)));
    EXPECT_TRUE(QDir(path).exists());
    EXPECT_TRUE(QDir(path).isEmpty());
}

TEST_F(Capture, stereoWritesLeftAndRight)
{
    m_camera.stereo()->control(true);
    m_full.fisheyes->deliver(pictures::fisheyes({pictures::fisheye(8, 4, 17), pictures::fisheye(8, 4, 200)}));
    EXPECT_THAT(save(QStringLiteral("stereo")), IsEmpty());
    EXPECT_EQ(files(), (QStringList{QStringLiteral("left.png"), QStringLiteral("right.png")}));
    const QImage left(m_path + QStringLiteral("/left.png"));
    const QImage right(m_path + QStringLiteral("/right.png"));
    EXPECT_EQ(left.size(), QSize(8, 4));
    EXPECT_EQ(qGray(left.pixel(7, 3)), 17);
    EXPECT_EQ(qGray(right.pixel(0, 0)), 200);
}

TEST_F(Capture, stereoWithoutAFrameReportsBoth)
{
    EXPECT_THAT(save(QStringLiteral("stereo")),
        ElementsAre(QStringLiteral("debug: Failed to create left image"),
            QStringLiteral("debug: Failed to create right image")));
}

TEST_F(Capture, tofWithoutAFrameReportsAndStillAsksForTheCloud)
{
    const QSignalSpy pcd(&m_camera, &CameraDevice::savePcd);
    EXPECT_THAT(
        save(QStringLiteral("tof")), ElementsAre(QStringLiteral("debug: Failed to create tof image")));
    ASSERT_EQ(pcd.count(), 1);
    EXPECT_EQ(pcd.first().first().toString(), m_path + QStringLiteral("/tof.pcd"));
}

TEST_F(Capture, otherStreamsWithoutAFrameReport)
{
    EXPECT_THAT(
        save(QStringLiteral("tofIr")), ElementsAre(QStringLiteral("debug: Failed to create tof IR image")));
    EXPECT_THAT(
        save(QStringLiteral("rgb")), ElementsAre(QStringLiteral("debug: Failed to create rgb image")));
    EXPECT_THAT(
        save(QStringLiteral("sgbm")), ElementsAre(QStringLiteral("debug: Failed to create sgbm image")));
}

TEST_F(Capture, eachImageStreamWritesItsFile)
{
    qv::ColorImage color;
    color.codec = 0;
    color.width = 4;
    color.height = 2;
    color.data = pictures::bufferOf(std::vector<unsigned char>(16, 128));
    color.dataSize = 16;
    m_camera.rgb()->control(true, 0);
    m_full.color->deliver(color);
    EXPECT_THAT(save(QStringLiteral("rgb")), IsEmpty());
    EXPECT_EQ(QImage(m_path + QStringLiteral("/rgb.png")).size(), QSize(4, 2));

    qv::DepthImage depth;
    depth.type = 1;
    depth.width = 4;
    depth.height = 2;
    depth.data = pictures::bufferOf(std::vector<float>(8, 1.5F));
    depth.dataSize = 32;
    m_camera.tof()->control(true);
    m_full.tof->deliver(depth);
    EXPECT_THAT(save(QStringLiteral("tof")), IsEmpty());
    EXPECT_EQ(QImage(m_path + QStringLiteral("/tof.png")).size(), QSize(4, 2));

    qv::DepthImage infrared = depth;
    infrared.type = 2;
    infrared.data = pictures::bufferOf(std::vector<std::uint16_t>(8, 2494));
    infrared.dataSize = 16;
    m_camera.tofIr()->control(true);
    m_full.tof->deliver(infrared);
    EXPECT_THAT(save(QStringLiteral("tofIr")), IsEmpty());
    EXPECT_EQ(QImage(m_path + QStringLiteral("/tofIr.png")).size(), QSize(4, 2));

    qv::SgbmImage sgbm;
    sgbm.type = 1;
    sgbm.width = 4;
    sgbm.height = 2;
    sgbm.data = pictures::bufferOf(std::vector<std::uint16_t>(8, 1500));
    sgbm.dataSize = 16;
    m_camera.sgbm()->control(true);
    m_full.vsc->deliver(sgbm);
    EXPECT_THAT(save(QStringLiteral("sgbm")), IsEmpty());
    EXPECT_EQ(QImage(m_path + QStringLiteral("/sbgm.png")).size(), QSize(4, 2));
}

TEST_F(Capture, theCloudIsAskedForAfterThePicture)
{
    qv::DepthImage depth;
    depth.type = 1;
    depth.width = 4;
    depth.height = 2;
    depth.data = pictures::bufferOf(std::vector<float>(8, 1.5F));
    depth.dataSize = 32;
    m_camera.tof()->control(true);
    m_full.tof->deliver(depth);
    bool pictureWasThere = false;
    QObject::connect(&m_camera, &CameraDevice::savePcd, [&](const QString &path) {
        pictureWasThere = QFile::exists(QFileInfo(path).dir().filePath(QStringLiteral("tof.png")));
    });
    save(QStringLiteral("tof"));
    EXPECT_TRUE(pictureWasThere);
}

TEST_F(Capture, missingStreamsAreSkippedSilently)
{
    CameraDevice none(std::make_shared<FakeDevice>(), nullptr);
    for (const char *name : {"stereo", "tof", "tofIr", "rgb", "sgbm"}) {
        const QSignalSpy pcd(&none, &CameraDevice::savePcd);
        const LogCatcher log;
        const QString path = none.saveImages(QString::fromLatin1(name));
        EXPECT_EQ(log.lines().size(), 1);
        EXPECT_TRUE(QDir(path).exists());
        EXPECT_TRUE(QDir(path).isEmpty());
        EXPECT_EQ(pcd.count(), 0);
    }
}

TEST_F(Capture, recordingGivesTheStreamsTheirPathsAndThenSwitchesThem)
{
    QStringList order;
    const auto note = [&order](
                          const char *what) { return [&order, what] { order.append(QLatin1String(what)); }; };
    auto *const left = qobject_cast<AbstractImageData *>(m_camera.stereo()->image(StereoData::Left));
    auto *const right = qobject_cast<AbstractImageData *>(m_camera.stereo()->image(StereoData::Right));
    const std::pair<AbstractImageData *, std::pair<const char *, const char *>> streams[] = {
        {left, {"left path", "left on"}}, {right, {"right path", "right on"}},
        {m_camera.rgb(), {"rgb path", "rgb on"}}, {m_camera.tof(), {"tof path", "tof on"}}};
    QObject::connect(&m_camera, &CameraDevice::recordingChanged, note("changed"));
    for (const auto &[stream, words] : streams) {
        QObject::connect(stream, &AbstractData::recordPathChanged, note(words.first));
        QObject::connect(stream, &AbstractImageData::recordingChanged, note(words.second));
    }

    const QString path = m_camera.setRecording(true);

    EXPECT_TRUE(QDir(path).exists());
    EXPECT_EQ(order.first(), QStringLiteral("changed"));
    EXPECT_EQ(order.mid(1, 4),
        (QStringList{QStringLiteral("left path"), QStringLiteral("right path"), QStringLiteral("rgb path"),
            QStringLiteral("tof path")}));
    order.removeDuplicates();
    EXPECT_EQ(order.mid(5),
        (QStringList{QStringLiteral("left on"), QStringLiteral("right on"), QStringLiteral("rgb on"),
            QStringLiteral("tof on")}));
    EXPECT_EQ(left->recordPath(), path + QStringLiteral("/left.avi"));
    EXPECT_EQ(right->recordPath(), path + QStringLiteral("/right.avi"));
    EXPECT_EQ(m_camera.rgb()->recordPath(), path + QStringLiteral("/rgb.avi"));
    EXPECT_EQ(m_camera.tof()->recordPath(), path + QStringLiteral("/tof.avi"));
    EXPECT_TRUE(left->recording() && right->recording() && m_camera.rgb()->recording()
        && m_camera.tof()->recording() && m_camera.recording());
    EXPECT_FALSE(m_camera.tofIr()->recording() || m_camera.rgbd()->recording());

    EXPECT_EQ(m_camera.setRecording(false), QString());
    EXPECT_FALSE(left->recording() || right->recording() || m_camera.rgb()->recording()
        || m_camera.tof()->recording() || m_camera.recording());
    EXPECT_EQ(left->recordPath(), path + QStringLiteral("/left.avi"));
}

TEST_F(Capture, whoHearsOfARecordingFindsItsValue)
{
    std::vector<std::pair<bool, bool>> videos; // what was told, and what was read then
    std::vector<std::pair<bool, bool>> poses;
    QObject::connect(&m_camera, &CameraDevice::recordingChanged,
        [&](bool on) { videos.emplace_back(on, m_camera.recording()); });
    QObject::connect(&m_camera, &CameraDevice::recordingSlamChanged,
        [&](bool on) { poses.emplace_back(on, m_camera.recordingSlam()); });
    m_camera.setRecording(true);
    m_camera.setRecording(false);
    EXPECT_THAT(videos, ElementsAre(std::pair(true, true), std::pair(false, false)));
    EXPECT_THAT(poses, IsEmpty());
    m_camera.setRecordingSlam(true);
    m_camera.setRecordingSlam(false);
    EXPECT_THAT(poses, ElementsAre(std::pair(true, true), std::pair(false, false)));
    EXPECT_EQ(videos.size(), 2U);
}

TEST_F(Capture, poseRecordingGivesTheStreamsTheirPathsAndThenSwitchesThem)
{
    QStringList order;
    const auto note = [&order](
                          const char *what) { return [&order, what] { order.append(QLatin1String(what)); }; };
    QObject::connect(&m_camera, &CameraDevice::recordingSlamChanged, note("changed"));
    QObject::connect(m_camera.slam(), &AbstractData::recordPathChanged, note("host path"));
    QObject::connect(m_camera.edge(), &AbstractData::recordPathChanged, note("edge path"));
    QObject::connect(m_camera.slam(), &SlamData::recordingChanged, note("host on"));
    QObject::connect(m_camera.edge(), &SlamData::recordingChanged, note("edge on"));

    m_camera.setRecordingSlam(true);

    order.removeDuplicates();
    EXPECT_EQ(order,
        (QStringList{QStringLiteral("changed"), QStringLiteral("host path"), QStringLiteral("edge path"),
            QStringLiteral("host on"), QStringLiteral("edge on")}));
    order.clear();
    m_camera.setRecordingSlam(false);
    order.removeDuplicates();
    EXPECT_EQ(order,
        (QStringList{QStringLiteral("changed"), QStringLiteral("host on"), QStringLiteral("edge on")}));
}

TEST_F(Capture, recordingTwiceMakesNoSecondFolder)
{
    const QSignalSpy changed(&m_camera, &CameraDevice::recordingChanged);
    EXPECT_FALSE(m_camera.setRecording(true).isEmpty());
    QDir(QStringLiteral("capture")).removeRecursively();
    EXPECT_EQ(m_camera.setRecording(true), QString());
    EXPECT_FALSE(QDir(QStringLiteral("capture")).exists());
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(Capture, stoppingWhatDoesNotRecordDoesNothing)
{
    const QSignalSpy changed(&m_camera, &CameraDevice::recordingChanged);
    const QSignalSpy slamChanged(&m_camera, &CameraDevice::recordingSlamChanged);
    EXPECT_EQ(m_camera.setRecording(false), QString());
    EXPECT_EQ(m_camera.setRecordingSlam(false), QString());
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(slamChanged.count(), 0);
    EXPECT_FALSE(QDir(QStringLiteral("capture")).exists());
}

TEST_F(Capture, poseRecordingGoesToHostAndEdge)
{
    const QSignalSpy changed(&m_camera, &CameraDevice::recordingSlamChanged);
    const QString path = m_camera.setRecordingSlam(true);
    EXPECT_EQ(m_camera.slam()->recordPath(), path + QStringLiteral("/host.csv"));
    EXPECT_EQ(m_camera.edge()->recordPath(), path + QStringLiteral("/edge.csv"));
    EXPECT_TRUE(m_camera.slam()->recording() && m_camera.edge()->recording());
    EXPECT_TRUE(m_camera.recordingSlam());
    EXPECT_FALSE(m_camera.recording());
    EXPECT_EQ(m_camera.setRecordingSlam(true), QString());
    EXPECT_EQ(m_camera.setRecordingSlam(false), QString());
    EXPECT_FALSE(m_camera.slam()->recording() || m_camera.edge()->recording());
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(QDir(path).entryList(QDir::Files, QDir::Name),
        (QStringList{QStringLiteral("edge.csv"), QStringLiteral("host.csv")}));
}

TEST_F(Capture, bothRecordingsOfOneSecondShareTheirFolder)
{
    // A second may turn between the two; then they are tried again.
    for (int attempt = 0; attempt < 5; ++attempt) {
        const QString videos = m_camera.setRecording(true);
        const QString poses = m_camera.setRecordingSlam(true);
        m_camera.setRecording(false);
        m_camera.setRecordingSlam(false);
        if (videos == poses) {
            EXPECT_TRUE(QDir(videos).exists());
            return;
        }
    }
    FAIL() << "each recording got a folder of its own: " << foldersBelowCapture().join(' ').toStdString();
}

TEST_F(Capture, recordingSkipsStreamsThatAreMissing)
{
    CameraDevice none(std::make_shared<FakeDevice>(), nullptr);
    EXPECT_FALSE(none.setRecording(true).isEmpty());
    EXPECT_FALSE(none.setRecordingSlam(true).isEmpty());
    EXPECT_TRUE(none.recording() && none.recordingSlam());
    EXPECT_EQ(none.setRecording(false), QString());
    EXPECT_EQ(none.setRecordingSlam(false), QString());
}

TEST_F(Capture, propertiesCallTheSlots)
{
    EXPECT_TRUE(m_camera.setProperty("recordingSlam", true));
    EXPECT_TRUE(m_camera.slam()->recording());
    EXPECT_TRUE(m_camera.setProperty("recording", true));
    EXPECT_TRUE(m_camera.tof()->recording());
    m_camera.setProperty("recording", false);
    m_camera.setProperty("recordingSlam", false);
}

TEST_F(Capture, capturesLandBelowThePicturesWhereTheFolderCanNotBeWritten)
{
    QDir::setCurrent(QStringLiteral("/proc"));
    const QString path = m_camera.saveImages(QString());
    EXPECT_TRUE(path.contains(QStringLiteral("/qvsdk-viewer/"))) << path.toStdString();
    EXPECT_TRUE(QDir(path).exists());
}

TEST_F(Capture, fullDiskIsReportedAndLosesNothingElse)
{
    m_camera.stereo()->control(true);
    m_full.fisheyes->deliver(pictures::fisheyes({noise(1), noise(2)}));
    {
        const FullDisk disk(20000);
        EXPECT_THAT(save(QStringLiteral("stereo")),
            ElementsAre(QStringLiteral("debug: Failed to create left image"),
                QStringLiteral("debug: Failed to create right image")));
        EXPECT_TRUE(QDir(m_path).exists());
    }
    EXPECT_THAT(save(QStringLiteral("stereo")), IsEmpty());
    EXPECT_EQ(QImage(m_path + QStringLiteral("/left.png")).size(), QSize(640, 400));
}

TEST_F(Capture, videoRecordingGoesOnOverAFullDisk)
{
    m_camera.stereo()->control(true);
    m_full.fisheyes->deliver(pictures::fisheyes({noise(1), noise(2)}));
    auto *const left = qobject_cast<AbstractImageData *>(m_camera.stereo()->image(StereoData::Left));
    const QSignalSpy shown(left->image(), &ImageData::update);
    QString path;
    {
        const FullDisk disk(100000);
        path = m_camera.setRecording(true);
        EXPECT_FALSE(path.isEmpty());
        for (unsigned i = 0; i < 60; ++i)
            m_full.fisheyes->deliver(pictures::fisheyes({noise(i), noise(i + 1)}));
        m_camera.setRecording(false);
    }
    EXPECT_EQ(shown.count(), 60) << "the view has every frame";
    EXPECT_LE(QFileInfo(path + QStringLiteral("/left.avi")).size(), 100000);
    awaitNextSecond();
    path = m_camera.setRecording(true);
    for (unsigned i = 0; i < 5; ++i)
        m_full.fisheyes->deliver(pictures::fisheyes({noise(i), noise(i + 1)}));
    m_camera.setRecording(false);
    EXPECT_EQ(framesIn(path + QStringLiteral("/left.avi")), 5);
}

TEST_F(Capture, poseRecordingGoesOnOverAFullDisk)
{
    constexpr int limit = 100000;
    m_camera.slam()->control(true);
    const QSignalSpy moved(m_camera.slam(), &SlamData::matrixChanged);
    const auto deliver = [this](int count) {
        qv::Pose pose;
        for (int i = 1; i <= count; ++i) {
            pose.translation = {0.001 * i, 0, 0};
            m_full.slam->deliver(pose);
        }
    };
    QString path;
    {
        const FullDisk disk(limit);
        path = m_camera.setRecordingSlam(true);
        EXPECT_FALSE(path.isEmpty());
        deliver(5000);
        m_camera.setRecordingSlam(false);
    }
    EXPECT_EQ(moved.count(), 5000) << "the view has every pose";
    const QList<QByteArray> kept = linesOf(path + QStringLiteral("/host.csv"));
    EXPECT_LE(QFileInfo(path + QStringLiteral("/host.csv")).size(), limit);
    EXPECT_GT(kept.size(), 1000) << "what had room is there";
    awaitNextSecond();
    path = m_camera.setRecordingSlam(true);
    deliver(7);
    m_camera.setRecordingSlam(false);
    const QList<QByteArray> lines = linesOf(path + QStringLiteral("/host.csv"));
    ASSERT_EQ(lines.size(), 9) << "names, poses, and nothing behind the last line's end";
    EXPECT_EQ(lines.first(), QByteArray("hostTimestamp,edgeTimestampUs,x,y,z,qx,qy,qz,qw,confidence"));
    for (int i = 1; i <= 7; ++i)
        EXPECT_EQ(lines[i].count(','), 10) << lines[i].toStdString();
    EXPECT_EQ(lines.last(), QByteArray());
    EXPECT_EQ(linesOf(path + QStringLiteral("/edge.csv")).size(), 2);
}

TEST_F(Capture, recordingIsPlayableWhenTheDeviceGoes)
{
    auto camera = std::make_unique<CameraDevice>(m_full.device, nullptr);
    camera->stereo()->control(true);
    m_full.fisheyes->deliver(pictures::fisheyes({noise(1), noise(2)}));
    const QString path = camera->setRecording(true);
    for (unsigned i = 0; i < 7; ++i)
        m_full.fisheyes->deliver(pictures::fisheyes({noise(i), noise(i + 1)}));
    camera.reset();
    EXPECT_EQ(framesIn(path + QStringLiteral("/left.avi")), 7);
    EXPECT_EQ(framesIn(path + QStringLiteral("/right.avi")), 7);
}
