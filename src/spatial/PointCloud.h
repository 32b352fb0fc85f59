#pragma once

#include <QByteArray>
#include <QMutex>
#include <QObject>
#include <atomic>

/// Points on their way to the GPU: packed triples of 32-bit floats, metres, native byte order. The writer
/// calls `setPoints`, then `setSize`, then emits `update()`.
class PointCloud : public QObject {
    Q_OBJECT
    Q_PROPERTY(int size READ size WRITE setSize NOTIFY sizeChanged)
    Q_PROPERTY(QByteArray points READ points WRITE setPoints NOTIFY pointsChanged)

public:
    explicit PointCloud(QObject *parent = nullptr);

    int size() const;
    /// Shares the bytes, copies none.
    QByteArray points() const;

public slots:
    void setSize(int size);
    void setPoints(QByteArray points);

signals:
    void update();
    void sizeChanged(int size);
    void pointsChanged(QByteArray points);

private:
    std::atomic<int> m_size{0};
    mutable QMutex m_mutex; ///< around the swap and the copy of the handle, never while a signal leaves
    QByteArray m_points;
};
