#pragma once

#include "imaging/ImagePainter.h"
#include <QImage>
#include <QJsonObject>
#include <QPainter>

/// Paints an item off screen, into an image of its size, or as a screen with a pixel ratio does.
inline QImage painted(ImagePainter &item, const QSize &size, int pixelRatio = 1)
{
    item.setSize(size);
    QImage image(size * pixelRatio, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    painter.scale(pixelRatio, pixelRatio);
    item.paint(&painter);
    return image;
}

inline QJsonObject boxObject(double x, double y, double width, double height)
{
    return {{"shape", 0}, {"type", "cup"}, {"confidence", 0.5}, {"x", x}, {"y", y}, {"width", width},
        {"height", height}};
}
