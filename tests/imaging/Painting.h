#pragma once

#include "imaging/Frames.h"
#include "imaging/ImagePainter.h"
#include <QImage>
#include <QJsonObject>
#include <QPainter>

constexpr QRgb black = qRgb(0, 0, 0);
constexpr QRgb white = qRgb(255, 255, 255);
constexpr QRgb green = qRgb(0, 255, 0);
constexpr QRgb yellow = qRgb(255, 255, 0);

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

/// A white frame of one byte a pixel.
inline void setWhite(ImageData &image, const QSize &size)
{
    frames::set(image, ImageData::Gray, size,
        frames::bytes(
            std::vector<unsigned char>(static_cast<std::size_t>(size.width() * size.height()), 255)));
}

inline bool isAll(const QImage &image, QRgb color)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != color)
                return false;
        }
    }
    return true;
}

inline QJsonArray skeletonArray()
{
    QJsonArray points;
    for (int i = 0; i < 18; ++i)
        points.append(QJsonObject{{"x", 20.0 + i}, {"y", 20.0}});
    return {QJsonObject{{"shape", 1}, {"keypoints", points}}};
}

/// Everything that the item tells, by name and in order.
class SignalLog {
public:
    explicit SignalLog(ImagePainter &item)
    {
        const auto log = [this](const char *name) { return [this, name] { names.append(name); }; };
        QObject::connect(&item, &ImagePainter::typeChanged, log("type"));
        QObject::connect(&item, &ImagePainter::sourceHeightChanged, log("sourceHeight"));
        QObject::connect(&item, &ImagePainter::sourceWidthChanged, log("sourceWidth"));
        QObject::connect(&item, &ImagePainter::objectsChanged, log("objects"));
        QObject::connect(&item, &ImagePainter::horizontalFlipChanged, log("horizontalFlip"));
        QObject::connect(&item, &ImagePainter::verticalFlipChanged, log("verticalFlip"));
        QObject::connect(&item, &ImagePainter::sourceChanged, log("source"));
        QObject::connect(&item, &ImagePainter::showPointsChanged, log("showPoints"));
        QObject::connect(&item, &ImagePainter::maxDistanceChanged, log("maxDistance"));
        QObject::connect(&item, &ImagePainter::minDistanceChanged, log("minDistance"));
        QObject::connect(&item, &ImagePainter::colorizeChanged, log("colorize"));
        QObject::connect(&item, &ImagePainter::topLeftPointChanged, log("topLeftPoint"));
        QObject::connect(&item, &ImagePainter::imageRationChanged, log("imageRation"));
        QObject::connect(&item, &ImagePainter::colorIndexChanged, log("colorIndex"));
        QObject::connect(&item, &ImagePainter::tofDataChanged, log("tofData"));
        QObject::connect(&item, &ImagePainter::sgbmDataChanged, log("sgbmData"));
        QObject::connect(&item, &ImagePainter::CNNRunningChanged, log("CNNRunning"));
    }

    QStringList names;
};
