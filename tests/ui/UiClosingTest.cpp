#include "ui/CaptureFiles.h"
#include "ui/ChildProgram.h"
#include "ui/Page.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest/QTest>

// The whole program ends, or loses its device, while it records. A program of its own does so, started from
// here by its tests `Child`; this one looks at what it has left.

using namespace ui;

namespace {

/// One device that records everything, plugged in or pulled out.
bool describeDevice(const QString &folder, bool isPresent)
{
    const QString configuration = folder + QLatin1String("/devices.json");
    QFile file(configuration + QLatin1String(".new"));
    const QByteArray text = QByteArray(R"({"devices": [{ "profile": "headset", "present": )")
        + (isPresent ? "true" : "false") + R"(, "streams": { "fisheye": { "rate": 10 },
            "color": { "rate": 10, "size": [640, 480] }, "tof": { "rate": 10 } }}]})";
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return false;
    file.close();
    QFile::remove(configuration);
    return QFile::rename(file.fileName(), configuration);
}

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

/// The captured files that this process still writes.
QStringList openCaptures()
{
    QStringList open;
    for (const QFileInfo &descriptor : QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::Files)) {
        if (descriptor.symLinkTarget().startsWith(child::folder() + QLatin1String("/capture/")))
            open << descriptor.symLinkTarget();
    }
    return open;
}

class Closing : public testing::Test {
protected:
    void SetUp() override
    {
        if (!child::task().isEmpty())
            GTEST_SKIP();
        ASSERT_TRUE(describeDevice(m_folder.path(), true));
    }

    int run(const char *wayOut) const { return child::run(m_folder.path(), "recordsAndLeaves", wayOut); }

    const QTemporaryDir m_folder;
};

} // namespace

QString prepare(const QString &home)
{
    if (!child::task().isEmpty()) {
        QDir::setCurrent(child::folder());
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
    const QByteArray wayOut = child::task();
    if (wayOut.isEmpty())
        GTEST_SKIP() << "not the child";
    ASSERT_TRUE(pageAppears());
    switchOn("stereoButton", "stereoView");
    switchOn("rgbButton", "rgbView");
    switchOn("tofButton", "tofView");
    switchOn("slamButton", "slamView");
    setDrawer(false);
    WindowDriver::byName("saveVideoButton")->setProperty("checked", true);
    WindowDriver::click(WindowDriver::byName("pathBtn", id("slamView")));
    QTest::qWait(3500);
    if (wayOut == "unplugging") {
        EXPECT_EQ(openCaptures().size(), 6);
        ASSERT_TRUE(describeDevice(child::folder(), false));
        ASSERT_TRUE(waitFor([] { return !WindowDriver::page(); }, minute));
        // The device ends its files itself, not the end of the program.
        EXPECT_TRUE(waitFor([] { return openCaptures().isEmpty(); }, minute));
        expectPlayable(child::folder());
    }
    if (wayOut == "keys")
        WindowDriver::key(Qt::Key_Q, Qt::ControlModifier);
    else
        WindowDriver::window()->close();
}

TEST_F(Closing, theWindowLeavesPlayableFiles)
{
    ASSERT_EQ(run("window"), 0);
    expectPlayable(m_folder.path());
}

TEST_F(Closing, theKeysLeavePlayableFiles)
{
    ASSERT_EQ(run("keys"), 0);
    expectPlayable(m_folder.path());
}

TEST_F(Closing, aDeviceThatIsPulledOutLeavesPlayableFiles)
{
    ASSERT_EQ(run("unplugging"), 0);
    expectPlayable(m_folder.path());
}
