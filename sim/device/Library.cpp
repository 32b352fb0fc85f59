#include "device/qv/Library.h"

#include "core/Log.h"
#include "device/DeviceRegistry.h"
#include "device/PcdWriter.h"

#include <algorithm>

namespace qv {

std::map<std::string, std::shared_ptr<Device>> getDevices(
    double timeout, const std::string &, bool *stopWaiting, SlamStartMode, DeviceSupport)
{
    return sim::DeviceRegistry::instance().wait(timeout, stopWaiting);
}

void setLogLevel(LogLevel level)
{
    sim::setLogThreshold(static_cast<sim::LogLevel>(std::clamp(static_cast<int>(level), 0, 6)));
}

bool savePointCloudToPcd(
    const std::string &path, const std::shared_ptr<PointCloud> &cloud, int precision, bool binary)
{
    return cloud && sim::writePcd(path, *cloud, precision, binary);
}

} // namespace qv
