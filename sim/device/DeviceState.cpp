#include "device/DeviceState.h"

#include "core/Clock.h"

namespace sim {

DeviceState::DeviceState(DeviceConfig config)
    : m_config(std::move(config))
    , m_faults(std::make_shared<const Faults>(m_config.faults))
{
    m_log.add("power on, profile settings loaded");
}

std::shared_ptr<const Faults> DeviceState::faults() const
{
    return std::atomic_load(&m_faults);
}

void DeviceState::setFaults(const Faults &faults)
{
    std::atomic_store(&m_faults, std::make_shared<const Faults>(faults));
}

bool DeviceState::refuses(const std::string &component, const std::string &operation) const
{
    return m_gone || faults()->refuses(component, operation);
}

void DeviceState::noteStart()
{
    double never = -1;
    m_firstStart.compare_exchange_strong(never, Clock::now());
}

bool DeviceState::vanishes(double now) const
{
    const double after = faults()->vanishAfter;
    const double start = m_firstStart;
    return after >= 0 && start >= 0 && now >= start + after;
}

} // namespace sim
