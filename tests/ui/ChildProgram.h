#pragma once

#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>

/// A start of the whole program from beginning to end, seen from a test: this executable once more, as a
/// process of its own that runs one test of its suite `Child`. Children of one folder share their settings.
namespace child {

inline const char *const taskName = "QV_TEST_TASK";
inline const char *const folderName = "QV_TEST_FOLDER";

/// What this process was started for; empty in the process that starts the others.
inline QByteArray task()
{
    return qgetenv(taskName);
}

inline QString folder()
{
    return qEnvironmentVariable(folderName);
}

/// Runs `Child.<test>` in `folder`, with the devices that devices.json tells there; its exit code, or -1 when
/// it crashed or hung.
inline int run(const QString &folder, const char *test, const char *task)
{
    constexpr int limit = 240000;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QLatin1String(taskName), QLatin1String(task));
    environment.insert(QLatin1String(folderName), folder);
    environment.insert(QStringLiteral("QVSIM_CONFIG"), folder + QLatin1String("/devices.json"));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QCoreApplication::applicationFilePath(),
        {QStringLiteral("--gtest_filter=Child.") + QLatin1String(test)});
    if (!process.waitForFinished(limit) || process.exitStatus() != QProcess::NormalExit)
        return -1;
    return process.exitCode();
}

} // namespace child
