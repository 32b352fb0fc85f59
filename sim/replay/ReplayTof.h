#pragma once

#include "device/TofSource.h"
#include "replay/FrameLoader.h"
#include "replay/LoopSchedule.h"
#include "replay/RgbdRecording.h"

#include <atomic>

namespace sim {

/// Recorded depth pictures at the times they were taken, and with each the colour picture that was taken
/// together with it. There is no infrared in such recordings, and settings are refused.
class ReplayTof : public TofSource {
public:
    /// Null if no picture falls into the timeline.
    static std::shared_ptr<ReplayTof> make(const RgbdRecording &recording, const Timeline &timeline);

    std::shared_ptr<const Schedule> schedule() const override { return m_schedule; }
    bool expose(double due, const Wanted &wanted, Frames &frames) override;
    const std::vector<qv::Calibration> &calibration() const override { return m_calibration; }

private:
    ReplayTof(const RgbdRecording &recording, std::vector<PictureRow> rows, std::vector<double> play,
        const Timeline &timeline);

    void matchColors(const RgbdRecording &recording);
    void takeColor(std::size_t index, Frames &frames);

    const std::vector<PictureRow> m_rows;
    const std::shared_ptr<const LoopSchedule> m_schedule;
    const double m_duration;
    const double m_metresPerStep;
    const std::vector<qv::Calibration> m_calibration;
    FrameLoader m_loader;
    std::vector<Recording::Frame> m_colors; ///< those that a depth picture has
    std::vector<std::optional<std::size_t>> m_colorOf; ///< by depth picture, an index into `m_colors`
    std::unique_ptr<FrameLoader> m_colorLoader; ///< from the first time on that colours are wanted
};

} // namespace sim
