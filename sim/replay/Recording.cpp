#include "replay/Recording.h"

#include "core/Log.h"
#include "replay/Table.h"
#include "replay/TimeOrder.h"
#include "replay/TimeStamp.h"

#include <stdexcept>

namespace sim {

namespace {

namespace fs = std::filesystem;

struct Picture {
    std::int64_t time = 0;
    fs::path file;
};

/// Rows without a file name name it by their time.
std::optional<Picture> picture(const Table::Row &row, const fs::path &folder)
{
    const auto time = parseTimeStamp(row.fields[0]);
    if (!time)
        return std::nullopt;
    const std::string name = row.fields.size() > 1 ? row.fields[1] : row.fields[0] + ".png";
    if (name.empty())
        return std::nullopt;
    return Picture{*time, folder / "data" / name};
}

/// Nothing if the camera can't be used.
std::vector<Picture> readPictures(const fs::path &folder)
{
    const fs::path file = folder / "data.csv";
    std::vector<Picture> pictures;
    Table table;
    if (!Table::read(file, table)) {
        complain(file.string() + " can't be read, the camera is left out");
        return pictures;
    }
    RowReport report(file);
    for (const Table::Row &row : table.rows) {
        if (const auto read = picture(row, folder))
            pictures.push_back(*read);
        else
            report.unreadable(row.line);
    }
    orderByTime(pictures, report);
    return pictures;
}

SensorYaml readSensor(const fs::path &folder)
{
    const fs::path file = folder / "sensor.yaml";
    try {
        return SensorYaml::read(file);
    } catch (const std::exception &error) {
        complain(file.string() + " is left aside: " + error.what());
        return {};
    }
}

/// Half the usual distance of two pictures: what is farther apart was not taken together.
std::int64_t tolerance(const std::vector<Picture> &pictures)
{
    if (pictures.size() < 2)
        return 25'000'000;
    const std::int64_t span = pictures.back().time - pictures.front().time;
    return std::max<std::int64_t>(span / static_cast<std::int64_t>(pictures.size() - 1) / 2, 1);
}

const Picture *nearest(const std::vector<Picture> &pictures, std::int64_t time, std::int64_t limit)
{
    const auto earlier = [](const Picture &a, std::int64_t b) { return a.time < b; };
    auto found = std::lower_bound(pictures.begin(), pictures.end(), time, earlier);
    if (found == pictures.end()
        || (found != pictures.begin() && time - (found - 1)->time < found->time - time))
        --found;
    return std::abs(found->time - time) < limit ? &*found : nullptr;
}

/// One frame for each picture of the first camera that all others have a picture to.
std::vector<Recording::Frame> join(const std::vector<std::vector<Picture>> &cameras, const fs::path &folder)
{
    std::vector<Recording::Frame> frames;
    const std::int64_t limit = tolerance(cameras.front());
    std::size_t alone = 0;
    for (const Picture &first : cameras.front()) {
        Recording::Frame frame{first.time, {}};
        for (const std::vector<Picture> &pictures : cameras) {
            if (const Picture *match = nearest(pictures, first.time, limit))
                frame.files.push_back(match->file);
        }
        if (frame.files.size() == cameras.size())
            frames.push_back(std::move(frame));
        else
            ++alone;
    }
    if (alone > 0)
        complain(folder.string() + ": " + std::to_string(alone)
            + " times are left out, since not all cameras have a picture of them");
    return frames;
}

} // namespace

Recording Recording::open(const fs::path &folder)
{
    const fs::path root = fs::is_directory(folder / "mav0") ? folder / "mav0" : folder;
    Recording recording;
    std::vector<std::vector<Picture>> cameras;
    for (int number = 0; fs::is_directory(root / ("cam" + std::to_string(number))); ++number) {
        const fs::path camera = root / ("cam" + std::to_string(number));
        std::vector<Picture> pictures = readPictures(camera);
        if (pictures.empty())
            continue;
        cameras.push_back(std::move(pictures));
        recording.cameras.push_back(readSensor(camera));
    }
    if (!cameras.empty())
        recording.frames = join(cameras, folder);
    if (recording.frames.empty())
        recording.cameras.clear();
    recording.imu = readImuTrack(root / "imu0");
    if (recording.frames.empty() && recording.imu.empty())
        throw std::runtime_error(
            "there are neither pictures (mav0/cam0/data.csv) nor inertial readings in it");
    return recording;
}

} // namespace sim
