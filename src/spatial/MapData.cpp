#include "spatial/MapData.h"

#include "imaging/MutexLock.h"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <stdexcept>

namespace {

constexpr auto relaxed = std::memory_order_relaxed;
constexpr int floatsPerPoint = 3;
constexpr int bytesPerPoint = floatsPerPoint * int(sizeof(float));

/// Narrows to float, packed; what lies beyond a float's range becomes infinite.
QByteArray packedPositions(const std::vector<qv::Vector3> &points)
{
    QByteArray bytes(int(points.size()) * bytesPerPoint, Qt::Uninitialized);
    char *out = bytes.data();
    for (std::size_t i = 0; i < points.size(); ++i) {
        const qv::Vector3 &point = points.at(i);
        const float packed[floatsPerPoint]{float(point.x), float(point.y), float(point.z)};
        std::memcpy(out + i * bytesPerPoint, packed, bytesPerPoint);
    }
    return bytes;
}

/// One colour for every point. The scene paints the map in a material colour of its own; a holder with
/// colours would take these.
QByteArray packedColors(std::size_t count)
{
    constexpr float mapColor[floatsPerPoint]{0.8F, 0.8F, 0.0F};
    QByteArray bytes(int(count) * bytesPerPoint, Qt::Uninitialized);
    char *out = bytes.data();
    for (std::size_t i = 0; i < count; ++i)
        std::memcpy(out + i * bytesPerPoint, mapColor, bytesPerPoint);
    return bytes;
}

} // namespace

MapData::MapData(std::shared_ptr<qv::Slam> slam, QObject *parent)
    : QObject(parent)
    , m_slam(std::move(slam))
    , m_pointCloud(new PointCloud(this))
{
    std::srand(
        static_cast<unsigned int>(std::time(nullptr))); // NOLINT(bugprone-random-generator-seed,cert-*)
    if (!m_slam)
        throw std::runtime_error("Invalid Slam");
    m_callbackId = m_slam->registerMapCallback(
        m_callbacks.wrap([this](const std::shared_ptr<const qv::SlamMap> &map) { takeMap(map); }));
}

MapData::~MapData()
{
    m_slam->unregisterMapCallback(m_callbackId);
    m_callbacks.close();
    m_pointCloud->deleteLater();
}

PointCloud *MapData::pointCloud() const
{
    return m_pointCloud;
}

QJsonArray MapData::poses() const
{
    const MutexLock lock(&m_mutex);
    return m_poses;
}

int MapData::pointCount() const
{
    return m_pointCount.load(relaxed);
}

int MapData::keyframeCount() const
{
    return m_keyframeCount.load(relaxed);
}

void MapData::setPoses(QJsonArray poses)
{
    {
        const MutexLock lock(&m_mutex);
        if (poses == m_poses)
            return;
        m_poses = poses;
    }
    emit posesChanged(poses);
}

void MapData::setPointCount(int pointCount)
{
    if (m_pointCount.exchange(pointCount, relaxed) != pointCount)
        emit pointCountChanged(pointCount);
}

void MapData::setKeyframeCount(int keyframeCount)
{
    if (m_keyframeCount.exchange(keyframeCount, relaxed) != keyframeCount)
        emit keyframeCountChanged(keyframeCount);
}

void MapData::takeMap(const std::shared_ptr<const qv::SlamMap> &map)
{
    {
        const MutexLock lock(&m_mutex);
        m_map = map;
    }
    if (!map)
        return;
    const std::size_t count = map->points.size();
    setPointCount(int(count));
    const QByteArray positions = packedPositions(map->points);
    const QByteArray colors = packedColors(count);
    Q_UNUSED(colors)
    m_pointCloud->setPoints(positions);
    m_pointCloud->setSize(int(count));
    emit m_pointCloud->update();
    const QJsonArray poses;
    setPoses(poses);
    setKeyframeCount(poses.size());
}
