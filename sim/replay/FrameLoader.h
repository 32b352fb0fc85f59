#pragma once

#include "replay/Recording.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <opencv2/core.hpp>
#include <optional>
#include <set>
#include <thread>

namespace sim {

/// Decodes a recording's pictures ahead of their time on a thread of its own, so that playback keeps its
/// rate. Short recordings stay decoded, of long ones a few frames. Thread-safe.
class FrameLoader {
public:
    using Pictures = std::vector<cv::Mat>;
    /// Reads one file; throws std::runtime_error with a text for people.
    using Reader = std::function<cv::Mat(const std::filesystem::path &)>;

    FrameLoader(std::vector<Recording::Frame> frames, Reader reader);
    ~FrameLoader();
    FrameLoader(const FrameLoader &) = delete;
    FrameLoader &operator=(const FrameLoader &) = delete;

    /// The pictures of a frame; waits for the decoder. Null if one of them is missing or broken, which is
    /// complained about once.
    std::shared_ptr<const Pictures> frame(std::size_t index);

private:
    void work();
    std::optional<std::size_t> wanted() const;
    std::shared_ptr<const Pictures> decode(std::size_t index);
    void forgetFarthest();

    const std::vector<Recording::Frame> m_frames;
    const Reader m_reader;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<std::size_t, std::shared_ptr<const Pictures>> m_ready;
    std::size_t m_bytes = 0;
    std::size_t m_position = 0; ///< the frame that was asked for last
    bool m_ending = false;
    std::set<std::filesystem::path> m_complained; ///< of the decoder's thread
    std::thread m_thread;
};

} // namespace sim
