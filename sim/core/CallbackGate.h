#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace sim {

/// Lets threads into one callback and tells when all have left it.
class CallbackGate {
public:
    /// False once the gate is closed; otherwise the caller is inside until it calls `leave`.
    bool enter();
    void leave();

    /// Nobody enters from now on. Returns when everybody has left, true; or at once with false when the
    /// calling thread is itself inside, since it would wait for itself.
    bool close();

private:
    std::mutex m_mutex;
    std::condition_variable m_left;
    std::vector<std::thread::id> m_inside;
    bool m_closed = false;
};

} // namespace sim
