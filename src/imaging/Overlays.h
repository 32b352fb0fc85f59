#pragma once

#include <QColor>
#include <QPoint>
#include <QPointF>
#include <QString>
#include <QVector>
#include <array>
#include <utility>

class DepthProbe;
class QJsonArray;
class QJsonObject;
class QPainter;

/// The 18 joints of a skeleton, in the order of the detector.
extern const std::array<QColor, 18> keypointColors;
/// The joints that a limb joins.
extern const std::array<std::pair<int, int>, 17> limbPairs;

/// Where a frame lies on the screen. Overlays are given in frame pixels.
struct FramePlace {
    int sourceWidth = 0;
    int sourceHeight = 0;
    bool horizontalFlip = false;
    bool verticalFlip = false;
    QPointF topLeft;
    double ratio = 1.0; ///< screen pixels per frame pixel

    /// Mirrored as the frame is; `extent` is the size of what begins there.
    double shownX(double x, double extent = 0) const { return horizontalFlip ? sourceWidth - x - extent : x; }
    double shownY(double y, double extent = 0) const { return verticalFlip ? sourceHeight - y - extent : y; }
};

void drawKeyPoints(QPainter &painter, const QVector<QPoint> &points, const FramePlace &place);

/// Draws boxes (shape 0) and skeletons (shape 1). With a probe, each box tells the depth that the probe read
/// last and has it read at the box next.
void drawObjects(QPainter &painter, const QJsonArray &objects, const FramePlace &place, DepthProbe *probe);

/// What is written into the box of an object; without a probe no depth.
QString objectLabel(const QJsonObject &object, const DepthProbe *probe);
