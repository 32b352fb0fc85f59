#include "core/Log.h"

#include <atomic>
#include <iostream>
#include <mutex>

namespace sim {

namespace {

std::atomic<int> threshold{static_cast<int>(LogLevel::Off)};

const char *name(LogLevel level)
{
    static const char *const names[] = {"trace", "debug", "info", "warning", "error", "critical", "off"};
    return names[static_cast<int>(level)];
}

void writeLine(const std::string &line)
{
    // Never destroyed, since threads may still write while the program ends.
    static std::mutex &mutex = *new std::mutex;
    const std::lock_guard lock(mutex);
    std::cerr << line + '\n' << std::flush;
}

} // namespace

void setLogThreshold(LogLevel level)
{
    threshold.store(static_cast<int>(level), std::memory_order_relaxed);
}

LogLevel logThreshold()
{
    return static_cast<LogLevel>(threshold.load(std::memory_order_relaxed));
}

void log(LogLevel level, const std::string &text)
{
    if (level < logThreshold() || level >= LogLevel::Off)
        return;
    writeLine(std::string("qvsdk ") + name(level) + ": " + text);
}

void complain(const std::string &text)
{
    writeLine("qvsdk: " + text);
}

} // namespace sim
