#include "ui/Page.h"

#include <QFile>
#include <QGuiApplication>
#include <QPointer>
#include <QSignalSpy>
#include <QStyleHints>
#include <QtTest/QTest>
#include <algorithm>
#include <array>
#include <iostream>

// A session in which every control that can be seen is used once by mouse or key, on a device with every
// component.

using namespace ui;

namespace {

struct Kind {
    const char *type;
    const char *signal; ///< what only a user's hand makes it emit
};

constexpr std::array<Kind, 4> kinds{
    {{"QQuickComboBox", SIGNAL(activated(int))}, {"QQuickSpinBox", SIGNAL(valueModified())},
        {"QQuickSlider", SIGNAL(moved())}, {"QQuickAbstractButton", SIGNAL(clicked())}}};

const Kind *kindOf(const QQuickItem *item)
{
    for (const Kind &kind : kinds) {
        if (item->inherits(kind.type))
            return &kind;
    }
    return nullptr;
}

void collect(QQuickItem *item, QList<QPointer<QQuickItem>> &found)
{
    if (!item->isVisible() || item->opacity() == 0)
        return;
    if (kindOf(item)) {
        found << item;
        return; // what a control is made of is driven through it
    }
    for (QQuickItem *child : item->childItems())
        collect(child, found);
}

QString nameOf(const QQuickItem *item)
{
    const QString text = item->property("text").toString();
    return QString::fromLatin1(item->metaObject()->className()).section(QLatin1Char('_'), 0, 0)
        + QLatin1Char(' ') + (item->objectName().isEmpty() ? text : item->objectName());
}

/// A view that has left its place is neither drawn nor reached by the mouse, though it counts as visible, and
/// one for which the strip has no room yet still hangs where it was. Small views stand in the strip, which
/// clips.
bool standsInItsPlace(const QQuickItem *item)
{
    for (; item; item = item->parentItem()) {
        if (!item->property("minimized").isValid())
            continue;
        const QQuickItem *grid = item;
        while (grid && !grid->inherits("QQuickGridView"))
            grid = grid->parentItem();
        return item->width() > 0 && grid && grid->clip() == item->property("minimized").toBool();
    }
    return true;
}

bool canBeUsed(const QQuickItem *item)
{
    return item && item->isVisible() && item->isEnabled() && item->width() > 0 && item->height() > 0
        && standsInItsPlace(item);
}

/// Menus and dialogs over the window; tool tips go by themselves.
QObjectList openPopups()
{
    QObjectList open;
    const QObject *drawer = WindowDriver::byId(WindowDriver::page(), "drawer");
    for (QQuickItem *layer : WindowDriver::window()->contentItem()->childItems()) {
        if (!layer->inherits("QQuickOverlay"))
            continue;
        for (QQuickItem *item : layer->childItems()) {
            QObject *popup = item->parent();
            if (item->isVisible() && popup && popup != drawer && popup->inherits("QQuickPopup")
                && !popup->inherits("QQuickToolTip"))
                open << popup;
        }
    }
    return open;
}

/// Takes away what a click has opened: menus, dialogs, and file dialogs, which are windows of their own.
void closeWhatOpened()
{
    QCoreApplication::processEvents();
    for (QWindow *other : QGuiApplication::topLevelWindows()) {
        if (other != WindowDriver::window() && other->isVisible())
            other->close();
    }
    for (QObject *popup : openPopups())
        QMetaObject::invokeMethod(popup, "close");
    for (const char *name : {"infoDialog", "calibrationDialog"}) {
        if (QQuickItem *dialog = WindowDriver::byName(name); dialog && dialog->isVisible())
            QMetaObject::invokeMethod(dialog, "close");
    }
    waitFor([] { return openPopups().isEmpty(); }, minute);
}

/// Views glide to their places.
void waitUntilItRests(const QPointer<QQuickItem> &item)
{
    const auto place = [&] { return item ? item->mapRectToScene(item->boundingRect()) : QRectF(); };
    waitFor(
        [&] {
            const QRectF before = place();
            QTest::qWait(100);
            WindowDriver::waitForPicture();
            return place() == before;
        },
        minute);
}

void use(QQuickItem *item)
{
    WindowDriver::reveal(item);
    if (item->inherits("QQuickComboBox")) {
        item->forceActiveFocus();
        // One entry on, or back from the last one; the popup stays closed.
        const bool isLast = item->property("currentIndex").toInt() + 1 >= item->property("count").toInt();
        WindowDriver::key(isLast ? Qt::Key_Up : Qt::Key_Down);
    } else if (item->inherits("QQuickSpinBox")) {
        item->forceActiveFocus();
        const bool isLast = item->property("value").toInt() >= item->property("to").toInt();
        WindowDriver::key(isLast ? Qt::Key_Down : Qt::Key_Up);
    } else if (item->inherits("QQuickSlider")) {
        const double place = item->property("position").toDouble() > 0.5 ? 0.25 : 0.75;
        WindowDriver::drag(
            item, {item->width() / 2, item->height() / 2}, {item->width() * place, item->height() / 2});
    } else {
        WindowDriver::click(item);
    }
}

/// Uses a control, and a toggle once more, so that it stands as before. Answers whether the control noticed,
/// or went away with another one's view.
bool drive(const QPointer<QQuickItem> &item)
{
    QSignalSpy spy(item, kindOf(item)->signal);
    const bool before = item->property("checked").toBool();
    // A hand tries again where a view has moved away from under the pointer.
    bool noticed = false;
    for (int attempt = 0; attempt < 3 && !noticed; ++attempt) {
        waitUntilItRests(item);
        use(item);
        noticed = waitFor([&] { return spy.count() > 0 || !canBeUsed(item); }, 10000);
    }
    closeWhatOpened();
    if (canBeUsed(item) && item->property("checked").toBool() != before) {
        waitUntilItRests(item);
        use(item);
        waitUntilItRests(item);
        closeWhatOpened();
    }
    return noticed;
}

/// Boxes without a choice have nothing to tell.
bool hasNothingToTell(const QQuickItem *item)
{
    return item->inherits("QQuickComboBox") && item->property("count").toInt() < 2;
}

/// What moves the views goes late, what takes them away last.
int turnOf(const QQuickItem *item)
{
    return item->objectName() == QLatin1String("closeBtn") ? 2
                                                           : item->objectName() == QLatin1String("maxBtn");
}

int driveAll(QQuickItem *root, QStringList &silent)
{
    QList<QPointer<QQuickItem>> controls;
    WindowDriver::waitForPicture();
    collect(root, controls);
    std::stable_sort(controls.begin(), controls.end(),
        [](const QPointer<QQuickItem> &one, const QPointer<QQuickItem> &other) {
            return turnOf(one) < turnOf(other);
        });
    int used = 0;
    for (const QPointer<QQuickItem> &control : controls) {
        // The views find their places a moment after one has been made large or closed.
        if (control && turnOf(control) > 0)
            waitFor([&] { return canBeUsed(control); }, 3000);
        if (!canBeUsed(control) || hasNothingToTell(control))
            continue;
        const QString name = nameOf(control);
        std::cout << qPrintable(name) << std::endl;
        if (drive(control))
            ++used;
        else {
            WindowDriver::picture(QStringLiteral("silent-%1").arg(silent.size()));
            silent << name;
        }
    }
    return used;
}

/// What was logged beside what a device that is read too slowly logs.
std::string warningsOfDocuments()
{
    QStringList warnings = unexpectedWarnings();
    warnings.removeAll(QStringLiteral("dataframe too big"));
    return warnings.join(QLatin1String("; ")).toStdString();
}

constexpr const char *switches[] = {"imuButton", "stereoButton", "slamButton", "tofButton", "irButton",
    "rgbButton", "rgb2Button", "rgbdButton", "sgbmButton"};

} // namespace

