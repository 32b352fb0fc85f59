#pragma once

#include <QObject>
#include <QVector3D>
#include <atomic>

/// One inertial reading of three axes, kept in single precision. Written on a library thread, read by QML.
class ImuAxisData : public QObject {
    Q_OBJECT
    Q_PROPERTY(double x READ x NOTIFY xChanged)
    Q_PROPERTY(double y READ y NOTIFY yChanged)
    Q_PROPERTY(double z READ z NOTIFY zChanged)
    Q_PROPERTY(QVector3D vector READ vector WRITE setVector NOTIFY vectorChanged)

public:
    explicit ImuAxisData(QObject *parent = nullptr);

    double x() const;
    double y() const;
    double z() const;
    QVector3D vector() const;

public slots:
    // One axis signals always, and before the vector.
    void setX(double x);
    void setY(double y);
    void setZ(double z);
    /// Signals only if a value differs in single precision; the vector first.
    void set(double x, double y, double z);
    void setVector(QVector3D vector);

signals:
    void xChanged(double x);
    void yChanged(double y);
    void zChanged(double z);
    void vectorChanged(QVector3D vector);

private:
    bool store(float x, float y, float z);

    std::atomic<float> m_x{0};
    std::atomic<float> m_y{0};
    std::atomic<float> m_z{0};
};
