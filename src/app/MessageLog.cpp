#include "app/MessageLog.h"

#include <QString>
#include <cstdio>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

void writeBareLine(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    switch (type) {
    case QtDebugMsg:
    case QtWarningMsg:
    case QtCriticalMsg:
    case QtFatalMsg:
    case QtInfoMsg:
        std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
        break;
    }
}

void installMessageHandler()
{
    qInstallMessageHandler(writeBareLine);
}

void openConsole()
{
#ifdef Q_OS_WIN
    if (AttachConsole(ATTACH_PARENT_PROCESS) || AllocConsole()) {
        freopen("CONOUT$", "w", stdout);
        freopen("CONOUT$", "w", stderr);
    }
#endif
}
