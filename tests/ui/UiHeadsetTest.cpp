#include "support/Wait.h"
#include "ui/Program.h"
#include "ui/WindowDriver.h"

#include <QGuiApplication>
#include <QPainter>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

// One run of the program on the simulated headset. The tests stand in the order of a session.

namespace {

constexpr int minute = 60000;

QQuickItem *id(const char *name)
{
    return WindowDriver::itemById(WindowDriver::page(), name);
}

QObject *camera()
{
    return WindowDriver::byId(WindowDriver::page(), "view")->property("camera").value<QObject *>();
}

QObject *model(const char *name)
{
    return camera()->property(name).value<QObject *>();
}

/// How many colours a picture has: a black or blank one has one.
int colours(const QImage &picture)
{
    QSet<QRgb> seen;
    for (int y = 0; y < picture.height(); y += 3)
        for (int x = 0; x < picture.width(); x += 3)
            seen.insert(picture.pixel(x, y));
    return seen.size();
}

} // namespace

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
    WindowDriver::click(button);
    ASSERT_TRUE(button->property("checked").toBool());

    QQuickItem *view = id("stereoView");
    ASSERT_TRUE(waitFor([view] { return view->width() > 100 && view->isVisible(); }, minute));
    ASSERT_TRUE(waitFor([view] { return colours(WindowDriver::grab(view)) > 50; }, minute)) << "no picture";
    const QImage first = WindowDriver::grab(view);
    ASSERT_TRUE(waitFor([&] { return WindowDriver::grab(view) != first; }, minute))
        << "the picture stands still";
    EXPECT_EQ(model("stereo")->property("count").toInt(), 2);
    WindowDriver::picture(QStringLiteral("stereo"));
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

TEST(Headset, bothCamerasShowInTheGrid)
{
    QQuickItem *view = id("stereoView");
    QQuickItem *grid = WindowDriver::byName("gridButton", view);
    ASSERT_TRUE(grid);
    WindowDriver::click(grid);
    ASSERT_TRUE(waitFor(
        [view] {
            int painters = 0;
            for (QQuickItem *painter : WindowDriver::ofDocument("StereoView"))
                painters += painter == view;
            return painters == 1;
        },
        minute));
    ASSERT_TRUE(waitFor([view] { return colours(WindowDriver::grab(view)) > 50; }, minute));
    WindowDriver::picture(QStringLiteral("stereo-grid"));
    WindowDriver::click(grid);
}

TEST(Headset, everyFrameIsCounted)
{
    // At 50 frame sets a second a full second brings 50, give or take the one at its edges.
    QObject *stereo = model("stereo");
    QList<int> rates;
    const auto connection =
        QObject::connect(stereo, SIGNAL(dataFrameRateChanged(int)), stereo, SLOT(setFrameRate(int)));
    QObject::disconnect(connection);
    QQuickItem *label = WindowDriver::byName("infoLabel", id("stereoView"));
    ASSERT_TRUE(label);
    EXPECT_TRUE(waitFor(
        [label] { return label->property("text").toString().contains(QLatin1String("640x400@")); }, minute))
        << qPrintable(label->property("text").toString());
    EXPECT_TRUE(waitFor(
        [label] {
            const QString text = label->property("text").toString();
            const int rate = text.section(QLatin1Char('@'), 1).remove(QLatin1String("fps")).toInt();
            return rate >= 48 && rate <= 52;
        },
        minute))
        << qPrintable(label->property("text").toString());
}

TEST(Headset, drawerGivesItsRoomToTheViews)
{
    QQuickItem *view = id("stereoView");
    const qreal before = view->width();
    WindowDriver::click(WindowDriver::byName("menuButton"));
    EXPECT_TRUE(waitFor([&] { return view->width() > before + 200; }, minute));
    WindowDriver::picture(QStringLiteral("drawer-closed"));
    WindowDriver::click(WindowDriver::byName("menuButton"));
    EXPECT_TRUE(waitFor([&] { return qAbs(view->width() - before) < 1; }, minute));
}

TEST(Headset, stereoSwitchStopsTheStream)
{
    WindowDriver::click(id("stereoButton"));
    EXPECT_FALSE(id("stereoButton")->property("checked").toBool());
    EXPECT_TRUE(waitFor([] { return id("stereoView")->width() == 0; }, minute));
}

TEST(Headset, nothingUnexpectedIsInTheLog)
{
    EXPECT_THAT(LogWatch::warnings(), ::testing::IsEmpty());
}
