#pragma once

#include "core/ConfigSource.h"
#include "device/SimDevice.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace sim {

/// The devices that are plugged in, kept in step with the configuration. Thread-safe.
class DeviceRegistry {
public:
    using Devices = std::map<std::string, std::shared_ptr<qv::Device>>;

    explicit DeviceRegistry(ConfigSource source);
    ~DeviceRegistry();
    /// The one that `qv::getDevices` asks, made from the environment when first used.
    static DeviceRegistry &instance();

    /// At once if the devices have changed since the last answer, else when they change, but after `timeout`
    /// or one second at the latest. `stopWaiting`, if not null, ends the wait when it becomes true.
    Devices wait(double timeout, const bool *stopWaiting);

private:
    /// One described device and the hardware that is there for it.
    struct Slot {
        DeviceConfig config;
        std::shared_ptr<SimDevice> device;
        double plugAt = 0; ///< seconds of the clock; infinite for never again
    };
    using Unplugged = std::vector<std::shared_ptr<SimDevice>>;

    void reconcile(double now, Unplugged &unplugged);
    void replace(Slot &slot, const DeviceConfig &config, double now, Unplugged &unplugged);
    void unplug(Slot &slot, Unplugged &unplugged);
    void plug(Slot &slot);
    bool update(Unplugged &unplugged);
    Devices answer();

    std::mutex m_mutex;
    ConfigSource m_source;
    std::map<std::string, Slot> m_slots;
    unsigned m_generation = 0; ///< counts plugging and unplugging
    unsigned m_answered = 0;
};

} // namespace sim
