#include "spatial/SlamData.h"

#include "support/FakeSlam.h"
#include "support/LogCatcher.h"
#include "support/Wait.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cmath>
#include <thread>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

qv::Pose at(double x, double y, double z)
{
    qv::Pose pose;
    pose.translation = {x, y, z};
    return pose;
}

/// A pose turned by 90 degrees about y: the device's z axis points along the world's x.
qv::Pose turned()
{
    qv::Pose pose;
    pose.translation = {1, 2, 3};
    pose.rotation = {0, 0, 1, 0, 1, 0, -1, 0, 0};
    return pose;
}

/// Gives the process a temporary folder of its own for as long as it lives.
class TemporaryMapFolder {
public:
    TemporaryMapFolder()
        : m_before(qgetenv("TMPDIR"))
    {
        qputenv("TMPDIR", m_folder.path().toLocal8Bit());
    }
    ~TemporaryMapFolder()
    {
        if (m_before.isEmpty())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", m_before);
    }
    QString map() const { return m_folder.filePath(QStringLiteral("loopclosure.map")); }
    void writeMap(const QString &path, const QByteArray &bytes) const
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QString path(const QString &name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
    QByteArray m_before;
};

class Slam : public ::testing::Test {
protected:
    std::shared_ptr<FakeSlam> slam = std::make_shared<FakeSlam>();
    std::unique_ptr<SlamData> data = std::make_unique<SlamData>(slam, nullptr);
};

} // namespace

TEST(SlamData, nullComponentThrows)
{
    try {
        const SlamData data(nullptr, nullptr);
        FAIL();
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "Invalid Slam");
    }
}

TEST_F(Slam, controlRegistersBeforeItStarts)
{
    data->control(true);
    EXPECT_THAT(slam->takeCalls(), ElementsAre("registerCallback", "registerLostCallback", "start"));
    data->control(true);
    EXPECT_THAT(slam->takeCalls(), IsEmpty());
    data->control(false);
    EXPECT_THAT(slam->takeCalls(), ElementsAre("unregisterCallback(1)", "unregisterLostCallback(1)", "stop"));
    data->control(false);
    EXPECT_THAT(slam->takeCalls(), ElementsAre("unregisterLostCallback(-1)", "stop"));
}

TEST_F(Slam, destructionUnregistersWhateverTheIdsAre)
{
    data.reset();
    EXPECT_THAT(
        slam->takeCalls(), ElementsAre("unregisterCallback(-1)", "unregisterLostCallback(-1)", "stop"));
}

TEST_F(Slam, defaults)
{
    EXPECT_EQ(data->status(), 0);
    EXPECT_EQ(data->confidence(), 0);
    EXPECT_TRUE(data->matrix().isIdentity());
    EXPECT_FALSE(data->enabled());
    EXPECT_EQ(data->prediction(), 0);
    EXPECT_TRUE(data->lost());
    EXPECT_EQ(data->distance(), 0);
    EXPECT_EQ(data->localizedPercent(), 0);
}

TEST_F(Slam, poseReachesEveryRecordInOrder)
{
    data->control(true);
    std::vector<std::string> order;
    QObject::connect(data->position(), &PositionData::vectorChanged, [&] { order.emplace_back("position"); });
    QObject::connect(data.get(), &SlamData::distanceChanged, [&] { order.emplace_back("distance"); });
    QObject::connect(
        data->orientation(), &OrientationData::matrixChanged, [&] { order.emplace_back("orientation"); });
    QObject::connect(data.get(), &SlamData::matrixChanged, [&] { order.emplace_back("matrix"); });
    QObject::connect(data.get(), &SlamData::confidenceChanged, [&] { order.emplace_back("confidence"); });
    QObject::connect(data.get(), &SlamData::lostChanged, [&] { order.emplace_back("lost"); });
    slam->deliver(at(1, 2, 2.5));
    order.clear();
    qv::Pose pose = turned();
    pose.confidence = 0.5;
    slam->lost.deliver();
    order.clear();
    slam->deliver(pose);
    EXPECT_THAT(order, ElementsAre("position", "distance", "orientation", "matrix", "confidence", "lost"));
    EXPECT_EQ(data->position()->vector(), QVector3D(1, 2, 3));
    // One metre ahead of the device lies one metre along the world's x.
    const QVector3D ahead = data->matrix().map(QVector3D(0, 0, 1));
    EXPECT_NEAR(ahead.x(), 2, 1e-5);
    EXPECT_NEAR(ahead.y(), 2, 1e-5);
    EXPECT_NEAR(ahead.z(), 3, 1e-5);
    EXPECT_EQ(data->confidence(), 0.5);
    EXPECT_NEAR(data->orientation()->yaw(), 90, 1e-3);
}

