#include "imaging/ImagePainter.h"

#include "imaging/DepthProbe.h"
#include <QPainter>
#include <QTimer>

namespace {

/// The painter's own scale, which isn't 1 on a screen with a pixel ratio.
QSizeF scaleOf(const QPainter &painter)
{
    const QTransform &transform = painter.worldTransform();
    return transform.type() == QTransform::TxScale ? QSizeF(qAbs(transform.m11()), qAbs(transform.m22()))
                                                   : QSizeF(1, 1);
}

/// The image has the size of the window in device pixels and is drawn in them.
void drawUnscaled(QPainter &painter, const QPointF &topLeft, const QImage &image)
{
    const QTransform transform = painter.worldTransform();
    if (transform.type() != QTransform::TxScale) {
        painter.drawImage(topLeft, image);
        return;
    }
    painter.save();
    painter.setWorldTransform({});
    painter.drawImage(transform.map(topLeft), image);
    painter.restore();
}

} // namespace

ImagePainter::ImagePainter(QQuickItem *parent)
    : QQuickPaintedItem(parent)
    , m_fpsTimer(new QTimer(this))
{
    // Signals that leave on the render thread find their argument by the name they are declared with.
    qRegisterMetaType<ImageType>("ImageType");
    qRegisterMetaType<ImageType>("ImagePainter::ImageType");
    m_fpsTimer->setInterval(1000);
    connect(m_fpsTimer, &QTimer::timeout, this, &ImagePainter::countSecond, Qt::DirectConnection);
    m_fpsTimer->start();
    setAntialiasing(false);
    setOpaquePainting(true);
    setMipmap(true);
}

void ImagePainter::countSecond()
{
    m_fps = m_frameCount;
    emit fpsChanged(m_fps);
    m_frameCount = 0;
}

void ImagePainter::paint(QPainter *painter)
{
    painter->setBrush(Qt::black);
    painter->setPen(Qt::black);
    painter->drawRect(QRectF(0, 0, width(), height()));
    const auto *image = qobject_cast<ImageData *>(m_source.data());
    if (!image)
        return;
    const auto frame = image->frame();
    const auto points = m_showPoints ? image->points() : QVector<QPoint>();
    FramePlace shown = place();
    if (frame.data) {
        follow(frame);
        shown = drawFrame(*painter, frame);
        m_imageRation = shown.ratio;
        if (!points.isEmpty())
            drawKeyPoints(*painter, points, shown);
    }
    if (!m_objects.isEmpty() && m_CNNRunning)
        drawObjects(*painter, m_objects, shown, depthProbe());
}

void ImagePainter::follow(const ImageData::Frame &frame)
{
    setType(static_cast<ImageType>(frame.type));
    setSourceWidth(frame.width);
    setSourceHeight(frame.height);
}

FramePlace ImagePainter::drawFrame(QPainter &painter, const ImageData::Frame &frame)
{
    FramePlace shown = place();
    const QSize window = painter.window().size();
    const QImage &image = m_frameImage.image(frame, look(window));
    if (image.isNull())
        return shown;
    const QSizeF scale = scaleOf(painter);
    shown.topLeft = {
        (width() - image.width() / scale.width()) * 0.5, (height() - image.height() / scale.height()) * 0.5};
    if (window == QSize(frame.width, frame.height)) {
        shown.ratio = 1 / scale.width();
    } else {
        if (frame.width > 0)
            shown.ratio = image.width() / scale.width() / frame.width;
        setTopLeftPoint(shown.topLeft);
    }
    drawUnscaled(painter, shown.topLeft, image);
    return shown;
}

FramePlace ImagePainter::place() const
{
    FramePlace shown;
    shown.sourceWidth = m_sourceWidth;
    shown.sourceHeight = m_sourceHeight;
    shown.horizontalFlip = m_horizontalFlip;
    shown.verticalFlip = m_verticalFlip;
    return shown;
}

FrameLook ImagePainter::look(const QSize &window) const
{
    return {window, m_horizontalFlip, m_verticalFlip, {m_minDistance, m_maxDistance}, m_colorIndex};
}

