#include "replay/ReplayColor.h"

#include "core/Clock.h"
#include "replay/PictureReader.h"

namespace sim {

std::shared_ptr<ReplayColor> ReplayColor::make(
    const RgbdRecording &recording, const Timeline &timeline, ColorCodec codec)
{
    std::vector<double> play;
    std::vector<PictureRow> rows = rowsWithin(recording.color, timeline, play);
    if (rows.empty())
        return nullptr;
    return std::shared_ptr<ReplayColor>(
        new ReplayColor(recording, std::move(rows), std::move(play), timeline, codec));
}

ReplayColor::ReplayColor(const RgbdRecording &recording, std::vector<PictureRow> rows,
    std::vector<double> play, const Timeline &timeline, ColorCodec codec)
    : m_rows(std::move(rows))
    , m_schedule(std::make_shared<const LoopSchedule>(
          std::move(play), timeline.duration(), timeline.origin(), LoopSchedule::pictureBacklog))
    , m_duration(timeline.duration())
    , m_calibration{recording.calibration()}
    , m_encoder(codec)
    , m_loader(framesOf(m_rows), readColor)
{
}

bool ReplayColor::picture(double due, qv::ColorImage &record)
{
    const LoopSchedule::Place place = m_schedule->at(due);
    const auto pictures = m_loader.frame(place.index);
    if (!pictures)
        return false;
    const cv::Mat &rgb = pictures->front();
    m_encoder.encode(rgb, rgb.size(), record);
    record.edgeTimestampUs =
        m_rows[place.index].time / 1000 + Clock::microseconds(static_cast<double>(place.loop) * m_duration);
    return true;
}

} // namespace sim
