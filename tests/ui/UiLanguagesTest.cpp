#include "ui/Page.h"

#include <QFont>
#include <QGlyphRun>
#include <QSettings>
#include <QTextLayout>
#include <QtTest/QTest>

// One run of the program in which the language is changed while the window is open.

using namespace ui;

QString prepare(const QString &home)
{
    Q_UNUSED(home)
    qputenv("QVSIM", "headset");
    return {};
}

namespace {

enum Language { English, Chinese, Japanese };

QString textOf(const char *item)
{
    return id(item)->property("text").toString();
}

QString hintOf(const char *button)
{
    return WindowDriver::byName(button)->property("hint").toString();
}

/// Opens the panel's language box and clicks on an entry of its list.
void choose(Language language)
{
    // A click on a dialog closes the panel, which takes its time.
    QObject *drawer = WindowDriver::byId(WindowDriver::page(), "drawer");
    ASSERT_TRUE(
        waitFor([drawer] { return drawer->property("visible") == drawer->property("opened"); }, minute));
    setDrawer(true);
    if (!id("generalText")->property("checked").toBool())
        WindowDriver::click(id("generalText"));
    QQuickItem *box = id("combobox");
    ASSERT_NO_FATAL_FAILURE(chooseEntry(box, box, language));
    EXPECT_EQ(box->property("currentIndex").toInt(), language);
}

QString imuMode()
{
    return id("imumodeComboBox")->property("displayText").toString();
}

/// Opens a dialog by its gesture on the button of information, and leaves its picture.
QQuickItem *openDialog(const char *name, void (*gesture)(QQuickItem *), const char *picture)
{
    QQuickItem *dialog = WindowDriver::byName(name);
    gesture(WindowDriver::byName("infoButton"));
    EXPECT_TRUE(waitFor([dialog] { return dialog->isVisible(); }, minute));
    EXPECT_TRUE(waitFor([] { return WindowDriver::byName("veil")->opacity() > 0.64; }, minute));
    WindowDriver::hover(WindowDriver::byName("veil"), QPointF(600, 20));
    EXPECT_TRUE(
        waitFor([] { return !WindowDriver::byName("infoButton")->property("hovered").toBool(); }, minute));
    QTest::qWait(500); // the tip fades
    WindowDriver::picture(QLatin1String(picture));
    return dialog;
}

void closeDialog(QQuickItem *dialog)
{
    WindowDriver::click(WindowDriver::byName("clearButton", dialog));
    EXPECT_TRUE(waitFor([] { return !WindowDriver::byName("veil")->isVisible(); }, minute));
}

/// Whether the machine's fonts have a glyph for every letter of the item's text.
bool hasGlyphs(const char *item)
{
    QTextLayout layout(textOf(item), id(item)->property("font").value<QFont>());
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    for (const QGlyphRun &run : layout.glyphRuns()) {
        if (run.glyphIndexes().contains(0))
            return false;
    }
    return !textOf(item).isEmpty();
}

bool isStored(Language language)
{
    return waitFor(
        [language] {
            const QVariant stored = QSettings().value(QStringLiteral("Settings/currentLanguageIndex"));
            return stored.isValid() && stored.toInt() == language;
        },
        minute);
}

} // namespace

TEST(Languages, programStartsInEnglish)
{
    ASSERT_TRUE(pageAppears());
    EXPECT_EQ(hintOf("infoButton"), QStringLiteral("Info"));
    EXPECT_EQ(textOf("enableSyncCheckbox"), QStringLiteral("Enable Sync"));
    // The text that is chosen at the start has no message in the box's own context.
    setDrawer(true);
    QQuickItem *box = id("imumodeComboBox");
    WindowDriver::click(id("imuText"));
    ASSERT_NO_FATAL_FAILURE(chooseEntry(box, WindowDriver::byName("arrowBox", box), 0));
    EXPECT_EQ(imuMode(), QStringLiteral("VSlam only"));
}

