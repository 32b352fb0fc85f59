#pragma once

#include <QMutex>
#include <QObject>
#include <QVector3D>

/// Position of one pose, in metres. Written on the library's thread, read by QML.
class PositionData : public QObject {
    Q_OBJECT
    Q_PROPERTY(double x READ x NOTIFY xChanged)
    Q_PROPERTY(double y READ y NOTIFY yChanged)
    Q_PROPERTY(double z READ z NOTIFY zChanged)
    Q_PROPERTY(QVector3D vector READ vector NOTIFY vectorChanged)

public:
    explicit PositionData(QObject *parent = nullptr);

    double x() const;
    double y() const;
    double z() const;
    QVector3D vector() const;

public slots:
    /// One component; a value that is fuzzily equal to the present one is dropped.
    void setX(double x);
    void setY(double y);
    void setZ(double z);
    /// All three; any difference counts, however small.
    void set(double x, double y, double z);
    void setVector(QVector3D vector);

signals:
    void xChanged(double x);
    void yChanged(double y);
    void zChanged(double z);
    void vectorChanged(QVector3D vector);

private:
    void setComponent(int axis, double value);

    mutable QMutex m_mutex;
    QVector3D m_vector;
};
