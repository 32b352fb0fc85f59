#include "replay/RgbdRecording.h"

#include "core/Log.h"
#include "replay/PictureReader.h"
#include "replay/TimeStamp.h"
#include "world/PolynomialModel.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace sim {

namespace {

namespace fs = std::filesystem;

constexpr double usualPicturePeriod = 1.0 / 30; // seconds

std::vector<PictureRow> listed(const fs::path &folder, const char *list)
{
    return fs::exists(folder / list) ? readPictureList(folder / list, folder) : std::vector<PictureRow>();
}

qv::PolynomialDistortionCameraModel usualLens()
{
    qv::PolynomialDistortionCameraModel lens;
    lens.w = 640;
    lens.h = 480;
    lens.fx = lens.fy = 525;
    lens.u0 = 319.5;
    lens.v0 = 239.5;
    return lens;
}

std::vector<double> numbersOf(const Table::Row &row)
{
    std::vector<double> numbers;
    for (const std::string &field : row.fields) {
        if (const auto number = parseNumber(field))
            numbers.push_back(*number);
    }
    return numbers;
}

bool readCalibration(const fs::path &file, RgbdRecording &recording)
{
    Table table;
    if (!Table::read(file, table) || table.rows.empty())
        return false;
    const std::vector<double> n = numbersOf(table.rows[0]);
    const auto positive = [](double number) { return number > 0; };
    if (n.size() < 6 || !std::all_of(n.begin(), n.end(), positive) || n[4] > 8192 || n[5] > 8192)
        return false;
    recording.lens.fx = n[0];
    recording.lens.fy = n[1];
    recording.lens.u0 = n[2];
    recording.lens.v0 = n[3];
    recording.lens.w = static_cast<int>(n[4]);
    recording.lens.h = static_cast<int>(n[5]);
    if (n.size() > 6)
        recording.depthScale = n[6];
    return true;
}

/// Some lists tell the scale in a comment: "# depth_scale 1000".
void readScaleComment(const fs::path &list, double &scale)
{
    std::ifstream file(list, std::ios::binary);
    for (std::string line; std::getline(file, line) && !line.empty() && line[0] == '#';) {
        std::stringstream words(line.substr(1));
        std::string word;
        double number = 0;
        if (words >> word >> number && word == "depth_scale" && number > 0)
            scale = number;
    }
}

} // namespace

bool RgbdRecording::isOne(const fs::path &folder)
{
    return fs::is_regular_file(folder / "rgb.txt") || fs::is_regular_file(folder / "depth.txt");
}

RgbdRecording RgbdRecording::open(const fs::path &folder)
{
    RgbdRecording recording;
    recording.lens = usualLens();
    recording.color = listed(folder, "rgb.txt");
    recording.depth = listed(folder, "depth.txt");
    if (recording.color.empty() && recording.depth.empty())
        throw std::runtime_error("there are no pictures (rgb.txt, depth.txt) in it");
    readScaleComment(folder / "depth.txt", recording.depthScale);
    const fs::path calibration = folder / "calibration.txt";
    recording.m_calibrated = fs::exists(calibration) && readCalibration(calibration, recording);
    if (fs::exists(calibration) && !recording.m_calibrated)
        complain(calibration.string() + " is left aside: it needs fx fy cx cy width height");
    return recording;
}

Timeline RgbdRecording::timeline(double origin) const
{
    const std::vector<PictureRow> &steady = color.empty() ? depth : color;
    std::vector<std::int64_t> times;
    times.reserve(color.size() + depth.size());
    for (const PictureRow &row : steady)
        times.push_back(row.time);
    const double period = Timeline::usualPeriod(times, usualPicturePeriod);
    for (const PictureRow &row : color.empty() ? color : depth)
        times.push_back(row.time);
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return {std::move(times), period, origin};
}

void RgbdRecording::completeSize()
{
    if (m_calibrated)
        return;
    const std::vector<PictureRow> &rows = depth.empty() ? color : depth;
    for (const PictureRow &row : rows) {
        try {
            const cv::Size size = readColor(row.file).size();
            const auto scaled = PolynomialModel(lens).scaled(size.width, size.height);
            lens = static_cast<const PolynomialModel &>(*scaled).parameters();
            return;
        } catch (const std::exception &) {
            // Whoever plays the picture tells.
        }
    }
}

qv::Calibration RgbdRecording::calibration() const
{
    qv::Calibration record;
    record.pdcm = {lens};
    record.cameraModels = {std::make_shared<PolynomialModel>(lens)};
    return record;
}

std::vector<PictureRow> rowsWithin(
    const std::vector<PictureRow> &rows, const Timeline &timeline, std::vector<double> &play)
{
    std::vector<PictureRow> within;
    for (const PictureRow &row : rows) {
        const double time = timeline.playTime(row.time);
        if (time < 0 || time >= timeline.duration() || (!play.empty() && time <= play.back()))
            continue;
        within.push_back(row);
        play.push_back(time);
    }
    return within;
}

std::vector<Recording::Frame> framesOf(const std::vector<PictureRow> &rows)
{
    std::vector<Recording::Frame> frames;
    frames.reserve(rows.size());
    for (const PictureRow &row : rows)
        frames.push_back({row.time, {row.file}});
    return frames;
}

} // namespace sim
