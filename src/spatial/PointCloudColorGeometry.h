#pragma once

#include "spatial/PointCloudColor.h"

#include <QPointer>
#include <Qt3DRender/QBuffer>
#include <Qt3DRender/QGeometry>

/// The vertices of a `PointCloudColor`, positions and colours, kept up to date for Qt 3D.
class PointCloudColorGeometry : public Qt3DRender::QGeometry {
    Q_OBJECT
    Q_PROPERTY(PointCloudColor *pointCloud READ pointCloud WRITE setPointCloud NOTIFY pointCloudChanged)

public:
    explicit PointCloudColorGeometry(Qt3DCore::QNode *parent = nullptr);

    PointCloudColor *pointCloud() const;

public slots:
    void setPointCloud(PointCloudColor *pointCloud);

signals:
    void pointCloudChanged(PointCloudColor *pointCloud);

private slots:
    void updateAttributes();

private:
    void updateVertices();

    QPointer<PointCloudColor> m_pointCloud;
    int m_count = 0; ///< points in the buffers
    Qt3DRender::QBuffer *m_buffer;
    Qt3DRender::QBuffer *m_colorBuffer;
};
