#include "device/MapSwitch.h"

#include "core/Clock.h"
#include "core/Log.h"
#include "core/RateSchedule.h"
#include "device/MapFile.h"

#include <algorithm>
#include <vector>

namespace sim {

namespace {

constexpr double stepRate = 200; // per second
constexpr int stepsPerLook = 20;
constexpr int settledSteps = 120; // with all localised, before the end
constexpr std::size_t leastLandmarks = 100;
constexpr double longestGathering = 5; // seconds
constexpr double longestSearch = 15; // seconds
constexpr double gainPerLook = 0.15; // if all that is seen is in the map
constexpr double localizedShare = 1;
constexpr double stepOfProgress = 0.005;
constexpr std::size_t pieces = 60; // of a file
constexpr std::size_t leastPiece = 1024; // bytes

void callGuarded(const MapSwitch::Done &done, int status, int quality)
{
    if (!done)
        return;
    try {
        done(status, quality);
    } catch (...) {
        log(LogLevel::Error, "the end of a map's save or load threw");
    }
}

} // namespace

struct MapSwitch::Task {
    enum class Phase { Gather, Write, Localize, Settle, Over };

    Phase phase = Phase::Localize;
    StoredMap map;
    std::streambuf *stream = nullptr;
    std::string bytes;
    std::size_t written = 0;
    std::vector<Done> done;
    Progress progress;
    double phaseStart = Clock::now();
    double found = 0; ///< evidence of being in the map, 1 is enough
    double shown = 0; ///< what has been told of it, which follows more slowly
    bool switched = false;
    int steps = 0;
    int status = Success;
    int quality = 0;

    bool saves() const { return stream != nullptr; }
    void enter(Phase next)
    {
        phase = next;
        phaseStart = Clock::now();
        steps = 0;
    }
    void end(int endStatus, int endQuality)
    {
        status = endStatus;
        quality = endQuality;
        phase = Phase::Over;
    }
    void tell() const
    {
        if (!progress)
            return;
        const double fileShare =
            bytes.empty() ? 0 : static_cast<double>(written) / static_cast<double>(bytes.size());
        progress(static_cast<float>(saves() ? (fileShare + shown) / 2 : shown));
    }
};

MapSwitch::MapSwitch(Device device)
    : m_device(std::move(device))
    , m_thread("map switch", std::make_shared<RateSchedule>(stepRate), [this](double) { tick(); })
{
}

MapSwitch::~MapSwitch()
{
    cancel();
}

void MapSwitch::report(const Done &done, int status, int quality)
{
    if (!done)
        return;
    std::thread([&] { callGuarded(done, status, quality); }).join();
}

bool MapSwitch::load(StoredMap map, Done done, Progress progress, const std::weak_ptr<void> &owner)
{
    const std::shared_ptr<Task> before = current();
    if (before && before->saves())
        return false;
    cancel();
    auto task = std::make_shared<Task>();
    task->map = std::move(map);
    task->done.push_back(std::move(done));
    task->progress = std::move(progress);
    begin(task, owner);
    return true;
}

bool MapSwitch::save(std::streambuf &stream, Done done, Progress progress, const std::weak_ptr<void> &owner)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_task && m_task->stream == &stream) {
            m_task->done.push_back(std::move(done));
            return true;
        }
    }
    if (const auto before = current(); before && before->saves()) {
        report(done, Refused, 0);
        return false;
    }
    cancel();
    auto task = std::make_shared<Task>();
    task->stream = &stream;
    task->phase = Task::Phase::Gather;
    task->done.push_back(std::move(done));
    task->progress = std::move(progress);
    begin(task, owner);
    return true;
}

void MapSwitch::cancel()
{
    m_thread.stop();
    for (const Done &done : take(current()))
        report(done, Interrupted, 0);
}

std::shared_ptr<MapSwitch::Task> MapSwitch::current() const
{
    const std::lock_guard lock(m_mutex);
    return m_task;
}

void MapSwitch::begin(const std::shared_ptr<Task> &task, const std::weak_ptr<void> &owner)
{
    {
        const std::lock_guard lock(m_mutex);
        m_task = task;
    }
    m_thread.start(owner);
}

/// Whoever takes the task away tells its end, so it is told once.
std::vector<MapSwitch::Done> MapSwitch::take(const std::shared_ptr<Task> &task)
{
    const std::lock_guard lock(m_mutex);
    if (!task || m_task != task)
        return {};
    m_task = nullptr;
    return std::move(task->done);
}

void MapSwitch::tick()
{
    const std::shared_ptr<Task> task = current();
    if (!task) {
        m_thread.halt();
        return;
    }
    ++task->steps;
    if (!m_device.present()) {
        task->end(Interrupted, 0);
    } else if (task->phase == Task::Phase::Gather) {
        gather(*task);
    } else if (task->phase == Task::Phase::Write) {
        write(*task);
    } else if (task->phase == Task::Phase::Localize) {
        localize(*task);
    } else {
        settle(*task);
    }
    if (task->phase == Task::Phase::Over) {
        m_thread.halt();
        for (const Done &done : take(task))
            callGuarded(done, task->status, task->quality);
    } else {
        task->tell();
    }
}

/// A map that has only just been begun needs a moment before it is worth a file.
void MapSwitch::gather(Task &task)
{
    if (task.steps % stepsPerLook != 1)
        return;
    task.map = m_device.store();
    if (task.map.landmarks.size() < leastLandmarks) {
        if (Clock::now() - task.phaseStart > longestGathering)
            task.end(NotFound, 0);
        return;
    }
    task.bytes = MapFile::encode(task.map);
    if (m_device.damages())
        task.bytes[task.bytes.size() / 2] ^= 0x10;
    task.enter(Task::Phase::Write);
}

void MapSwitch::write(Task &task)
{
    const std::size_t piece =
        std::min(std::max(leastPiece, task.bytes.size() / pieces + 1), task.bytes.size() - task.written);
    const auto size = static_cast<std::streamsize>(piece);
    try {
        const bool written = task.stream->sputn(task.bytes.data() + task.written, size) == size;
        task.written += piece;
        const bool complete = task.written == task.bytes.size();
        if (!written || (complete && task.stream->pubsync() != 0))
            task.end(NotWritten, 0);
        else if (complete)
            task.enter(Task::Phase::Localize);
    } catch (...) {
        task.end(NotWritten, 0);
    }
}

void MapSwitch::localize(Task &task)
{
    task.shown = std::min(task.found, task.shown + stepOfProgress);
    if (task.steps % stepsPerLook == 1 && !task.switched) {
        const auto match = m_device.look(task.map);
        if (match && match->mapFromWorld) {
            task.found = std::min(localizedShare, task.found + gainPerLook * match->share);
            if (task.found >= localizedShare) {
                task.switched = true;
                m_device.localized(task.map, *match->mapFromWorld, !task.saves());
            }
        }
    }
    if (task.shown >= localizedShare)
        task.enter(Task::Phase::Settle);
    else if (!task.switched && Clock::now() - task.phaseStart > longestSearch)
        task.end(NotFound, task.saves() ? task.map.quality : 0);
}

/// The full share is told for a while: not everybody looks at each call.
void MapSwitch::settle(Task &task)
{
    if (task.steps > settledSteps)
        task.end(Success, task.map.quality);
}

} // namespace sim
