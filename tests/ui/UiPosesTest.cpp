#include "device/SharedWorld.h"
#include "ui/Space.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <iostream>

// Poses recorded by clicks, read back and compared with the road through the room that they come from.

using namespace ui;

namespace {

/// More than a test needs, for a look at a longer recording.
int recordedSeconds()
{
    const int wanted = qEnvironmentVariableIntValue("QV_RECORD_SECONDS");
    return wanted > 0 ? wanted : 10;
}

struct Row {
    double hostTimestamp = 0;
    qint64 edgeTimestampUs = 0;
    Eigen::Vector3d position;
    Eigen::Quaterniond orientation;
    double confidence = 0;
};

std::vector<Row> readRows(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    EXPECT_EQ(file.readLine(), QByteArray("hostTimestamp,edgeTimestampUs,x,y,z,qx,qy,qz,qw,confidence\n"));
    std::vector<Row> rows;
    while (!file.atEnd()) {
        const QList<QByteArray> fields = file.readLine().split(',');
        EXPECT_EQ(fields.size(), 11) << rows.size();
        if (fields.size() != 11)
            continue;
        EXPECT_EQ(fields[10], QByteArray("\n"));
        const auto number = [&](int i) { return fields[i].toDouble(); };
        rows.push_back({number(0), fields[1].toLongLong(), {number(2), number(3), number(4)},
            Eigen::Quaterniond(number(8), number(5), number(6), number(7)), number(9)});
    }
    return rows;
}

/// Where the frame of a SLAM lies whose first pose was at that time: there, level, with the same heading.
sim::Pose frameAt(const sim::Trajectory &trajectory, double t)
{
    const sim::Pose body = trajectory.pose(t);
    const Eigen::Vector3d ahead = body.linear().col(2);
    sim::Pose frame = sim::Pose::Identity();
    frame.translation() = body.translation();
    frame.rotate(Eigen::AngleAxisd(std::atan2(ahead.x(), ahead.z()), Eigen::Vector3d::UnitY()));
    return frame;
}

struct Source {
    const char *name;
    const char *file;
    double rate;
    double drift; ///< metres, in each direction
    double driftAngle; ///< radians, of the heading
    double noise; ///< metres, deviation in each direction
    double noiseAngle; ///< radians, the same
};

// As the guide to the simulated devices tells.
constexpr Source host{"host", "host.csv", 200, 0.01, 0.002, 0.0002, 0.0002};
constexpr Source edge{"edge", "edge.csv", 500, 0.025, 0.006, 0.0006, 0.0006};

/// Every row is the pose that the device has sent at that place, and no pose between the first and the last
/// is missing.
void expectNoneLost(const std::vector<Row> &rows, const std::vector<qv::Pose> &sent)
{
    ASSERT_FALSE(rows.empty());
    const auto first = std::find_if(sent.begin(), sent.end(),
        [&](const qv::Pose &pose) { return pose.edgeTimestampUs == rows.front().edgeTimestampUs; });
    ASSERT_LE(std::ptrdiff_t(rows.size()), sent.end() - first);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const qv::Pose &pose = *(first + std::ptrdiff_t(i));
        ASSERT_EQ(rows[i].edgeTimestampUs, pose.edgeTimestampUs) << i;
        ASSERT_NEAR(rows[i].hostTimestamp, pose.hostTimestamp, 1e-6) << i;
        ASSERT_NEAR(rows[i].position.x(), pose.translation.x, 1e-5) << i;
        ASSERT_NEAR(rows[i].confidence, pose.confidence, 1e-5) << i;
    }
}

/// As many rows as the rate and the time make, but for those that a device starved by a busy machine left out
/// itself.
void expectWholeSequence(const Source &source, const std::vector<Row> &rows)
{
    const double period = 1e6 / source.rate;
    int gaps = 0;
    long leftOut = 0;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const double periods = double(rows[i].edgeTimestampUs - rows[i - 1].edgeTimestampUs) / period;
        ASSERT_NEAR(periods, std::round(periods), 2 / period) << i;
        ASSERT_GE(periods, 0.9) << i;
        gaps += periods > 1.5;
        leftOut += std::lround(periods) - 1;
    }
    const double span = double(rows.back().edgeTimestampUs - rows.front().edgeTimestampUs) * 1e-6;
    EXPECT_EQ(long(rows.size()) + leftOut, std::lround(span * source.rate) + 1);
    EXPECT_GT(span, recordedSeconds() - 1.0);
    std::cout << source.name << ": " << rows.size() << " rows in " << span << " s; the device has left out "
              << leftOut << " in " << gaps << " gaps\n";
}

