#pragma once

#include "core/DeviceConfig.h"

#include <string>
#include <vector>

namespace sim {

/// Where the list of devices comes from: the environment, or a file that is read again when it changes.
/// For one thread at a time.
class ConfigSource {
public:
    /// Those devices for good.
    explicit ConfigSource(std::vector<DeviceConfig> devices);
    /// Those of the file, and the recordings of `folders`, as `QVSIM_REPLAY` lists them.
    explicit ConfigSource(std::string file, std::string folders = {});
    /// `QVSIM_CONFIG`, else `QVSIM`; `QVSIM_REPLAY` adds its recordings to either.
    static ConfigSource fromEnvironment();

    /// Looks at the file again. True if `devices` answers something new since the last call.
    bool poll();
    const std::vector<DeviceConfig> &devices() const { return m_devices; }

private:
    void reload(const std::string &content);
    void refuse(const std::string &content, const std::string &problem);

    std::string m_file;
    std::string m_folders;
    std::vector<DeviceConfig> m_devices;
    bool m_first = true;
    bool m_seen = false; ///< `m_content` has been read
    bool m_complained = false;
    std::string m_content;
    std::string m_refused; ///< what was wrong the last time, and with which content
    double m_refusedSince = 0; ///< seconds of the clock
};

} // namespace sim
