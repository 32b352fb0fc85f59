#pragma once

#include <QByteArray>
#include <QString>
#include <Qt3DRender/QAttribute>
#include <Qt3DRender/QBuffer>
#include <Qt3DRender/QGeometry>

/// What the two point geometries share: attributes of three packed floats a point.
namespace pointAttribute {

/// A new vertex attribute over `buffer`, added to `geometry`.
Qt3DRender::QAttribute *add(
    Qt3DRender::QGeometry *geometry, Qt3DRender::QBuffer *buffer, const QString &name, int count);

/// The bytes for `count` points: as they are, or filled up with zeros where they are fewer, so that no vertex
/// lies outside the buffer while a cloud is being written.
QByteArray filledUp(QByteArray bytes, int count);

/// Gives every vertex attribute of this name the count.
void setCount(const Qt3DRender::QGeometry *geometry, const QString &name, int count);

} // namespace pointAttribute
