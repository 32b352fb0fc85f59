#include "ui/CaptureFiles.h"
#include "ui/Page.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest/QTest>

// The whole program ends while it records. A program of its own does so, started from here by its tests
// `Child`; this one looks at what it has left.

using namespace ui;

namespace {

const char *const wayOut = "QV_TEST_WAY_OUT";
const char *const workFolder = "QV_TEST_FOLDER";

void switchOn(const char *button, const char *view)
{
    setDrawer(true);
    WindowDriver::reveal(id(button));
    ASSERT_TRUE(waitFor([=] { return id(button)->isEnabled(); }, minute)) << button;
    WindowDriver::click(id(button));
    ASSERT_TRUE(
        waitFor([=] { return id(view)->width() > 100 && colours(WindowDriver::grab(id(view))) > 8; }, minute))
        << view;
}

/// Runs the child in `folder`; its exit code, or -1 when it crashed or hung.
int runChild(const QString &folder, const char *way)
{
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QLatin1String(wayOut), QLatin1String(way));
    environment.insert(QLatin1String(workFolder), folder);
    environment.insert(QStringLiteral("QVSIM_CONFIG"), folder + QLatin1String("/devices.json"));
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::ForwardedChannels);
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--gtest_filter=Child.*")});
    if (!child.waitForFinished(4 * minute) || child.exitStatus() != QProcess::NormalExit)
        return -1;
    return child.exitCode();
}

QString found(const QString &folder, const char *name)
{
    QDirIterator files(
        folder + QLatin1String("/capture"), {QLatin1String(name)}, QDir::Files, QDirIterator::Subdirectories);
    return files.hasNext() ? files.next() : QString();
}

void expectPlayable(const QString &folder)
{
    for (const char *name : {"left.avi", "right.avi", "rgb.avi", "tof.avi"}) {
        SCOPED_TRACE(name);
        const QString path = found(folder, name);
        const captures::Video video = captures::probe(path);
        EXPECT_EQ(video.errors, QString());
        EXPECT_EQ(video.codec, QStringLiteral("h264"));
        EXPECT_GE(video.frames, 10);
        EXPECT_EQ(int(captures::decode(path, true).size()), video.frames);
    }
    EXPECT_GT(captures::posesOf(found(folder, "host.csv")).size(), 300U);
    EXPECT_TRUE(captures::isEmptyPoseFile(found(folder, "edge.csv")));
}

class Closing : public testing::Test {
protected:
    void SetUp() override
    {
        if (qEnvironmentVariableIsSet(wayOut))
            GTEST_SKIP();
        QFile file(m_folder.filePath(QStringLiteral("devices.json")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(R"({"devices": [{ "profile": "headset", "streams": {
            "fisheye": { "rate": 10 }, "color": { "rate": 10 } }}]})");
    }

    const QTemporaryDir m_folder;
};

} // namespace

QString prepare(const QString &home)
{
    if (qEnvironmentVariableIsSet(wayOut)) {
        QDir::setCurrent(qEnvironmentVariable(workFolder));
        return {};
    }
    // The window that is on the screen meanwhile has no device.
    QFile file(home + QLatin1String("/none.json"));
    if (!file.open(QIODevice::WriteOnly) || file.write("{\"devices\": []}") < 0)
        return QStringLiteral("the configuration can't be written");
    qputenv("QVSIM_CONFIG", file.fileName().toLocal8Bit());
    return {};
}

TEST(Child, recordsAndLeaves)
{
    const QByteArray way = qgetenv(wayOut);
    if (way.isEmpty())
        GTEST_SKIP() << "not the child";
    ASSERT_TRUE(pageAppears());
    switchOn("stereoButton", "stereoView");
    switchOn("rgbButton", "rgbView");
    switchOn("tofButton", "tofView");
    switchOn("slamButton", "slamView");
    setDrawer(false);
    WindowDriver::byName("saveVideoButton")->setProperty("checked", true);
    WindowDriver::click(WindowDriver::byName("pathBtn", id("slamView")));
    QTest::qWait(5000);
    if (way == "keys")
        WindowDriver::key(Qt::Key_Q, Qt::ControlModifier);
    else
        WindowDriver::window()->close();
}

TEST_F(Closing, theWindowLeavesPlayableFiles)
{
    ASSERT_EQ(runChild(m_folder.path(), "window"), 0);
    expectPlayable(m_folder.path());
}

TEST_F(Closing, theKeysLeavePlayableFiles)
{
    ASSERT_EQ(runChild(m_folder.path(), "keys"), 0);
    expectPlayable(m_folder.path());
}
