#include "ui/Page.h"

#include <QFont>
#include <QGlyphRun>
#include <QSettings>
#include <QTextLayout>

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
    auto *popup = box->property("popup").value<QObject *>();
    WindowDriver::click(box);
    ASSERT_TRUE(waitFor([popup] { return popup->property("opened").toBool(); }, minute));
    auto *list = popup->property("contentItem").value<QQuickItem *>();
    QQuickItem *entry = nullptr;
    QMetaObject::invokeMethod(list, "itemAtIndex", Q_RETURN_ARG(QQuickItem *, entry), Q_ARG(int, language));
    ASSERT_TRUE(entry);
    WindowDriver::click(entry);
    ASSERT_TRUE(waitFor([popup] { return !popup->property("visible").toBool(); }, minute));
    EXPECT_EQ(box->property("currentIndex").toInt(), language);
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
}

TEST(Languages, chineseTakesEffectInTheOpenWindow)
{
    choose(Chinese);
    EXPECT_EQ(hintOf("infoButton"), QStringLiteral("信息"));
    EXPECT_EQ(hintOf("documentationButton"), QStringLiteral("文档"));
    EXPECT_EQ(textOf("enableSyncCheckbox"), QStringLiteral("使能同步功能"));
    EXPECT_EQ(textOf("autoExposure"), QStringLiteral("自动曝光"));
    EXPECT_EQ(id("imumodeComboBox")->property("displayText"), QVariant(QStringLiteral("VSlam+IMU")));
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

TEST(Languages, japaneseReplacesChinese)
{
    choose(Japanese);
    EXPECT_EQ(hintOf("documentationButton"), QStringLiteral("ドキュメンテーション"));
    EXPECT_EQ(textOf("enableSyncCheckbox"), QStringLiteral("同期機能をオン"));
    EXPECT_TRUE(hasGlyphs("enableSyncCheckbox"));
    EXPECT_TRUE(isStored(Japanese));
    WindowDriver::picture(QStringLiteral("japanese"));
}

TEST(Languages, dialogsFollow)
{
    QQuickItem *dialog = WindowDriver::itemById(WindowDriver::byName("mainWindow"), "infoDialog");
    ASSERT_TRUE(dialog);
    WindowDriver::click(WindowDriver::byName("infoButton"));
    ASSERT_TRUE(waitFor([dialog] { return dialog->isVisible(); }, minute));
    EXPECT_EQ(dialog->property("title"), QVariant(QStringLiteral("情報")));
    ASSERT_TRUE(waitFor([] { return WindowDriver::byName("veil")->opacity() > 0.64; }, minute));
    WindowDriver::picture(QStringLiteral("japanese-info"));
    WindowDriver::click(WindowDriver::byName("clearButton", dialog));
    EXPECT_TRUE(waitFor([] { return !WindowDriver::byName("veil")->isVisible(); }, minute));
}

TEST(Languages, englishComesBackAtOnce)
{
    choose(English);
    EXPECT_EQ(hintOf("infoButton"), QStringLiteral("Info"));
    EXPECT_EQ(textOf("enableSyncCheckbox"), QStringLiteral("Enable Sync"));
    EXPECT_EQ(textOf("autoExposure"), QStringLiteral("Auto Exposure"));
    EXPECT_TRUE(isStored(English));
}

TEST(Languages, nothingUnexpectedIsInTheLog)
{
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
