#pragma once

#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStringList>

/// A user's hand and eye in the running program: finds what the documents name, clicks, types, looks.
class WindowDriver {
public:
    /// The program's window; null until the first document has made it.
    static QQuickWindow *window();

    /// The object with this id in the document that `inside` was written in, or in an outer one.
    static QObject *byId(QObject *inside, const char *id);
    static QQuickItem *itemById(QObject *inside, const char *id);

    /// The first item below `root` (the window's content by default) with this object name.
    static QQuickItem *byName(const char *name, QQuickItem *root = nullptr);

    /// All items below the window's content that come from this document, e.g. "CameraView".
    static QList<QQuickItem *> ofDocument(const char *document);

    /// An item inside the page of the camera at `index`, from which the ids of its document can be reached.
    static QQuickItem *page(int index = 0);

    static QPoint centre(QQuickItem *item);
    static void click(QQuickItem *item);
    static void click(QQuickItem *item, const QPointF &inItem);
    static void doubleClick(QQuickItem *item, const QPointF &inItem);
    static void pressAndHold(QQuickItem *item);
    static void hover(QQuickItem *item, const QPointF &inItem);
    static void drag(QQuickItem *item, const QPointF &from, const QPointF &to);
    static void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    /// Scrolls whatever flickable holds the item until the item can be seen.
    static void reveal(QQuickItem *item);

    /// Waits until what has changed so far is laid out, which comes with the next picture.
    static void waitForPicture();
    /// What the window shows now.
    static QImage grab();
    /// The part of `grab()` that the item covers.
    static QImage grab(QQuickItem *item);

    /// Writes a picture of the window below the folder in QV_PICTURES; does nothing where that isn't set.
    static void picture(const QString &name);
};

/// Collects what the program logs as warning, critical or fatal, and passes everything on to the handler
/// before it.
class LogWatch {
public:
    static void install();
    static QStringList warnings();
    static void forget();
};
