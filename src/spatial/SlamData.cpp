#include "spatial/SlamData.h"

#include "device/DeviceAccess.h"
#include "imaging/MutexLock.h"
#include "spatial/Exactly.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QStringList>
#include <stdexcept>

namespace {

constexpr auto relaxed = std::memory_order_relaxed;
constexpr double mostPosesPerSecond = 600.0;
constexpr double smallestStep = 0.02;
constexpr int progressStride = 100;

// One load can be under way in the process: the library reads from this buffer until its completion has run.
std::filebuf &loadBuffer()
{
    static std::filebuf buffer;
    return buffer;
}

std::atomic<int> progressCount{0}; // NOLINT: runs on across loads and instances

QMatrix3x3 rotationOf(const qv::Pose &pose)
{
    float rows[9];
    for (std::size_t i = 0; i < 9; ++i)
        rows[i] = static_cast<float>(pose.rotation[i]);
    return QMatrix3x3(rows);
}

QMatrix4x4 matrixOf(const QVector3D &position, const QMatrix3x3 &rotation)
{
    QMatrix4x4 matrix;
    matrix.translate(position);
    matrix.rotate(QQuaternion::fromRotationMatrix(rotation).normalized());
    return matrix;
}

QString significant(double value)
{
    return QString::number(value, 'g', 6);
}

/// The lone line feed is a field of its own, so that each line ends in ",\n".
QString lineOf(const qv::Pose &pose)
{
    return QStringList{QString::number(pose.hostTimestamp, 'f', 6), QString::number(pose.edgeTimestampUs),
        significant(pose.translation.x), significant(pose.translation.y), significant(pose.translation.z),
        significant(pose.qx), significant(pose.qy), significant(pose.qz), significant(pose.qw),
        significant(pose.confidence), QStringLiteral("\n")}
        .join(QLatin1Char(','));
}

QString defaultMapPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::TempLocation) + QDir::separator()
        + QLatin1String("loopclosure.map");
}

void closeLoadBuffer(int quality)
{
    qDebug() << " map (quality is " << quality << "/100) and switch to CSlam:";
    loadBuffer().close();
}

} // namespace

SlamData::SlamData(std::shared_ptr<qv::Slam> slam, QObject *parent)
    : AbstractData(parent)
    , m_slam(std::move(slam))
    , m_position(new PositionData(this))
    , m_orientation(new OrientationData(this))
{
    if (!m_slam)
        throw std::runtime_error("Invalid Slam");
}

SlamData::~SlamData()
{
    m_slam->unregisterCallback(m_poseCallbackId);
    m_slam->unregisterLostCallback(m_lostCallbackId);
    m_slam->stop();
    m_callbacks.close();
}

PositionData *SlamData::position() const
{
    return m_position;
}

OrientationData *SlamData::orientation() const
{
    return m_orientation;
}

QMatrix4x4 SlamData::matrix() const
{
    const MutexLock lock(&m_mutex);
    return m_matrix;
}

int SlamData::status() const
{
    return m_status;
}

double SlamData::confidence() const
{
    return m_confidence.load(relaxed);
}

bool SlamData::enabled() const
{
    return m_enabled;
}

int SlamData::prediction() const
{
    return m_prediction;
}

bool SlamData::lost() const
{
    return m_lost.load(relaxed);
}

double SlamData::distance() const
{
    return m_distance.load(relaxed);
}

int SlamData::localizedPercent() const
{
    return m_localizedPercent.load(relaxed);
}

QString SlamData::header() const
{
    return QStringLiteral("hostTimestamp,edgeTimestampUs,x,y,z,qx,qy,qz,qw,confidence");
}

QString SlamData::getMapPath()
{
    return defaultMapPath();
}

void SlamData::takePose(const qv::Pose &pose)
{
    tick();
    if (dataFrameRate() > mostPosesPerSecond)
        m_slam->handleOverrate();
    const QVector3D position(static_cast<float>(pose.translation.x), static_cast<float>(pose.translation.y),
        static_cast<float>(pose.translation.z));
    m_position->set(pose.translation.x, pose.translation.y, pose.translation.z);
    addDistance(position);
    const QMatrix3x3 rotation = rotationOf(pose);
    m_orientation->setMatrix(rotation);
    setMatrix(matrixOf(position, rotation));
    setConfidence(pose.confidence);
    if (recording())
        write(lineOf(pose));
}

void SlamData::addDistance(const QVector3D &position)
{
    double distance = 0;
    {
        const MutexLock lock(&m_mutex);
        if (exactly::equal(m_lastPosition, QVector3D()))
            m_lastPosition = position;
        const auto step = static_cast<double>(m_lastPosition.distanceToPoint(position));
        if (!(step > smallestStep))
            return;
        distance = m_distance.load(relaxed) + step;
        m_distance.store(distance, relaxed);
        m_lastPosition = position;
    }
    emit distanceChanged(distance);
}

