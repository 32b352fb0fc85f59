#include "spatial/PointCloud.h"

#include "imaging/MutexLock.h"

PointCloud::PointCloud(QObject *parent)
    : QObject(parent)
{
}

int PointCloud::size() const
{
    return m_size.load(std::memory_order_relaxed);
}

QByteArray PointCloud::points() const
{
    const MutexLock lock(&m_mutex);
    return m_points;
}

void PointCloud::setSize(int size)
{
    if (m_size.exchange(size, std::memory_order_relaxed) != size)
        emit sizeChanged(size);
}

void PointCloud::setPoints(QByteArray points)
{
    {
        const MutexLock lock(&m_mutex);
        m_points = points;
    }
    emit pointsChanged(points);
}
