#pragma once

#include <memory>
#include <mutex>
#include <shared_mutex>
#include <utility>

/// Keeps the callbacks that a model gives to the device library from outliving it. A callback that is still
/// on its way when the model dies finds the guard closed and does nothing; `close` waits for those that run.
class CallbackGuard {
public:
    CallbackGuard() = default;
    CallbackGuard(const CallbackGuard &) = delete;
    CallbackGuard &operator=(const CallbackGuard &) = delete;
    ~CallbackGuard() { close(); }

    /// `function` as a callback that runs only while this guard is open. Callbacks of one guard may run at
    /// the same time as each other; what `function` throws reaches its caller.
    template <class Function>
    auto wrap(Function function) const
    {
        return [state = m_state, function = std::move(function)](auto &&...arguments) {
            const std::shared_lock lock(state->mutex);
            if (state->open)
                function(std::forward<decltype(arguments)>(arguments)...);
        };
    }

    /// To be called in the destructor of the model before it touches what the callbacks use, never from
    /// inside a callback of this guard.
    void close()
    {
        const std::unique_lock lock(m_state->mutex);
        m_state->open = false;
    }

private:
    struct State {
        std::shared_mutex mutex;
        bool open = true;
    };

    std::shared_ptr<State> m_state = std::make_shared<State>();
};