QString prepare(const QString &home)
{
    // Slow streams leave a slow machine the time to answer.
    QFile file(home + QLatin1String("/devices.json"));
    const QByteArray text = R"({"devices": [{ "profile": "headset", "streams": {
        "fisheye": { "rate": 10 }, "color": { "rate": 10 }, "color2": { "rate": 5 }, "tof": { "rate": 10 },
        "vsc": { "rate": 10 }}}]})";
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return QStringLiteral("the configuration can't be written");
    qputenv("QVSIM_CONFIG", file.fileName().toLocal8Bit());
    return {};
}

TEST(Controls, everyStreamRuns)
{
    ASSERT_TRUE(pageAppears());
    QGuiApplication::styleHints()->setMouseDoubleClickInterval(20);
    for (const char *name : switches) {
        ASSERT_TRUE(waitFor([=] { return id(name)->isEnabled(); }, minute)) << name;
        clickSwitch(name);
        EXPECT_TRUE(waitFor([=] { return id(name)->property("checked").toBool(); }, minute)) << name;
    }
}

TEST(Controls, everyControlOfThePanelAnswersTheHand)
{
    setDrawer(true);
    QObject *drawer = WindowDriver::byId(WindowDriver::page(), "drawer");
    auto *panel = drawer->property("contentItem").value<QQuickItem *>();
    ASSERT_TRUE(panel);
    for (QQuickItem *label : WindowDriver::ofDocument("CustomLabel")) {
        if (!label->isVisible() || label->property("checked").toBool())
            continue;
        WindowDriver::click(label, {10, label->height() / 2});
        EXPECT_TRUE(label->property("checked").toBool()) << qPrintable(nameOf(label));
    }
    QStringList silent;
    const int used = driveAll(panel, silent);
    std::cout << used << " controls of the panel" << std::endl;
    EXPECT_GE(used, 60);
    EXPECT_EQ(qPrintable(silent.join(QLatin1String("; "))), std::string());
    EXPECT_EQ(warningsOfDocuments(), std::string());
}

TEST(Controls, everyControlOfTheWindowAnswersTheHand)
{
    setDrawer(false);
    QStringList silent;
    const int used = driveAll(WindowDriver::window()->contentItem(), silent);
    std::cout << used << " controls of the window" << std::endl;
    EXPECT_GT(used, 20);
    EXPECT_EQ(qPrintable(silent.join(QLatin1String("; "))), std::string());
    EXPECT_EQ(warningsOfDocuments(), std::string());
}

TEST(Controls, thePageStillStands)
{
    ASSERT_TRUE(WindowDriver::page());
    setDrawer(true);
    EXPECT_TRUE(WindowDriver::byId(WindowDriver::page(), "drawer")->property("visible").toBool());
    WindowDriver::picture(QStringLiteral("controls"));
}
