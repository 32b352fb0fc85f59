#include "ui/Space.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>

// The map of SLAM saved and loaded by the buttons of its view, from files good and bad.

using namespace ui;

namespace {

QString home;

struct State {
    QString mode;
    QString save;
    bool saves;
    QString load;
    bool loads;

    bool operator==(const State &other) const
    {
        return mode == other.mode && save == other.save && saves == other.saves && load == other.load
            && loads == other.loads;
    }
};

void PrintTo(const State &state, std::ostream *out)
{
    *out << qPrintable(state.mode) << ", " << qPrintable(state.save) << ' ' << state.saves << ", "
         << qPrintable(state.load) << ' ' << state.loads;
}

const State odometry{
    QStringLiteral("Visual Odometry"), QStringLiteral("Save map"), true, QStringLiteral("Load map"), true};
const State saving{
    QStringLiteral("Loop Closure"), QStringLiteral("Create map"), false, QStringLiteral("Load map"), false};
const State saved{
    QStringLiteral("Loop Closure"), QStringLiteral("Create map"), true, QStringLiteral("Load map"), false};
const State loaded{
    QStringLiteral("Loop Closure"), QStringLiteral("Save map"), false, QStringLiteral("Stop Load Map"), true};

QString textOf(const char *name)
{
    return slamItem(name)->property("text").toString();
}

State state()
{
    return {textOf("modeLabel"), textOf("loopClosureButton"), slamItem("loopClosureButton")->isEnabled(),
        textOf("loadButton"), slamItem("loadButton")->isEnabled()};
}

QObject *popup(const char *id)
{
    return WindowDriver::byId(slamItem("scene3d"), id);
}

/// Hears from here on what a note says, even where a slow machine shows it and takes it away between two
/// looks.
class Note {
public:
    explicit Note(const char *id)
        : m_popup(popup(id))
        , m_shown(m_popup, SIGNAL(aboutToShow()))
    {
    }