TEST(Languages, chineseTakesEffectInTheOpenWindow)
{
    const QSize size(1600, 1000);
    WindowDriver::window()->showNormal();
    ASSERT_TRUE(waitFor([] { return WindowDriver::window()->visibility() == QWindow::Windowed; }, minute));
    WindowDriver::window()->resize(size);
    ASSERT_TRUE(waitFor([size] { return WindowDriver::window()->size() == size; }, minute));
    choose(Chinese);
    EXPECT_EQ(WindowDriver::window()->visibility(), QWindow::Windowed);
    EXPECT_EQ(WindowDriver::window()->size(), size);
    WindowDriver::window()->showMaximized();
    ASSERT_TRUE(waitFor([size] { return WindowDriver::window()->width() > size.width(); }, minute));
    EXPECT_EQ(hintOf("infoButton"), QStringLiteral("信息"));
    EXPECT_EQ(hintOf("documentationButton"), QStringLiteral("文档"));
    EXPECT_EQ(textOf("enableSyncCheckbox"), QStringLiteral("使能同步功能"));
    EXPECT_EQ(textOf("autoExposure"), QStringLiteral("自动曝光"));
    EXPECT_EQ(imuMode(), QStringLiteral("仅VSlam"));
    EXPECT_TRUE(hasGlyphs("enableSyncCheckbox"));
    EXPECT_TRUE(isStored(Chinese));
    WindowDriver::picture(QStringLiteral("chinese"));
}

TEST(Languages, textsWithoutAMessageStayEnglish)
{
    EXPECT_EQ(WindowDriver::window()->title(), QStringLiteral("QVSDK Viewer"));
    EXPECT_EQ(hintOf("menuButton"), QStringLiteral("Menu List"));
    EXPECT_EQ(textOf("generalText"), QStringLiteral("General Settings"));
}

TEST(Languages, dialogsAreChinese)
{
    QQuickItem *info = openDialog(
        "infoDialog", [](QQuickItem *button) { WindowDriver::click(button); }, "chinese-info");
    EXPECT_EQ(WindowDriver::byName("copyValue", info)->property("hint"), QVariant(QStringLiteral("已复制")));
    closeDialog(info);
    // No catalogue has a translation for this one.
    QQuickItem *calibration =
        openDialog("calibrationDialog", WindowDriver::pressAndHold, "chinese-calibration");
    EXPECT_EQ(calibration->property("title"), QVariant(QStringLiteral("Calibration info")));
    closeDialog(calibration);
}

TEST(Languages, japaneseReplacesChinese)
{
    choose(Japanese);
    EXPECT_EQ(hintOf("documentationButton"), QStringLiteral("ドキュメンテーション"));
    EXPECT_EQ(textOf("enableSyncCheckbox"), QStringLiteral("同期機能をオン"));
    EXPECT_EQ(imuMode(), QStringLiteral("VSlamのみ"));
    EXPECT_TRUE(hasGlyphs("enableSyncCheckbox"));
    EXPECT_TRUE(isStored(Japanese));
    WindowDriver::picture(QStringLiteral("japanese"));
}

TEST(Languages, dialogsAreJapanese)
{
    QQuickItem *dialog = openDialog(
        "infoDialog", [](QQuickItem *button) { WindowDriver::click(button); }, "japanese-info");
    EXPECT_EQ(dialog->property("title"), QVariant(QStringLiteral("情報")));
    closeDialog(dialog);
}

TEST(Languages, englishComesBackAtOnce)
{
    choose(English);
    EXPECT_EQ(hintOf("infoButton"), QStringLiteral("Info"));
    EXPECT_EQ(textOf("enableSyncCheckbox"), QStringLiteral("Enable Sync"));
    EXPECT_EQ(textOf("autoExposure"), QStringLiteral("Auto Exposure"));
    EXPECT_EQ(imuMode(), QStringLiteral("VSlam only"));
    EXPECT_TRUE(isStored(English));
}

TEST(Languages, nothingUnexpectedIsInTheLog)
{
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
