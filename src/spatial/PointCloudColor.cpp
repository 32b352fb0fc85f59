#include "spatial/PointCloudColor.h"

#include "imaging/MutexLock.h"

PointCloudColor::PointCloudColor(QObject *parent)
    : QObject(parent)
{
}

int PointCloudColor::size() const
{
    return m_size.load(std::memory_order_relaxed);
}

QByteArray PointCloudColor::points() const
{
    const MutexLock lock(&m_pointsMutex);
    return m_points;
}

QByteArray PointCloudColor::colors() const
{
    const MutexLock lock(&m_colorsMutex);
    return m_colors;
}

void PointCloudColor::setSize(int size)
{
    if (m_size.exchange(size, std::memory_order_relaxed) != size)
        emit sizeChanged(size);
}

void PointCloudColor::setPoints(QByteArray points)
{
    const MutexLock lock(&m_pointsMutex);
    m_points = points;
    emit pointsChanged(points);
}

void PointCloudColor::setColors(QByteArray colors)
{
    const MutexLock lock(&m_colorsMutex);
    if (colors == m_colors)
        return;
    m_colors = colors;
    emit colorsChanged(colors);
}
