#pragma once

#include <QMutex>
#include <QMutexLocker>
#include <QString>
#include <QStringList>
#include <QtGlobal>

/// Catches what goes through Qt's message functions while it lives, as "debug: text". One at a time.
class LogCatcher {
public:
    LogCatcher()
    {
        store() = this;
        m_previous = qInstallMessageHandler(&LogCatcher::handle);
    }

    ~LogCatcher()
    {
        qInstallMessageHandler(m_previous);
        store() = nullptr;
    }

    LogCatcher(const LogCatcher &) = delete;
    LogCatcher &operator=(const LogCatcher &) = delete;

    QStringList lines() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_lines;
    }

private:
    static LogCatcher *&store()
    {
        static LogCatcher *current = nullptr;
        return current;
    }

    static void handle(QtMsgType type, const QMessageLogContext &, const QString &text)
    {
        static const char *const names[] = {"debug", "warning", "critical", "fatal", "info"};
        const QMutexLocker lock(&store()->m_mutex);
        store()->m_lines.append(QString::fromLatin1(names[type]) + ": " + text);
    }

    mutable QMutex m_mutex;
    QStringList m_lines;
    QtMessageHandler m_previous = nullptr;
};
