#pragma once

#include "device/qv/Slam.h"
#include "spatial/PointCloud.h"
#include "streams/CallbackGuard.h"

#include <QJsonArray>
#include <QMutex>
#include <QObject>
#include <atomic>
#include <memory>

/// The map that the host's SLAM publishes, as points for the scene. Needs no start: the callback stays
/// registered for the object's life.
class MapData : public QObject {
    Q_OBJECT
    Q_PROPERTY(PointCloud *pointCloud READ pointCloud NOTIFY pointCloudChanged)
    Q_PROPERTY(QJsonArray poses READ poses WRITE setPoses NOTIFY posesChanged)
    Q_PROPERTY(int pointCount READ pointCount NOTIFY pointCountChanged)
    Q_PROPERTY(int keyframeCount READ keyframeCount NOTIFY keyframeCountChanged)

public:
    /// Throws `std::runtime_error` on a null component. Seeds the C random generator.
    MapData(std::shared_ptr<qv::Slam> slam, QObject *parent);
    ~MapData() override;

    PointCloud *pointCloud() const;
    QJsonArray poses() const;
    int pointCount() const;
    int keyframeCount() const;

public slots:
    void setPoses(QJsonArray poses);
    void setPointCount(int pointCount);
    void setKeyframeCount(int keyframeCount);

signals:
    void pointCloudChanged(PointCloud *pointCloud);
    void posesChanged(QJsonArray poses);
    void pointCountChanged(int pointCount);
    void keyframeCountChanged(int keyframeCount);

private:
    void takeMap(const std::shared_ptr<const qv::SlamMap> &map);

    std::shared_ptr<qv::Slam> m_slam;
    int m_callbackId = -1;
    PointCloud *m_pointCloud;
    mutable QMutex m_mutex;
    std::shared_ptr<const qv::SlamMap> m_map; ///< kept alive until the next one
    QJsonArray m_poses;
    QByteArray m_colors; ///< for as many points as the largest map had
    std::atomic<int> m_pointCount{0};
    std::atomic<int> m_keyframeCount{0};
    CallbackGuard m_callbacks;
};
