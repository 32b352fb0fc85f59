#pragma once

#include "support/Wait.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

/// Keeps the records that a stream delivers, for tests that wait for them.
template <class Record>
class Records {
public:
    void add(const Record &record)
    {
        const std::lock_guard lock(m_mutex);
        m_records.push_back(record);
    }

    std::size_t count() const
    {
        const std::lock_guard lock(m_mutex);
        return m_records.size();
    }

    std::vector<Record> all() const
    {
        const std::lock_guard lock(m_mutex);
        return m_records;
    }

    Record last() const
    {
        const std::lock_guard lock(m_mutex);
        return m_records.back();
    }

    void clear()
    {
        const std::lock_guard lock(m_mutex);
        m_records.clear();
    }

    /// Waits until `more` records have come after those there are now.
    bool waitForMore(std::size_t more)
    {
        const std::size_t wanted = count() + more;
        return waitFor([&] { return count() >= wanted; });
    }

    /// Whether no record was due after that time, in microseconds of the clock.
    bool noneDueAfter(std::int64_t time) const
    {
        const std::lock_guard lock(m_mutex);
        const auto later = [time](const Record &record) { return record.edgeTimestampUs > time; };
        return std::none_of(m_records.begin(), m_records.end(), later);
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Record> m_records;
};

/// Registers with a stream for as long as it lives.
template <class Record, class Stream>
class Tap : public Records<Record> {
public:
    explicit Tap(std::shared_ptr<Stream> stream)
        : m_stream(std::move(stream))
        , m_id(m_stream->registerCallback([this](const Record &record) { this->add(record); }))
    {
    }
    ~Tap() { m_stream->unregisterCallback(m_id); }
    Tap(const Tap &) = delete;
    Tap &operator=(const Tap &) = delete;

private:
    std::shared_ptr<Stream> m_stream;
    int m_id;
};