/// The time of the pose that the frame of the recording began with, at nothing: a stream that was restarted
/// has begun anew.
double originOf(const std::vector<qv::Pose> &sent, const Row &firstRow)
{
    double origin = 0;
    for (const qv::Pose &pose : sent)
        if (pose.edgeTimestampUs <= firstRow.edgeTimestampUs && vector(pose.translation).isNull())
            origin = double(pose.edgeTimestampUs) * 1e-6;
    EXPECT_GT(origin, 0);
    return origin;
}

void expectOnTheRoad(const Source &source, const std::vector<Row> &rows, double origin)
{
    const auto world = sim::SharedWorld::get(1);
    const sim::Pose fromWorld = frameAt(world->trajectory(), origin).inverse();
    double squares = 0;
    double worst = 0;
    double worstAngle = 0;
    for (const Row &row : rows) {
        const sim::Pose body = world->trajectory().pose(double(row.edgeTimestampUs) * 1e-6);
        const sim::Pose truth = fromWorld * body;
        const double error = (row.position - truth.translation()).norm();
        // The heading drifts about the middle of the room. Five deviations of noise.
        const double bound = std::sqrt(3.0) * (source.drift + 5 * source.noise)
            + source.driftAngle * body.translation().norm() + 1e-5;
        ASSERT_LE(error, bound) << row.edgeTimestampUs;
        const double angle = row.orientation.angularDistance(Eigen::Quaterniond(truth.linear()));
        ASSERT_LE(angle, source.driftAngle + std::sqrt(3.0) * 5 * source.noiseAngle + 1e-5)
            << row.edgeTimestampUs;
        squares += error * error;
        worst = std::max(worst, error);
        worstAngle = std::max(worstAngle, angle);
    }
    const double rms = std::sqrt(squares / double(rows.size()));
    EXPECT_GT(rms, source.noise); // it is the odometry that was recorded, not the truth
    std::cout << source.name << ": " << 1000 * rms << " mm from the road by the square, " << 1000 * worst
              << " mm and " << worstAngle * 180 / M_PI << " degrees at most\n";
}

} // namespace

QString prepare(const QString &home)
{
    Q_UNUSED(home)
    qputenv("QVSIM", "headset");
    return {};
}

TEST(Poses, bothRecordingsHoldEveryPoseOfTheRoad)
{
    ASSERT_TRUE(pageAppears());
    const auto expected = std::size_t(recordedSeconds()) * 500 + 100000;
    PoseTap hostTap(hostSource(), expected);
    PoseTap edgeTap(edgeSource(), expected);
    clickSwitch("slamButton");
    setDrawer(false);
    ASSERT_TRUE(waitFor([] { return id("slamView")->width() > 300; }, minute));
    // The host's goes on as long as it hasn't been enabled by its own button.
    WindowDriver::click(slamItem("edgeSourceButton"));
    ASSERT_TRUE(waitFor([&] { return hostTap.count() > 200 && edgeTap.count() > 500; }, minute));

    QQuickItem *button = slamItem("pathBtn");
    WindowDriver::click(button);
    ASSERT_TRUE(button->property("checked").toBool());
    const QDir folder(button->property("path").toString());
    const std::size_t before = hostTap.count();
    const auto enough = before + std::size_t(recordedSeconds() * host.rate);
    ASSERT_TRUE(waitFor([&] { return hostTap.count() > enough; }, recordedSeconds() * 2000 + minute));
    WindowDriver::click(button);
    ASSERT_FALSE(button->property("checked").toBool());

    const std::vector<qv::Pose> hostPoses = hostTap.all();
    const std::vector<qv::Pose> edgePoses = edgeTap.all();
    const std::vector<Row> hostRows = readRows(folder.filePath(QString::fromLatin1(host.file)));
    const std::vector<Row> edgeRows = readRows(folder.filePath(QString::fromLatin1(edge.file)));
    expectNoneLost(hostRows, hostPoses);
    expectNoneLost(edgeRows, edgePoses);
    expectWholeSequence(host, hostRows);
    expectWholeSequence(edge, edgeRows);
    expectOnTheRoad(host, hostRows, originOf(hostPoses, hostRows.front()));
    expectOnTheRoad(edge, edgeRows, originOf(edgePoses, edgeRows.front()));
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
