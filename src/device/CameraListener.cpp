#include "device/CameraListener.h"

#include "device/CameraDevice.h"
#include "device/WorkThread.h"
#include "device/qv/Library.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTimer>
#include <algorithm>
#include <iostream>

namespace {

/// The splash film's six seconds, and a little.
constexpr int FirstTickMs = 6500;
constexpr int TickMs = 1000;

} // namespace

CameraListener::CameraListener(QObject *parent, int logLevel)
    : QObject(parent)
    , m_logLevel(logLevel)
{
    qRegisterMetaType<std::map<std::string, std::shared_ptr<qv::Device>>>(
        "std::map<std::string,std::shared_ptr<qv::Device> >");

    m_workThread = new WorkThread;
    connect(m_workThread, &WorkThread::resultReady, this, &CameraListener::setDevices);
    connect(m_workThread, &QThread::finished, m_workThread, &QObject::deleteLater);
    m_workThread->start(QThread::InheritPriority);

    m_timer = new QTimer(this);
    m_timer->setSingleShot(false);
    m_timer->setTimerType(Qt::PreciseTimer); // a coarse one may be a third of a second early
    m_timer->start();
    m_timer->setInterval(FirstTickMs);
    connect(m_timer, &QTimer::timeout, this, &CameraListener::run);
}

// Runs inside the application's own destruction, where there is neither an application object nor an event
// dispatcher any more.
CameraListener::~CameraListener()
{
    while (!m_cameras.isEmpty()) {
        static_cast<CameraDevice *>(m_cameras.first())->stop();
        m_cameras.removeFirst();
    }
    m_workThread->end();
    m_workThread->deleteLater();
    m_workThread->wait();
    if (!QCoreApplication::instance())
        delete m_workThread; // no event loop is left to do it
    qDebug() << "Viewer cameras stopped";
}

QList<QObject *> CameraListener::cameras() const
{
    return m_cameras;
}

void CameraListener::setDevices(std::map<std::string, std::shared_ptr<qv::Device>> newDevices)
{
    m_devices = std::move(newDevices);
}

void CameraListener::listen()
{
    m_timer = new QTimer(this);
    m_timer->setSingleShot(false);
    m_timer->setInterval(TickMs);
    m_timer->start();
    connect(m_timer, &QTimer::timeout, this, &CameraListener::run);
    run();
}

void CameraListener::run()
{
    if (m_timer->interval() != TickMs)
        m_timer->setInterval(TickMs);
    addNew();
    removeGone();
}

void CameraListener::addNew()
{
    // A copy: who hears of a camera may let events through, and one of them may be the next answer.
    const auto devices = m_devices;
    for (const auto &[key, device] : devices) {
        const QString uuid = QString::fromStdString(key);
        if (listed(uuid)) {
            qv::setLogLevel(static_cast<qv::LogLevel>(m_logLevel));
            continue;
        }
        if (!device)
            continue;
        std::cerr << "New camera in viewer: " << key << std::endl;
        m_cameras.append(new CameraDevice(device, this));
        emit camerasChanged(m_cameras);
    }
}

void CameraListener::removeGone()
{
    int position = 0;
    while (position < m_cameras.size()) {
        const QString uuid = uuidAt(position);
        if (connected(uuid)) {
            ++position;
            continue;
        }
        std::cerr << "Camera " << uuid.toStdString() << " will be removed from viewer" << std::endl;
        // The walk goes on at the slot after the erased one. A gap in the front half is closed from the
        // front, so that slot holds the next camera; a gap in the back half is closed from the tail, so the
        // camera that slid into the gap waits for the next tick.
        const bool closesFromFront = 2 * position < m_cameras.size();
        m_cameras.at(position)->deleteLater();
        m_cameras.removeAt(position);
        emit camerasChanged(m_cameras);
        if (!closesFromFront)
            ++position;
    }
}

bool CameraListener::listed(const QString &uuid) const
{
    return std::any_of(m_cameras.cbegin(), m_cameras.cend(),
        [&uuid](QObject *camera) { return static_cast<CameraDevice *>(camera)->uuid() == uuid; });
}

bool CameraListener::connected(const QString &uuid) const
{
    return std::any_of(m_devices.cbegin(), m_devices.cend(),
        [&uuid](const auto &entry) { return QString::fromStdString(entry.first) == uuid; });
}

QString CameraListener::uuidAt(int position) const
{
    return static_cast<CameraDevice *>(m_cameras.at(position))->uuid();
}
