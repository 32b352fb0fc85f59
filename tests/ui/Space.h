#pragma once

#include "device/DeviceAccess.h"
#include "ui/Page.h"

#include <QImage>
#include <QVector3D>
#include <cmath>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

/// What the tests of the 3D scenes share: where a point is seen, worked out without Qt 3D, and what the
/// device itself has sent.
namespace ui {

/// A camera with the lens of the scenes, 45 degrees from top to bottom, over an area of a picture.
class Projection {
public:
    Projection(QVector3D position, const QVector3D &centre, const QVector3D &up, double aspect, QRectF area)
        : m_position(position)
        , m_back((position - centre).normalized())
        , m_aspect(aspect)
        , m_area(area)
    {
        // Without an up vector, the camera is turned from +z by the shortest way.
        if (up.isNull()) {
            const QQuaternion turn = QQuaternion::rotationTo({0, 0, 1}, m_back);
            m_right = turn.rotatedVector({1, 0, 0});
        } else {
            m_right = QVector3D::crossProduct(up, m_back).normalized();
        }
        m_up = QVector3D::crossProduct(m_back, m_right);
    }

    const QRectF &area() const { return m_area; }

    /// Nothing for what is behind the camera or outside the area.
    std::optional<QPointF> pixel(const QVector3D &point) const
    {
        const std::optional<QPointF> place = unbounded(point);
        return place && m_area.contains(*place) ? place : std::nullopt;
    }

    std::optional<QPointF> unbounded(const QVector3D &point) const
    {
        const QVector3D ray = point - m_position;
        const double depth = -double(QVector3D::dotProduct(ray, m_back));
        if (depth < 0.01)
            return std::nullopt;
        const double half = depth * std::tan(22.5 * M_PI / 180);
        const double x = double(QVector3D::dotProduct(ray, m_right)) / (half * m_aspect);
        const double y = double(QVector3D::dotProduct(ray, m_up)) / half;
        return QPointF(m_area.x() + (x + 1) / 2 * m_area.width(), m_area.y() + (1 - y) / 2 * m_area.height());
    }

private:
    QVector3D m_position;
    QVector3D m_back;
    QVector3D m_right;
    QVector3D m_up;
    double m_aspect;
    QRectF m_area;
};

/// Keeps the poses of a source as the device sends them.
class PoseTap {
public:
    explicit PoseTap(std::shared_ptr<qv::Slam> slam, std::size_t expected = 0)
        : m_slam(std::move(slam))
    {
        m_poses.reserve(expected);
        m_id = m_slam->registerCallback([this](const qv::Pose &pose) {
            const std::lock_guard lock(m_mutex);
            m_poses.push_back(pose);
        });
    }
    ~PoseTap() { m_slam->unregisterCallback(m_id); }
    PoseTap(const PoseTap &) = delete;
    PoseTap &operator=(const PoseTap &) = delete;

