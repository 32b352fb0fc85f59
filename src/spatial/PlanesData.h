#pragma once

#include "device/qv/Slam.h"
#include "streams/CallbackGuard.h"

#include <QJsonArray>
#include <QMutex>
#include <QObject>
#include <memory>

/// The planes that the host's SLAM found, from ToF depth and from stereo, as JSON for QML: one object a plane
/// with "color" (a name of the form #rrggbb), "name" (the id) and "points" (the outline, arrays of three
/// numbers, metres). Its end stops the SLAM stream.
class PlanesData : public QObject {
    Q_OBJECT
    Q_PROPERTY(QJsonArray stereoPlanes READ stereoPlanes NOTIFY stereoPlanesChanged)
    Q_PROPERTY(QJsonArray tofPlanes READ tofPlanes NOTIFY tofPlanesChanged)

public:
    /// Throws `std::runtime_error` on a null component.
    PlanesData(std::shared_ptr<qv::Slam> slam, QObject *parent);
    ~PlanesData() override;

    QJsonArray stereoPlanes() const;
    QJsonArray tofPlanes() const;

public slots:
    void setTofPlanes(QJsonArray tofPlanes);
    void setStereoPlanes(QJsonArray stereoPlanes);
    /// The library's answer; the array is emptied only when that is true.
    bool clearTofPlanes();
    bool clearStereoPlanes();

signals:
    void tofPlanesChanged(QJsonArray tofPlanes);
    void stereoPlanesChanged(QJsonArray stereoPlanes);

private:
    /// Swaps the array in where it differs; true when it did.
    bool store(QJsonArray &held, const QJsonArray &planes);

    std::shared_ptr<qv::Slam> m_slam;
    int m_stereoCallbackId = -1;
    int m_tofCallbackId = -1;
    mutable QMutex m_mutex;
    QJsonArray m_tofPlanes;
    QJsonArray m_stereoPlanes;
    CallbackGuard m_callbacks;
};
