#pragma once

#include <QString>

namespace qv {
class Device;
}

/// Hexadecimal text in, one HID exchange of 63 bytes, text out. Waits for the device; main thread. Each
/// failure is a line in the log and an empty answer.
namespace HidChannel {

/// Sends a command of at most 63 pairs of digits, blanks ignored and missing bytes zero. Answers the reply in
/// lower-case pairs, each followed by a blank.
QString send(qv::Device *device, QString command);

/// Asks for the next piece of the device's log. Answers its text behind the reply's header; empty where there
/// is none.
QString glassLog(qv::Device *device);

} // namespace HidChannel
