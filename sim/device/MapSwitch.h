#pragma once

#include "core/StreamThread.h"
#include "device/SlamMapper.h"

#include <functional>
#include <memory>
#include <mutex>
#include <streambuf>
#include <vector>

namespace sim {

/// Saves and loads maps beside the running poses: writes the file piece by piece or takes a loaded map, looks
/// about until the device has found itself in it, and says so. Each request ends with its `done`, once, on a
/// thread of the library, also when it is interrupted; the stream of the file isn't touched from then on. So
/// does a save that is refused, whose answer nobody may look at; a load that is refused has only its answer.
/// Thread-safe; may be called from its own callbacks.
class MapSwitch {
public:
    using Progress = std::function<void(float)>;
    using Done = std::function<void(int status, int quality)>;

    enum Status : int { Success = 0, NotWritten = 1, Interrupted = 2, Refused = 3, NotFound = 4 };

    /// What it needs to know of the device; called on its thread.
    struct Device {
        std::function<bool()> present;
        /// The map so far.
        std::function<StoredMap()> store;
        /// How a map looks from here; nothing while the device can't see.
        std::function<std::optional<SlamMapper::Match>(const StoredMap &)> look;
        /// The device has found itself.
        std::function<void(const StoredMap &, const Pose &mapFromWorld, bool loaded)> localized;
        /// Whether a byte of a saved file is to be wrong.
        std::function<bool()> damages;
    };

    explicit MapSwitch(Device device);
    ~MapSwitch();

    /// Takes the place of a load that is under way, which ends as interrupted; refused during a save.
    bool load(StoredMap map, Done done, Progress progress, const std::weak_ptr<void> &owner);
    /// A second save to the same stream ends with the first one; any other is refused while one runs.
    bool save(std::streambuf &stream, Done done, Progress progress, const std::weak_ptr<void> &owner);
    /// Ends what is under way as interrupted. No callback runs after the return, unless called from one.
    void cancel();

    /// Runs `done` on a thread of the library and waits for it.
    static void report(const Done &done, int status, int quality);

private:
    struct Task;

    void begin(const std::shared_ptr<Task> &task, const std::weak_ptr<void> &owner);
    void tick();
    void gather(Task &task);
    void write(Task &task);
    void localize(Task &task);
    void settle(Task &task);
    std::vector<Done> take(const std::shared_ptr<Task> &task);
    std::shared_ptr<Task> current() const;

    const Device m_device;
    mutable std::mutex m_mutex;
    std::shared_ptr<Task> m_task;
    StreamThread m_thread; ///< last, so that it ends before what it uses
};

} // namespace sim
