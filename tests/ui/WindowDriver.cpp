#include "ui/WindowDriver.h"

#include "support/Wait.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QMutex>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QStyleHints>
#include <QtTest/QTest>
#include <algorithm>
#include <atomic>
#include <memory>

namespace {

void collect(QQuickItem *item, const QString &prefix, QList<QQuickItem *> &found)
{
    if (QString::fromLatin1(item->metaObject()->className()).startsWith(prefix))
        found << item;
    for (QQuickItem *child : item->childItems())
        collect(child, prefix, found);
}

QQuickItem *findNamed(QQuickItem *item, const QString &name)
{
    if (item->objectName() == name)
        return item;
    for (QQuickItem *child : item->childItems()) {
        if (QQuickItem *found = findNamed(child, name))
            return found;
    }
    return nullptr;
}

QPoint inWindow(QQuickItem *item, const QPointF &inItem)
{
    return item->mapToScene(inItem).toPoint();
}

/// Two clicks in one place would make a double click.
void waitForASingleClickAt(const QPoint &place)
{
    static QPoint last;
    static QElapsedTimer since;
    const int interval = QGuiApplication::styleHints()->mouseDoubleClickInterval() + 50;
    if (since.isValid() && (place - last).manhattanLength() < 30)
        QTest::qWait(std::max<int>(0, int(interval - since.elapsed())));
    last = place;
    since.start();
}

QMutex logMutex;
QStringList logWarnings;
QtMessageHandler next = nullptr;

void watchLog(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg) {
        const QMutexLocker lock(&logMutex);
        logWarnings << text;
    }
    if (next)
        next(type, context, text);
}

} // namespace

QQuickWindow *WindowDriver::window()
{
    for (QWindow *candidate : QGuiApplication::topLevelWindows()) {
        if (auto *quick = qobject_cast<QQuickWindow *>(candidate))
            return quick;
    }
    return nullptr;
}

QObject *WindowDriver::byId(QObject *inside, const char *id)
{
    QQmlContext *context = inside ? QQmlEngine::contextForObject(inside) : nullptr;
    if (!context)
        return nullptr;
    QQmlExpression expression(context, inside, QLatin1String(id));
    expression.setNotifyOnValueChanged(false);
    return expression.evaluate().value<QObject *>();
}

QQuickItem *WindowDriver::itemById(QObject *inside, const char *id)
{
    return qobject_cast<QQuickItem *>(byId(inside, id));
}

QQuickItem *WindowDriver::byName(const char *name, QQuickItem *root)
{
    if (!root)
        root = window() ? window()->contentItem() : nullptr;
    return root ? findNamed(root, QLatin1String(name)) : nullptr;
}

QList<QQuickItem *> WindowDriver::ofDocument(const char *document)
{
    QList<QQuickItem *> found;
    if (window())
        collect(window()->contentItem(), QLatin1String(document) + QLatin1String("_QML"), found);
    return found;
}

QQuickItem *WindowDriver::page(int index)
{
    const QList<QQuickItem *> pages = ofDocument("CameraView");
    if (index >= pages.size() || pages[index]->childItems().isEmpty())
        return nullptr;
    return pages[index]->childItems().first();
}

QPoint WindowDriver::centre(QQuickItem *item)
{
    return inWindow(item, QPointF(item->width() / 2, item->height() / 2));
}

void WindowDriver::click(QQuickItem *item)
{
    click(item, QPointF(item->width() / 2, item->height() / 2));
}

void WindowDriver::click(QQuickItem *item, const QPointF &inItem)
{
    reveal(item);
    waitForASingleClickAt(inWindow(item, inItem));
    QTest::mouseClick(window(), Qt::LeftButton, Qt::NoModifier, inWindow(item, inItem));
    QCoreApplication::processEvents();
}

void WindowDriver::doubleClick(QQuickItem *item, const QPointF &inItem)
{
    reveal(item);
    QTest::mouseDClick(window(), Qt::LeftButton, Qt::NoModifier, inWindow(item, inItem));
    QCoreApplication::processEvents();
}

void WindowDriver::pressAndHold(QQuickItem *item)
{
    reveal(item);
    const QPoint place = centre(item);
    QTest::mousePress(window(), Qt::LeftButton, Qt::NoModifier, place);
    QTest::qWait(QGuiApplication::styleHints()->mousePressAndHoldInterval() + 200);
    QTest::mouseRelease(window(), Qt::LeftButton, Qt::NoModifier, place);
}

void WindowDriver::hover(QQuickItem *item, const QPointF &inItem)
{
    QTest::mouseMove(window(), inWindow(item, inItem));
    QCoreApplication::processEvents();
}

void WindowDriver::drag(QQuickItem *item, const QPointF &from, const QPointF &to)
{
    const QPoint start = inWindow(item, from);
    const QPoint end = inWindow(item, to);
    QTest::mousePress(window(), Qt::LeftButton, Qt::NoModifier, start);
    constexpr int steps = 10;
    for (int step = 1; step <= steps; ++step)
        QTest::mouseMove(window(), start + (end - start) * step / steps, 10);
    QTest::mouseRelease(window(), Qt::LeftButton, Qt::NoModifier, end);
    QCoreApplication::processEvents();
}

void WindowDriver::key(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(window(), key, modifiers);
    QCoreApplication::processEvents();
}

void WindowDriver::reveal(QQuickItem *item)
{
    // A hand aims at what it sees.
    waitForPicture();
    for (QQuickItem *parent = item->parentItem(); parent; parent = parent->parentItem()) {
        if (!parent->inherits("QQuickFlickable"))
            continue;
        auto *content = parent->property("contentItem").value<QQuickItem *>();
        const qreal top = item->mapToItem(content, QPointF()).y();
        const qreal shown = parent->property("contentY").toReal();
        if (top < shown || top + item->height() > shown + parent->height()) {
            const qreal last = qMax<qreal>(0, parent->property("contentHeight").toReal() - parent->height());
            parent->setProperty("contentY", qBound<qreal>(0, top - parent->height() / 2, last));
            waitForPicture();
        }
    }
}

void WindowDriver::waitForPicture()
{
    constexpr int limit = 60000;
    const auto synchronized = std::make_shared<std::atomic<bool>>(false);
    const QMetaObject::Connection connection = QObject::connect(
        window(), &QQuickWindow::afterSynchronizing, window(), [synchronized] { *synchronized = true; },
        Qt::DirectConnection);
    window()->update();
    waitFor([&] { return synchronized->load(); }, limit);
    QObject::disconnect(connection);
}

QImage WindowDriver::grab()
{
    // A picture of the window is preceded by this, and a 3D scene that has changed waits for it; a grab alone
    // doesn't send it.
    emit window()->afterAnimating();
    return window()->grabWindow();
}

QImage WindowDriver::grab(QQuickItem *item)
{
    return grab().copy(item->mapRectToScene(QRectF(0, 0, item->width(), item->height())).toRect());
}

void WindowDriver::picture(const QString &name)
{
    const QString folder = qEnvironmentVariable("QV_PICTURES");
    if (folder.isEmpty())
        return;
    QDir().mkpath(folder);
    grab().save(folder + QLatin1Char('/') + name + QLatin1String(".png"));
}

void LogWatch::install()
{
    next = qInstallMessageHandler(watchLog);
}

QStringList LogWatch::warnings()
{
    const QMutexLocker lock(&logMutex);
    return logWarnings;
}

void LogWatch::forget()
{
    const QMutexLocker lock(&logMutex);
    logWarnings.clear();
}
