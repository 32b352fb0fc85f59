#include "core/CallbackGate.h"

#include <algorithm>

namespace sim {

bool CallbackGate::enter()
{
    const std::lock_guard lock(m_mutex);
    if (m_closed)
        return false;
    m_inside.push_back(std::this_thread::get_id());
    return true;
}

void CallbackGate::leave()
{
    const std::lock_guard lock(m_mutex);
    m_inside.erase(std::find(m_inside.begin(), m_inside.end(), std::this_thread::get_id()));
    if (m_inside.empty())
        m_left.notify_all();
}

bool CallbackGate::close()
{
    std::unique_lock lock(m_mutex);
    m_closed = true;
    const auto self = std::this_thread::get_id();
    if (std::find(m_inside.begin(), m_inside.end(), self) != m_inside.end())
        return false;
    m_left.wait(lock, [this] { return m_inside.empty(); });
    return true;
}

} // namespace sim
