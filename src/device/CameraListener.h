#pragma once

#include "device/qv/Device.h"

#include <QList>
#include <QObject>

class QTimer;
class WorkThread;

/// Keeps the list of connected devices that the interface shows. A poll thread asks the library; a timer on
/// the main thread compares its latest answer with the list. Lives on the main thread.
class CameraListener : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<QObject *> cameras READ cameras NOTIFY camerasChanged)

public:
    /// Starts the poll thread, and the timer whose first tick comes after the splash film. `logLevel`, 0 to
    /// 6, goes to the device library once there are devices.
    CameraListener(QObject *parent, int logLevel);
    /// Stops every device and waits, without a limit, for the question that is under way.
    ~CameraListener() override;

    QList<QObject *> cameras() const;

    /// Compares the latest answer with the list: adds what is new, then removes what has gone.
    Q_INVOKABLE void run();

public slots:
    /// Compares at once and from then on by a further timer.
    void listen();
    /// Keeps an answer of the library until the next comparison.
    void setDevices(std::map<std::string, std::shared_ptr<qv::Device>> newDevices);

signals:
    void camerasChanged(QList<QObject *> cameras);

private:
    void addNew();
    void removeGone();
    bool listed(const QString &uuid) const;
    bool connected(const QString &uuid) const;
    QString uuidAt(int position) const;

    QList<QObject *> m_cameras; ///< `CameraDevice` each, in order of first appearance
    QTimer *m_timer = nullptr;
    std::map<std::string, std::shared_ptr<qv::Device>> m_devices;
    WorkThread *m_workThread = nullptr;
    int m_logLevel = 0;
};
