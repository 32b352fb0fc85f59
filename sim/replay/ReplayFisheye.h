#pragma once

#include "device/FisheyeSource.h"
#include "replay/FrameLoader.h"
#include "replay/LoopSchedule.h"
#include "replay/Timeline.h"

namespace sim {

/// Recorded pictures, pixel for pixel, at the times they were taken. The recording's rate, exposure and size
/// are what they are: settings are refused. There are no key points in such recordings.
class ReplayFisheye : public FisheyeSource {
public:
    ReplayFisheye(const Recording &recording, const Timeline &timeline);

    std::shared_ptr<const Schedule> schedule() const override { return m_schedule; }
    std::size_t cameraCount() const override { return m_calibration.size(); }
    bool pictures(double due, qv::FisheyeImages &record) override;
    KeyPoints keyPoints(double, std::size_t) override { return {}; }

    const std::vector<qv::Calibration> &calibration() const override { return m_calibration; }
    const std::vector<qv::CalibrationEx> &calibrationsAtCurrentResolution() const override
    {
        return m_calibrationEx;
    }
    const std::vector<qv::CalibrationEx> &calibrationsAtCalibrationResolution() const override
    {
        return m_calibrationEx;
    }

private:
    const std::shared_ptr<const LoopSchedule> m_schedule;
    std::vector<std::int64_t> m_times;
    const double m_duration;
    std::vector<qv::CalibrationEx> m_calibrationEx;
    std::vector<qv::Calibration> m_calibration;
    FrameLoader m_loader;
};

} // namespace sim
