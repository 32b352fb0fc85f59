#pragma once

#include "device/qv/Device.h"

#include <QThread>
#include <atomic>

/// Asks the device library for the connected devices, over and over. The library's own wait paces the loop.
class WorkThread : public QThread {
    Q_OBJECT

public:
    WorkThread();

    /// Lets the loop end after the question under way. Callable from any thread.
    void end();

signals:
    /// Leaves on the poll thread after each answer, changed or not. The type stands spelled out: queued
    /// delivery looks it up by this name.
    void resultReady(std::map<std::string, std::shared_ptr<qv::Device>> d);

protected:
    void run() override;

private:
    std::atomic<bool> m_running{true};
};
