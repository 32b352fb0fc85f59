#pragma once

#include "spatial/PointCloud.h"

#include <QPointer>
#include <Qt3DRender/QAttribute>
#include <Qt3DRender/QBuffer>
#include <Qt3DRender/QGeometry>

/// The vertices of a `PointCloud`, kept up to date for Qt 3D.
class PointCloudGeometry : public Qt3DRender::QGeometry {
    Q_OBJECT
    Q_PROPERTY(PointCloud *pointCloud READ pointCloud WRITE setPointCloud NOTIFY pointCloudChanged)

public:
    explicit PointCloudGeometry(Qt3DCore::QNode *parent = nullptr);

    PointCloud *pointCloud() const;

public slots:
    void setPointCloud(PointCloud *pointCloud);

signals:
    void pointCloudChanged(PointCloud *pointCloud);

private slots:
    void updateAttributes();

private:
    void updateVertices();

    QPointer<PointCloud> m_pointCloud;
    int m_count = 0; ///< points in the buffer
    Qt3DRender::QBuffer *m_buffer;
    Qt3DRender::QBuffer *m_colorBuffer = nullptr; ///< stays null: this cloud has no colours
};
