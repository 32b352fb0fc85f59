#include "core/Log.h"

#include <atomic>
#include <iostream>

namespace sim {

namespace {

std::atomic<int> threshold{static_cast<int>(LogLevel::Off)};

const char *name(LogLevel level)
{
    static const char *const names[] = {"trace", "debug", "info", "warning", "error", "critical", "off"};
    return names[static_cast<int>(level)];
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
    std::cerr << std::string("qvsdk ") + name(level) + ": " + text + '\n' << std::flush;
}

void complain(const std::string &text)
{
    std::cerr << "qvsdk: " + text + '\n' << std::flush;
}

} // namespace sim
