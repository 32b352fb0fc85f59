#pragma once

#include <string>

namespace sim {

/// Numbers as `qv::setLogLevel` takes them.
enum class LogLevel { Trace = 0, Debug = 1, Info = 2, Warning = 3, Error = 4, Critical = 5, Off = 6 };

/// Lines at or above this level go to standard error. Off at first.
void setLogThreshold(LogLevel level);
LogLevel logThreshold();

/// One whole line, never mixed with that of another thread.
void log(LogLevel level, const std::string &text);

/// For what the user has to know whatever the level: a file or a setting that can't be used.
void complain(const std::string &text);

} // namespace sim
