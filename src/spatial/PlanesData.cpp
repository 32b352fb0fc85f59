#include "spatial/PlanesData.h"

#include "imaging/MutexLock.h"

#include <QColor>
#include <QJsonObject>
#include <QVector>
#include <stdexcept>

namespace {

const QVector<QColor> &palette()
{
    static const QVector<QColor> colors{{230, 25, 75}, {60, 180, 75}, {255, 225, 25}, {0, 130, 200},
        {245, 130, 48}, {145, 30, 180}, {70, 240, 240}, {240, 50, 230}, {210, 245, 60}, {250, 190, 190},
        {0, 128, 128}, {230, 190, 255}, {170, 110, 40}, {255, 250, 200}, {128, 0, 0}, {170, 255, 195},
        {128, 128, 0}, {255, 215, 180}};
    return colors;
}

/// A plane keeps its colour for as long as it keeps its id; what isn't a number counts as 0.
QColor colorOf(const QString &id)
{
    const int count = palette().size();
    return palette()[((id.toInt() % count) + count) % count];
}

QJsonArray outlineOf(const std::vector<qv::Vector3> &points)
{
    QJsonArray outline;
    for (const qv::Vector3 &point : points)
        outline.append(QJsonArray{point.x, point.y, point.z});
    return outline;
}

QJsonArray toJson(const qv::Slam::Planes &planes)
{
    QJsonArray array;
    if (!planes)
        return array;
    for (const qv::Plane &plane : *planes) {
        const QString id = QString::fromStdString(plane.id);
        array.append(QJsonObject{{QStringLiteral("color"), colorOf(id).name()}, {QStringLiteral("name"), id},
            {QStringLiteral("points"), outlineOf(plane.points)}});
    }
    return array;
}

} // namespace

PlanesData::PlanesData(std::shared_ptr<qv::Slam> slam, QObject *parent)
    : QObject(parent)
    , m_slam(std::move(slam))
{
    if (!m_slam)
        throw std::runtime_error("Invalid Slam");
    m_stereoCallbackId = m_slam->registerStereoPlanesCallback(
        m_callbacks.wrap([this](const qv::Slam::Planes &planes) { setStereoPlanes(toJson(planes)); }));
    m_tofCallbackId = m_slam->registerTofPlanesCallback(
        m_callbacks.wrap([this](const qv::Slam::Planes &planes) { setTofPlanes(toJson(planes)); }));
}

PlanesData::~PlanesData()
{
    m_slam->unregisterStereoPlanesCallback(m_stereoCallbackId);
    m_slam->unregisterTofPlanesCallback(m_tofCallbackId);
    m_callbacks.close();
    m_slam->stop();
}

QJsonArray PlanesData::stereoPlanes() const
{
    const MutexLock lock(&m_mutex);
    return m_stereoPlanes;
}

QJsonArray PlanesData::tofPlanes() const
{
    const MutexLock lock(&m_mutex);
    return m_tofPlanes;
}

bool PlanesData::store(QJsonArray &held, const QJsonArray &planes)
{
    const MutexLock lock(&m_mutex);
    if (held == planes)
        return false;
    held = planes;
    return true;
}

void PlanesData::setTofPlanes(QJsonArray tofPlanes)
{
    if (store(m_tofPlanes, tofPlanes))
        emit tofPlanesChanged(tofPlanes);
}

void PlanesData::setStereoPlanes(QJsonArray stereoPlanes)
{
    if (store(m_stereoPlanes, stereoPlanes))
        emit stereoPlanesChanged(stereoPlanes);
}

bool PlanesData::clearTofPlanes()
{
    const bool cleared = m_slam->clearTofPlanes();
    if (cleared)
        setTofPlanes({});
    return cleared;
}

bool PlanesData::clearStereoPlanes()
{
    const bool cleared = m_slam->clearStereoPlanes();
    if (cleared)
        setStereoPlanes({});
    return cleared;
}
