#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

/// The callbacks of one kind that a fake holds. Never waits for a running callback, so that a test can
/// deliver a record that is on its way while its receiver goes. Thread-safe.
template <class... Arguments>
class FakeCallbacks {
public:
    using Callback = std::function<void(Arguments...)>;

    /// Ids count up from the first one; kinds that start apart can't be taken for each other.
    explicit FakeCallbacks(int firstId = 1)
        : m_nextId(firstId)
    {
    }

    int add(Callback callback)
    {
        const std::lock_guard lock(m_mutex);
        if (refuses)
            return -1;
        m_callbacks[m_nextId] = std::move(callback);
        return m_nextId++;
    }

    bool remove(int id)
    {
        const std::lock_guard lock(m_mutex);
        return m_callbacks.erase(id) > 0;
    }

    /// Calls every callback, on the calling thread.
    void deliver(Arguments... arguments) const
    {
        for (const Callback &callback : held())
            callback(arguments...);
    }

    std::size_t count() const { return held().size(); }

    /// The callbacks as they are now; to be called later, as a library does whose call is on its way.
    std::vector<Callback> held() const
    {
        const std::lock_guard lock(m_mutex);
        std::vector<Callback> callbacks;
        for (const auto &[id, callback] : m_callbacks)
            callbacks.push_back(callback);
        return callbacks;
    }

    bool refuses = false; ///< answer -1 to every registration

private:
    mutable std::mutex m_mutex;
    std::map<int, Callback> m_callbacks;
    int m_nextId;
};
