// The built program itself, as far as it ends without a window.
#include <QIcon>
#include <QProcess>
#include <QRegularExpression>
#include <QResource>
#include <QSettings>
#include <QTemporaryDir>

namespace {

struct Ended {
    int exitCode = -1;
    QString output;
    QString errors;
};

/// Without devices, and with nothing of the machine that Qt would remark on.
QProcessEnvironment environment(const QTemporaryDir &home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("QT_QUICK_BACKEND"), QStringLiteral("software"));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
    environment.insert(QStringLiteral("QVSIM_CONFIG"), home.filePath(QStringLiteral("devices.json")));
    return environment;
}

Ended viewer(const QStringList &arguments, const QTemporaryDir &home = QTemporaryDir())
{
    QProcess process;
    process.setProcessEnvironment(environment(home));
    process.start(QStringLiteral(QV_VIEWER), arguments);
    if (!process.waitForFinished(60000)) {
        process.kill();
        ADD_FAILURE() << "the program did not end";
        return {};
    }
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), QString::fromLocal8Bit(process.readAllStandardOutput()),
        QString::fromLocal8Bit(process.readAllStandardError())};
}

/// What a program that goes on to its window has written by the time it tells its version.
QStringList firstLines(const QStringList &arguments)
{
    const QTemporaryDir home;
    QProcess process;
    process.setProcessEnvironment(environment(home));
    process.setReadChannel(QProcess::StandardError);
    process.start(QStringLiteral(QV_VIEWER), arguments);
    QString errors;
    while (!errors.contains(QStringLiteral("Viewer \"")) || !errors.endsWith(QLatin1Char('\n'))) {
        if (!process.waitForReadyRead(60000))
            break;
        errors += QString::fromLocal8Bit(process.readAllStandardError());
    }
    process.kill();
    process.waitForFinished();
    QStringList lines = errors.split(QLatin1Char('\n'));
    while (!lines.isEmpty() && !lines.last().contains(QStringLiteral("Viewer \"")))
        lines.removeLast();
    return lines;
}

} // namespace

TEST(Program, versionEndsBeforeAnyDeviceWork)
{
    const Ended run = viewer({QStringLiteral("--version")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, QStringLiteral("QVSDK-Viewer 3.2.0-2-20230907\n"));
    EXPECT_EQ(run.errors, QString());
}

TEST(Program, helpShowsAllButTheHiddenOption)
{
    const Ended run = viewer({QStringLiteral("--help")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.output.contains(QStringLiteral("\nQVSDK Viewer\n")));
    const QString flat =
        QString(run.output).replace(QRegularExpression(QStringLiteral("\\s+")), QStringLiteral(" "));
    EXPECT_TRUE(flat.contains(
        QStringLiteral("-c Show console -d, --debug <debug> Debug level [debug=1, info=2, warn=3, "
                       "err=4, critical=5, off=6]")))
        << flat.toStdString();
    const int help = flat.indexOf(QStringLiteral("--help")),
              version = flat.indexOf(QStringLiteral("--version"));
    EXPECT_TRUE(help > 0 && help < version && version < flat.indexOf(QStringLiteral("-c Show")));
    EXPECT_FALSE(flat.contains(QStringLiteral("advanced")));
    EXPECT_FALSE(flat.contains(QStringLiteral(" -a ")) || flat.contains(QStringLiteral(" -a,")));
    EXPECT_EQ(run.errors, QString());
}

TEST(Program, helpIsEnglishWhateverLanguageWasChosenLast)
{
    // What the settings of the window keep: 1 to 3 are Chinese, Japanese and French.
    for (int language = 1; language <= 3; ++language) {
        const QTemporaryDir home;
        QSettings settings(home.filePath(QStringLiteral("Quivra/QVSDK-Viewer.conf")), QSettings::IniFormat);
        settings.setValue(QStringLiteral("Settings/currentLanguageIndex"), language);
        settings.sync();
        ASSERT_EQ(settings.status(), QSettings::NoError);
        const Ended run = viewer({QStringLiteral("--help")}, home);
        EXPECT_TRUE(run.output.contains(QStringLiteral("Show console"))) << run.output.toStdString();
    }
}

TEST(Program, iconIsAmongTheResources)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("resources.rcc"));
    ASSERT_EQ(QProcess::execute(QStringLiteral(QV_RCC),
                  {QStringLiteral("--binary"), QStringLiteral("-o"), file,
                      QStringLiteral(QV_SOURCE_DIR "/qml/resources.qrc")}),
        0);
    ASSERT_TRUE(QResource::registerResource(file, QStringLiteral("/shipped")));
    EXPECT_FALSE(QIcon(QStringLiteral(":/shipped/images/quivra_ico")).pixmap(16).isNull());
    QResource::unregisterResource(file, QStringLiteral("/shipped"));
}

TEST(Program, unknownOptionEndsWithOne)
{
    const Ended run = viewer({QStringLiteral("--nonsense")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains(QStringLiteral("nonsense"))) << run.errors.toStdString();
}

TEST(Program, invalidLevelIsABareLineAndTheProgramGoesOn)
{
    const QStringList versions{
        QStringLiteral("QVSDK \"3.2.0\""), QStringLiteral("Viewer \"3.2.0-2-20230907\"")};
    for (const char *value : {"7", "-1", "abc"}) {
        const QString level = QString::fromLatin1(value);
        EXPECT_EQ(firstLines({QStringLiteral("-d"), level}),
            QStringList{QStringLiteral("Invalid debug level:  \"%1\"").arg(level)} + versions);
    }
    EXPECT_EQ(firstLines({QStringLiteral("-d"), QStringLiteral("0")}), versions);
    EXPECT_EQ(firstLines({QStringLiteral("-a")}), versions);
}

TEST(Program, consoleOptionKeepsTheMessagesOfQt)
{
    // Qt's own handler takes its form from the environment, the program's doesn't.
    qputenv("QT_MESSAGE_PATTERN", "[%{type}] %{message}");
    const QStringList qt = firstLines({QStringLiteral("-c")});
    const QStringList bare = firstLines({});
    qunsetenv("QT_MESSAGE_PATTERN");
    const QStringList versions{
        QStringLiteral("QVSDK \"3.2.0\""), QStringLiteral("Viewer \"3.2.0-2-20230907\"")};
    EXPECT_EQ(bare, versions);
    EXPECT_EQ(qt,
        QStringList(versions).replaceInStrings(
            QRegularExpression(QStringLiteral("^")), QStringLiteral("[debug] ")));
}
