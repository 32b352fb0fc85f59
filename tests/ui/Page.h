#pragma once

#include "support/Wait.h"
#include "ui/Program.h"
#include "ui/WindowDriver.h"

#include <QFileInfo>
#include <QSet>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// What the interface tests say about the page of a camera and about pictures.
namespace ui {

/// Bounds a failure; nothing that works takes so long.
constexpr int minute = 60000;

inline QQuickItem *id(const char *name, int page = 0)
{
    return WindowDriver::itemById(WindowDriver::page(page), name);
}

inline QObject *camera(int page = 0)
{
    QObject *view = WindowDriver::byId(WindowDriver::page(page), "view");
    return view ? view->property("camera").value<QObject *>() : nullptr;
}

inline QObject *model(const char *name, int page = 0)
{
    return camera(page)->property(name).value<QObject *>();
}

/// How many colours a picture has, by every third pixel: a black or blank one has one.
inline int colours(const QImage &picture)
{
    QSet<QRgb> seen;
    for (int y = 0; y < picture.height(); y += 3)
        for (int x = 0; x < picture.width(); x += 3)
            seen.insert(picture.pixel(x, y));
    return seen.size();
}

/// The rate that a read-out such as "[STEREO]  640x400@50fps" shows; -1 where it shows none.
inline int rateOf(QQuickItem *label)
{
    bool isNumber = false;
    const QString text = label->property("text").toString().section(QLatin1Char('@'), 1);
    const int rate = QString(text).remove(QLatin1String("fps")).toInt(&isNumber);
    return isNumber ? rate : -1;
}

/// Waits until the rate lies in the range, ends included.
inline bool rateReaches(QQuickItem *label, int least, int most)
{
    return waitFor([=] { return rateOf(label) >= least && rateOf(label) <= most; }, minute);
}

/// What was logged as a warning or worse, without what belongs to a device that lacks a component: Qt's word
/// on connections to it, the missing edge and extension, and the tool tips of the SLAM view, which have no
/// guard. Nor with what Qt says where it looks, once a dialog has closed, for the window below the pointer,
/// and the window manager takes the dialog's frame away at that moment.
inline QStringList unexpectedWarnings()
{
    QStringList warnings;
    for (const QString &warning : LogWatch::warnings()) {
        const bool expected = (warning.startsWith(QLatin1String("QObject::connect("))
                                  && warning.endsWith(QLatin1String("invalid nullptr parameter")))
            || (warning.startsWith(QLatin1String("QXcbConnection: XCB error: 3 (BadWindow)"))
                && warning.contains(QLatin1String("(TranslateCoords)")))
            || QStringList{"No edge", "No edge_ex", "No cam_ex"}.contains(warning)
            || (warning.startsWith(QLatin1String("qrc:/SlamView.qml"))
                && warning.endsWith(QLatin1String("TypeError: Cannot read property 'slam' of null")));
        if (!expected)
            warnings << warning;
    }
    return warnings;
}

inline bool pageAppears(int page = 0)
{
    return waitFor([page] { return WindowDriver::page(page) != nullptr; }, minute);
}

/// Opens or closes the drawer by the menu button, if it isn't so already: a click outside has closed it
/// perhaps.
inline void setDrawer(bool open, int page = 0)
{
    QObject *drawer = WindowDriver::byId(WindowDriver::page(page), "drawer");
    waitFor(
        [=] {
            const bool visible = drawer->property("visible").toBool();
            // It is on its way, perhaps still from the last click.
            if (visible != drawer->property("opened").toBool())
                return false;
            if (visible != open)
                WindowDriver::click(WindowDriver::byName("menuButton"));
            return visible == open;
        },
        minute);
}

/// A click on a stream's switch in the drawer.
inline void clickSwitch(const char *name, int page = 0)
{
    setDrawer(true, page);
    WindowDriver::click(id(name, page));
}

/// Opens the list of a combo box by a click on `arrow`, which may be the box itself, and clicks on an entry.
inline void chooseEntry(QQuickItem *box, QQuickItem *arrow, int index)
{
    auto *popup = box->property("popup").value<QObject *>();
    WindowDriver::click(arrow);
    ASSERT_TRUE(waitFor([popup] { return popup->property("opened").toBool(); }, minute));
    QQuickItem *entry = nullptr;
    QMetaObject::invokeMethod(popup->property("contentItem").value<QQuickItem *>(), "itemAtIndex",
        Q_RETURN_ARG(QQuickItem *, entry), Q_ARG(int, index));
    ASSERT_TRUE(entry) << index;
    WindowDriver::click(entry);
    ASSERT_TRUE(waitFor([popup] { return !popup->property("visible").toBool(); }, minute));
}

/// Has the program play a recording; answers why it can't.
inline QString playRecording(const QString &path)
{
    if (!QFileInfo::exists(path))
        return QStringLiteral("the recorded sequence is not here");
    qputenv("QVSIM_REPLAY", path.toLocal8Bit());
    return {};
}

/// Switches a stream by a click on its switch in the drawer, unless it is so already.
inline void setSwitch(const char *name, bool on)
{
    if (id(name)->property("checked").toBool() == on)
        return;
    setDrawer(true);
    WindowDriver::reveal(id(name));
    ASSERT_TRUE(waitFor([=] { return id(name)->isEnabled(); }, minute)) << name;
    WindowDriver::click(id(name));
    EXPECT_TRUE(waitFor([=] { return id(name)->property("checked").toBool() == on; }, minute)) << name;
}

/// A click so far along a slider of the panel, 0 to 1.
inline void clickSlider(QQuickItem *slider, double part)
{
    const double left = slider->property("leftPadding").toDouble();
    const double length = slider->property("availableWidth").toDouble();
    WindowDriver::click(slider, QPointF(left + part * length, slider->height() / 2));
}

/// Lays the mouse on a pixel of the view's picture, or one beside it.
inline bool pointAt(QQuickItem *view, int x, int y)
{
    QQuickItem *painter = WindowDriver::byName("painter", view);
    // The picture's place is that of the last paint, and the views have moved just before.
    return waitFor(
        [=] {
            const double ratio = painter->property("imageRation").toDouble();
            const QPointF corner = painter->property("topLeftPoint").toPointF();
            WindowDriver::hover(painter, corner + QPointF((x + 0.7) * ratio, (y + 0.7) * ratio));
            return qAbs(view->property("_x").toInt() - x) <= 1 && qAbs(view->property("_y").toInt() - y) <= 1;
        },
        minute);
}

} // namespace ui
