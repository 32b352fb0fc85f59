#pragma once

#include <QMutex>
#include <QMutexLocker>

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

/// A `QMutexLocker` that the thread sanitizer can follow. It sees nothing of what happens inside Qt, where a
/// contended mutex is taken and released, and would call everything under it a race.
class MutexLock {
public:
    explicit MutexLock(QMutex *mutex)
        : m_mutex(mutex)
        , m_locker(mutex)
    {
#ifdef __SANITIZE_THREAD__
        __tsan_acquire(m_mutex);
#endif
    }

    ~MutexLock()
    {
#ifdef __SANITIZE_THREAD__
        __tsan_release(m_mutex);
#endif
    }

    MutexLock(const MutexLock &) = delete;
    MutexLock &operator=(const MutexLock &) = delete;

private:
    [[maybe_unused]] QMutex *m_mutex;
    QMutexLocker m_locker;
};
