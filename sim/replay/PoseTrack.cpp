#include "replay/PoseTrack.h"

#include "core/Log.h"
#include "replay/SensorYaml.h"
#include "replay/Table.h"
#include "replay/TimeOrder.h"
#include "replay/TimeStamp.h"

#include <cmath>
#include <optional>

namespace sim {

namespace {

namespace fs = std::filesystem;

/// Which of the four last columns is which part of the quaternion.
struct Columns {
    std::size_t x;
    std::size_t y;
    std::size_t z;
    std::size_t w;
};
constexpr Columns scalarFirst{5, 6, 7, 4};
constexpr Columns scalarLast{4, 5, 6, 7};

std::optional<PoseRow> poseRow(const Table::Row &row, const Columns &columns)
{
    if (row.fields.size() < 8)
        return std::nullopt;
    const auto time = parseTimeStamp(row.fields[0]);
    if (!time)
        return std::nullopt;
    double n[8] = {};
    for (std::size_t i = 1; i < 8; ++i) {
        const auto number = parseNumber(row.fields[i]);
        if (!number)
            return std::nullopt;
        n[i] = *number;
    }
    Eigen::Quaterniond q(n[columns.w], n[columns.x], n[columns.y], n[columns.z]);
    // Written with few digits it is a little off; something else altogether is no rotation.
    if (std::abs(q.norm() - 1) > 0.1)
        return std::nullopt;
    PoseRow pose;
    pose.time = *time;
    pose.worldFromBody.linear() = q.normalized().toRotationMatrix();
    pose.worldFromBody.translation() << n[1], n[2], n[3];
    return pose;
}

std::vector<PoseRow> readTable(const fs::path &file, const Columns &columns)
{
    std::vector<PoseRow> track;
    Table table;
    if (!Table::read(file, table)) {
        complain(file.string() + " can't be read, so there are no poses");
        return track;
    }
    RowReport report(file);
    for (const Table::Row &row : table.rows) {
        if (const auto pose = poseRow(row, columns))
            track.push_back(*pose);
        else
            report.unreadable(row.line);
    }
    orderByTime(track, report);
    return track;
}

/// Of the sensor that was followed to that of the body it sits on.
void moveToBody(std::vector<PoseRow> &track, const fs::path &sensorFile)
{
    if (!fs::exists(sensorFile))
        return;
    try {
        const Pose sensorFromBody = SensorYaml::read(sensorFile).bodyFromSensor.inverse();
        for (PoseRow &row : track)
            row.worldFromBody = row.worldFromBody * sensorFromBody;
    } catch (const std::exception &error) {
        complain(sensorFile.string() + " is left aside: " + error.what());
    }
}

} // namespace

std::vector<PoseRow> readPoseTrack(const fs::path &recording)
{
    if (fs::is_regular_file(recording))
        return readTable(recording, scalarLast);
    const fs::path root = fs::is_directory(recording / "mav0") ? recording / "mav0" : recording;
    for (const char *name : {"state_groundtruth_estimate0", "mocap0"}) {
        if (!fs::is_directory(root / name))
            continue;
        std::vector<PoseRow> track = readTable(root / name / "data.csv", scalarFirst);
        moveToBody(track, root / name / "sensor.yaml");
        return track;
    }
    if (fs::is_regular_file(recording / "groundtruth.txt"))
        return readTable(recording / "groundtruth.txt", scalarLast);
    return {};
}

void turnUpright(std::vector<PoseRow> &track)
{
    Eigen::Vector3d mean = Eigen::Vector3d::Zero();
    for (const PoseRow &row : track)
        mean += row.worldFromBody.linear().col(1);
    Eigen::Index axis = 0;
    mean.cwiseAbs().maxCoeff(&axis);
    const Eigen::Vector3d down = Eigen::Vector3d::Unit(axis) * (mean[axis] < 0 ? -1 : 1);
    Pose upright = Pose::Identity();
    upright.linear() = Eigen::Quaterniond::FromTwoVectors(down, Eigen::Vector3d::UnitY()).toRotationMatrix();
    for (PoseRow &row : track)
        row.worldFromBody = upright * row.worldFromBody;
}

} // namespace sim
