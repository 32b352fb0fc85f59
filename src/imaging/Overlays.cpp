#include "imaging/Overlays.h"

#include "imaging/DepthProbe.h"
#include <QJsonArray>
#include <QJsonObject>
#include <QPainter>
#include <QtMath>
#include <cmath>
#include <limits>

const std::array<QColor, 18> keypointColors{{{0, 0, 255}, {0, 85, 255}, {0, 170, 255}, {0, 255, 255},
    {0, 255, 170}, {0, 255, 85}, {0, 255, 0}, {85, 255, 0}, {170, 255, 0}, {255, 255, 0}, {255, 170, 0},
    {255, 85, 0}, {255, 0, 0}, {255, 0, 85}, {255, 0, 170}, {255, 0, 255}, {170, 0, 255}, {85, 0, 255}}};

const std::array<std::pair<int, int>, 17> limbPairs{{{1, 2}, {1, 5}, {2, 3}, {3, 4}, {5, 6}, {6, 7}, {1, 8},
    {8, 9}, {9, 10}, {1, 11}, {11, 12}, {12, 13}, {1, 0}, {0, 14}, {14, 16}, {0, 15}, {15, 17}}};

namespace {

constexpr double jointRadius = 4.0;
const QPointF hiddenJoint{-1, -1};

using Joints = std::array<QPointF, 18>;

void toFrame(QPainter &painter, const FramePlace &place)
{
    painter.translate(place.topLeft);
    painter.scale(place.ratio, place.ratio);
}

QPen framePen(Qt::GlobalColor color, double width)
{
    return {QBrush(color), width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin};
}

/// Truncates; an object may stand anywhere, a sample point is an int.
int toPixel(double position)
{
    using Limits = std::numeric_limits<int>;
    if (std::isnan(position))
        return 0;
    return static_cast<int>(
        qBound(static_cast<double>(Limits::min()), position, static_cast<double>(Limits::max())));
}

/// Not the middle of the box: half of position plus size is the point that the read-out is taken at.
void samplePoint(const QJsonObject &object, DepthProbe &probe)
{
    probe.setObjectX(toPixel((object["x"].toDouble() + object["width"].toDouble()) * 0.5));
    probe.setObjectY(toPixel((object["y"].toDouble() + object["height"].toDouble()) * 0.5));
}

QRectF shownBox(const QJsonObject &object, const FramePlace &place)
{
    QRectF box(object["x"].toDouble(), object["y"].toDouble(), object["width"].toDouble(),
        object["height"].toDouble());
    box.moveLeft(place.shownX(box.x(), box.width()));
    box.moveTop(place.shownY(box.y(), box.height()));
    return box;
}

/// Keeps the size of the text on the screen.
void unscaleFont(QPainter &painter, double ratio)
{
    QFont font = painter.font();
    const double size = font.pointSizeF() / ratio;
    if (size > 0 && std::isfinite(size))
        font.setPointSizeF(size);
    painter.setFont(font);
}

void drawBox(QPainter &painter, const QJsonObject &object, const FramePlace &place, DepthProbe *probe)
{
    const QRectF box = shownBox(object, place);
    painter.save();
    painter.setPen(framePen(Qt::yellow, 1.0 / place.ratio));
    painter.setBrush(Qt::transparent);
    painter.drawRect(box);
    unscaleFont(painter, place.ratio);
    if (probe)
        samplePoint(object, *probe);
    painter.drawText(box, Qt::AlignCenter | Qt::TextWordWrap, objectLabel(object, probe));
    painter.restore();
}

void drawJoints(QPainter &painter, const Joints &joints, const FramePlace &place)
{
    for (std::size_t i = 0; i < joints.size(); ++i) {
        if (joints[i] == hiddenJoint)
            continue;
        const auto x = static_cast<float>(place.shownX(static_cast<float>(joints[i].x())));
        const auto y = static_cast<float>(place.shownY(static_cast<float>(joints[i].y())));
        painter.setBrush(keypointColors[i]);
        painter.drawEllipse(QPointF(x, y), jointRadius, jointRadius);
    }
}

void drawLimb(QPainter &painter, const QPointF &a, const QPointF &b, const FramePlace &place)
{
    const auto middleX = static_cast<float>((a.x() + b.x()) * 0.5);
    const auto middleY = static_cast<float>((a.y() + b.y()) * 0.5);
    const QPointF middle(
        static_cast<float>(place.shownX(middleX)), static_cast<float>(place.shownY(middleY)));
    const double dx = place.shownX(a.x()) - place.shownX(b.x());
    const double dy = place.shownY(a.y()) - place.shownY(b.y());
    const double length = std::sqrt(dx * dx + dy * dy);
    if (!std::isfinite(length))
        return;
    const int angle = static_cast<int>(std::atan2(dy, dx) * 180 / M_PI);
    painter.save();
    painter.translate(middle);
    painter.rotate(angle);
    painter.drawEllipse(QPointF(0, 0), length * 0.5, jointRadius);
    painter.restore();
}

void drawLimbs(QPainter &painter, const Joints &joints, const FramePlace &place)
{
    for (const auto &[from, to] : limbPairs) {
        const QPointF &a = joints[static_cast<std::size_t>(from)];
        const QPointF &b = joints[static_cast<std::size_t>(to)];
        if (a == hiddenJoint || b == hiddenJoint)
            continue;
        painter.setBrush(keypointColors[static_cast<std::size_t>(to)]);
        drawLimb(painter, a, b, place);
    }
}

void drawSkeleton(QPainter &painter, const QJsonObject &object, const FramePlace &place)
{
    const QJsonArray keypoints = object["keypoints"].toArray();
    Joints joints;
    if (keypoints.size() != static_cast<int>(joints.size()))
        return;
    for (int i = 0; i < keypoints.size(); ++i) {
        const QJsonObject point = keypoints[i].toObject();
        joints[static_cast<std::size_t>(i)] = {point["x"].toDouble(), point["y"].toDouble()};
    }
    painter.setPen(Qt::black);
    drawJoints(painter, joints, place);
    drawLimbs(painter, joints, place);
}

} // namespace

void drawKeyPoints(QPainter &painter, const QVector<QPoint> &points, const FramePlace &place)
{
    QVector<QPointF> shown;
    shown.reserve(points.size());
    for (const QPoint &point : points)
        shown.append({place.shownX(point.x()), place.shownY(point.y())});
    painter.save();
    toFrame(painter, place);
    painter.setPen(framePen(Qt::green, 2.0));
    painter.drawPoints(shown.constData(), shown.size());
    painter.restore();
}

void drawObjects(QPainter &painter, const QJsonArray &objects, const FramePlace &place, DepthProbe *probe)
{
    painter.setPen(framePen(Qt::yellow, 1.0 / place.ratio));
    painter.setBrush(Qt::transparent);
    for (const auto &value : objects) {
        const QJsonObject object = value.toObject();
        painter.save();
        toFrame(painter, place);
        switch (object["shape"].toInt()) {
        case 0:
            drawBox(painter, object, place, probe);
            break;
        case 1:
            drawSkeleton(painter, object, place);
            break;
        default:
            break;
        }
        painter.restore();
    }
}

QString objectLabel(const QJsonObject &object, const DepthProbe *probe)
{
    QString label = object["type"].toString() + QLatin1String(" confidence: ")
        + QStringLiteral("%1").arg(object["confidence"].toDouble(), 0, 'g', 2);
    if (probe)
        label += QLatin1String(" depth: ") + QString::number(probe->objectDepth());
    return label;
}
