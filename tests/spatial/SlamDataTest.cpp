#include "spatial/SlamFixture.h"

#include "support/FakeDevice.h"
#include "support/FakeOwner.h"
#include "support/Timers.h"

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
    EXPECT_THAT(
        slam->takeCalls(), ElementsAre("unregisterCallback(1)", "unregisterLostCallback(11)", "stop"));
    data->control(false);
    EXPECT_THAT(slam->takeCalls(), ElementsAre("unregisterLostCallback(-1)", "stop"));
}

TEST_F(Slam, destructionUnregistersWhateverTheIdsAre)
{
    data.reset();
    EXPECT_THAT(
        slam->takeCalls(), ElementsAre("unregisterCallback(-1)", "unregisterLostCallback(-1)", "stop"));
}

TEST_F(Slam, destructionWhileItRunsUnregistersBothCallbacks)
{
    data->control(true);
    slam->takeCalls();
    data.reset();
    EXPECT_THAT(
        slam->takeCalls(), ElementsAre("unregisterCallback(1)", "unregisterLostCallback(11)", "stop"));
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

TEST_F(Slam, rotationOfAnotherSizeIsBroughtBackToOneInTheMatrix)
{
    data->control(true);
    qv::Pose pose = turned();
    pose.rotation = {0, 0, 2, 0, 2, 0, -2, 0, 0};
    slam->deliver(pose);
    // Its quaternion, w = sqrt(3) / 2 and y = 2 / sqrt(3), has the length 5 / sqrt(12): w = 0.6, y = 0.8.
    const QMatrix4x4 matrix = data->matrix();
    EXPECT_NEAR(matrix(0, 0), 1 - 2 * 0.64, 1e-6);
    EXPECT_NEAR(matrix(0, 2), 2 * 0.6 * 0.8, 1e-6);
    EXPECT_NEAR(matrix(1, 1), 1, 1e-6);
    EXPECT_NEAR(matrix(2, 0), -2 * 0.6 * 0.8, 1e-6);
    EXPECT_NEAR(matrix(2, 2), 1 - 2 * 0.64, 1e-6);
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

TEST_F(Slam, stepJustAboveTwoCentimetresCountsAndOneJustBelowDoesNot)
{
    data->control(true);
    slam->deliver(at(1, 0, 0));
    slam->deliver(at(1.0195, 0, 0));
    EXPECT_EQ(data->distance(), 0);
    slam->deliver(at(1.0205, 0, 0));
    EXPECT_NEAR(data->distance(), 0.0205, 1e-6);
}

TEST_F(Slam, anchorIsUnsetAtExactlyTheOriginOnly)
{
    data->control(true);
    slam->deliver(at(1e-7, 0, 0));
    slam->deliver(at(5, 0, 0));
    EXPECT_NEAR(data->distance(), 5, 1e-6);
}

TEST_F(Slam, aRestartLeavesTheReadingsAlone)
{
    data->control(true);
    qv::Pose pose = at(2, 0, 0);
    pose.confidence = 0.5;
    slam->deliver(at(1, 0, 0));
    slam->deliver(pose);
    data->control(false);
    data->control(true);
    EXPECT_EQ(data->distance(), 1);
    EXPECT_EQ(data->confidence(), 0.5);
    EXPECT_FALSE(data->lost());
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
    slam->deliver(at(0, 0, 0));
    EXPECT_EQ(changed.count(), 3);
    slam->deliver(at(1, 0, 0));
    EXPECT_FALSE(data->lost());
    EXPECT_EQ(changed.count(), 3);
}

TEST_F(Slam, overrateIsHandledOnEveryPoseWhileTheRateIsAboveSixHundred)
{
    data->control(true);
    slam->takeCalls();
    for (int i = 0; i < 600; ++i)
        slam->deliver(at(0, 0, 0));
    fireTimers(*data);
    ASSERT_EQ(data->dataFrameRate(), 600);
    for (int i = 0; i < 601; ++i)
        slam->deliver(at(0, 0, 0));
    EXPECT_THAT(slam->takeCalls(), IsEmpty());
    fireTimers(*data);
    ASSERT_EQ(data->dataFrameRate(), 601);
    slam->deliver(at(0, 0, 0));
    slam->deliver(at(0, 0, 0));
    EXPECT_THAT(slam->takeCalls(), ElementsAre("handleOverrate", "handleOverrate"));
    fireTimers(*data);
    slam->deliver(at(0, 0, 0));
    EXPECT_THAT(slam->takeCalls(), IsEmpty());
}

TEST_F(Slam, overrateIsHandledBeforeThePoseIsShown)
{
    data->control(true);
    for (int i = 0; i < 601; ++i)
        slam->deliver(at(0, 0, 0));
    fireTimers(*data);
    slam->takeCalls();
    QObject::connect(data->position(), &PositionData::vectorChanged, [&] { slam->log->add("position"); });
    slam->deliver(at(1, 0, 0));
    EXPECT_THAT(slam->takeCalls(), ElementsAre("handleOverrate", "position"));
}

TEST_F(Slam, enabledIsStoredAndAnnouncedBeforeTheStreamStartsOrStops)
{
    QObject::connect(data.get(), &SlamData::enabledChanged,
        [&](bool enabled) { slam->log->add("enabledChanged", enabled, data->enabled()); });
    data->setEnabled(false);
    EXPECT_THAT(slam->takeCalls(), IsEmpty());
    data->setEnabled(true);
    EXPECT_THAT(slam->takeCalls(), ElementsAre("enabledChanged(true, true)", "start"));
    data->setEnabled(true);
    EXPECT_THAT(slam->takeCalls(), IsEmpty());
    data->setEnabled(false);
    EXPECT_THAT(slam->takeCalls(), ElementsAre("enabledChanged(false, false)", "stop"));
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

TEST_F(Slam, predictionReachesTheDeviceFromWhicheverSourceItIsSetOn)
{
    const auto device = std::make_shared<FakeDeviceEx>();
    FakeOwner owner;
    owner.held = device;
    SlamData host(slam, &owner);
    SlamData edge(std::make_shared<FakeSlam>(), &owner);
    host.setPrediction(400);
    host.setPrediction(400);
    edge.setPrediction(-20);
    EXPECT_THAT(device->takeCalls(), ElementsAre("setEdgePrediction(400)", "setEdgePrediction(-20)"));
    EXPECT_EQ(host.prediction(), 400);
}

TEST_F(Slam, predictionStaysHereWhereTheDeviceKnowsNone)
{
    const auto device = std::make_shared<FakeDevice>();
    FakeOwner owner;
    owner.held = device;
    SlamData host(slam, &owner);
    const QSignalSpy changed(&host, &SlamData::predictionChanged);
    host.setPrediction(400);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(host.prediction(), 400);
    EXPECT_THAT(device->takeCalls(), IsEmpty());
}

TEST_F(Slam, predictionIsAnnouncedBeforeItReachesTheDevice)
{
    const auto device = std::make_shared<FakeDeviceEx>();
    FakeOwner owner;
    owner.held = device;
    SlamData host(slam, &owner);
    QObject::connect(&host, &SlamData::predictionChanged, [&] { device->log->add("announced"); });
    host.setPrediction(1);
    EXPECT_THAT(device->takeCalls(), ElementsAre("announced", "setEdgePrediction(1)"));
}

TEST_F(Slam, pauseAndResumeAnswerWhatTheLibraryAnswers)
{
    for (const bool answer : {true, false}) {
        slam->pauseResult = answer;
        slam->resumeResult = !answer;
        EXPECT_EQ(data->pause(), answer);
        EXPECT_EQ(data->resume(), !answer);
        EXPECT_THAT(slam->takeCalls(), ElementsAre("pause", "resume"));
    }
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

TEST_F(Slam, poseIsRecordedAfterItsConfidenceAndBeforeItIsFound)
{
    const QTemporaryDir folder;
    data->control(true);
    const auto linesOf = [&](const QString &name, auto signal) {
        const QString path = folder.filePath(name);
        data->setRecordPath(path);
        data->setRecording(true);
        slam->lost.deliver();
        const QObject context;
        QObject::connect(data.get(), signal, &context, [&] { data->setRecording(false); });
        qv::Pose pose;
        pose.confidence = data->confidence() + 0.25;
        slam->deliver(pose);
        data->setRecording(false);
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? int(file.readAll().count('\n')) : -1;
    };
    // Who ends the recording at a signal cuts off what comes after it; the header is a line.
    EXPECT_EQ(linesOf(QStringLiteral("confidence.csv"), &SlamData::confidenceChanged), 1);
    EXPECT_EQ(linesOf(QStringLiteral("lost.csv"), &SlamData::lostChanged), 2);
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
        EXPECT_FALSE(std::isfinite(data->position()->x())) << value;
    }
    slam->deliver(at(1, 2, 3));
    EXPECT_EQ(data->position()->vector(), QVector3D(1, 2, 3));
}

TEST_F(Slam, brokenPosesStayOutOfTheDistance)
{
    const double values[]{std::nan(""), INFINITY, -INFINITY, 1e300};
    data->control(true);
    const QSignalSpy changed(data.get(), &SlamData::distanceChanged);
    for (const double value : values) { // none of them becomes the anchor
        slam->deliver(at(value, 0, 0));
        slam->deliver(at(0, value, 0));
        slam->deliver(at(0, 0, value));
    }
    slam->deliver(at(1, 0, 0));
    slam->deliver(at(3, 0, 0));
    EXPECT_EQ(data->distance(), 2);
    for (const double value : values)
        slam->deliver(at(0, 0, value)); // nor a step
    EXPECT_EQ(data->distance(), 2);
    slam->deliver(at(3, 0.5, 0));
    EXPECT_EQ(data->distance(), 2.5);
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(Slam, stepBeyondAFloatStaysOutOfTheDistance)
{
    data->control(true);
    slam->deliver(at(-3e38, 0, 0));
    slam->deliver(at(3e38, 0, 0));
    EXPECT_EQ(data->distance(), 0);
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
    std::atomic<int> poses{0};
    std::thread library([&] {
        for (int i = 0; run; ++i) {
            slam->deliver(at(i * 0.001, 0, 0));
            poses.fetch_add(1, std::memory_order_relaxed);
        }
    });
    double seen = 0;
    for (int i = 0; i < 2000 || poses.load(std::memory_order_relaxed) < 2000; ++i) {
        seen += data->distance() + data->confidence() + double(data->position()->vector().x())
            + double(data->matrix()(0, 3)) + data->orientation()->yaw();
        if (i % 100 == 0)
            data->reset();
        if (i % 100 == 50)
            seen += fireTimers(*data) + data->dataFrameRate();
    }
    run = false;
    library.join();
    EXPECT_TRUE(std::isfinite(seen));
}
