#include "replay/ReplayFisheye.h"

#include "core/Clock.h"
#include "replay/PictureReader.h"
#include "replay/ReplayCalibration.h"

namespace sim {

ReplayFisheye::ReplayFisheye(const Recording &recording, const Timeline &timeline)
    : m_schedule(std::make_shared<const LoopSchedule>(
        timeline.playTimes(), timeline.duration(), timeline.origin(), LoopSchedule::pictureBacklog))
    , m_duration(timeline.duration())
    , m_loader(recording.frames, readGrey)
{
    for (const Recording::Frame &frame : recording.frames)
        m_times.push_back(frame.time);
    for (const SensorYaml &sensor : recording.cameras)
        m_calibrationEx.push_back(calibrationFrom(sensor));
    m_calibration.assign(m_calibrationEx.begin(), m_calibrationEx.end());
}

bool ReplayFisheye::pictures(double due, qv::FisheyeImages &record)
{
    const LoopSchedule::Place place = m_schedule->at(due);
    const auto pictures = m_loader.frame(place.index);
    if (!pictures)
        return false;
    for (const cv::Mat &picture : *pictures)
        record.images.push_back(fisheyeImage(picture));
    // Later loops go on in time, as a device's clock does.
    record.edgeTimestampUs =
        m_times[place.index] / 1000 + Clock::microseconds(static_cast<double>(place.loop) * m_duration);
    return true;
}

} // namespace sim
