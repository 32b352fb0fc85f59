#include "spatial/PositionData.h"

#include "imaging/MutexLock.h"
#include "spatial/Exactly.h"

PositionData::PositionData(QObject *parent)
    : QObject(parent)
{
}

double PositionData::x() const
{
    return static_cast<double>(vector().x());
}

double PositionData::y() const
{
    return static_cast<double>(vector().y());
}

double PositionData::z() const
{
    return static_cast<double>(vector().z());
}

QVector3D PositionData::vector() const
{
    const MutexLock lock(&m_mutex);
    return m_vector;
}

void PositionData::setX(double x)
{
    setComponent(0, x);
}

void PositionData::setY(double y)
{
    setComponent(1, y);
}

void PositionData::setZ(double z)
{
    setComponent(2, z);
}

void PositionData::setComponent(int axis, double value)
{
    QVector3D changed = vector();
    const auto narrowed = static_cast<float>(value);
    if (qFuzzyCompare(changed[axis], narrowed))
        return;
    changed[axis] = narrowed;
    setVector(changed);
}

void PositionData::set(double x, double y, double z)
{
    setVector(QVector3D(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)));
}

void PositionData::setVector(QVector3D vector)
{
    {
        const MutexLock lock(&m_mutex);
        if (exactly::equal(vector, m_vector))
            return;
        m_vector = vector;
    }
    emit vectorChanged(vector);
    emit xChanged(static_cast<double>(vector.x()));
    emit yChanged(static_cast<double>(vector.y()));
    emit zChanged(static_cast<double>(vector.z()));
}
