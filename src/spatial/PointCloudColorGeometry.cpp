#include "spatial/PointCloudColorGeometry.h"

#include "spatial/PointAttribute.h"

using Qt3DRender::QAttribute;

PointCloudColorGeometry::PointCloudColorGeometry(Qt3DCore::QNode *parent)
    : Qt3DRender::QGeometry(parent)
    , m_buffer(new Qt3DRender::QBuffer(this))
    , m_colorBuffer(new Qt3DRender::QBuffer(this))
{
}

PointCloudColor *PointCloudColorGeometry::pointCloud() const
{
    return m_pointCloud;
}

void PointCloudColorGeometry::setPointCloud(PointCloudColor *pointCloud)
{
    if (pointCloud == m_pointCloud)
        return;
    if (m_pointCloud)
        disconnect(m_pointCloud, &PointCloudColor::update, this, &PointCloudColorGeometry::updateVertices);
    m_pointCloud = pointCloud;
    if (m_pointCloud) {
        connect(m_pointCloud, &PointCloudColor::update, this, &PointCloudColorGeometry::updateVertices);
        updateVertices();
    }
    emit pointCloudChanged(pointCloud);
}

void PointCloudColorGeometry::updateVertices()
{
    // Read once: the writer may set another size at any time.
    m_count = m_pointCloud ? m_pointCloud->size() : 0;
    if (m_pointCloud) {
        m_buffer->setData(pointAttribute::filledUp(m_pointCloud->points(), m_count));
        m_colorBuffer->setData(pointAttribute::filledUp(m_pointCloud->colors(), m_count));
    }
    updateAttributes();
}

void PointCloudColorGeometry::updateAttributes()
{
    const QString position = QAttribute::defaultPositionAttributeName();
    const QString color = QAttribute::defaultColorAttributeName();
    if (attributes().isEmpty()) {
        setBoundingVolumePositionAttribute(pointAttribute::add(this, m_buffer, position, m_count));
        pointAttribute::add(this, m_colorBuffer, color, m_count);
    } else {
        pointAttribute::setCount(this, position, m_count);
        pointAttribute::setCount(this, color, m_count);
    }
}