TEST_F(Slam, samePoseAgainChangesNothing)
{
    data->control(true);
    slam->deliver(turned());
    const QSignalSpy matrix(data.get(), &SlamData::matrixChanged);
    const QSignalSpy position(data->position(), &PositionData::vectorChanged);
    const QSignalSpy confidence(data.get(), &SlamData::confidenceChanged);
    slam->deliver(turned());
    EXPECT_EQ(matrix.count() + position.count() + confidence.count(), 0);
}

TEST_F(Slam, distanceGrowsInStepsOfMoreThanTwoCentimetres)
{
    data->control(true);
    const QSignalSpy changed(data.get(), &SlamData::distanceChanged);
    slam->deliver(at(1, 0, 0));
    slam->deliver(at(1.015, 0, 0));
    EXPECT_EQ(changed.count(), 0);
    slam->deliver(at(1.03, 0, 0));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_NEAR(data->distance(), 0.03, 1e-6);
    slam->deliver(at(1.045, 0, 0));
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(Slam, anchorIsSetByTheFirstPoseAwayFromTheOrigin)
{
    data->control(true);
    const QSignalSpy changed(data.get(), &SlamData::distanceChanged);
    slam->deliver(at(0, 0, 0));
    slam->deliver(at(5, 0, 0));
    EXPECT_EQ(changed.count(), 0);
    slam->deliver(at(5, 1, 0));
    EXPECT_NEAR(data->distance(), 1, 1e-6);
}

TEST_F(Slam, resetKeepsTheShownDistanceUntilTheNextStep)
{
    data->control(true);
    slam->deliver(at(1, 0, 0));
    slam->deliver(at(2, 0, 0));
    slam->takeCalls();
    const QSignalSpy changed(data.get(), &SlamData::distanceChanged);
    const QSignalSpy position(data->position(), &PositionData::vectorChanged);
    data->reset();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("reset"));
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(data->distance(), 0);
    EXPECT_EQ(position.count(), 1);
    slam->deliver(at(3, 0, 0));
    slam->deliver(at(3.5, 0, 0));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_NEAR(changed.last().first().toDouble(), 0.5, 1e-6);
}

TEST_F(Slam, lostStartsTrueAndFollowsLossAndPose)
{
    data->control(true);
    const QSignalSpy changed(data.get(), &SlamData::lostChanged);
    slam->lost.deliver();
    EXPECT_EQ(changed.count(), 0);
    slam->deliver(at(0, 0, 0));
    EXPECT_FALSE(data->lost());
    slam->lost.deliver();
    EXPECT_TRUE(data->lost());
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(Slam, overrateIsHandledOnEveryPoseWhileTheRateIsAboveSixHundred)
{
    data->control(true);
    slam->takeCalls();
    for (int i = 0; i < 600; ++i)
        slam->deliver(at(0, 0, 0));
    ASSERT_TRUE(waitFor([this] { return data->dataFrameRate() >= 1; }));
    if (data->dataFrameRate() == 600.0) { // a timer event in mid-burst splits the count
        slam->deliver(at(0, 0, 0));
        EXPECT_THAT(slam->takeCalls(), IsEmpty());
    }
    for (int i = 0; i < 4000; ++i)
        slam->deliver(at(0, 0, 0));
    ASSERT_TRUE(waitFor([this] { return data->dataFrameRate() > 600; }));
    slam->takeCalls();
    slam->deliver(at(0, 0, 0));
    slam->deliver(at(0, 0, 0));
    EXPECT_THAT(slam->takeCalls(), ElementsAre("handleOverrate", "handleOverrate"));
}

TEST_F(Slam, enabledStartsAndStopsWithoutCallbacks)
{
    data->setEnabled(true);
    data->setEnabled(true);
    EXPECT_THAT(slam->takeCalls(), ElementsAre("start"));
    data->setEnabled(false);
    EXPECT_THAT(slam->takeCalls(), ElementsAre("stop"));
    data->setEnabled(true);
    slam->deliver(at(1, 2, 3));
    EXPECT_EQ(data->position()->vector(), QVector3D());
}

TEST_F(Slam, settersStoreAndSignalOnAChange)
{
    const QSignalSpy status(data.get(), &SlamData::statusChanged);
    const QSignalSpy confidence(data.get(), &SlamData::confidenceChanged);
    const QSignalSpy prediction(data.get(), &SlamData::predictionChanged);
    const QSignalSpy localized(data.get(), &SlamData::localizedPercentChanged);
    for (int i = 0; i < 2; ++i) {
        data->setStatus(3);
        data->setConfidence(0.25);
        data->setPrediction(400);
        data->setLocalizedPercent(50);
    }
    EXPECT_EQ(status.count(), 1);
    EXPECT_EQ(confidence.count(), 1);
    EXPECT_EQ(prediction.count(), 1);
    EXPECT_EQ(localized.count(), 1);
}

TEST_F(Slam, pauseAndResumeAnswerWhatTheLibraryAnswers)
{
    slam->resumeResult = false;
    EXPECT_TRUE(data->pause());
    EXPECT_FALSE(data->resume());
    EXPECT_THAT(slam->takeCalls(), ElementsAre("pause", "resume"));
}

TEST_F(Slam, visualOdometryRestarts)
{
    data->visualOdometry();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("stop", "start"));
}

