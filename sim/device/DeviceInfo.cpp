#include "device/DeviceInfo.h"

#include "core/ConfigParser.h"

namespace sim {

namespace {

struct Identity {
    const char *product;
    const char *version;
    const char *board;
};

Identity identity(Profile profile)
{
    switch (profile) {
    case Profile::Headset:
        return {"Quivra Headset H2", "3.2.0-24A", "H2-B3"};
    case Profile::Module:
        return {"Quivra Module M1", "2.8.4-23F", "M1-A1"};
    case Profile::Quad:
        return {"Quivra Quad Q4", "3.1.7-24A", "Q4-B1"};
    case Profile::ImuOnly:
        return {"Quivra Inertial I1", "1.4.2-22C", "I1-A2"};
    case Profile::Plain:
        return {"Quivra Plain P1", "1.0.9-21B", "P1-A0"};
    case Profile::Replay:
        return {"Recording", "1.0.0-replay", "none"};
    }
    return {"", "", ""};
}

const char *flag(bool value)
{
    return value ? "true" : "false";
}

} // namespace

std::map<std::string, std::string> makeInfo(
    const DeviceConfig &config, const SimDevice::Components &components)
{
    const Identity who = identity(config.profile);
    std::map<std::string, std::string> info = {
        {"product", who.product},
        {"version", config.version.empty() ? who.version : config.version},
        {"serialNumber", config.uuid},
        {"boardRevision", who.board},
        {"profile", profileName(config.profile)},
        {"usb", "3.2 simulated"},
        {"imuAvailable", flag(components.imu != nullptr)},
        {"stereoAvailable", flag(components.fisheye != nullptr)},
        {"colorAvailable", flag(components.color != nullptr)},
        {"tofAvailable", flag(components.tof != nullptr)},
        {"edge6dofAvailable", flag(components.edge != nullptr)},
        {"rgb2Available", flag(components.color && components.color->hasSecond())},
        {"afRGBAvailable", flag(config.profile == Profile::Headset)},
        {"sgbmAvailable", flag(components.vsc != nullptr)},
        {"cnnAvailable", flag(components.objects != nullptr)},
        {"downsampleAvailable", flag(components.vsc != nullptr)},
        {"fisheyeSwitchAvailable", flag(false)},
    };
    if (config.profile == Profile::Replay)
        info["recording"] = config.folder;
    for (const auto &[key, value] : config.info)
        info[key] = value;
    return info;
}

} // namespace sim
