#pragma once

#include "ui/Space.h"

#include <QPolygonF>
#include <string>

/// The yellow frustum of the device in the scene: where it belongs, and whether it stands there.
namespace ui {

/// From a metre behind the device, along its own axis; the world's y points down.
inline Projection behind(const qv::Pose &pose, const QRectF &area)
{
    const QRectF whole = sceneArea();
    return {
        mapped(pose, {0, 0, -1}), vector(pose.translation), {0, -1, 0}, whole.width() / whole.height(), area};
}

/// Where the frustum's corners and the device's origin are seen.
inline QRectF frustumIn(const Projection &projection, const qv::Pose &pose)
{
    QPolygonF corners;
    for (const QVector3D &corner : {QVector3D(0.12F, 0.1F, 0.1F), QVector3D(-0.12F, 0.1F, 0.1F),
             QVector3D(-0.12F, -0.1F, 0.1F), QVector3D(0.12F, -0.1F, 0.1F), QVector3D()})
        corners << projection.unbounded(mapped(pose, corner)).value_or(QPointF(-1e6, -1e6));
    return corners.boundingRect();
}

inline bool agree(const QRectF &expected, const QRectF &seen, double pixels)
{
    return !seen.isEmpty() && qAbs(expected.left() - seen.left()) <= pixels
        && qAbs(expected.right() - seen.right()) <= pixels && qAbs(expected.top() - seen.top()) <= pixels
        && qAbs(expected.bottom() - seen.bottom()) <= pixels;
}

inline std::string told(const QRectF &r)
{
    return QStringLiteral("%1,%2 to %3,%4")
        .arg(r.left())
        .arg(r.top())
        .arg(r.right())
        .arg(r.bottom())
        .toStdString();
}

/// Waits until what is yellow, with the path cleared, is the frustum where it belongs.
inline ::testing::AssertionResult showsFrustum(const Projection &projection, const qv::Pose &pose)
{
    const QRectF expected = frustumIn(projection, pose);
    QRectF seen;
    const bool shown = waitFor(
        [&] {
            seen = extent(sceneImage(), isYellow);
            return agree(expected, seen, 3);
        },
        minute);
    if (shown)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "it is at " << told(seen) << ", not " << told(expected);
}

} // namespace ui
