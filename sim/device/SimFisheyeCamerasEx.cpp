#include "device/SimFisheyeCamerasEx.h"

#include <algorithm>

namespace sim {

namespace {

constexpr std::size_t demoPoints = 100;
constexpr std::size_t debugPoints = 250;

} // namespace

SimFisheyeCamerasEx::SimFisheyeCamerasEx(
    std::shared_ptr<DeviceState> device, std::shared_ptr<FisheyeSource> source)
    : SimFisheyeCameras(std::move(device), std::move(source))
    , m_pointThread("key points", this->source().schedule(), [this](double due) { track(due); })
{
}

int SimFisheyeCamerasEx::registerKeyPoints4Callback(
    std::function<void(const qv::FisheyeKeyPoints<4, 32> &)> callback)
{
    return m_quadCallbacks.add(std::move(callback));
}

int SimFisheyeCamerasEx::registerKeyPoints2Callback(
    std::function<void(const qv::FisheyeKeyPoints<2, 32> &)> callback)
{
    return m_pairCallbacks.add(std::move(callback));
}

void SimFisheyeCamerasEx::unregisterKeyPoints2Callback(int id)
{
    m_pairCallbacks.remove(id);
}

void SimFisheyeCamerasEx::unregisterKeyPoints4Callback(int id)
{
    m_quadCallbacks.remove(id);
}

const std::vector<qv::CalibrationEx> &SimFisheyeCamerasEx::calibrationsAtCurrentResolution()
{
    return source().calibrationsAtCurrentResolution();
}

const std::vector<qv::CalibrationEx> &SimFisheyeCamerasEx::calibrationsAtCalibrationResolution()
{
    return source().calibrationsAtCalibrationResolution();
}

bool SimFisheyeCamerasEx::setResolution(int resolutionMode)
{
    return !refuses("setResolution") && source().setResolution(resolutionMode);
}

void SimFisheyeCamerasEx::aboutToStart()
{
    m_pointThread.start(weak_from_this());
}

void SimFisheyeCamerasEx::stopped()
{
    m_pointThread.stop();
}

void SimFisheyeCamerasEx::scheduleChanged()
{
    SimFisheyeCameras::scheduleChanged();
    m_pointThread.reschedule();
}

std::size_t SimFisheyeCamerasEx::pointLimit() const
{
    if (device().imuMode == ImuOnly)
        return 0;
    switch (device().uvcMode) {
    case Demo:
    case DemoWithPoints:
        return demoPoints;
    case Debug:
    case DebugWithPoints:
        return debugPoints;
    default:
        return 0;
    }
}

void SimFisheyeCamerasEx::track(double due)
{
    if (device().gone()) {
        m_pointThread.halt();
        return;
    }
    const std::size_t limit = pointLimit();
    if (limit == 0)
        return;
    if (source().cameraCount() > 2)
        deliverPoints(due, limit, m_quadCallbacks);
    else
        deliverPoints(due, limit, m_pairCallbacks);
}

template <std::size_t N>
void SimFisheyeCamerasEx::deliverPoints(
    double due, std::size_t limit, Callbacks<const qv::FisheyeKeyPoints<N, 32> &> &callbacks)
{
    if (callbacks.empty())
        return;
    const FisheyeSource::KeyPoints points = source().keyPoints(due, limit);
    if (points.empty())
        return;
    qv::FisheyeKeyPoints<N, 32> record;
    record.hostTimestamp = Clock::now();
    record.edgeTimestampUs = Clock::microseconds(due);
    for (std::size_t camera = 0; camera < std::min(N, points.size()); ++camera) {
        const std::vector<float> &list = points[camera];
        const std::shared_ptr<float> data(new float[list.size() + 1], std::default_delete<float[]>());
        std::copy(list.begin(), list.end(), data.get());
        record.descriptors[camera] = {static_cast<unsigned int>(list.size() / 2), data};
    }
    callbacks.call(record);
}

} // namespace sim
