#include "core/StreamThread.h"

#include "core/Clock.h"
#include "core/Log.h"

#include <algorithm>
#include <optional>
#include <pthread.h>

namespace sim {

/// One start and what belongs to it; the thread holds it too, so that it may outlive its StreamThread.
struct StreamThread::Run {
    std::string name;
    std::shared_ptr<const Schedule> schedule;
    Tick tick;
    std::thread thread;
    std::mutex mutex;
    std::condition_variable changed;
    bool halted = false;
    bool rescheduled = false;

    enum class Wake { Due, Rescheduled, Halted };

    Wake waitUntil(double due)
    {
        std::unique_lock lock(mutex);
        changed.wait_until(lock, Clock::at(due), [this] { return halted || rescheduled; });
        if (halted)
            return Wake::Halted;
        return std::exchange(rescheduled, false) ? Wake::Rescheduled : Wake::Due;
    }

    void signal(bool Run::*flag)
    {
        const std::lock_guard lock(mutex);
        this->*flag = true;
        changed.notify_all();
    }

    void tickGuarded(double due) const
    {
        try {
            tick(due);
        } catch (const std::exception &error) {
            log(LogLevel::Error, name + ": " + error.what());
        } catch (...) {
            log(LogLevel::Error, name + ": something that is no exception was thrown");
        }
    }
};

StreamThread::StreamThread(std::string name, std::shared_ptr<const Schedule> schedule, Tick tick)
    : m_name(std::move(name))
    , m_schedule(std::move(schedule))
    , m_tick(std::move(tick))
{
}

StreamThread::~StreamThread()
{
    halt();
    for (const std::shared_ptr<Run> &run : takeFinished(true)) {
        // The last owner may go inside its own callback: the thread then ends by itself.
        if (run->thread.get_id() == std::this_thread::get_id())
            run->thread.detach();
        else
            run->thread.join();
    }
}

bool StreamThread::start(const std::weak_ptr<void> &owner)
{
    for (const std::shared_ptr<Run> &run : takeFinished(false))
        run->thread.join();
    const std::lock_guard lock(m_mutex);
    if (m_run)
        return true;
    auto run = std::make_shared<Run>();
    run->name = m_name;
    run->schedule = m_schedule;
    run->tick = m_tick;
    run->thread = std::thread([run, owner] { loop(run, owner); });
    m_run = run;
    return true;
}

bool StreamThread::stop()
{
    const bool wasRunning = halt();
    for (const std::shared_ptr<Run> &run : takeFinished(false))
        run->thread.join();
    return wasRunning;
}

bool StreamThread::halt()
{
    const std::lock_guard lock(m_mutex);
    return haltLocked();
}

bool StreamThread::haltLocked()
{
    if (!m_run)
        return false;
    m_run->signal(&Run::halted);
    m_finished.push_back(std::move(m_run));
    m_run = nullptr;
    return true;
}

bool StreamThread::running() const
{
    const std::lock_guard lock(m_mutex);
    return m_run != nullptr;
}

void StreamThread::reschedule()
{
    const std::lock_guard lock(m_mutex);
    if (m_run)
        m_run->signal(&Run::rescheduled);
}

void StreamThread::sleep(double seconds)
{
    std::shared_ptr<Run> run;
    {
        const std::lock_guard lock(m_mutex);
        run = m_run;
    }
    if (!run)
        return;
    std::unique_lock lock(run->mutex);
    run->changed.wait_until(lock, Clock::at(Clock::now() + seconds), [&run] { return run->halted; });
}

/// The runs to wait for; that of the calling thread stays, since nobody can wait for himself.
std::vector<std::shared_ptr<StreamThread::Run>> StreamThread::takeFinished(bool ownToo)
{
    const std::lock_guard lock(m_mutex);
    const auto self = std::this_thread::get_id();
    const auto stays = [&](const std::shared_ptr<Run> &run) {
        return !ownToo && run->thread.get_id() == self;
    };
    const auto taken = std::stable_partition(m_finished.begin(), m_finished.end(), stays);
    std::vector<std::shared_ptr<Run>> result(taken, m_finished.end());
    m_finished.erase(taken, m_finished.end());
    return result;
}

void StreamThread::loop(const std::shared_ptr<Run> &run, const std::weak_ptr<void> &owner)
{
    pthread_setname_np(pthread_self(), run->name.substr(0, 15).c_str());
    std::optional<double> last;
    double due = run->schedule->first(Clock::now());
    for (;;) {
        const Run::Wake wake = run->waitUntil(due);
        if (wake == Run::Wake::Halted)
            return;
        if (wake == Run::Wake::Rescheduled) {
            due = last ? run->schedule->next(*last, Clock::now()) : run->schedule->first(Clock::now());
            continue;
        }
        const std::shared_ptr<void> alive = owner.lock();
        if (!alive)
            return;
        run->tickGuarded(due);
        last = due;
        due = run->schedule->next(due, Clock::now());
    }
}

} // namespace sim