    bool says(const char *text) const
    {
        return waitFor(
            [=] { return !m_shown.isEmpty() && m_popup->property("text").toString() == QLatin1String(text); },
            minute);
    }

private:
    QObject *const m_popup;
    const QSignalSpy m_shown;
};

bool isSilent(const char *id)
{
    return waitFor([=] { return !popup(id)->property("visible").toBool(); }, minute);
}

QString mapPath()
{
    return home + QStringLiteral("/loopclosure.map");
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void removeMap()
{
    if (QFileInfo(mapPath()).isDir())
        QDir().rmdir(mapPath());
    QFile::remove(mapPath());
}

void writeMap(const QByteArray &bytes)
{
    removeMap();
    QFile file(mapPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

int mapCount()
{
    return model("map")->property("pointCount").toInt();
}

QByteArray goodMap;

void expectFailure(const char *what)
{
    const Note note("loadPopup");
    WindowDriver::click(slamItem("loadButton"));
    EXPECT_TRUE(note.says("Load map fail")) << what;
    EXPECT_EQ(state(), odometry) << what;
    EXPECT_FALSE(slamItem("localizedPercentLable")->isVisible()) << what;
    // Poses go on all the same.
    PoseTap tap(hostSource());
    EXPECT_TRUE(waitFor([&] { return tap.count() > 20; }, minute)) << what;
    EXPECT_TRUE(isSilent("loadPopup")) << what;
}

void expectSuccess()
{
    const Note note("loadPopup");
    WindowDriver::click(slamItem("loadButton"));
    EXPECT_TRUE(note.says("Load map successful"));
    EXPECT_EQ(state(), loaded);
    EXPECT_TRUE(slamItem("localizedPercentLable")->isVisible());
    // Where the device finds itself, the points of the map are there at once.
    const int points = (goodMap.size() - 28) / 32;
    EXPECT_TRUE(waitFor([=] { return mapCount() >= points; }, minute)) << mapCount() << " of " << points;
}

void stopLoad()
{
    const Note note("loadPopup");
    WindowDriver::click(slamItem("loadButton"));
    EXPECT_TRUE(note.says("Stop load map successful"));
    EXPECT_EQ(state(), odometry);
}

} // namespace

QString prepare(const QString &temporaryHome)
{
    home = temporaryHome;
    qputenv("QVSIM", "headset");
    qputenv("TMPDIR", home.toLocal8Bit()); // where maps are kept
    return {};
}

TEST(Map, loadingWhatIsMissingFails)
{
    ASSERT_TRUE(pageAppears());
    clickSwitch("slamButton");
    setDrawer(false);
    ASSERT_TRUE(waitFor([] { return id("slamView")->width() > 300; }, minute));
    EXPECT_EQ(state(), odometry);
    ASSERT_FALSE(QFileInfo::exists(mapPath()));
    expectFailure("missing");
}

TEST(Map, savingWritesWhatTheDeviceHasSeen)
{
    ASSERT_TRUE(waitFor([] { return mapCount() > 1500; }, minute));
    const Note note("loopClosurePopup");
    WindowDriver::click(slamItem("loopClosureButton"));
    EXPECT_EQ(state(), saving);
    EXPECT_TRUE(slamItem("loopClosureIndicator")->property("running").toBool());
    EXPECT_TRUE(note.says("Save map successful"));
    WindowDriver::picture(QStringLiteral("slam-saving"));
    EXPECT_TRUE(waitFor([] { return state() == saved; }, minute));
    EXPECT_FALSE(slamItem("loopClosureIndicator")->property("running").toBool());
    ASSERT_TRUE(waitFor(
        [] {
            goodMap = bytesOf(mapPath());
            return goodMap.size() > 28 + 32 * 1500;
        },
        minute))
        << goodMap.size();
    EXPECT_TRUE(goodMap.startsWith("QVSLAMAP"));
    EXPECT_EQ((goodMap.size() - 28) % 32, 0);
    const Note again("loopClosurePopup");
    WindowDriver::click(slamItem("loopClosureButton"));
    EXPECT_TRUE(again.says("Create map successful"));
    EXPECT_EQ(state(), odometry);
    // Another map is begun.
    EXPECT_TRUE(waitFor([] { return mapCount() < (goodMap.size() - 28) / 32; }, minute));
}

TEST(Map, loadingBringsThePointsBack)
{
    expectSuccess();
    EXPECT_TRUE(waitFor([] { return model("slam")->property("localizedPercent").toInt() > 0; }, minute));
    EXPECT_TRUE(textOf("localizedPercentLable").startsWith(QLatin1String("localized:  ")));
    WindowDriver::picture(QStringLiteral("slam-loaded"));
    stopLoad();
}

TEST(Map, noBadFileIsLoadedAndTheNextTryWorks)
{
    ASSERT_FALSE(goodMap.isEmpty());
    QByteArray damaged = goodMap;
    damaged[damaged.size() / 2] = char(damaged[damaged.size() / 2] ^ 1);
    const std::pair<const char *, QByteArray> files[] = {{"damaged", damaged}, {"empty", QByteArray()},
        {"cut short", goodMap.left(goodMap.size() / 2)}, {"too long", goodMap + "more"},
        {"of another kind", "# .PCD v0.7 - Point Cloud Data file format\n"}};
    for (const auto &[what, bytes] : files) {
        writeMap(bytes);
        expectFailure(what);
        writeMap(goodMap);
        expectSuccess();
        stopLoad();
    }
    removeMap();
    ASSERT_TRUE(QDir().mkdir(mapPath()));
    expectFailure("a folder");
    removeMap();
    expectFailure("missing");
    writeMap(goodMap);
    expectSuccess();
    stopLoad();
}

TEST(Map, whatCanNotBeWrittenIsStillSaidToBeSaved)
{
    removeMap();
    ASSERT_TRUE(QDir().mkdir(mapPath()));
    const Note note("loopClosurePopup");
    WindowDriver::click(slamItem("loopClosureButton"));
    EXPECT_TRUE(note.says("Save map successful"));
    EXPECT_TRUE(waitFor([] { return state() == saved; }, minute));
    WindowDriver::click(slamItem("loopClosureButton"));
    EXPECT_EQ(state(), odometry);
    removeMap();
    ASSERT_TRUE(waitFor([] { return mapCount() > 500; }, minute));
    WindowDriver::click(slamItem("loopClosureButton"));
    EXPECT_TRUE(waitFor([] { return state() == saved && bytesOf(mapPath()).size() > 32 * 500; }, minute));
}

TEST(Map, nothingUnexpectedIsInTheLog)
{
    QStringList warnings = unexpectedWarnings();
    // The missing map is told.
    warnings.removeAll(QLatin1Char('"') + mapPath() + QLatin1String("\" does not exists"));
    EXPECT_THAT(warnings, ::testing::IsEmpty());
}
