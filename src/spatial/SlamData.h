#pragma once

#include "device/qv/Slam.h"
#include "spatial/OrientationData.h"
#include "spatial/PositionData.h"
#include "streams/AbstractData.h"
#include "streams/CallbackGuard.h"

#include <QMatrix4x4>
#include <QMutex>
#include <QVector3D>
#include <atomic>
#include <fstream>
#include <memory>

/// One stream of poses, computed on the host or on the device: position, orientation, travelled distance,
/// confidence, and the saving and loading of its map.
class SlamData : public AbstractData {
    Q_OBJECT
    Q_PROPERTY(PositionData *position READ position NOTIFY positionChanged)
    Q_PROPERTY(OrientationData *orientation READ orientation NOTIFY orientationChanged)
    Q_PROPERTY(QMatrix4x4 matrix READ matrix NOTIFY matrixChanged)
    Q_PROPERTY(int status READ status NOTIFY statusChanged)
    Q_PROPERTY(double confidence READ confidence NOTIFY confidenceChanged)
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY enabledChanged)
    Q_PROPERTY(int prediction READ prediction WRITE setPrediction NOTIFY predictionChanged)
    Q_PROPERTY(bool lost READ lost NOTIFY lostChanged)
    Q_PROPERTY(double distance READ distance NOTIFY distanceChanged)
    Q_PROPERTY(
        int localizedPercent READ localizedPercent WRITE setLocalizedPercent NOTIFY localizedPercentChanged)

public:
    /// Throws `std::runtime_error` on a null component.
    SlamData(std::shared_ptr<qv::Slam> slam, QObject *parent);
    ~SlamData() override;

    PositionData *position() const;
    OrientationData *orientation() const;
    QMatrix4x4 matrix() const;
    int status() const;
    double confidence() const;
    bool enabled() const;
    /// Microseconds.
    int prediction() const;
    /// No pose has come since the start, or since the library reported a loss.
    bool lost() const;
    /// Metres, in steps of more than two centimetres.
    double distance() const;
    int localizedPercent() const;

    /// The column names of a recording.
    QString header() const override;

    /// Starts or stops the stream and its callbacks.
    Q_INVOKABLE void control(bool enable);
    /// The file that maps are saved to and loaded from by default.
    Q_INVOKABLE QString getMapPath();

    void setLocalizedPercent(int localizedPercent);

public slots:
    void setStatus(int status);
    void setConfidence(double confidence);
    void reset();
    bool pause();
    bool resume();
    void setMatrix(QMatrix4x4 matrix);
    /// Starts or stops the stream without touching its callbacks.
    void setEnabled(bool enabled);
    void setPrediction(int prediction);
    void setLost(bool lost);
    /// Saves the map to the map path; `loopClosureFinished` comes when the library is done.
    void loopClosure();
    /// Leaves the mode that saving or loading a map has entered.
    void visualOdometry();
    /// Loads a map; a path that names no file means the map path. False when there is none, when it can't be
    /// opened or when the library refuses it.
    bool loadMap(QString filepath);
    bool loadMap();

signals:
    void positionChanged(PositionData *position);
    void orientationChanged(OrientationData *orientation);
    void statusChanged(int status);
    void confidenceChanged(double confidence);
    void matrixChanged(QMatrix4x4 matrix);
    void enabledChanged(bool enabled);
    void predictionChanged(int prediction);
    void lostChanged(bool lost);
    void distanceChanged(double distance);
    void loopClosureFinished();
    void localizedPercentChanged();

private:
    void takePose(const qv::Pose &pose);
    void addDistance(const QVector3D &position);
    void loopClosureDone(int status, int quality);
    void loopClosureProgress(float localized);
    void takeLocalized(float localized);

    std::shared_ptr<qv::Slam> m_slam;
    int m_poseCallbackId = -1;
    int m_lostCallbackId = -1;
    PositionData *m_position;
    OrientationData *m_orientation;
    int m_status = 0;
    std::atomic<double> m_confidence{0};
    mutable QMutex m_mutex; ///< guards matrix and anchor; never held while a signal leaves
    QMatrix4x4 m_matrix;
    bool m_enabled = false;
    int m_prediction = 0;
    std::atomic<bool> m_lost{true};
    QVector3D m_lastPosition; ///< anchor of the distance; all zero while unset
    std::atomic<double> m_distance{0};
    /// Target of a save, which ends after the call: its completion shares the stream, so that the library can
    /// write on where this object has gone.
    const std::shared_ptr<std::ofstream> m_mapStream = std::make_shared<std::ofstream>();
    std::atomic<int> m_localizedPercent{0};
    bool m_mapLoaded = false;
    CallbackGuard m_callbacks;
};
