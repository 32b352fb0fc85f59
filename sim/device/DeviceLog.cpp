#include "device/DeviceLog.h"

#include "core/Clock.h"

#include <cstdio>

namespace sim {

namespace {

constexpr std::size_t capacity = 4096;

} // namespace

void DeviceLog::add(const std::string &line)
{
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, "[%10.3f] ", Clock::now());
    const std::lock_guard lock(m_mutex);
    m_text += stamp + line + '\n';
    if (m_text.size() > capacity)
        m_text.erase(0, m_text.find('\n', m_text.size() - capacity) + 1);
}

std::string DeviceLog::take(std::size_t size)
{
    const std::lock_guard lock(m_mutex);
    std::size_t next = m_text.rfind('\n', size);
    if (next != std::string::npos) {
        size = next++;
    } else {
        // A reader takes a piece of one character for none.
        if (m_text.find('\n') == size + 1)
            --size;
        next = size;
    }
    std::string piece = m_text.substr(0, size);
    m_text.erase(0, next);
    return piece;
}

} // namespace sim
