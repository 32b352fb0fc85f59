#pragma once

#include "device/DeviceState.h"

#include <memory>
#include <mutex>
#include <vector>

namespace sim {

/// The firmware's side of the HID channel. A report has 63 bytes; those that begin with 02 fe 55 ask for the
/// version (01), the serial number (02), the settings (03) or the next piece of the log (04), whose answer
/// follows the four bytes of the command. Any other report comes back as it is. Thread-safe.
class HidChannel {
public:
    static constexpr std::size_t reportSize = 63;

    HidChannel(std::shared_ptr<DeviceState> device, std::string version);

    /// False, and `result` untouched, if the device refuses or has gone.
    bool exchange(const std::vector<unsigned char> &command, std::vector<unsigned char> &result);

private:
    std::string answer(unsigned char question);
    std::string settings() const;

    const std::shared_ptr<DeviceState> m_device;
    const std::string m_version;
    std::mutex m_mutex; ///< one exchange at a time
};

} // namespace sim
