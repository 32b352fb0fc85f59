#pragma once

#include "core/Schedule.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace sim {

/// Runs a function at the times of a schedule, on a thread of its own. Everything may be called from inside
/// that function too, also the destructor.
class StreamThread {
public:
    /// Gets the time at which it was due.
    using Tick = std::function<void(double due)>;

    StreamThread(std::string name, std::shared_ptr<const Schedule> schedule, Tick tick);
    ~StreamThread();
    StreamThread(const StreamThread &) = delete;
    StreamThread &operator=(const StreamThread &) = delete;

    /// Keeps `owner` alive during each tick and ends when it has gone. True also if it runs already.
    bool start(const std::weak_ptr<void> &owner);
    /// No tick runs after the return, unless called from a tick. False if it isn't running.
    bool stop();
    /// As `stop`, without waiting for the tick that may be running.
    bool halt();
    bool running() const;

    /// The schedule has changed: a longer wait is cut short.
    void reschedule();
    /// For ticks: waits, but no longer than until the thread is stopped.
    void sleep(double seconds);

private:
    struct Run;

    static void loop(const std::shared_ptr<Run> &run, const std::weak_ptr<void> &owner);
    bool haltLocked();
    std::vector<std::shared_ptr<Run>> takeFinished(bool ownToo);

    const std::string m_name;
    const std::shared_ptr<const Schedule> m_schedule;
    const Tick m_tick;
    mutable std::mutex m_mutex;
    std::shared_ptr<Run> m_run;
    std::vector<std::shared_ptr<Run>> m_finished;
};

} // namespace sim
