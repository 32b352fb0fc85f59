#pragma once

#include <QMetaObject>
#include <QObject>
#include <QTimer>

/// Makes the timers that `object` owns time out now, in place of waiting for them.
inline int fireTimers(QObject &object)
{
    const QList<QTimer *> timers = object.findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    for (QTimer *timer : timers)
        QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection);
    return timers.size();
}