/// A ToF stream that stands still isn't replaced by the stereo depth.
DepthProbe *ImagePainter::depthProbe() const
{
    auto *probe = qobject_cast<DepthProbe *>(m_tofData ? m_tofData.data() : m_sgbmData.data());
    return probe && probe->isRunning() ? probe : nullptr;
}

/// Qt Quick would paint a hidden item too. One that is shown again is painted then.
void ImagePainter::repaint()
{
    if (isVisible())
        update();
}

void ImagePainter::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemVisibleHasChanged && data.boolValue)
        update();
    QQuickPaintedItem::itemChange(change, data);
}

template <class Value>
bool ImagePainter::replace(Value &member, const Value &value)
{
    if (member == value)
        return false;
    member = value;
    return true;
}

void ImagePainter::updateAll()
{
    ++m_frameCount;
    repaint();
}

void ImagePainter::setSource(QObject *source)
{
    if (source == m_source)
        return;
    if (auto *image = qobject_cast<ImageData *>(m_source.data()))
        disconnect(image, &ImageData::update, this, &ImagePainter::updateAll);
    m_source = source;
    if (auto *image = qobject_cast<ImageData *>(source))
        connect(image, &ImageData::update, this, &ImagePainter::updateAll);
    emit sourceChanged(m_source);
}

void ImagePainter::setSourceHeight(int sourceHeight)
{
    if (!replace(m_sourceHeight, sourceHeight))
        return;
    emit sourceHeightChanged(m_sourceHeight);
    repaint();
}

void ImagePainter::setSourceWidth(int sourceWidth)
{
    if (!replace(m_sourceWidth, sourceWidth))
        return;
    emit sourceWidthChanged(m_sourceWidth);
    repaint();
}

void ImagePainter::setType(ImageType type)
{
    if (!replace(m_type, type))
        return;
    emit typeChanged(m_type);
    repaint();
}

void ImagePainter::setObjects(QJsonArray objects)
{
    if (!replace(m_objects, objects))
        return;
    emit objectsChanged(m_objects);
    repaint();
}

void ImagePainter::setHorizontalFlip(bool horizontalFlip)
{
    if (!replace(m_horizontalFlip, horizontalFlip))
        return;
    emit horizontalFlipChanged(m_horizontalFlip);
    repaint();
}

void ImagePainter::setVerticalFlip(bool verticalFlip)
{
    if (!replace(m_verticalFlip, verticalFlip))
        return;
    emit verticalFlipChanged(m_verticalFlip);
    repaint();
}

void ImagePainter::setShowPoints(bool showPoints)
{
    if (!replace(m_showPoints, showPoints))
        return;
    emit showPointsChanged(m_showPoints);
    repaint();
}

void ImagePainter::setMaxDistance(float maxDistance)
{
    if (qFuzzyCompare(m_maxDistance, maxDistance))
        return;
    m_maxDistance = maxDistance;
    emit maxDistanceChanged(m_maxDistance);
    repaint();
}

void ImagePainter::setMinDistance(float minDistance)
{
    if (qFuzzyCompare(m_minDistance, minDistance))
        return;
    m_minDistance = minDistance;
    emit maxDistanceChanged(m_minDistance);
    repaint();
}

void ImagePainter::setColorize(bool colorize)
{
    if (!replace(m_colorize, colorize))
        return;
    emit colorizeChanged(m_colorize);
    repaint();
}

void ImagePainter::setTopLeftPoint(QPointF topLeftPoint)
{
    if (replace(m_topLeftPoint, topLeftPoint))
        emit topLeftPointChanged(m_topLeftPoint);
}

void ImagePainter::setColorIndex(int colorIndex)
{
    if (replace(m_colorIndex, colorIndex))
        emit colorIndexChanged();
}

void ImagePainter::setTofData(QObject *tofData)
{
    if (m_tofData == tofData)
        return;
    m_tofData = tofData;
    emit tofDataChanged();
}

void ImagePainter::setSgbmData(QObject *sgbmData)
{
    if (m_sgbmData == sgbmData)
        return;
    m_sgbmData = sgbmData;
    emit sgbmDataChanged();
}

void ImagePainter::setCNNRunning(bool running)
{
    if (replace(m_CNNRunning, running))
        emit CNNRunningChanged();
}
