#pragma once

#include "device/qv/Stream.h"

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

/// Keeps the latest records that the device library hands out, beside the program and by no help of it.
template <class Record>
class Recorder {
public:
    Recorder(std::shared_ptr<qv::Stream<Record>> stream, std::size_t most)
        : m_most(most)
        , m_stream(std::move(stream))
        , m_id(m_stream->registerCallback([this](const Record &record) { keep(record); }))
    {
    }
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;
    ~Recorder() { m_stream->unregisterCallback(m_id); }

    /// In the order in which they came.
    std::vector<Record> records() const
    {
        const std::lock_guard lock(m_mutex);
        return {m_records.begin(), m_records.end()};
    }

private:
    void keep(const Record &record)
    {
        const std::lock_guard lock(m_mutex);
        m_records.push_back(record);
        if (m_records.size() > m_most)
            m_records.pop_front();
    }

    mutable std::mutex m_mutex;
    std::deque<Record> m_records;
    const std::size_t m_most;
    const std::shared_ptr<qv::Stream<Record>> m_stream;
    const int m_id;
};
