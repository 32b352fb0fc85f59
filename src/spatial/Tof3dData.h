#pragma once

#include "device/qv/ColorCamera.h"
#include "device/qv/Slam.h"
#include "device/qv/TofCamera.h"
#include "spatial/PointCloudColor.h"

#include <QMutex>
#include <QObject>
#include <memory>
#include <vector>

/// What a coloured point cloud of the ToF camera, aligned to a pose, rests on: the components, the settings
/// and the cloud that the scene draws. Nothing feeds the cloud yet: the frames, the pose and the models below
/// are where a feed belongs.
class Tof3dData : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool colorize READ colorize WRITE setColorize NOTIFY colorizeChanged)
    Q_PROPERTY(PointCloudColor *pointCloud READ pointCloud NOTIFY pointCloudChanged)
    Q_PROPERTY(Source source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(double distance READ distance WRITE setDistance NOTIFY distanceChanged)
    Q_PROPERTY(bool rgbAvailable READ rgbAvailable NOTIFY rgbAvailableChanged)

public:
    enum class Source { SLAM, EDGE };
    Q_ENUM(Source)

    /// A model without components and without a cloud, as a QML document makes it.
    explicit Tof3dData(QObject *parent = nullptr);
    /// Throws `std::runtime_error` on a null ToF camera; the others may be null.
    Tof3dData(std::shared_ptr<qv::TofCamera> tof, std::shared_ptr<qv::ColorCamera> rgb,
        std::shared_ptr<qv::Slam> slam, std::shared_ptr<qv::Slam> edge, QObject *parent);
    ~Tof3dData() override;

    bool colorize() const;
    PointCloudColor *pointCloud() const;
    Source source() const;
    /// Metres.
    double distance() const;
    bool rgbAvailable() const;

    Q_INVOKABLE void control(bool enable);

public slots:
    void setColorize(bool colorize);
    void setSource(Source source);
    /// Emits also when nothing changed.
    void setDistance(double distance);
    void setRgbAvailable(bool rgbAvailable);

signals:
    void colorizeChanged(bool colorize);
    void pointCloudChanged(PointCloudColor *pointCloud);
    void sourceChanged(Tof3dData::Source source);
    void distanceChanged(double distance);
    void rgbAvailableChanged(bool rgbAvailable);

private:
    std::shared_ptr<qv::TofCamera> m_tof;
    std::shared_ptr<qv::ColorCamera> m_rgb;
    std::shared_ptr<qv::Slam> m_slamComponent;
    std::shared_ptr<qv::Slam> m_edgeComponent;
    std::vector<qv::Calibration> m_tofCalibrations;
    std::vector<qv::Calibration> m_rgbCalibrations;
    qv::PolynomialDistortionCameraModel m_tofModel;
    qv::PolynomialDistortionCameraModel m_rgbModel;
    int m_tofCallbackId = -1;
    int m_rgbCallbackId = -1;
    int m_slamCallbackId = -1;
    int m_edgeCallbackId = -1;
    QMutex m_depthLock; ///< guards `m_depth`
    qv::DepthImage m_depth;
    QMutex m_rgbLock; ///< guards `m_color`
    qv::ColorImage m_color;
    qv::Pose m_pose;
    bool m_colorize = false;
    PointCloudColor *m_pointCloud = nullptr;
    Source m_source = Source::SLAM;
    double m_distance = 4.5;
    bool m_rgbAvailable = false;
};
