#include "ui/Page.h"

#include <QFile>
#include <QQmlEngine>
#include <QSignalSpy>

// One run of the program that begins without a device; then devices are plugged in and pulled out.

using namespace ui;

namespace {

QString configuration;

void plug(const QByteArray &devices)
{
    QFile file(configuration + QLatin1String(".new"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{\"devices\": [" + devices + "]}");
    file.close();
    QFile::remove(configuration);
    ASSERT_TRUE(QFile::rename(file.fileName(), configuration));
}

QQuickItem *button(const char *name)
{
    return WindowDriver::byName(name);
}

} // namespace

QString prepare(const QString &home)
{
    keepFilm();
    configuration = home + QLatin1String("/devices.json");
    plug("");
    qputenv("QVSIM_CONFIG", configuration.toLocal8Bit());
    return {};
}

TEST(Plugging, ctrlQDoesNothingDuringTheFilm)
{
    ASSERT_TRUE(
        waitFor([] { return WindowDriver::window() && WindowDriver::window()->isExposed(); }, minute));
    QQmlEngine *engine = qmlEngine(WindowDriver::window());
    ASSERT_TRUE(engine);
    const QSignalSpy quit(engine, &QQmlEngine::quit);
    WindowDriver::key(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(quit.count(), 0);
}

TEST(Plugging, withoutADeviceOnlyTheDocumentationReacts)
{
    ASSERT_TRUE(waitFor([] { return button("menuButton") != nullptr; }, minute));
    EXPECT_FALSE(button("menuButton")->isEnabled());
    EXPECT_FALSE(button("infoButton")->isEnabled());
    EXPECT_TRUE(button("documentationButton")->isEnabled());
    EXPECT_EQ(button("uuidSelector")->property("count").toInt(), 0);
    EXPECT_FALSE(WindowDriver::page());
    WindowDriver::picture(QStringLiteral("no-device"));
}

TEST(Plugging, pluggedDevicesAppear)
{
    plug(R"({"profile": "headset", "uuid": "A"}, {"profile": "imu-only", "uuid": "B"})");
    ASSERT_TRUE(pageAppears(1));
    EXPECT_EQ(button("uuidSelector")->property("count").toInt(), 2);
    EXPECT_TRUE(button("menuButton")->isEnabled());
    EXPECT_EQ(camera(0)->property("uuid").toString(), QStringLiteral("A"));
}

TEST(Plugging, aDeviceWithOnlyAnImuDisablesTheOtherSwitches)
{
    EXPECT_TRUE(id("imuButton", 1)->isEnabled());
    EXPECT_FALSE(id("stereoButton", 1)->isEnabled());
    EXPECT_FALSE(id("slamButton", 1)->isEnabled());
}

TEST(Plugging, thePageOfADeviceLivesOnWhileAnotherIsPulledOut)
{
    clickSwitch("stereoButton", 0);
    QQuickItem *view = id("stereoView", 0);
    ASSERT_TRUE(waitFor([view] { return colours(WindowDriver::grab(view)) > 50; }, minute));
    plug(R"({"profile": "headset", "uuid": "A"})");
    ASSERT_TRUE(waitFor([] { return button("uuidSelector")->property("count").toInt() == 1; }, minute));
    EXPECT_EQ(id("stereoView", 0), view);
    EXPECT_TRUE(id("stereoButton", 0)->property("checked").toBool());
    const QImage before = WindowDriver::grab(view);
    EXPECT_TRUE(waitFor([&] { return WindowDriver::grab(view) != before; }, minute));
}

TEST(Plugging, aDeviceThatIsPulledOutWhileStreamingTakesItsPageAlong)
{
    plug("");
    ASSERT_TRUE(waitFor([] { return !WindowDriver::page(); }, minute));
    EXPECT_FALSE(button("menuButton")->isEnabled());
}

TEST(Plugging, theFirstDeviceAfterThatIsWhole)
{
    plug(R"({"profile": "headset", "uuid": "A"})");
    ASSERT_TRUE(pageAppears());
    clickSwitch("stereoButton");
    QQuickItem *view = id("stereoView");
    EXPECT_TRUE(
        waitFor([view] { return view->width() > 100 && colours(WindowDriver::grab(view)) > 50; }, minute));
    EXPECT_TRUE(rateReaches(WindowDriver::byName("infoLabel", view), 20, 52));
}

TEST(Plugging, aDeviceWithoutAnythingExtendedRunsAsWell)
{
    plug("");
    ASSERT_TRUE(waitFor([] { return !WindowDriver::page(); }, minute));
    plug(R"({"profile": "plain", "uuid": "C"})");
    ASSERT_TRUE(pageAppears());
    EXPECT_FALSE(model("edge"));
    setSwitch("stereoButton", true);
    EXPECT_TRUE(rateReaches(WindowDriver::byName("infoLabel", id("stereoView")), 10, 60));
    setSwitch("slamButton", true);
    EXPECT_TRUE(waitFor([] { return model("slam")->property("dataFrameRate").toInt() > 0; }, minute));
}

TEST(Plugging, nothingUnexpectedIsInTheLog)
{
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}

TEST(Plugging, ctrlQEndsTheProgramAlsoWithSeveralDevices)
{
    plug(R"({"profile": "headset", "uuid": "A"}, {"profile": "imu-only", "uuid": "B"})");
    ASSERT_TRUE(pageAppears(1));
    setDrawer(true);
    QSignalSpy quit(qmlEngine(WindowDriver::page()), &QQmlEngine::quit);
    WindowDriver::key(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(waitFor([&] { return quit.count() == 1; }, minute));
}
