#pragma once

#include <mutex>
#include <string>

namespace sim {

/// The log that the firmware keeps, read in pieces through the HID channel. The oldest lines go when it is
/// full. Thread-safe.
class DeviceLog {
public:
    /// One line, stamped with the clock.
    void add(const std::string &line);
    /// Takes the next piece out, at most `size` characters and never a single one; empty at the end. It holds
    /// whole lines without the last one's end, or a part of a line that is longer than a piece.
    std::string take(std::size_t size);

private:
    std::mutex m_mutex;
    std::string m_text;
};

} // namespace sim
