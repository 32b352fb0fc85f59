#include "spatial/ObjectsData.h"

#include "imaging/MutexLock.h"

#include <QDebug>
#include <QFile>
#include <QJsonObject>
#include <QTimer>

namespace {

constexpr int descriptorDelayMs = 1000;
constexpr int noSource = 255;

/// The detector's numbers of the cameras, by `ObjectsData::Source`.
constexpr int librarySources[]{noSource, 0, 1, 2, 3, noSource};

QJsonArray toJson(const std::vector<qv::Vector3> &keypoints)
{
    QJsonArray array;
    for (const qv::Vector3 &point : keypoints)
        array.append(QJsonObject{{QStringLiteral("x"), point.x}, {QStringLiteral("y"), point.y}});
    return array;
}

QJsonArray toJson(const std::vector<qv::Object> &objects)
{
    QJsonArray array;
    for (const qv::Object &object : objects) {
        array.append(QJsonObject{{QStringLiteral("shape"), object.shape},
            {QStringLiteral("type"), QString::fromStdString(object.type)}, {QStringLiteral("x"), object.x},
            {QStringLiteral("y"), object.y}, {QStringLiteral("width"), object.width},
            {QStringLiteral("height"), object.height}, {QStringLiteral("confidence"), object.confidence},
            {QStringLiteral("keypoints"), toJson(object.keypoints)}});
    }
    return array;
}

} // namespace

ObjectsData::ObjectsData(QObject *parent)
    : QObject(parent)
{
    qRegisterMetaType<ObjectsData::Source>();
}

ObjectsData::ObjectsData(std::shared_ptr<qv::ObjectDetector> detector, QObject *parent)
    : QObject(parent)
    , m_detector(std::move(detector))
{
    qRegisterMetaType<ObjectsData::Source>();
    if (!m_detector)
        return;
    registerObjects();
    m_detector->start();
}

ObjectsData::~ObjectsData()
{
    if (!m_detector)
        return;
    m_detector->unregisterCallback(m_callbackId);
    m_callbacks.close();
    m_detector->stop();
}

QJsonArray ObjectsData::objects() const
{
    const MutexLock lock(&m_mutex);
    return m_objects;
}

ObjectsData::Source ObjectsData::source() const
{
    return m_source;
}

QString ObjectsData::model() const
{
    return m_model;
}

QString ObjectsData::modelDescriptor() const
{
    return m_modelDescriptor;
}

bool ObjectsData::enabled() const
{
    return m_enabled;
}

void ObjectsData::setObjects(QJsonArray objects)
{
    {
        const MutexLock lock(&m_mutex);
        if (objects == m_objects)
            return;
        m_objects = objects;
    }
    emit objectsChanged(objects);
}

void ObjectsData::setSource(Source source)
{
    if (source == m_source)
        return;
    m_source = source;
    emit sourceChanged(source);
}

void ObjectsData::setModel(QString model)
{
    if (model == m_model)
        return;
    m_model = model;
    emit modelChanged(m_model);
    m_modelChanged = true;
    updateCNNModel();
}

void ObjectsData::updateCNNModel()
{
    if (QFile::exists(m_model)) {
        if (m_detector && !m_detector->setModel(m_model.toStdString()))
            qWarning() << "Failed to set model";
    } else if (!m_model.isEmpty()) {
        qDebug() << "Model not found: " << m_model;
    }
}

void ObjectsData::setModelDescriptor(QString modelDescriptor)
{
    if (modelDescriptor == m_modelDescriptor)
        return;
    m_modelDescriptor = modelDescriptor.isEmpty() ? QStringLiteral("empty") : modelDescriptor;
    emit modelDescriptorChanged(m_modelDescriptor);
    QTimer::singleShot(descriptorDelayMs, this, &ObjectsData::sendDescriptor);
}

void ObjectsData::sendDescriptor()
{
    if (!m_detector)
        return;
    m_detector->setDescriptor(m_modelDescriptor.toStdString());
    switch (m_detector->source()) {
    case 0:
        return setSource(Left);
    case 1:
        return setSource(Right);
    case 2:
        return setSource(RGB);
    case 3:
        return setSource(TOF);
    default:
        return;
    }
}

void ObjectsData::setEnabled(bool enabled)
{
    if (enabled == m_enabled)
        return;
    m_enabled = enabled;
    emit enabledChanged(enabled);
}

void ObjectsData::updateCNNSource()
{
    const bool known = m_source >= None && m_source <= SGBM;
    const int source = known ? librarySources[m_source] : noSource;
    if (m_detector)
        m_detector->setSource(source);
}

void ObjectsData::control(bool enable)
{
    if (!m_detector)
        return;
    unregisterObjects();
    if (enable) {
        registerObjects();
        m_detector->start();
    } else {
        m_detector->stop();
    }
    m_running = enable;
}

void ObjectsData::registerObjects()
{
    m_callbackId = m_detector->registerCallback(
        m_callbacks.wrap([this](const std::vector<qv::Object> &objects) { setObjects(toJson(objects)); }));
}

void ObjectsData::unregisterObjects()
{
    if (m_callbackId == -1)
        return;
    m_detector->unregisterCallback(m_callbackId);
    m_callbackId = -1;
}
