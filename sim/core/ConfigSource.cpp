#include "core/ConfigSource.h"

#include "core/Clock.h"
#include "core/ConfigParser.h"
#include "core/Log.h"

#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <utility>

namespace sim {

namespace {

constexpr double writingTime = 0.04; // seconds

std::string variable(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

std::optional<std::string> contentOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;
    if (!file || !(content << file.rdbuf()))
        return file ? std::optional<std::string>("") : std::nullopt;
    return content.str();
}

void append(std::vector<DeviceConfig> &devices, const std::string &folders)
{
    if (folders.empty())
        return;
    for (DeviceConfig &device : parseShortForm("", folders)) {
        device.uuid.clear();
        devices.push_back(std::move(device));
    }
    nameDevices(devices);
}

} // namespace

ConfigSource::ConfigSource(std::vector<DeviceConfig> devices)
    : m_devices(std::move(devices))
{
}

ConfigSource::ConfigSource(std::string file, std::string folders)
    : m_file(std::move(file))
    , m_folders(std::move(folders))
{
    append(m_devices, m_folders);
}

ConfigSource ConfigSource::fromEnvironment()
{
    const std::string file = variable("QVSIM_CONFIG");
    const std::string folders = variable("QVSIM_REPLAY");
    if (!file.empty())
        return ConfigSource(file, folders);
    return ConfigSource(parseShortForm(variable("QVSIM"), folders));
}

bool ConfigSource::poll()
{
    const bool first = std::exchange(m_first, false);
    if (m_file.empty())
        return first;
    const auto content = contentOf(m_file);
    if (!content) {
        refuse("", "can't be read");
        return first;
    }
    if (m_seen && *content == m_content) {
        m_refused.clear();
        return first;
    }
    const std::vector<DeviceConfig> before = m_devices;
    reload(*content);
    return first || !(before == m_devices);
}

void ConfigSource::reload(const std::string &content)
{
    std::vector<std::string> unknown;
    try {
        std::vector<DeviceConfig> devices = parseConfig(content, unknown);
        append(devices, m_folders);
        m_devices = std::move(devices);
    } catch (const std::exception &error) {
        refuse(content, error.what());
        return;
    }
    m_seen = true;
    m_content = content;
    m_refused.clear();
    m_complained = false;
    for (const std::string &line : unknown)
        complain(m_file + ": " + line);
}

/// A file may be met half written: only what is still there a moment later is complained about, once.
void ConfigSource::refuse(const std::string &content, const std::string &problem)
{
    const std::string refused = problem + '\n' + content;
    if (refused != m_refused) {
        m_refused = refused;
        m_refusedSince = Clock::now();
        m_complained = false;
    } else if (!m_complained && Clock::now() >= m_refusedSince + writingTime) {
        complain(m_file + " is left aside: " + problem);
        m_complained = true;
    }
}

} // namespace sim