TEST_F(Slam, recordingHasTheHeaderAndOneLineAPose)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("host.csv"));
    data->control(true);
    slam->deliver(at(9, 9, 9));
    data->setRecordPath(path);
    data->setRecording(true);
    qv::Pose pose = at(1.23456789, -2, 1234567.89);
    pose.hostTimestamp = 12.3456789;
    pose.edgeTimestampUs = 9876543210;
    pose.qx = 0.1;
    pose.qy = -0.25;
    pose.qz = 0;
    pose.qw = 0.9;
    pose.confidence = 1;
    slam->deliver(pose);
    data->setRecording(false);
    slam->deliver(pose);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(),
        QByteArray("hostTimestamp,edgeTimestampUs,x,y,z,qx,qy,qz,qw,confidence\n"
                   "12.345679,9876543210,1.23457,-2,1.23457e+06,0.1,-0.25,0,0.9,1,\n"));
}

TEST_F(Slam, mapPathLiesInTheTemporaryFolder)
{
    EXPECT_EQ(data->getMapPath(), QDir::tempPath() + QLatin1String("/loopclosure.map"));
}

TEST_F(Slam, savedMapIsWrittenByTheLibraryAndClosedWhenItIsDone)
{
    const TemporaryMapFolder folder;
    const QSignalSpy finished(data.get(), &SlamData::loopClosureFinished);
    const LogCatcher log;
    data->loopClosure();
    ASSERT_TRUE(slam->saveStream);
    slam->saveStream->sputn("a map", 5);
    slam->saveProgress(0.5F);
    slam->saveDone(1, 90);
    EXPECT_EQ(finished.count(), 1);
    QFile file(folder.map());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("a map"));
    EXPECT_EQ(log.lines(),
        (QStringList{QStringLiteral("debug: Save map to \"%1\"").arg(folder.map()),
            QStringLiteral("debug: loopClosureDone status:  1 quality:  90")}));
}

TEST_F(Slam, secondSaveWhileOneRunsStillCallsTheLibrary)
{
    const TemporaryMapFolder folder;
    data->loopClosure();
    data->loopClosure();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("saveMapAndSwitchToCslam", "saveMapAndSwitchToCslam"));
    slam->saveDone(0, 0);
}

TEST_F(Slam, saveThatEndsAfterTheModelStillHasItsFile)
{
    const TemporaryMapFolder folder;
    data->loopClosure();
    data.reset();
    EXPECT_EQ(slam->saveStream->sputn("late", 4), 4);
    slam->saveDone(0, 0);
    QFile file(folder.map());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("late"));
}

TEST_F(Slam, loadWithoutAFileFails)
{
    const TemporaryMapFolder folder;
    const LogCatcher log;
    EXPECT_FALSE(data->loadMap());
    EXPECT_FALSE(data->loadMap(QString()));
    EXPECT_FALSE(data->loadMap(QStringLiteral("/not/there")));
    const QString line = QStringLiteral("warning: \"%1\" does not exists").arg(folder.map());
    EXPECT_EQ(log.lines(), (QStringList{line, line, line}));
    EXPECT_THAT(slam->calls(), IsEmpty());
}

TEST_F(Slam, loadedMapIsReadByTheLibraryAndLoadedAgainByAReset)
{
    const TemporaryMapFolder folder;
    folder.writeMap(folder.map(), "bytes");
    const LogCatcher log;
    EXPECT_TRUE(data->loadMap(QStringLiteral("/not/there")));
    char read[6]{};
    EXPECT_EQ(slam->loadStream->sgetn(read, 5), 5);
    EXPECT_STREQ(read, "bytes");
    slam->loadDone(77);
    EXPECT_EQ(log.lines(),
        (QStringList{QStringLiteral("debug: Load map  \"%1\"").arg(folder.map()),
            QStringLiteral("debug:  map (quality is  77 /100) and switch to CSlam:")}));
    slam->takeCalls();
    data->reset();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("reset", "loadMapAndSwitchToCslam"));
    slam->loadDone(77);
    data->visualOdometry();
    slam->takeCalls();
    data->reset();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("reset"));
}

