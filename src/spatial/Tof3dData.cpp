#include "spatial/Tof3dData.h"

#include <QDebug>
#include <limits>
#include <stdexcept>

namespace {

/// A frame that no other is older than.
template <class Frame>
Frame beforeAll(int kind)
{
    Frame frame;
    if constexpr (std::is_same_v<Frame, qv::DepthImage>)
        frame.type = kind;
    frame.hostTimestamp = std::numeric_limits<double>::infinity();
    frame.edgeTimestampUs = std::numeric_limits<std::int64_t>::lowest();
    return frame;
}

} // namespace

Tof3dData::Tof3dData(QObject *parent)
    : QObject(parent)
    , m_depth(beforeAll<qv::DepthImage>(1))
    , m_color(beforeAll<qv::ColorImage>(0))
{
    qRegisterMetaType<Tof3dData::Source>();
}

Tof3dData::Tof3dData(std::shared_ptr<qv::TofCamera> tof, std::shared_ptr<qv::ColorCamera> rgb,
    std::shared_ptr<qv::Slam> slam, std::shared_ptr<qv::Slam> edge, QObject *parent)
    : QObject(parent)
    , m_tof(std::move(tof))
    , m_rgb(std::move(rgb))
    , m_slamComponent(std::move(slam))
    , m_edgeComponent(std::move(edge))
    , m_depth(beforeAll<qv::DepthImage>(1))
    , m_color(beforeAll<qv::ColorImage>(0))
    , m_pointCloud(new PointCloudColor(this))
{
    qRegisterMetaType<Tof3dData::Source>();
    if (!m_tof)
        throw std::runtime_error("Invalid TofCamera");
    setRgbAvailable(m_rgb != nullptr);
    if (!m_slamComponent)
        qDebug() << "No SLAM available";
    if (!m_edgeComponent)
        qDebug() << "No Edge available";
    m_tofCalibrations = m_tof->calibration();
}

Tof3dData::~Tof3dData()
{
    if (m_tof)
        m_tof->unregisterCallback(m_tofCallbackId);
    if (m_rgb)
        m_rgb->unregisterCallback(m_rgbCallbackId);
    if (m_slamComponent)
        m_slamComponent->unregisterCallback(m_slamCallbackId);
    if (m_edgeComponent)
        m_edgeComponent->unregisterCallback(m_edgeCallbackId);
    if (m_pointCloud)
        m_pointCloud->deleteLater();
}

bool Tof3dData::colorize() const
{
    return m_colorize;
}

PointCloudColor *Tof3dData::pointCloud() const
{
    return m_pointCloud;
}

Tof3dData::Source Tof3dData::source() const
{
    return m_source;
}

double Tof3dData::distance() const
{
    return m_distance;
}

bool Tof3dData::rgbAvailable() const
{
    return m_rgbAvailable;
}

void Tof3dData::control(bool enable)
{
    qDebug(enable ? "Tof3dData::control start...................."
                  : "Tof3dData::control stop....................");
}

void Tof3dData::setColorize(bool colorize)
{
    if (colorize == m_colorize)
        return;
    m_colorize = colorize;
    emit colorizeChanged(colorize);
}

void Tof3dData::setSource(Source source)
{
    if (source == m_source)
        return;
    m_source = source;
    emit sourceChanged(source);
}

void Tof3dData::setDistance(double distance)
{
    m_distance = distance;
    emit distanceChanged(distance);
}

void Tof3dData::setRgbAvailable(bool rgbAvailable)
{
    if (rgbAvailable == m_rgbAvailable)
        return;
    m_rgbAvailable = rgbAvailable;
    emit rgbAvailableChanged(rgbAvailable);
}
