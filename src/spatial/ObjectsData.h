#pragma once

#include "device/qv/ObjectDetector.h"
#include "streams/CallbackGuard.h"

#include <QJsonArray>
#include <QMutex>
#include <QObject>
#include <QString>
#include <memory>

/// The device's object detector: its model and descriptor files, its source camera, and what it found, as
/// JSON: one object a detection with "shape", "type", "x", "y", "width", "height", "confidence" and
/// "keypoints" (objects with "x" and "y"), in pixels of the source picture. Detection runs from construction
/// on.
class ObjectsData : public QObject {
    Q_OBJECT
    Q_PROPERTY(QJsonArray objects READ objects NOTIFY objectsChanged)
    Q_PROPERTY(Source source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(QString model READ model WRITE setModel NOTIFY modelChanged)
    Q_PROPERTY(
        QString modelDescriptor READ modelDescriptor WRITE setModelDescriptor NOTIFY modelDescriptorChanged)
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY enabledChanged)

public:
    enum Source : int { None, Left, Right, RGB, TOF, SGBM };
    Q_ENUM(Source)
    enum Shape : int { BoundingBox, Human };
    Q_ENUM(Shape)

    /// A model without a detector, as a QML document makes it: every operation is harmless.
    explicit ObjectsData(QObject *parent = nullptr);
    ObjectsData(std::shared_ptr<qv::ObjectDetector> detector, QObject *parent);
    ~ObjectsData() override;

    QJsonArray objects() const;
    Source source() const;
    QString model() const;
    QString modelDescriptor() const;
    bool enabled() const;

    /// Starts or stops the detector and its callback.
    Q_INVOKABLE void control(bool enable);
    /// Tells the detector which camera to look at.
    Q_INVOKABLE void updateCNNSource();

public slots:
    void setObjects(QJsonArray objects);
    void setSource(Source source);
    /// A path of a model file; a changed one reaches the detector at once, if the file exists.
    void setModel(QString model);
    /// A path of a descriptor file, or nothing for none; reaches the detector a second later.
    void setModelDescriptor(QString modelDescriptor);
    /// For the interface only: doesn't reach the detector.
    void setEnabled(bool enabled);

signals:
    void objectsChanged(QJsonArray objects);
    void sourceChanged(ObjectsData::Source source);
    void modelChanged(QString model);
    void modelDescriptorChanged(QString modelDescriptor);
    void enabledChanged(bool enabled);

private slots:
    void updateCNNModel();

private:
    void registerObjects();
    void unregisterObjects();
    void sendDescriptor();

    std::shared_ptr<qv::ObjectDetector> m_detector;
    mutable QMutex m_mutex;
    QJsonArray m_objects;
    Source m_source = None;
    QString m_model;
    QString m_modelDescriptor;
    int m_callbackId = -1;
    bool m_modelChanged = false;
    bool m_enabled = false;
    bool m_running = false;
    CallbackGuard m_callbacks;
};
