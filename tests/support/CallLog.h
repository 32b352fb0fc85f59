#pragma once

#include <mutex>
#include <sstream>
#include <string>
#include <vector>

/// What a fake was asked, in order, as "name" or "name(1, 2.5)". Several fakes may share one log, so that a
/// test sees the order across them. Thread-safe.
class CallLog {
public:
    template <class... Arguments>
    void add(const std::string &name, const Arguments &...arguments)
    {
        std::ostringstream text;
        text << std::boolalpha << name;
        if constexpr (sizeof...(arguments) > 0) {
            const char *separator = "(";
            ((text << separator << arguments, separator = ", "), ...);
            text << ")";
        }
        const std::lock_guard lock(m_mutex);
        m_calls.push_back(text.str());
    }

    std::vector<std::string> calls() const
    {
        const std::lock_guard lock(m_mutex);
        return m_calls;
    }

    /// The calls so far, which are then forgotten.
    std::vector<std::string> take()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_calls, {});
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_calls;
};