    std::vector<qv::Pose> all() const
    {
        const std::lock_guard lock(m_mutex);
        return m_poses;
    }
    std::size_t count() const
    {
        const std::lock_guard lock(m_mutex);
        return m_poses.size();
    }
    qv::Pose last() const
    {
        const std::lock_guard lock(m_mutex);
        return m_poses.empty() ? qv::Pose() : m_poses.back();
    }
    void clear()
    {
        const std::lock_guard lock(m_mutex);
        m_poses.clear();
    }

private:
    const std::shared_ptr<qv::Slam> m_slam;
    mutable std::mutex m_mutex;
    std::vector<qv::Pose> m_poses;
    int m_id = -1;
};

inline std::shared_ptr<qv::Slam> hostSource()
{
    return DeviceAccess::device(model("slam"))->slam();
}

inline std::shared_ptr<qv::Slam> edgeSource()
{
    return DeviceAccess::deviceEx(model("slam"))->edge();
}

inline QVector3D vector(const qv::Vector3 &v)
{
    return {float(v.x), float(v.y), float(v.z)};
}

/// A point of the device's own frame in that of the scene.
inline QVector3D mapped(const qv::Pose &pose, const QVector3D &v)
{
    const auto &r = pose.rotation;
    const auto row = [&](std::size_t i) {
        return float(r[3 * i] * double(v.x()) + r[3 * i + 1] * double(v.y()) + r[3 * i + 2] * double(v.z()));
    };
    return vector(pose.translation) + QVector3D(row(0), row(1), row(2));
}

inline QQuickItem *slamItem(const char *name)
{
    return WindowDriver::byName(name, id("slamView"));
}

/// The root of the scene in the SLAM view.
inline QObject *slamScene()
{
    return WindowDriver::byId(slamItem("scene3d"), "root");
}

inline QObject *cameraOf(const char *selector)
{
    return slamScene()->property(selector).value<QObject *>()->property("camera").value<QObject *>();
}

inline QImage sceneImage()
{
    return WindowDriver::grab(slamItem("scene3d")).convertToFormat(QImage::Format_RGB32);
}

inline QRectF sceneArea()
{
    return QRectF(0, 0, slamItem("scene3d")->width(), slamItem("scene3d")->height());
}

/// Where an inset is drawn: a fifth of the picture, at its upper edge.
inline QRectF insetArea(const char *ratio)
{
    const QRectF whole = sceneArea();
    return {slamScene()->property(ratio).toDouble() * whole.width(), 0, 0.2 * whole.width(),
        0.2 * whole.height()};
}

/// What lies over the main picture, in its coordinates.
inline bool isCovered(const QPointF &place)
{
    if (insetArea("ratio2").contains(place) || insetArea("ratio3").contains(place))
        return true;
    QQuickItem *scene = slamItem("scene3d");
    for (const char *name : {"valueControl", "col", "slamSourceRow", "edgeSourceRow", "fpsLabel"}) {
        QQuickItem *item = slamItem(name);
        if (item->isVisible()
            && item->mapRectToItem(scene, QRectF(0, 0, item->width(), item->height())).contains(place))
            return true;
    }
    return false;
}

template <class Predicate>
int countPixels(const QImage &image, const QRectF &area, Predicate predicate)
{
    int count = 0;
    const QRect rect = area.toAlignedRect().intersected(image.rect());
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            count += predicate(image.pixel(x, y)) ? 1 : 0;
    return count;
}

/// Whether a pixel not farther than `reach` from the place is as wanted.
template <class Predicate>
bool isNear(const QImage &image, const QPointF &place, int reach, Predicate predicate)
{
    const QPoint middle = place.toPoint();
    return countPixels(image, QRectF(middle.x() - reach, middle.y() - reach, 2 * reach, 2 * reach), predicate)
        > 0;
}

/// The smallest rectangle around all pixels that are as wanted and not covered.
template <class Predicate>
QRect extent(const QImage &image, Predicate predicate)
{
    QRect found;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (predicate(image.pixel(x, y)) && !isCovered(QPointF(x, y)))
                found |= QRect(x, y, 1, 1);
    return found;
}

inline bool isYellow(QRgb pixel)
{
    return qRed(pixel) > 130 && qGreen(pixel) > 130 && qBlue(pixel) < 90
        && qAbs(qRed(pixel) - qGreen(pixel)) < 40;
}

inline bool isOrange(QRgb pixel)
{
    return qRed(pixel) > 200 && qAbs(qGreen(pixel) - 165) < 25 && qBlue(pixel) < 50;
}

inline auto isLike(const QColor &color, int tolerance = 40)
{
    return [color, tolerance](QRgb pixel) {
        return qAbs(qRed(pixel) - color.red()) <= tolerance
            && qAbs(qGreen(pixel) - color.green()) <= tolerance
            && qAbs(qBlue(pixel) - color.blue()) <= tolerance;
    };
}

} // namespace ui
