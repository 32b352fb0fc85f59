#include "replay/Recording.h"

#include "core/Log.h"
#include "replay/PictureList.h"

#include <stdexcept>

namespace sim {

namespace {

namespace fs = std::filesystem;

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

/// One frame for each picture of the first camera that all others have a picture to.
std::vector<Recording::Frame> join(
    const std::vector<std::vector<PictureRow>> &cameras, const fs::path &folder)
{
    std::vector<Recording::Frame> frames;
    const std::int64_t limit = togetherLimit(cameras.front());
    std::size_t alone = 0;
    for (const PictureRow &first : cameras.front()) {
        Recording::Frame frame{first.time, {}};
        for (const std::vector<PictureRow> &pictures : cameras) {
            if (const PictureRow *match = nearestPicture(pictures, first.time, limit))
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
    if (!fs::exists(folder))
        throw std::runtime_error("there is nothing of this name");
    const fs::path root = fs::is_directory(folder / "mav0") ? folder / "mav0" : folder;
    Recording recording;
    std::vector<std::vector<PictureRow>> cameras;
    for (int number = 0; fs::is_directory(root / ("cam" + std::to_string(number))); ++number) {
        const fs::path camera = root / ("cam" + std::to_string(number));
        std::vector<PictureRow> pictures = readPictureList(camera / "data.csv", camera / "data");
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
    recording.poses = readPoseTrack(folder);
    if (recording.frames.empty() && recording.imu.empty() && recording.poses.empty())
        throw std::runtime_error(
            "there are no pictures (mav0/cam0/data.csv, rgb.txt, depth.txt), readings or poses in it");
    return recording;
}

} // namespace sim
