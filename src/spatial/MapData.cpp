#include "spatial/MapData.h"

#include "imaging/MutexLock.h"
#include "imaging/Relaxed.h"
#include "imaging/WideVectors.h"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <stdexcept>

namespace {

constexpr int floatsPerPoint = 3;
constexpr int bytesPerPoint = floatsPerPoint * int(sizeof(float));

#ifdef QV_WIDE_VECTORS
/// Eight numbers at a time, as far as there are eight; answers how many that were.
__attribute__((target("avx"))) std::size_t narrowWide(const double *in, std::size_t count, float *out)
{
    std::size_t done = 0;
    for (; count - done >= 8; done += 8) {
        _mm_storeu_ps(out + done, _mm256_cvtpd_ps(_mm256_loadu_pd(in + done)));
        _mm_storeu_ps(out + done + 4, _mm256_cvtpd_ps(_mm256_loadu_pd(in + done + 4)));
    }
    return done;
}
#endif

/// What lies beyond a float's range becomes infinite.
void narrow(const double *in, std::size_t count, float *out)
{
    std::size_t i = 0;
#ifdef QV_WIDE_VECTORS
    if (__builtin_cpu_supports("avx"))
        i = narrowWide(in, count, out);
#endif
    for (; i < count; ++i)
        out[i] = static_cast<float>(in[i]);
}

/// As floats, packed.
QByteArray packedPositions(const std::vector<qv::Vector3> &points)
{
    static_assert(sizeof(qv::Vector3) == floatsPerPoint * sizeof(double));
    QByteArray bytes(int(points.size()) * bytesPerPoint, Qt::Uninitialized);
    narrow(reinterpret_cast<const double *>(points.data()), floatsPerPoint * points.size(),
        reinterpret_cast<float *>(bytes.data()));
    return bytes;
}

/// Makes `colors` enough for `count` points, all in one colour. The scene paints the map in a material colour
/// of its own; a holder with colours would take these.
void extendColors(QByteArray &colors, std::size_t count)
{
    constexpr float mapColor[floatsPerPoint]{0.8F, 0.8F, 0.0F};
    const int from = colors.size();
    const int size = int(count) * bytesPerPoint;
    if (from >= size)
        return;
    colors.resize(size);
    char *const bytes = colors.data();
    for (int at = from; at < size; at += bytesPerPoint)
        std::memcpy(bytes + at, mapColor, bytesPerPoint);
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
        if (map)
            extendColors(m_colors, map->points.size());
    }
    if (!map)
        return;
    const std::size_t count = map->points.size();
    setPointCount(int(count));
    const QByteArray positions = packedPositions(map->points);
    m_pointCloud->setPoints(positions);
    m_pointCloud->setSize(int(count));
    emit m_pointCloud->update();
    const QJsonArray poses;
    setPoses(poses);
    setKeyframeCount(poses.size());
}
