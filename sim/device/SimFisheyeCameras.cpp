#include "device/SimFisheyeCameras.h"

#include <cstring>

namespace sim {

namespace {

constexpr float slowestFisheyeRate = 1;
constexpr float fastestFisheyeRate = 100;

std::shared_ptr<const unsigned char> plainPicture(std::size_t width, std::size_t height)
{
    const std::shared_ptr<unsigned char> data(
        new unsigned char[width * height], std::default_delete<unsigned char[]>());
    std::memset(data.get(), 96, width * height);
    return data;
}

} // namespace

SimFisheyeCameras::SimFisheyeCameras(
    std::shared_ptr<DeviceState> device, std::shared_ptr<FisheyeSource> source)
    : StreamComponent("fisheye", std::move(device), source->schedule())
    , m_source(std::move(source))
{
}

bool SimFisheyeCameras::needed() const
{
    return m_started || m_holders > 0;
}

bool SimFisheyeCameras::start()
{
    if (!StreamComponent::start())
        return false;
    m_started = true;
    return true;
}

bool SimFisheyeCameras::stop()
{
    if (refuses("stop") && !device().gone())
        return false;
    const bool wasStarted = m_started.exchange(false);
    if (m_holders > 0 && !device().gone())
        return wasStarted;
    const bool stopped = StreamComponent::stop() && wasStarted;
    if (needed()) // someone came in between
        StreamComponent::start();
    return stopped;
}

void SimFisheyeCameras::hold()
{
    ++m_holders;
    StreamComponent::start();
}

void SimFisheyeCameras::release()
{
    --m_holders;
    if (needed())
        return;
    StreamComponent::stop();
    if (needed())
        StreamComponent::start();
}

const std::vector<qv::Calibration> &SimFisheyeCameras::calibration()
{
    return m_source->calibration();
}

bool SimFisheyeCameras::setFramerate(float fps)
{
    if (refuses("setFramerate") || !(fps >= slowestFisheyeRate && fps <= fastestFisheyeRate)
        || !m_source->setRate(fps))
        return false;
    scheduleChanged();
    return true;
}

bool SimFisheyeCameras::setExposure(int aecMode, int gain, float exposureMs)
{
    return !refuses("setExposure") && m_source->setExposure(aecMode == 0, gain, exposureMs);
}

void SimFisheyeCameras::setSync(bool sync)
{
    m_source->setSync(sync);
    scheduleChanged();
}

void SimFisheyeCameras::scheduleChanged()
{
    thread().reschedule();
}

void SimFisheyeCameras::produce(double due, Defect defect)
{
    qv::FisheyeImages record;
    if (device().uvcMode == NoStream || !m_source->pictures(due, record))
        return;
    record.hostTimestamp = Clock::now();
    damage(record, defect);
    deliver(record);
}

/// The record tells no number of bytes, so a short picture is one with fewer rows.
void SimFisheyeCameras::damage(qv::FisheyeImages &record, Defect defect) const
{
    if (defect == Defect::Empty)
        record.images.clear();
    for (qv::FisheyeImage &image : record.images) {
        if (defect == Defect::NullData)
            image.data = nullptr;
        else if (defect == Defect::ZeroSize)
            image.width = image.height = 0;
        else if (defect == Defect::Short)
            image.height /= 2;
        else if (defect == Defect::Resize)
            image = {image.width / 2 + 1, image.height / 2 + 1,
                plainPicture(image.width / 2 + 1, image.height / 2 + 1)};
    }
    if (defect == Defect::Unknown && !record.images.empty())
        record.images.resize(5, record.images.front());
}

} // namespace sim