TEST_F(Slam, givenPathIsTakenWhereItExists)
{
    const TemporaryMapFolder folder;
    const QString other = folder.path(QStringLiteral("other.map"));
    folder.writeMap(other, "other");
    EXPECT_TRUE(data->loadMap(other));
    char read[6]{};
    slam->loadStream->sgetn(read, 5);
    EXPECT_STREQ(read, "other");
    slam->loadDone(0);
}

TEST_F(Slam, secondLoadInTheProcessFailsWhileOneIsUnderWay)
{
    const TemporaryMapFolder folder;
    folder.writeMap(folder.map(), "bytes");
    SlamData other(std::make_shared<FakeSlam>(), nullptr);
    EXPECT_TRUE(data->loadMap());
    const LogCatcher log;
    EXPECT_FALSE(other.loadMap());
    EXPECT_EQ(log.lines().last(), QStringLiteral("debug: open  \"%1\"  failed.").arg(folder.map()));
    slam->loadDone(0);
}

TEST_F(Slam, unreadableMapFailsAndTheNextTryWorks)
{
    const TemporaryMapFolder folder;
    ASSERT_TRUE(QDir().mkdir(folder.map())); // exists, and can't be opened as a file for reading bytes
    data->loadMap();
    if (slam->loadDone)
        slam->loadDone(0);
    ASSERT_TRUE(QDir().rmdir(folder.map()));
    folder.writeMap(folder.map(), "bytes");
    EXPECT_TRUE(data->loadMap());
    slam->loadDone(0);
}

TEST_F(Slam, refusedLoadIsRefused)
{
    const TemporaryMapFolder folder;
    folder.writeMap(folder.map(), "bytes");
    slam->loadResult = false;
    EXPECT_FALSE(data->loadMap());
    slam->loadDone(0);
    slam->takeCalls();
    data->reset();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("reset"));
}

TEST_F(Slam, progressIsTakenOnEveryHundredthCallAcrossLoadsAndInstances)
{
    const TemporaryMapFolder folder;
    folder.writeMap(folder.map(), "bytes");
    ASSERT_TRUE(data->loadMap());
    const QSignalSpy changed(data.get(), &SlamData::localizedPercentChanged);
    float share = 0.05F;
    int calls = 0;
    while (changed.isEmpty() && calls < 100) {
        share += 0.001F;
        slam->loadProgress(share);
        ++calls;
    }
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(data->localizedPercent(), int(share * 100.0F));
    for (int i = 0; i < 99; ++i)
        slam->loadProgress(0.999F);
    EXPECT_EQ(changed.count(), 1);
    slam->loadProgress(0.999F);
    EXPECT_EQ(data->localizedPercent(), 99);
    for (int i = 0; i < 100; ++i)
        slam->loadProgress(std::nanf(""));
    EXPECT_EQ(data->localizedPercent(), 0);
    slam->loadDone(0);
}

TEST_F(Slam, brokenPosesDoNoHarm)
{
    data->control(true);
    const double values[]{std::nan(""), INFINITY, -INFINITY, 1e300};
    for (const double value : values) {
        qv::Pose pose = at(value, value, value);
        pose.rotation.fill(value);
        pose.confidence = value;
        slam->deliver(pose);
    }
    slam->deliver(at(1, 2, 3));
    EXPECT_EQ(data->position()->vector(), QVector3D(1, 2, 3));
}

TEST_F(Slam, callbackOnItsWayFindsTheModelGone)
{
    data->control(true);
    const auto poses = slam->callbacks.held();
    const auto losses = slam->lost.held();
    data.reset();
    poses.front()(at(1, 2, 3));
    losses.front()();
    EXPECT_EQ(slam->callbacks.count(), 0U);
}

TEST_F(Slam, posesAndReadersMayMeet)
{
    data->control(true);
    std::atomic<bool> run{true};
    std::thread library([&] {
        for (int i = 0; run; ++i)
            slam->deliver(at(i * 0.001, 0, 0));
    });
    double seen = 0;
    for (int i = 0; i < 2000; ++i) {
        seen += data->distance() + data->confidence() + double(data->position()->vector().x())
            + double(data->matrix()(0, 3)) + data->orientation()->yaw();
        if (i % 100 == 0)
            data->reset();
    }
    run = false;
    library.join();
    EXPECT_TRUE(std::isfinite(seen));
}
