#include "replay/FrameLoader.h"

#include "core/Log.h"

#include <algorithm>

namespace sim {

namespace {

constexpr std::size_t ahead = 8; // frames
constexpr std::size_t budget = 128U << 20U; // bytes of decoded pictures

std::size_t sizeOf(const FrameLoader::Pictures &pictures)
{
    std::size_t bytes = 0;
    for (const cv::Mat &picture : pictures)
        bytes += picture.total() * picture.elemSize();
    return bytes;
}

} // namespace

FrameLoader::FrameLoader(std::vector<Recording::Frame> frames, Reader reader)
    : m_frames(std::move(frames))
    , m_reader(std::move(reader))
    , m_thread([this] { work(); })
{
}

FrameLoader::~FrameLoader()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
        m_changed.notify_all();
    }
    m_thread.join();
}

std::shared_ptr<const FrameLoader::Pictures> FrameLoader::frame(std::size_t index)
{
    std::unique_lock lock(m_mutex);
    m_position = index;
    m_changed.notify_all();
    m_changed.wait(lock, [&] { return m_ready.count(index) > 0; });
    return m_ready[index];
}

void FrameLoader::work()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_ending || wanted(); });
        if (m_ending)
            return;
        const std::size_t index = *wanted();
        lock.unlock();
        const std::shared_ptr<const Pictures> pictures = decode(index);
        lock.lock();
        m_ready[index] = pictures;
        m_bytes += pictures ? sizeOf(*pictures) : 0;
        forgetFarthest();
        m_changed.notify_all();
    }
}

/// The next frame, from the position on, that isn't there yet.
std::optional<std::size_t> FrameLoader::wanted() const
{
    for (std::size_t step = 0; step <= std::min(ahead, m_frames.size() - 1); ++step) {
        const std::size_t index = (m_position + step) % m_frames.size();
        if (m_ready.count(index) == 0)
            return index;
    }
    return std::nullopt;
}

std::shared_ptr<const FrameLoader::Pictures> FrameLoader::decode(std::size_t index)
{
    auto pictures = std::make_shared<Pictures>();
    for (const std::filesystem::path &file : m_frames[index].files) {
        try {
            pictures->push_back(m_reader(file));
        } catch (const std::exception &error) {
            if (m_complained.insert(file).second)
                complain(file.string() + ' ' + error.what() + ", its frame is left out");
            return nullptr;
        }
    }
    return pictures;
}

void FrameLoader::forgetFarthest()
{
    const std::size_t count = m_frames.size();
    while (m_bytes > budget && m_ready.size() > ahead + 1) {
        const auto distance = [&](const auto &entry) { return (entry.first + count - m_position) % count; };
        const auto nearer = [&](const auto &a, const auto &b) { return distance(a) < distance(b); };
        const auto farthest = std::max_element(m_ready.begin(), m_ready.end(), nearer);
        m_bytes -= farthest->second ? sizeOf(*farthest->second) : 0;
        m_ready.erase(farthest);
    }
}

} // namespace sim
