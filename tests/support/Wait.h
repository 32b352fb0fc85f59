#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

/// Runs the event loop until `condition` holds; false when it still doesn't after `limitMs`. The limit is
/// generous on purpose: it only bounds a failure, a busy machine must not turn it into one.
template <class Condition>
bool waitFor(Condition condition, int limitMs = 30000)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > limitMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::msleep(1);
    }
    return true;
}
