#include "device/CaptureFolder.h"

#include <QDateTime>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <ctime>

namespace {

QString nameOf(const QDateTime &time)
{
    return time.toString(QStringLiteral("yyyy-MM-ddTHH-mm-ss"));
}

/// A working directory of the test's own, left again at its end.
class CaptureFolder : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(QDir::setCurrent(m_folder.path())); }
    void TearDown() override { QDir::setCurrent(m_before); }

    QString here() const { return QFileInfo(m_folder.path()).canonicalFilePath(); }

    const QString m_before = QDir::currentPath();
    const QTemporaryDir m_folder;
};

QString picturesFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)
        + QStringLiteral("/qvsdk-viewer/");
}

/// The folder made, when all of it happened within one second; else the test would not know the name.
QDir makeWithinOneSecond(QDateTime &second)
{
    QDir folder;
    do {
        second = QDateTime::currentDateTime();
        folder = makeCaptureFolder();
    } while (nameOf(QDateTime::currentDateTime()) != nameOf(second));
    return folder;
}

} // namespace

TEST_F(CaptureFolder, liesBelowCaptureAndIsNamedByTheSecond)
{
    QDateTime second;
    const QDir folder = makeWithinOneSecond(second);
    EXPECT_EQ(folder.absolutePath(), here() + QStringLiteral("/capture/") + nameOf(second));
    EXPECT_TRUE(folder.exists());
}

TEST_F(CaptureFolder, isNamedByTheLocalTimeWithoutItsZone)
{
    // Five and a half hours ahead, all the year.
    const QByteArray zone = qgetenv("TZ");
    const bool set = qEnvironmentVariableIsSet("TZ");
    qputenv("TZ", "XYZ-5:30");
    tzset();
    constexpr qint64 ahead = (5 * 60 + 30) * 60;
    QDateTime before;
    QDir folder;
    do {
        before = QDateTime::currentDateTimeUtc();
        folder = makeCaptureFolder();
    } while (nameOf(QDateTime::currentDateTimeUtc()) != nameOf(before));
    if (set)
        qputenv("TZ", zone);
    else
        qunsetenv("TZ");
    tzset();
    EXPECT_EQ(folder.dirName(), nameOf(before.addSecs(ahead)));
}

TEST_F(CaptureFolder, twoOfOneSecondShareIt)
{
    QDateTime second;
    QDir first;
    QDir other;
    do {
        first = makeWithinOneSecond(second);
        other = makeCaptureFolder();
    } while (nameOf(QDateTime::currentDateTime()) != nameOf(second));
    EXPECT_EQ(first.absolutePath(), other.absolutePath());
}

TEST_F(CaptureFolder, workingDirectoryMayHaveBlanksAndOtherLetters)
{
    const QString name = QStringLiteral("Aufnähmen 录像 1");
    ASSERT_TRUE(QDir().mkdir(name));
    ASSERT_TRUE(QDir::setCurrent(name));
    const QDir folder = makeCaptureFolder();
    EXPECT_TRUE(folder.absolutePath().startsWith(here() + "/" + name + "/capture/"));
    EXPECT_TRUE(folder.exists());
}

TEST_F(CaptureFolder, liesBelowThePicturesWhereCaptureCanNotBeMade)
{
    QFile inTheWay(QStringLiteral("capture"));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    QDateTime second;
    const QDir folder = makeWithinOneSecond(second);
    EXPECT_EQ(folder.absolutePath(), picturesFolder() + nameOf(second));
    EXPECT_TRUE(folder.exists());
}

TEST_F(CaptureFolder, liesBelowThePicturesInASystemFolder)
{
    // Nobody can make a folder there, root neither.
    ASSERT_TRUE(QDir::setCurrent(QStringLiteral("/proc")));
    const QDir folder = makeCaptureFolder();
    EXPECT_TRUE(folder.absolutePath().startsWith(picturesFolder())) << folder.absolutePath().toStdString();
    EXPECT_TRUE(folder.exists());
}

TEST_F(CaptureFolder, stillAnswersAPathWhereNothingCanBeWritten)
{
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", "/proc/self");
    ASSERT_TRUE(QDir::setCurrent(QStringLiteral("/proc")));
    const QString path = makeCaptureFolder().absolutePath();
    qputenv("HOME", home);
    EXPECT_TRUE(QDir::isAbsolutePath(path));
    EXPECT_TRUE(path.startsWith(QStringLiteral("/proc"))) << path.toStdString();
}
