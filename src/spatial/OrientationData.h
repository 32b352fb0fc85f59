#pragma once

#include <QMatrix3x3>
#include <QMutex>
#include <QObject>
#include <QQuaternion>
#include <QVector3D>

/// Orientation of one pose. Angles in degrees; the device looks along +z. Written on the library's thread,
/// read by QML.
class OrientationData : public QObject {
    Q_OBJECT
    Q_PROPERTY(QMatrix3x3 matrix READ matrix NOTIFY matrixChanged)
    Q_PROPERTY(QQuaternion quaternion READ quaternion NOTIFY quaternionChanged)
    Q_PROPERTY(QVector3D viewVector READ viewVector WRITE setViewVector NOTIFY viewVectorChanged)
    Q_PROPERTY(double roll READ roll WRITE setRoll NOTIFY rollChanged)
    Q_PROPERTY(double pitch READ pitch WRITE setPitch NOTIFY pitchChanged)
    Q_PROPERTY(double yaw READ yaw WRITE setYaw NOTIFY yawChanged)

public:
    explicit OrientationData(QObject *parent = nullptr);

    QMatrix3x3 matrix() const;
    QQuaternion quaternion() const;
    QVector3D viewVector() const;
    double roll() const;
    double pitch() const;
    double yaw() const;

    /// These touch neither quaternion nor matrix.
    void setViewVector(QVector3D viewVector);
    void setRoll(double roll);
    void setPitch(double pitch);
    void setYaw(double yaw);

public slots:
    /// Takes a rotation and derives everything else from it. Nothing is validated.
    void setMatrix(QMatrix3x3 matrix);
    /// The sum of the two: what a camera at `position` looks at along `orientation`.
    QVector3D viewCenter(QVector3D position, QVector3D orientation);

signals:
    void matrixChanged(QMatrix3x3 matrix);
    void quaternionChanged(QQuaternion quaternion);
    void viewVectorChanged(QVector3D viewVector);
    void rollChanged(double roll);
    void pitchChanged(double pitch);
    void yawChanged(double yaw);

private:
    void setQuaternion(QQuaternion quaternion);
    /// Stores what isn't fuzzily equal; true when it did.
    bool store(double &angle, double value);

    mutable QMutex m_mutex;
    QMatrix3x3 m_matrix;
    QQuaternion m_quaternion;
    QVector3D m_viewVector;
    double m_roll = 0;
    double m_pitch = 0;
    double m_yaw = 0;
};
