#include "device/SimVsc.h"

#include "device/SgbmFrames.h"

#include <algorithm>
#include <cstring>

namespace sim {

namespace {

constexpr double vscPhase = 0.66;

enum SgbmType { DisparityFrame = 0, DepthFrame = 1, UnknownFrame = 9 };

/// A buffer of its own, so that nobody gets away with reading more than the record holds.
std::shared_ptr<const unsigned char> firstBytes(const qv::SgbmImage &record, unsigned int size)
{
    const std::shared_ptr<unsigned char> data(
        new unsigned char[size], std::default_delete<unsigned char[]>());
    std::memcpy(data.get(), record.data.get(), std::min(size, record.dataSize));
    return data;
}

} // namespace

SimVsc::SimVsc(std::shared_ptr<DeviceState> device, std::shared_ptr<const SharedWorld> world, FisheyeRig rig,
    cv::Size vga, double rate)
    : SimVsc(std::move(device), std::move(world), std::move(rig), vga,
        std::make_shared<RateSchedule>(rate, vscPhase))
{
}

SimVsc::SimVsc(std::shared_ptr<DeviceState> device, std::shared_ptr<const SharedWorld> world, FisheyeRig rig,
    cv::Size vga, std::shared_ptr<RateSchedule> schedule)
    : StreamComponent("vsc", std::move(device), schedule)
    , m_vga(vga)
    , m_rate(schedule->rate())
    , m_schedule(std::move(schedule))
    , m_matcher(std::move(world), std::move(rig))
{
}

bool SimVsc::start(const qv::SgbmConfig &config)
{
    if (refuses("start"))
        return false;
    {
        const std::lock_guard lock(m_mutex);
        m_config = config;
    }
    m_schedule->setRate(config.source == 0 ? m_rate : m_rate / 2);
    thread().reschedule();
    return start();
}

bool SimVsc::setResolution(const int &resolution)
{
    if (refuses("setResolution") || (resolution != Vga && resolution != Hd))
        return false;
    m_resolution = resolution;
    return true;
}

void SimVsc::setSync(bool sync)
{
    m_schedule->setPhase(sync ? 0 : vscPhase);
    thread().reschedule();
}

qv::SgbmConfig SimVsc::config() const
{
    const std::lock_guard lock(m_mutex);
    return m_config;
}

void SimVsc::produce(double due, Defect defect)
{
    if (callbacks().empty())
        return;
    const qv::SgbmConfig settings = config();
    const cv::Size size = m_resolution == Hd ? cv::Size(1280, 720) : m_vga;
    m_matcher.match(
        due, {size, settings.enableDewarp != 0, effectiveZoom(settings), settings.source != 0}, m_z);
    const SgbmFrames frames(settings, size.width);
    std::vector<qv::SgbmImage> records;
    if (settings.enableDisparity != 0)
        records.push_back(disparityFrame(due, frames));
    if (settings.enableDepth != 0)
        records.push_back(depthFrame(due, frames));
    // Last of all, since a callback may start the stream anew, on another thread.
    for (qv::SgbmImage &frame : records)
        send(frame, defect);
}

qv::SgbmImage SimVsc::disparityFrame(double due, const SgbmFrames &frames)
{
    const auto buffer = m_disparityPool.take(m_z.total() * (frames.fine() ? 2 : 1));
    cv::Mat samples(m_z.size(), frames.fine() ? CV_16UC1 : CV_8UC1, buffer.get());
    frames.disparity(m_z, samples);
    return record(due, DisparityFrame, samples, buffer);
}

qv::SgbmImage SimVsc::depthFrame(double due, const SgbmFrames &frames)
{
    const auto buffer = m_depthPool.take(m_z.total() * 2);
    cv::Mat samples(m_z.size(), CV_16UC1, buffer.get());
    frames.depth(m_z, samples);
    return record(due, DepthFrame, samples, buffer);
}

/// The confidence is the share of pixels that have been matched.
qv::SgbmImage SimVsc::record(
    double due, int type, const cv::Mat &samples, std::shared_ptr<const unsigned char> data)
{
    qv::SgbmImage image;
    image.type = type;
    image.width = static_cast<std::size_t>(samples.cols);
    image.height = static_cast<std::size_t>(samples.rows);
    image.confidence = static_cast<double>(cv::countNonZero(samples)) / static_cast<double>(samples.total());
    image.data = std::move(data);
    image.dataSize = static_cast<unsigned int>(samples.total() * samples.elemSize());
    image.edgeTimestampUs = Clock::microseconds(due);
    return image;
}

void SimVsc::send(qv::SgbmImage &record, Defect defect) const
{
    damage(record, defect);
    record.hostTimestamp = Clock::now();
    deliver(record);
}

void SimVsc::damage(qv::SgbmImage &record, Defect defect)
{
    if (defect == Defect::NullData || defect == Defect::Empty)
        record.data = nullptr;
    if (defect == Defect::Empty)
        record.dataSize = 0;
    if (defect == Defect::ZeroSize)
        record.width = record.height = 0;
    if (defect == Defect::Unknown)
        record.type = UnknownFrame;
    if (defect == Defect::Short) {
        record.data = firstBytes(record, record.dataSize / 2);
        record.dataSize /= 2;
    }
    if (defect == Defect::Resize) {
        const auto sample = static_cast<unsigned int>(record.dataSize / (record.width * record.height));
        record.width = record.width / 2 + 1;
        record.height = record.height / 2 + 1;
        record.dataSize = static_cast<unsigned int>(record.width * record.height) * sample;
        record.data = firstBytes(record, record.dataSize);
    }
}

} // namespace sim