void SlamData::control(bool enable)
{
    if (enable) {
        if (m_poseCallbackId != -1)
            return;
        m_poseCallbackId = m_slam->registerCallback(m_callbacks.wrap([this](const qv::Pose &pose) {
            takePose(pose);
            setLost(false);
        }));
        m_lostCallbackId = m_slam->registerLostCallback(m_callbacks.wrap([this] { setLost(true); }));
        m_slam->start();
        return;
    }
    if (m_poseCallbackId != -1) {
        m_slam->unregisterCallback(m_poseCallbackId);
        m_poseCallbackId = -1;
    }
    m_slam->unregisterLostCallback(m_lostCallbackId);
    m_lostCallbackId = -1;
    m_slam->stop();
}

void SlamData::setStatus(int status)
{
    if (status == m_status)
        return;
    m_status = status;
    emit statusChanged(status);
}

void SlamData::setConfidence(double confidence)
{
    if (qFuzzyCompare(m_confidence.load(relaxed), confidence))
        return;
    m_confidence.store(confidence, relaxed);
    emit confidenceChanged(confidence);
}

void SlamData::setMatrix(QMatrix4x4 matrix)
{
    {
        const MutexLock lock(&m_mutex);
        if (matrix == m_matrix)
            return;
        m_matrix = matrix;
    }
    emit matrixChanged(matrix);
}

void SlamData::setLost(bool lost)
{
    if (m_lost.exchange(lost, relaxed) != lost)
        emit lostChanged(lost);
}

void SlamData::setLocalizedPercent(int localizedPercent)
{
    if (m_localizedPercent.exchange(localizedPercent, relaxed) != localizedPercent)
        emit localizedPercentChanged();
}

void SlamData::setEnabled(bool enabled)
{
    if (enabled == m_enabled)
        return;
    m_enabled = enabled;
    emit enabledChanged(enabled);
    if (enabled)
        m_slam->start();
    else
        m_slam->stop();
}

void SlamData::setPrediction(int prediction)
{
    if (prediction == m_prediction)
        return;
    m_prediction = prediction;
    emit predictionChanged(prediction);
    if (const auto device = DeviceAccess::deviceEx(this))
        device->setEdgePrediction(prediction);
}

bool SlamData::pause()
{
    return m_slam && m_slam->pause();
}

bool SlamData::resume()
{
    return m_slam && m_slam->resume();
}

void SlamData::reset()
{
    m_slam->reset();
    m_distance.store(0, relaxed);
    m_position->set(0, 0, 0);
    {
        const MutexLock lock(&m_mutex);
        m_lastPosition = QVector3D();
    }
    if (m_mapLoaded)
        loadMap(QString());
}

void SlamData::loopClosure()
{
    if (!m_slam)
        return;
    const QString path = getMapPath();
    qDebug() << "Save map to" << path;
    // A path that can't be opened leaves the stream failed; the library gets it all the same and has to cope.
    m_mapStream->open(path.toLocal8Bit().constData(), std::ios_base::out | std::ios_base::binary);
    const auto report =
        m_callbacks.wrap([this](int status, int quality) { loopClosureDone(status, quality); });
    const auto done = [report, stream = m_mapStream](int status, int quality) {
        report(status, quality);
        if (stream->is_open())
            stream->close();
    };
    m_slam->saveMapAndSwitchToCslam(*m_mapStream->rdbuf(), done,
        m_callbacks.wrap([this](float localized) { loopClosureProgress(localized); }));
}

void SlamData::loopClosureDone(int status, int quality)
{
    qDebug() << "loopClosureDone status: " << status << "quality: " << quality;
    emit loopClosureFinished();
}

void SlamData::loopClosureProgress(float localized)
{
    Q_UNUSED(localized)
}

void SlamData::visualOdometry()
{
    m_slam->stop();
    m_slam->start();
    m_mapLoaded = false;
}

bool SlamData::loadMap()
{
    return loadMap(QString());
}

bool SlamData::loadMap(QString filepath)
{
    const QString path = filepath.isEmpty() || !QFile::exists(filepath) ? getMapPath() : filepath;
    if (!QFile::exists(path)) {
        qWarning() << path << "does not exists";
        return false;
    }
    qDebug() << "Load map " << path;
    if (!loadBuffer().open(path.toLocal8Bit().constData(), std::ios_base::in | std::ios_base::binary)) {
        qDebug() << "open " << path << " failed.";
        return false;
    }
    const bool loading = m_slam->loadMapAndSwitchToCslam(loadBuffer(), closeLoadBuffer,
        m_callbacks.wrap([this](float localized) { takeLocalized(localized); }));
    if (loading)
        m_mapLoaded = true;
    return loading;
}

void SlamData::takeLocalized(float localized)
{
    if (progressCount.fetch_add(1, relaxed) % progressStride != 0)
        return;
    // A share that is no number, or none that an int can hold, counts as nothing localised.
    const float scaled = localized * 100.0F;
    const int percent = scaled > -2147483648.0F && scaled < 2147483648.0F ? static_cast<int>(scaled) : 0;
    setLocalizedPercent(percent);
    qDebug() << "localized: " << percent << "%";
}
