#include "device/SimDevice.h"

#include <stdexcept>

namespace sim {

namespace {

std::string versionOf(const std::map<std::string, std::string> &info)
{
    const auto found = info.find("version");
    return found == info.end() ? "" : found->second;
}

} // namespace

SimDevice::SimDevice(
    std::shared_ptr<DeviceState> state, std::map<std::string, std::string> info, Components components)
    : m_state(std::move(state))
    , m_info(std::move(info))
    , m_components(std::move(components))
    , m_hid(m_state, versionOf(m_info))
{
}

SimDevice::~SimDevice()
{
    // Components may be held by others a little longer; without their device they have nothing to say.
    m_state->setGone();
}

std::map<std::string, std::string> SimDevice::info()
{
    if (m_state->faults()->throwInfo)
        throw std::runtime_error("the information can't be read");
    return m_info;
}

bool SimDevice::hidWriteAndRead(const std::vector<unsigned char> &command, std::vector<unsigned char> &result)
{
    return m_hid.exchange(command, result);
}

bool SimDevice::enableSync(bool isSync)
{
    if (m_state->refuses("device", "enableSync"))
        return false;
    m_state->sync = isSync;
    m_state->log().add(isSync ? "sync on" : "sync off");
    if (m_components.imu)
        m_components.imu->setSync(isSync);
    if (m_components.fisheye)
        m_components.fisheye->setSync(isSync);
    if (m_components.color)
        m_components.color->setSync(isSync);
    if (m_components.tof)
        m_components.tof->setSync(isSync);
    for (const auto &slam : {m_components.slam, m_components.edge})
        if (slam)
            slam->setSync(isSync);
    if (m_components.vsc)
        m_components.vsc->setSync(isSync);
    if (m_components.objects)
        m_components.objects->setSync(isSync);
    return true;
}

void SimDevice::unplug()
{
    m_state->setGone();
}

bool SimDevice::accepts(const char *setting, int value)
{
    if (m_state->refuses("device", setting))
        return false;
    m_state->log().add(std::string(setting) + ' ' + std::to_string(value));
    return true;
}

} // namespace sim
