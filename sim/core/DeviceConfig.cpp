#include "core/DeviceConfig.h"

#include <tuple>

namespace sim {

namespace {

auto hardware(const DeviceConfig &c)
{
    return std::tie(c.profile, c.uuid, c.present, c.version, c.info, c.seed, c.folder, c.streams);
}

} // namespace

bool StreamConfig::operator==(const StreamConfig &other) const
{
    return std::tie(rate, width, height, codec)
        == std::tie(other.rate, other.width, other.height, other.codec);
}

StreamConfig DeviceConfig::stream(const std::string &component) const
{
    const auto found = streams.find(component);
    return found == streams.end() ? StreamConfig() : found->second;
}

bool DeviceConfig::sameHardware(const DeviceConfig &other) const
{
    return hardware(*this) == hardware(other);
}

bool DeviceConfig::operator==(const DeviceConfig &other) const
{
    return sameHardware(other) && faults == other.faults;
}

} // namespace sim
