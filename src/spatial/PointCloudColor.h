#pragma once

#include <QByteArray>
#include <QMutex>
#include <QObject>
#include <atomic>

/// Coloured points on their way to the GPU: positions as in `PointCloud`, and packed triples of red, green
/// and blue floats, 0.0 to 1.0. The two locks are never held together.
class PointCloudColor : public QObject {
    Q_OBJECT
    Q_PROPERTY(int size READ size WRITE setSize NOTIFY sizeChanged)
    Q_PROPERTY(QByteArray points READ points WRITE setPoints NOTIFY pointsChanged)
    Q_PROPERTY(QByteArray colors READ colors WRITE setColors NOTIFY colorsChanged)

public:
    explicit PointCloudColor(QObject *parent = nullptr);

    int size() const;
    QByteArray points() const;
    QByteArray colors() const;

public slots:
    void setSize(int size);
    /// Signals under its lock, so that a slot on the same thread must not read the points back.
    void setPoints(QByteArray points);
    /// Equal bytes are dropped; otherwise as `setPoints`.
    void setColors(QByteArray colors);

signals:
    void update();
    void sizeChanged(int size);
    void pointsChanged(QByteArray points);
    void colorsChanged(QByteArray colors);

private:
    std::atomic<int> m_size{0};
    mutable QMutex m_pointsMutex;
    QByteArray m_points;
    mutable QMutex m_colorsMutex;
    QByteArray m_colors;
};
