#pragma once

#include "device/qv/Device.h"

namespace qv {

/// Numbers as the viewer's debug level gives them: debug 1, info 2, warn 3, err 4, critical 5, off 6.
enum class LogLevel : int {};

enum class SlamStartMode : int { Default = 0 };

enum class DeviceSupport : int { Default = 0 };

struct Version {
    int major = 0;
    int minor = 0;
    int patch = 0;

    std::string toString() const;
};

/// The connected devices by uuid. Waits up to `timeout` seconds before it answers.
std::map<std::string, std::shared_ptr<Device>> getDevices(
    double timeout, const std::string &desc, bool *stopWaiting, SlamStartMode mode, DeviceSupport support);

Version version();

void setLogLevel(LogLevel level);

bool savePointCloudToPcd(
    const std::string &path, const std::shared_ptr<PointCloud> &cloud, int precision, bool binary);

} // namespace qv
