#include "ui/ChildProgram.h"
#include "ui/Page.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest/QTest>

// What one start of the whole program leaves for the next one in the settings. Each start is a program of its
// own, a test of `Child`, with the settings of the folder that it is given.

using namespace ui;

namespace {

QString storePath(const QString &folder)
{
    return folder + QLatin1String("/config/Quivra/QVSDK-Viewer.conf");
}

bool write(const QString &path, const QByteArray &text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList presets()
{
    QQuickItem *box = id("allSettingsCombobox");
    QStringList names;
    for (int i = 0; i < box->property("count").toInt(); ++i) {
        QString name;
        QMetaObject::invokeMethod(box, "textAt", Q_RETURN_ARG(QString, name), Q_ARG(int, i));
        names << name;
    }
    return names;
}

bool isChecked(const char *box)
{
    return id(box)->property("checked").toBool();
}

void choosePreset(int index)
{
    QQuickItem *box = id("allSettingsCombobox");
    chooseEntry(box, WindowDriver::byName("arrowBox", box), index);
}

int imuMode()
{
    return id("imumodeComboBox")->property("currentIndex").toInt();
}

void savePreset(const char *name)
{
    WindowDriver::click(WindowDriver::byName("allSettingsText"));
    WindowDriver::key(Qt::Key_A, Qt::ControlModifier);
    for (const char letter : QByteArray(name))
        QTest::keyClick(WindowDriver::window(), letter);
    WindowDriver::click(WindowDriver::byName("savePresetButton"));
}

QString hint()
{
    return WindowDriver::byName("infoButton")->property("hint").toString();
}

QString syncText()
{
    return id("enableSyncCheckbox")->property("text").toString();
}

int languageIndex()
{
    return id("combobox")->property("currentIndex").toInt();
}

class Child : public testing::Test {
protected:
    void SetUp() override
    {
        if (child::task().isEmpty())
            GTEST_SKIP() << "not a child";
        ASSERT_TRUE(pageAppears());
        setDrawer(true);
    }
    void TearDown() override
    {
        if (!child::task().isEmpty())
            WindowDriver::window()->close();
    }
};

class Restart : public testing::Test {
protected:
    void SetUp() override
    {
        if (!child::task().isEmpty())
            GTEST_SKIP();
        ASSERT_TRUE(write(
            m_folder.filePath(QStringLiteral("devices.json")), R"({"devices": [{ "profile": "headset" }]})"));
        ASSERT_TRUE(QDir().mkpath(m_folder.filePath(QStringLiteral("config/Quivra"))));
    }

    bool run(const char *test) const { return child::run(m_folder.path(), test, test) == 0; }
    bool store(const QByteArray &settings) const { return write(storePath(m_folder.path()), settings); }
    QByteArray stored() const { return read(storePath(m_folder.path())); }

    const QTemporaryDir m_folder;
};

} // namespace

QString prepare(const QString &home)
{
    if (!child::task().isEmpty()) {
        qputenv("XDG_CONFIG_HOME", (child::folder() + QLatin1String("/config")).toLocal8Bit());
        return {};
    }
    // The window that is on the screen meanwhile has no device.
    const QString none = home + QLatin1String("/none.json");
    if (!write(none, "{\"devices\": []}"))
        return QStringLiteral("the configuration can't be written");
    qputenv("QVSIM_CONFIG", none.toLocal8Bit());
    return {};
}

TEST_F(Child, savesTwoPresetsAndDeletesTheFirst)
{
    WindowDriver::click(id("generalText"));
    WindowDriver::click(id("imuText"));
    WindowDriver::click(id("menuAutoCloseCheckbox"));
    savePreset("first");
    WindowDriver::click(id("menuAutoCloseCheckbox"));
    QQuickItem *box = id("imumodeComboBox");
    chooseEntry(box, WindowDriver::byName("arrowBox", box), 2);
    EXPECT_EQ(imuMode(), 2);
    savePreset("second");
    EXPECT_EQ(presets(),
        QStringList({QStringLiteral("Default"), QStringLiteral("first"), QStringLiteral("second")}));
    choosePreset(1);
    EXPECT_FALSE(isChecked("menuAutoCloseCheckbox"));
    EXPECT_EQ(imuMode(), 1);
    WindowDriver::click(WindowDriver::byName("deletePresetButton"));
    EXPECT_EQ(presets(), QStringList({QStringLiteral("Default"), QStringLiteral("second")}));
}

TEST_F(Child, listsThePresetThatIsLeft)
{
    EXPECT_EQ(presets(), QStringList({QStringLiteral("Default"), QStringLiteral("second")}));
    EXPECT_EQ(id("allSettingsCombobox")->property("currentIndex").toInt(), 0);
    EXPECT_TRUE(isChecked("menuAutoCloseCheckbox"));
    EXPECT_EQ(imuMode(), 1);
    choosePreset(1);
    EXPECT_TRUE(isChecked("menuAutoCloseCheckbox"));
    EXPECT_EQ(imuMode(), 2);
    WindowDriver::click(WindowDriver::byName("deletePresetButton"));
}

TEST_F(Child, listsNoPreset)
{
    EXPECT_EQ(presets(), QStringList({QStringLiteral("Default")}));
}

TEST_F(Child, isChinese)
{
    EXPECT_EQ(languageIndex(), 1);
    EXPECT_EQ(hint(), QStringLiteral("信息"));
    EXPECT_EQ(syncText(), QStringLiteral("使能同步功能"));
}

TEST_F(Child, isEnglishByTheEmptyFrenchCatalogue)
{
    EXPECT_EQ(hint(), QStringLiteral("Info"));
    EXPECT_EQ(syncText(), QStringLiteral("Enable Sync"));
    EXPECT_EQ(id("combobox")->property("count").toInt(), 3) << "French can't be chosen";
    EXPECT_TRUE(QFile::exists(QStringLiteral(":/viewer_fr_FR.qm"))) << "but it is there";
}

TEST_F(Child, becomesJapanese)
{
    WindowDriver::click(id("generalText"));
    QQuickItem *box = id("combobox");
    chooseEntry(box, box, 2);
    EXPECT_EQ(hint(), QStringLiteral("情報"));
}

TEST_F(Child, isJapanese)
{
    EXPECT_EQ(languageIndex(), 2);
    EXPECT_EQ(hint(), QStringLiteral("情報"));
    EXPECT_EQ(syncText(), QStringLiteral("同期機能をオン"));
}

TEST_F(Restart, presetsStayDenseOnTheDisk)
{
    ASSERT_TRUE(run("savesTwoPresetsAndDeletesTheFirst"));
    ASSERT_TRUE(run("listsThePresetThatIsLeft"));
    ASSERT_TRUE(run("listsNoPreset"));
}

TEST_F(Restart, aStoredChineseIsThereFromTheStart)
{
    ASSERT_TRUE(store("[Settings]\ncurrentLanguageIndex=1\n"));
    EXPECT_TRUE(run("isChinese"));
    EXPECT_TRUE(stored().contains("currentLanguageIndex=1\n")) << stored().constData();
}

TEST_F(Restart, aStoredFrenchShowsEnglishAndStaysStored)
{
    ASSERT_TRUE(store("[Settings]\ncurrentLanguageIndex=3\n"));
    EXPECT_TRUE(run("isEnglishByTheEmptyFrenchCatalogue"));
    EXPECT_TRUE(stored().contains("currentLanguageIndex=3\n")) << stored().constData();
}

TEST_F(Restart, aLanguageThatWasChosenIsThereAtTheNextStart)
{
    ASSERT_TRUE(run("becomesJapanese"));
    EXPECT_TRUE(stored().contains("currentLanguageIndex=2\n")) << stored().constData();
    EXPECT_TRUE(run("isJapanese"));
}
