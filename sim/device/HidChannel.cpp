#include "device/HidChannel.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace sim {

namespace {

constexpr std::size_t replyHeaderSize = 4;
constexpr unsigned char header[] = {0x02, 0xfe, 0x55};

enum Question : unsigned char { Version = 1, Serial = 2, Settings = 3, Log = 4 };

} // namespace

HidChannel::HidChannel(std::shared_ptr<DeviceState> device, std::string version)
    : m_device(std::move(device))
    , m_version(std::move(version))
{
}

bool HidChannel::exchange(const std::vector<unsigned char> &command, std::vector<unsigned char> &result)
{
    const std::lock_guard lock(m_mutex);
    const double delayMs = m_device->faults()->hidDelayMs;
    if (delayMs > 0)
        std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(delayMs));
    if (command.size() > reportSize || m_device->refuses("device", "hid"))
        return false;
    std::vector<unsigned char> reply = command;
    reply.resize(reportSize, 0);
    if (std::equal(std::begin(header), std::end(header), reply.begin())) {
        const std::string text = answer(reply[replyHeaderSize - 1]);
        std::copy(text.begin(), text.end(), reply.begin() + replyHeaderSize);
    }
    result = std::move(reply);
    return true;
}

std::string HidChannel::answer(unsigned char question)
{
    std::string text;
    if (question == Version)
        text = m_version;
    else if (question == Serial)
        text = m_device->config().uuid;
    else if (question == Settings)
        text = settings();
    else if (question == Log)
        text = m_device->log().take(reportSize - replyHeaderSize);
    return text.substr(0, reportSize - replyHeaderSize);
}

/// IMU mode, UVC mode, sync, a zero, then IMU offset and edge prediction, little endian, four bytes each.
std::string HidChannel::settings() const
{
    std::string bytes{static_cast<char>(m_device->imuMode.load()),
        static_cast<char>(m_device->uvcMode.load()), static_cast<char>(m_device->sync.load()), '\0'};
    for (const int value : {m_device->imuOffset.load(), m_device->edgePrediction.load()}) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>((static_cast<unsigned>(value) >> shift) & 0xffU);
    }
    return bytes;
}

} // namespace sim
