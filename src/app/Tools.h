#pragma once

#include <QMatrix4x4>
#include <QObject>
#include <QQuaternion>
#include <QUrl>
#include <QVector3D>

/// What QML can't do for itself: arithmetic for the 3D scenes, paths for the file dialogs, the clipboard,
/// the desktop's opener. Has no state; main thread only.
class Tools : public QObject {
    Q_OBJECT

public:
    explicit Tools(QObject *parent = nullptr);

    Q_INVOKABLE QQuaternion inverted(QQuaternion q);
    Q_INVOKABLE QVector3D rotatedVector(QQuaternion q, QVector3D v);
    /// Rotates first, then translates.
    Q_INVOKABLE QMatrix4x4 apply(QVector3D translation, QQuaternion rotation);
    /// Maps `v` as a point: the translation of `m` is part of the result.
    Q_INVOKABLE QVector3D mapVector(QMatrix4x4 m, QVector3D v);
    /// Last part of the path; empty where the URL ends in a slash.
    Q_INVOKABLE QString filename(QUrl url);
    Q_INVOKABLE QString filepath(QUrl url);
    /// Absolute folder of the path component, which isn't the local file form: no drive is taken apart.
    Q_INVOKABLE QString folder(QUrl url);
    Q_INVOKABLE QUrl folderUrl(QUrl url);
    Q_INVOKABLE bool fileExists(QUrl url);
    Q_INVOKABLE void copyToClipboard(QString text);
    /// Opens a plain path, a file or any other URL with the desktop; false where there is nothing to open.
    Q_INVOKABLE bool openUrl(QUrl url);
    /// Runs the pending events once, so that the interface catches up during long work.
    Q_INVOKABLE void clearEvents();
};
