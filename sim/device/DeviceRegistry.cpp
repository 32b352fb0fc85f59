#include "device/DeviceRegistry.h"

#include "core/Clock.h"
#include "device/DeviceFactory.h"
#include "replay/PictureReader.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <thread>

namespace sim {

namespace {

constexpr double forever = std::numeric_limits<double>::infinity();
constexpr double longestWait = 1; // seconds
constexpr double pollInterval = 0.05; // seconds
/// Other hardware under the same uuid stays away so long that whoever looks once a second misses the old one.
constexpr double replugDelay = 2.5; // seconds

/// The flag is a plain bool that another thread writes.
bool isSet(const bool *flag)
{
    return flag && __atomic_load_n(flag, __ATOMIC_RELAXED);
}

} // namespace

DeviceRegistry::DeviceRegistry(ConfigSource source)
    : m_source(std::move(source))
{
}

DeviceRegistry::~DeviceRegistry()
{
    for (auto &[uuid, slot] : m_slots) {
        if (slot.device)
            slot.device->unplug();
    }
}

DeviceRegistry &DeviceRegistry::instance()
{
    preparePictureReader();
    static DeviceRegistry registry(ConfigSource::fromEnvironment());
    return registry;
}

DeviceRegistry::Devices DeviceRegistry::wait(double timeout, const bool *stopWaiting)
{
    const double end = Clock::now() + std::clamp(timeout, 0.0, longestWait);
    for (;;) {
        Unplugged unplugged; // goes after the lock: the last holder waits for the streams' ends
        {
            const std::lock_guard lock(m_mutex);
            const bool changed = update(unplugged);
            if (changed || isSet(stopWaiting) || Clock::now() >= end)
                return answer();
        }
        const double rest = std::clamp(end - Clock::now(), 0.0, pollInterval);
        std::this_thread::sleep_for(std::chrono::duration<double>(rest));
    }
}

bool DeviceRegistry::update(Unplugged &unplugged)
{
    const double now = Clock::now();
    if (m_source.poll())
        reconcile(now, unplugged);
    for (auto &[uuid, slot] : m_slots) {
        if (slot.device && slot.device->state().vanishes(now)) {
            const double returnAfter = slot.config.faults.returnAfter;
            unplug(slot, unplugged);
            slot.plugAt = returnAfter >= 0 ? now + returnAfter : forever;
        }
        if (!slot.device && now >= slot.plugAt)
            plug(slot);
    }
    return m_generation != m_answered;
}

void DeviceRegistry::reconcile(double now, Unplugged &unplugged)
{
    std::map<std::string, const DeviceConfig *> described;
    for (const DeviceConfig &config : m_source.devices()) {
        if (config.present)
            described[config.uuid] = &config;
    }
    for (auto slot = m_slots.begin(); slot != m_slots.end();) {
        if (described.count(slot->first) == 0) {
            unplug(slot->second, unplugged);
            slot = m_slots.erase(slot);
        } else {
            ++slot;
        }
    }
    for (const auto &[uuid, config] : described) {
        const auto found = m_slots.find(uuid);
        if (found == m_slots.end())
            m_slots[uuid].config = *config;
        else if (!(found->second.config == *config))
            replace(found->second, *config, now, unplugged);
    }
}

void DeviceRegistry::replace(Slot &slot, const DeviceConfig &config, double now, Unplugged &unplugged)
{
    const bool same = slot.config.sameHardware(config);
    slot.config = config;
    if (same && slot.device) {
        slot.device->state().setFaults(config.faults);
        return;
    }
    slot.plugAt = slot.device ? now + replugDelay : now;
    unplug(slot, unplugged);
}

void DeviceRegistry::unplug(Slot &slot, Unplugged &unplugged)
{
    if (!slot.device)
        return;
    slot.device->unplug();
    unplugged.push_back(std::move(slot.device));
    slot.device = nullptr;
    ++m_generation;
}

void DeviceRegistry::plug(Slot &slot)
{
    slot.device = makeDevice(slot.config);
    slot.plugAt = forever;
    if (slot.device)
        ++m_generation;
}

DeviceRegistry::Devices DeviceRegistry::answer()
{
    m_answered = m_generation;
    Devices devices;
    for (const auto &[uuid, slot] : m_slots) {
        if (slot.device)
            devices[uuid] = slot.device;
    }
    return devices;
}

} // namespace sim
