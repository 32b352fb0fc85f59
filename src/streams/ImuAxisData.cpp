#include "streams/ImuAxisData.h"

#include "imaging/Relaxed.h"

ImuAxisData::ImuAxisData(QObject *parent)
    : QObject(parent)
{
}

double ImuAxisData::x() const
{
    return m_x.load(relaxed);
}

double ImuAxisData::y() const
{
    return m_y.load(relaxed);
}

double ImuAxisData::z() const
{
    return m_z.load(relaxed);
}

QVector3D ImuAxisData::vector() const
{
    return {m_x.load(relaxed), m_y.load(relaxed), m_z.load(relaxed)};
}

void ImuAxisData::setX(double x)
{
    m_x.store(float(x), relaxed);
    emit xChanged(this->x());
    emit vectorChanged(vector());
}

void ImuAxisData::setY(double y)
{
    m_y.store(float(y), relaxed);
    emit yChanged(this->y());
    emit vectorChanged(vector());
}

void ImuAxisData::setZ(double z)
{
    m_z.store(float(z), relaxed);
    emit zChanged(this->z());
    emit vectorChanged(vector());
}

void ImuAxisData::set(double x, double y, double z)
{
    setVector({float(x), float(y), float(z)});
}

void ImuAxisData::setVector(QVector3D vector)
{
    if (!store(vector.x(), vector.y(), vector.z()))
        return;
    emit vectorChanged(vector);
    emit xChanged(vector.x());
    emit yChanged(vector.y());
    emit zChanged(vector.z());
}

bool ImuAxisData::store(float x, float y, float z)
{
    const bool differs = m_x.load(relaxed) != x || m_y.load(relaxed) != y || m_z.load(relaxed) != z;
    if (differs) {
        m_x.store(x, relaxed);
        m_y.store(y, relaxed);
        m_z.store(z, relaxed);
    }
    return differs;
}
