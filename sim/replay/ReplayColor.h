#pragma once

#include "device/ColorEncoder.h"
#include "device/ColorSource.h"
#include "replay/FrameLoader.h"
#include "replay/LoopSchedule.h"
#include "replay/RgbdRecording.h"

namespace sim {

/// Recorded colour pictures at the times they were taken. Rate, exposure and size are what they are:
/// settings are refused.
class ReplayColor : public ColorSource {
public:
    /// Null if no picture falls into the timeline.
    static std::shared_ptr<ReplayColor> make(
        const RgbdRecording &recording, const Timeline &timeline, ColorCodec codec);

    std::shared_ptr<const Schedule> schedule() const override { return m_schedule; }
    bool picture(double due, qv::ColorImage &record) override;
    const std::vector<qv::Calibration> &calibration() const override { return m_calibration; }

private:
    ReplayColor(const RgbdRecording &recording, std::vector<PictureRow> rows, std::vector<double> play,
        const Timeline &timeline, ColorCodec codec);

    const std::vector<PictureRow> m_rows;
    const std::shared_ptr<const LoopSchedule> m_schedule;
    const double m_duration;
    const std::vector<qv::Calibration> m_calibration;
    ColorEncoder m_encoder;
    FrameLoader m_loader;
};

} // namespace sim
