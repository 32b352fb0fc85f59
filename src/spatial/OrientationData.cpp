#include "spatial/OrientationData.h"

#include "imaging/MutexLock.h"
#include "spatial/Exactly.h"

OrientationData::OrientationData(QObject *parent)
    : QObject(parent)
{
}

QMatrix3x3 OrientationData::matrix() const
{
    const MutexLock lock(&m_mutex);
    return m_matrix;
}

QQuaternion OrientationData::quaternion() const
{
    const MutexLock lock(&m_mutex);
    return m_quaternion;
}

QVector3D OrientationData::viewVector() const
{
    const MutexLock lock(&m_mutex);
    return m_viewVector;
}

double OrientationData::roll() const
{
    const MutexLock lock(&m_mutex);
    return m_roll;
}

double OrientationData::pitch() const
{
    const MutexLock lock(&m_mutex);
    return m_pitch;
}

double OrientationData::yaw() const
{
    const MutexLock lock(&m_mutex);
    return m_yaw;
}

void OrientationData::setMatrix(QMatrix3x3 matrix)
{
    {
        const MutexLock lock(&m_mutex);
        if (exactly::equal(matrix, m_matrix))
            return;
        m_matrix = matrix;
    }
    emit matrixChanged(matrix);
    setQuaternion(QQuaternion::fromRotationMatrix(matrix));
}

void OrientationData::setQuaternion(QQuaternion quaternion)
{
    {
        const MutexLock lock(&m_mutex);
        if (exactly::equal(quaternion, m_quaternion))
            return;
        m_quaternion = quaternion;
    }
    emit quaternionChanged(quaternion);
    const QVector3D angles = quaternion.toEulerAngles();
    setRoll(static_cast<double>(angles.z()));
    setPitch(static_cast<double>(angles.x()));
    setYaw(static_cast<double>(angles.y()));
    setViewVector(quaternion.rotatedVector(QVector3D(0, 0, 1)));
}

bool OrientationData::store(double &angle, double value)
{
    const MutexLock lock(&m_mutex);
    if (qFuzzyCompare(angle, value))
        return false;
    angle = value;
    return true;
}

void OrientationData::setRoll(double roll)
{
    if (store(m_roll, roll))
        emit rollChanged(roll);
}

void OrientationData::setPitch(double pitch)
{
    if (store(m_pitch, pitch))
        emit pitchChanged(pitch);
}

void OrientationData::setYaw(double yaw)
{
    if (store(m_yaw, yaw))
        emit yawChanged(yaw);
}

void OrientationData::setViewVector(QVector3D viewVector)
{
    {
        const MutexLock lock(&m_mutex);
        if (exactly::equal(viewVector, m_viewVector))
            return;
        m_viewVector = viewVector;
    }
    emit viewVectorChanged(viewVector);
}

QVector3D OrientationData::viewCenter(QVector3D position, QVector3D orientation)
{
    return position + orientation;
}
