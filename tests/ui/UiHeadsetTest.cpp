#include "ui/Page.h"

#include <QWindow>

// One run of the program on the simulated headset. The tests stand in the order of a session.

using namespace ui;

QString prepare(const QString &home)
{
    Q_UNUSED(home)
    qputenv("QVSIM", "headset");
    return {};
}

TEST(Headset, filmPlaysBeforeTheMainPage)
{
    ASSERT_TRUE(
        waitFor([] { return WindowDriver::window() && WindowDriver::window()->isExposed(); }, minute));
    EXPECT_EQ(WindowDriver::window()->title(), QStringLiteral("QVSDK Viewer"));
    EXPECT_EQ(WindowDriver::window()->visibility(), QWindow::Maximized);
    ASSERT_TRUE(waitFor([] { return colours(WindowDriver::grab()) > 8; }, minute))
        << "the film shows nothing";
    EXPECT_FALSE(WindowDriver::page());
    WindowDriver::picture(QStringLiteral("start"));
}

TEST(Headset, deviceAppearsInTheSelector)
{
    ASSERT_TRUE(waitFor([] { return WindowDriver::page() != nullptr; }, minute));
    QQuickItem *selector = WindowDriver::byName("uuidSelector");
    ASSERT_TRUE(selector);
    EXPECT_EQ(selector->property("count").toInt(), 1);
    EXPECT_FALSE(camera()->property("uuid").toString().isEmpty());
    WindowDriver::picture(QStringLiteral("panel"));
}

TEST(Headset, stereoSwitchPutsLivePicturesOnTheScreen)
{
    QQuickItem *button = id("stereoButton");
    ASSERT_TRUE(button);
    ASSERT_TRUE(button->isEnabled());
    clickSwitch("stereoButton");
    ASSERT_TRUE(button->property("checked").toBool());

    QQuickItem *view = id("stereoView");
    ASSERT_TRUE(waitFor([view] { return view->width() > 100 && view->isVisible(); }, minute));
    ASSERT_TRUE(waitFor([view] { return colours(WindowDriver::grab(view)) > 50; }, minute)) << "no picture";
    const QImage first = WindowDriver::grab(view);
    ASSERT_TRUE(waitFor([&] { return WindowDriver::grab(view) != first; }, minute))
        << "the picture stands still";
    EXPECT_EQ(model("stereo")->property("count").toInt(), 2);
}

TEST(Headset, keyPointsAreDrawnInGreenAndCanBeHidden)
{
    QQuickItem *view = id("stereoView");
    const auto green = [view] {
        const QImage picture = WindowDriver::grab(view);
        int count = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                count += picture.pixel(x, y) == qRgb(0, 255, 0);
        return count;
    };
    ASSERT_TRUE(waitFor([&] { return green() > 20; }, minute));
    view->setProperty("showPoints", false);
    EXPECT_TRUE(waitFor([&] { return green() == 0; }, minute));
    view->setProperty("showPoints", true);
    EXPECT_TRUE(waitFor([&] { return green() > 20; }, minute));
}

TEST(Headset, gridButtonShowsBothCameras)
{
    QQuickItem *view = id("stereoView");
    QQuickItem *grid = WindowDriver::byName("gridButton", view);
    ASSERT_TRUE(grid);
    WindowDriver::click(grid);
    // The two halves show two pictures: neither is blank, and they differ, being taken from two places.
    ASSERT_TRUE(waitFor(
        [view] {
            const QImage both = WindowDriver::grab(view);
            const int half = both.width() / 2;
            const QImage left = both.copy(0, both.height() / 4, half, both.height() / 2);
            const QImage right = both.copy(half, both.height() / 4, half, both.height() / 2);
            return colours(left) > 50 && colours(right) > 50 && left != right;
        },
        minute));
    WindowDriver::picture(QStringLiteral("stereo-grid"));
    WindowDriver::click(grid);
}

TEST(Headset, everyFrameIsCounted)
{
    QQuickItem *label = WindowDriver::byName("infoLabel", id("stereoView"));
    ASSERT_TRUE(label);
    // Fifty frame sets a second: a second of the timer holds fifty, or one less or more at its edges.
    EXPECT_TRUE(rateReaches(label, 49, 51)) << qPrintable(label->property("text").toString());
    EXPECT_TRUE(label->property("text").toString().startsWith(QLatin1String("[STEREO]  640x400@")));
    WindowDriver::picture(QStringLiteral("stereo"));
}

TEST(Headset, drawerGivesItsRoomToTheViews)
{
    setDrawer(true);
    QQuickItem *view = id("stereoView");
    const qreal before = view->width();
    WindowDriver::click(WindowDriver::byName("menuButton"));
    EXPECT_TRUE(waitFor([&] { return view->width() > before + 200; }, minute));
    WindowDriver::picture(QStringLiteral("drawer-closed"));
    WindowDriver::click(WindowDriver::byName("menuButton"));
    EXPECT_TRUE(waitFor([&] { return qAbs(view->width() - before) < 1; }, minute));
}

TEST(Headset, aClickOutsideClosesTheDrawerOnlyWithAutoClose)
{
    setDrawer(true);
    QObject *drawer = WindowDriver::byId(WindowDriver::page(), "drawer");
    QObject *autoClose = WindowDriver::byId(WindowDriver::page(), "menuAutoCloseCheckbox");
    QQuickItem *view = id("stereoView");
    autoClose->setProperty("checked", false);
    WindowDriver::click(view, QPointF(view->width() / 2, view->height() / 2));
    // It stays visible while it closes, but isn't open any more.
    EXPECT_TRUE(drawer->property("opened").toBool());
    autoClose->setProperty("checked", true);
    WindowDriver::click(view, QPointF(view->width() / 2, view->height() / 2));
    EXPECT_TRUE(waitFor([drawer] { return !drawer->property("visible").toBool(); }, minute));
}

TEST(Headset, stereoSwitchStopsTheStream)
{
    clickSwitch("stereoButton");
    EXPECT_FALSE(id("stereoButton")->property("checked").toBool());
    EXPECT_TRUE(waitFor([] { return id("stereoView")->width() == 0; }, minute));
}

TEST(Headset, nothingUnexpectedIsInTheLog)
{
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
