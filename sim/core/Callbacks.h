#pragma once

#include "core/CallbackGate.h"
#include "core/Log.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace sim {

/// The callbacks registered for one kind of record, e.g. `Callbacks<const qv::Imu &>`.
/// Thread-safe; callbacks may add and remove callbacks, themselves included.
template <class... Args>
class Callbacks {
public:
    using Function = std::function<void(Args...)>;

    /// Ids start at 0 and are never used twice; -1 for an empty function.
    int add(Function function)
    {
        if (!function)
            return -1;
        const std::lock_guard lock(m_mutex);
        auto entries = std::make_shared<Entries>(*m_entries);
        entries->push_back(std::make_shared<Entry>(m_nextId, std::move(function)));
        m_entries = std::move(entries);
        return m_nextId++;
    }

    /// Returns only when no call of that id is running any more, unless called from inside it.
    /// -1 and ids that are not registered are harmless, and answered by false.
    bool remove(int id)
    {
        const std::shared_ptr<Entry> entry = take(id);
        if (entry && entry->gate.close())
            entry->function = nullptr; // what it holds goes here, not on a thread of the library
        return entry != nullptr;
    }

    /// Calls every callback in the order of registration; what one throws ends there. Takes no memory.
    void call(Args... args) const
    {
        const std::shared_ptr<const Entries> entries = snapshot();
        for (const std::shared_ptr<Entry> &entry : *entries) {
            if (!entry->gate.enter())
                continue;
            callGuarded(entry->function, args...);
            entry->gate.leave();
        }
    }

    bool empty() const { return snapshot()->empty(); }

private:
    struct Entry {
        Entry(int entryId, Function entryFunction)
            : id(entryId)
            , function(std::move(entryFunction))
        {
        }

        const int id;
        Function function;
        CallbackGate gate;
    };
    using Entries = std::vector<std::shared_ptr<Entry>>;

    static void callGuarded(const Function &function, Args... args)
    {
        try {
            function(args...);
        } catch (const std::exception &error) {
            log(LogLevel::Error, std::string("a callback threw: ") + error.what());
        } catch (...) {
            log(LogLevel::Error, "a callback threw something that is no exception");
        }
    }

    std::shared_ptr<const Entries> snapshot() const
    {
        const std::lock_guard lock(m_mutex);
        return m_entries;
    }

    std::shared_ptr<Entry> take(int id)
    {
        const std::lock_guard lock(m_mutex);
        const auto has = [id](const std::shared_ptr<Entry> &entry) { return entry->id == id; };
        const auto found = std::find_if(m_entries->begin(), m_entries->end(), has);
        if (found == m_entries->end())
            return nullptr;
        std::shared_ptr<Entry> entry = *found;
        auto entries = std::make_shared<Entries>(*m_entries);
        entries->erase(entries->begin() + (found - m_entries->begin()));
        m_entries = std::move(entries);
        return entry;
    }

    mutable std::mutex m_mutex;
    std::shared_ptr<const Entries> m_entries = std::make_shared<Entries>();
    int m_nextId = 0;
};

} // namespace sim
