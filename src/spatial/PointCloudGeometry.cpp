#include "spatial/PointCloudGeometry.h"

#include "spatial/PointAttribute.h"

using Qt3DRender::QAttribute;

PointCloudGeometry::PointCloudGeometry(Qt3DCore::QNode *parent)
    : Qt3DRender::QGeometry(parent)
    , m_buffer(new Qt3DRender::QBuffer(this))
{
}

PointCloud *PointCloudGeometry::pointCloud() const
{
    return m_pointCloud;
}

void PointCloudGeometry::setPointCloud(PointCloud *pointCloud)
{
    if (pointCloud == m_pointCloud)
        return;
    if (m_pointCloud)
        disconnect(m_pointCloud, &PointCloud::update, this, &PointCloudGeometry::updateVertices);
    m_pointCloud = pointCloud;
    if (m_pointCloud) {
        connect(m_pointCloud, &PointCloud::update, this, &PointCloudGeometry::updateVertices);
        updateVertices();
    }
    emit pointCloudChanged(pointCloud);
}

void PointCloudGeometry::updateVertices()
{
    // Read once: the writer may set another size at any time.
    m_count = m_pointCloud ? m_pointCloud->size() : 0;
    if (m_pointCloud)
        m_buffer->setData(pointAttribute::filledUp(m_pointCloud->points(), m_count));
    updateAttributes();
}

void PointCloudGeometry::updateAttributes()
{
    const QString name = QAttribute::defaultPositionAttributeName();
    if (attributes().isEmpty())
        setBoundingVolumePositionAttribute(pointAttribute::add(this, m_buffer, name, m_count));
    else
        pointAttribute::setCount(this, name, m_count);
}
