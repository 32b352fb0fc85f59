#include "device/SimColorCamera.h"

namespace sim {

namespace {

constexpr float slowestColorRate = 1;
constexpr float fastestColorRate = 60;

} // namespace

SimColorCamera::SimColorCamera(std::shared_ptr<DeviceState> device, std::shared_ptr<ColorSource> source,
    std::shared_ptr<ColorStream> second)
    : ColorStream("color", std::move(device), std::move(source))
    , m_second(std::move(second))
{
}

const std::vector<qv::Calibration> &SimColorCamera::calibration()
{
    return source().calibration();
}

bool SimColorCamera::setFramerate(float fps)
{
    if (refuses("setFramerate") || !(fps >= slowestColorRate && fps <= fastestColorRate)
        || !source().setRate(fps))
        return false;
    scheduleChanged();
    return true;
}

bool SimColorCamera::setExposure(int aecMode, int gain, float exposureMs)
{
    return !refuses("setExposure") && source().setExposure(aecMode == 0, gain, exposureMs);
}

void SimColorCamera::setResolution(const int &resolution)
{
    if (!refuses("setResolution"))
        source().setResolution(resolution);
}

void SimColorCamera::setRgbMode(const int &mode)
{
    if ((mode == 0 || mode == 1) && !refuses("setRgbMode"))
        source().setAutomaticFocus(mode == 0);
}

void SimColorCamera::setRgbDistance(int distance)
{
    if (distance >= 1 && distance <= 255 && !refuses("setRgbDistance"))
        source().setFocusDistance(distance);
}

ColorStream *SimColorCamera::camera(int index)
{
    if (index == 0)
        return this;
    return index == 1 ? m_second.get() : nullptr;
}

void SimColorCamera::startCamera(int index)
{
    if (ColorStream *stream = camera(index))
        stream->start();
}

bool SimColorCamera::stopCamera(int index)
{
    ColorStream *stream = camera(index);
    return stream && stream->stop();
}

int SimColorCamera::registerCallback2(std::function<void(const qv::ColorImage &)> callback)
{
    return m_second ? m_second->registerCallback(std::move(callback)) : -1;
}

void SimColorCamera::unregisterCallback2(int id)
{
    if (m_second)
        m_second->unregisterCallback(id);
}

void SimColorCamera::setSync(bool sync)
{
    ColorStream::setSync(sync);
    if (m_second)
        m_second->setSync(sync);
}

} // namespace sim
