#include "replay/ReplayTof.h"

#include "core/Clock.h"
#include "replay/PictureReader.h"

namespace sim {

std::shared_ptr<ReplayTof> ReplayTof::make(const RgbdRecording &recording, const Timeline &timeline)
{
    std::vector<double> play;
    std::vector<PictureRow> rows = rowsWithin(recording.depth, timeline, play);
    if (rows.empty())
        return nullptr;
    return std::shared_ptr<ReplayTof>(new ReplayTof(recording, std::move(rows), std::move(play), timeline));
}

ReplayTof::ReplayTof(const RgbdRecording &recording, std::vector<PictureRow> rows, std::vector<double> play,
    const Timeline &timeline)
    : m_rows(std::move(rows))
    , m_schedule(std::make_shared<const LoopSchedule>(
          std::move(play), timeline.duration(), timeline.origin(), LoopSchedule::pictureBacklog))
    , m_duration(timeline.duration())
    , m_metresPerStep(1 / recording.depthScale)
    , m_calibration{recording.calibration()}
    , m_loader(framesOf(m_rows), readDepth)
{
    matchColors(recording);
}

void ReplayTof::matchColors(const RgbdRecording &recording)
{
    m_colorOf.resize(m_rows.size());
    if (recording.color.empty())
        return;
    const std::int64_t limit = togetherLimit(recording.color);
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (const PictureRow *match = nearestPicture(recording.color, m_rows[i].time, limit)) {
            m_colorOf[i] = m_colors.size();
            m_colors.push_back({match->time, {match->file}});
        }
    }
}

bool ReplayTof::expose(double due, const Wanted &wanted, Frames &frames)
{
    const LoopSchedule::Place place = m_schedule->at(due);
    const auto pictures = m_loader.frame(place.index);
    if (!pictures)
        return false;
    pictures->front().convertTo(frames.depth, CV_32F, m_metresPerStep);
    frames.infrared.release();
    frames.color.release();
    if (wanted.color)
        takeColor(place.index, frames);
    frames.edgeTimestampUs =
        m_rows[place.index].time / 1000 + Clock::microseconds(static_cast<double>(place.loop) * m_duration);
    return true;
}

/// Only where the pictures lie over each other, as these recordings have them.
void ReplayTof::takeColor(std::size_t index, Frames &frames)
{
    if (!m_colorOf[index])
        return;
    if (!m_colorLoader)
        m_colorLoader = std::make_unique<FrameLoader>(m_colors, readColor);
    const auto pictures = m_colorLoader->frame(*m_colorOf[index]);
    if (pictures && pictures->front().size() == frames.depth.size())
        frames.color = pictures->front();
}

} // namespace sim
