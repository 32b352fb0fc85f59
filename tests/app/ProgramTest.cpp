// The built program itself, as far as it ends without a window.
#include <QProcess>
#include <QRegularExpression>

namespace {

struct Ended {
    int exitCode = -1;
    QString output;
    QString errors;
};

Ended viewer(const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(environment);
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
    EXPECT_FALSE(flat.contains(QStringLiteral("advanced")));
    EXPECT_FALSE(flat.contains(QStringLiteral("-a")));
    EXPECT_EQ(run.errors, QString());
}

TEST(Program, helpIsEnglishWhateverTheLocale)
{
    qputenv("LC_ALL", "fr_FR.UTF-8");
    const Ended run = viewer({QStringLiteral("--help")});
    qunsetenv("LC_ALL");
    EXPECT_TRUE(run.output.contains(QStringLiteral("Show console")));
}

TEST(Program, unknownOptionEndsWithOne)
{
    const Ended run = viewer({QStringLiteral("--nonsense")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains(QStringLiteral("nonsense"))) << run.errors.toStdString();
}
