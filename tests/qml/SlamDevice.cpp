#include "SlamDevice.h"

#include "support/FakeColorCamera.h"
#include "support/FakeTofCamera.h"
#include "support/Timers.h"

#include <QFile>
#include <Qt3DRender/QBuffer>
#include <cstring>

namespace {

template <class Number>
QVariantList unpack(QObject *object)
{
    const auto *buffer = qobject_cast<Qt3DRender::QBuffer *>(object);
    QVariantList numbers;
    if (!buffer)
        return numbers;
    const QByteArray bytes = buffer->data();
    for (int at = 0; at + int(sizeof(Number)) <= bytes.size(); at += int(sizeof(Number))) {
        Number number;
        std::memcpy(&number, bytes.constData() + at, sizeof number);
        numbers.append(QVariant::fromValue(double(number)));
    }
    return numbers;
}

qv::Vector3 vectorOf(const QVariant &point)
{
    const QVariantList xyz = point.toList();
    return {xyz.value(0).toDouble(), xyz.value(1).toDouble(), xyz.value(2).toDouble()};
}

qv::Plane planeOf(const QVariantMap &plane)
{
    qv::Plane result;
    result.id = plane.value(QStringLiteral("id")).toString().toStdString();
    for (const QVariant &point : plane.value(QStringLiteral("points")).toList())
        result.points.push_back(vectorOf(point));
    return result;
}

void appendCalls(QStringList &calls, const char *source, const FakeSlam &slam)
{
    for (const std::string &call : slam.takeCalls())
        calls.append(QLatin1String(source) + QLatin1Char('.') + QString::fromStdString(call));
}

/// A type of QML is named with a number behind its document's name, and with more where it was extended.
bool isOf(const QMetaObject *meta, const QString &type)
{
    for (; meta; meta = meta->superClass()) {
        const QString name = QString::fromLatin1(meta->className());
        if (name == type || name.startsWith(type + QStringLiteral("_QML")))
            return true;
    }
    return false;
}

} // namespace

SlamDevice::SlamDevice(QObject *parent)
    : QObject(parent)
    , m_slam(new SlamData(m_slamFake, this))
    , m_edge(new SlamData(m_edgeFake, this))
    , m_map(new MapData(m_slamFake, this))
    , m_planes(new PlanesData(m_slamFake, this))
    , m_tof3d(new Tof3dData(std::make_shared<FakeTofCamera>(), std::make_shared<FakeColorCamera>(),
          m_slamFake, m_edgeFake, this))
{
    m_mapPath = m_slam->getMapPath();
    m_slam->control(true);
    m_edge->control(true);
    takeCalls();
}

SlamDevice::~SlamDevice()
{
    removeMapFile();
}

QString SlamDevice::mapPath() const
{
    return m_mapPath;
}

void SlamDevice::dropEdge()
{
    m_edge->deleteLater();
    m_edge = nullptr;
    emit modelsChanged();
}

void SlamDevice::dropSlam()
{
    m_slam->deleteLater();
    m_slam = nullptr;
    emit modelsChanged();
}

void SlamDevice::deliver(const QString &source, double x, double y, double z, double confidence)
{
    qv::Pose pose;
    pose.translation = {x, y, z};
    pose.confidence = confidence;
    fake(source).deliver(pose);
}

void SlamDevice::deliverTurned(
    const QString &source, double x, double y, double z, const QVariantList &rotation)
{
    qv::Pose pose;
    pose.translation = {x, y, z};
    for (std::size_t i = 0; i < pose.rotation.size(); ++i)
        pose.rotation[i] = rotation.value(int(i)).toDouble();
    fake(source).deliver(pose);
}

void SlamDevice::deliverLine(const QString &source, int first, int count)
{
    for (int i = first; i < first + count; ++i)
        deliver(source, 0.01 * i, 0, 0);
}

void SlamDevice::measureRate()
{
    fireTimers(*m_slam);
}

void SlamDevice::deliverMap(int points)
{
    auto map = std::make_shared<qv::SlamMap>();
    map->points.resize(static_cast<std::size_t>(points));
    m_slamFake->maps.deliver(map);
}

void SlamDevice::deliverPoints(const QVariantList &points)
{
    auto map = std::make_shared<qv::SlamMap>();
    for (const QVariant &point : points)
        map->points.push_back(vectorOf(point));
    m_slamFake->maps.deliver(map);
}

void SlamDevice::deliverPlanes(const QString &side, const QVariantList &planes)
{
    auto list = std::make_shared<std::vector<qv::Plane>>();
    for (const QVariant &plane : planes)
        list->push_back(planeOf(plane.toMap()));
    (side == QLatin1String("tof") ? m_slamFake->tofPlanes : m_slamFake->stereoPlanes).deliver(list);
}

void SlamDevice::finishSave(int status, int quality)
{
    if (m_slamFake->saveDone)
        m_slamFake->saveDone(status, quality);
}

void SlamDevice::progress(double localized)
{
    // Each hundredth call is looked at, whichever the counter's state.
    for (int i = 0; i < 100; ++i)
        m_slamFake->loadProgress(static_cast<float>(localized));
}

void SlamDevice::finishLoad()
{
    if (m_slamFake->loadDone)
        m_slamFake->loadDone(100);
}

QStringList SlamDevice::takeCalls()
{
    QStringList calls;
    appendCalls(calls, "slam", *m_slamFake);
    appendCalls(calls, "edge", *m_edgeFake);
    return calls;
}

void SlamDevice::putMapFile()
{
    QFile file(mapPath());
    if (file.open(QIODevice::WriteOnly))
        file.write("map");
}

void SlamDevice::removeMapFile()
{
    QFile::remove(mapPath());
}

QVariantList SlamDevice::floatsOf(QObject *buffer) const
{
    return unpack<float>(buffer);
}

QVariantList SlamDevice::numbersOf(QObject *buffer) const
{
    return unpack<quint32>(buffer);
}

QString SlamDevice::textOf(const QString &path) const
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QObject *SlamDevice::node(QObject *root, const QString &name) const
{
    return root ? root->findChild<QObject *>(name) : nullptr;
}

QVariantList SlamDevice::nodesOf(QObject *root, const QString &type) const
{
    QVariantList nodes;
    for (QObject *child : root->findChildren<QObject *>()) {
        if (isOf(child->metaObject(), type))
            nodes.append(QVariant::fromValue(child));
    }
    return nodes;
}

FakeSlam &SlamDevice::fake(const QString &source) const
{
    return source == QLatin1String("edge") ? *m_edgeFake : *m_slamFake;
}
