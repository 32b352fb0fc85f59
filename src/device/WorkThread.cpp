#include "device/WorkThread.h"

#include "device/qv/Library.h"

namespace {

constexpr double WaitBoundSeconds = 15.0;
constexpr unsigned long YieldMs = 1;

} // namespace

WorkThread::WorkThread()
    : QThread(nullptr)
{
}

void WorkThread::end()
{
    m_running.store(false, std::memory_order_relaxed);
}

void WorkThread::run()
{
    while (m_running.load(std::memory_order_relaxed)) {
        const auto devices = qv::getDevices(
            WaitBoundSeconds, "", nullptr, qv::SlamStartMode::Default, qv::DeviceSupport::Default);
        emit resultReady(devices);
        msleep(YieldMs);
    }
}
