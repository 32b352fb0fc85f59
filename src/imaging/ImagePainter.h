#pragma once

#include "imaging/FrameImage.h"
#include "imaging/Overlays.h"
#include <QJsonArray>
#include <QPointer>
#include <QQuickPaintedItem>

class DepthProbe;
class QTimer;

/// Shows the frames of an `ImageData`, as large as they fit into the item, with key points and detected
/// objects drawn over them. Keeps no frame: each paint takes the current one.
class ImagePainter : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(QObject *source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(int sourceWidth READ sourceWidth WRITE setSourceWidth NOTIFY sourceWidthChanged)
    Q_PROPERTY(int sourceHeight READ sourceHeight WRITE setSourceHeight NOTIFY sourceHeightChanged)
    Q_PROPERTY(bool horizontalFlip READ horizontalFlip WRITE setHorizontalFlip NOTIFY horizontalFlipChanged)
    Q_PROPERTY(bool verticalFlip READ verticalFlip WRITE setVerticalFlip NOTIFY verticalFlipChanged)
    Q_PROPERTY(ImageType type READ type NOTIFY typeChanged)
    Q_PROPERTY(QJsonArray objects READ objects WRITE setObjects NOTIFY objectsChanged)
    Q_PROPERTY(double fps READ fps NOTIFY fpsChanged)
    Q_PROPERTY(bool showPoints READ showPoints WRITE setShowPoints NOTIFY showPointsChanged)
    Q_PROPERTY(float maxDistance READ maxDistance WRITE setMaxDistance NOTIFY maxDistanceChanged)
    Q_PROPERTY(float minDistance READ minDistance WRITE setMinDistance NOTIFY minDistanceChanged)
    Q_PROPERTY(bool colorize READ colorize WRITE setColorize NOTIFY colorizeChanged)
    Q_PROPERTY(QPointF topLeftPoint READ topLeftPoint WRITE setTopLeftPoint NOTIFY topLeftPointChanged)
    Q_PROPERTY(double imageRation READ imageRation NOTIFY imageRationChanged)
    Q_PROPERTY(int colorIndex READ colorIndex WRITE setColorIndex NOTIFY colorIndexChanged)
    Q_PROPERTY(QObject *tofData READ tofData WRITE setTofData NOTIFY tofDataChanged)
    Q_PROPERTY(QObject *sgbmData READ sgbmData WRITE setSgbmData NOTIFY sgbmDataChanged)
    Q_PROPERTY(bool CNNRunning READ CNNRunning WRITE setCNNRunning NOTIFY CNNRunningChanged)

public:
    /// The numbers of `ImageData::Type`.
    enum ImageType : int { Gray, Color, YUYV, YUV420p, JPEG, Float, Short, IR };
    Q_ENUM(ImageType)

    explicit ImagePainter(QQuickItem *parent = nullptr);

    /// May run on the render thread, while the item's thread waits; its signals then leave on that one.
    void paint(QPainter *painter) override;

    QObject *source() const { return m_source; }
    /// Size and type of the frame that was painted last.
    int sourceWidth() const { return m_sourceWidth; }
    int sourceHeight() const { return m_sourceHeight; }
    ImageType type() const { return m_type; }
    bool horizontalFlip() const { return m_horizontalFlip; }
    bool verticalFlip() const { return m_verticalFlip; }
    QJsonArray objects() const { return m_objects; }
    /// Frames that the source delivered in the last second, painted or not.
    double fps() const { return m_fps; }
    bool showPoints() const { return m_showPoints; }
    /// Depth range of the colours, in metres.
    float maxDistance() const { return m_maxDistance; }
    float minDistance() const { return m_minDistance; }
    bool colorize() const { return m_colorize; }
    /// Corner of the image in the item. Left alone while frames of the item's own size are painted.
    QPointF topLeftPoint() const { return m_topLeftPoint; }
    /// Screen pixels per frame pixel, as of the last paint.
    double imageRation() const { return m_imageRation; }
    int colorIndex() const { return m_colorIndex; }
    QObject *tofData() const { return m_tofData; }
    QObject *sgbmData() const { return m_sgbmData; }
    bool CNNRunning() const { return m_CNNRunning; }

    /// These four don't repaint: the next frame shows them.
    void setColorIndex(int colorIndex);
    void setTofData(QObject *tofData);
    void setSgbmData(QObject *sgbmData);
    void setCNNRunning(bool running);

public slots:
    /// A new frame is there: counts it and repaints.
    void updateAll();
    void setSourceHeight(int sourceHeight);
    void setSourceWidth(int sourceWidth);
    void setType(ImageType type);
    void setObjects(QJsonArray objects);
    void setHorizontalFlip(bool horizontalFlip);
    void setVerticalFlip(bool verticalFlip);
    /// Shows an `ImageData`; any other object, or none, makes a black item.
    void setSource(QObject *source);
    void setShowPoints(bool showPoints);
    void setMaxDistance(float maxDistance);
    /// Announces the new value by `maxDistanceChanged`.
    void setMinDistance(float minDistance);
    void setColorize(bool colorize);
    void setTopLeftPoint(QPointF topLeftPoint);

signals:
    void typeChanged(ImageType type);
    void sourceHeightChanged(int sourceHeight);
    void sourceWidthChanged(int sourceWidth);
    void objectsChanged(QJsonArray objects);
    void horizontalFlipChanged(bool horizontalFlip);
    void verticalFlipChanged(bool verticalFlip);
    void sourceChanged(QObject *source);
    void fpsChanged(double fps);
    void showPointsChanged(bool showPoints);
    void maxDistanceChanged(float maxDistance);
    void minDistanceChanged(float minDistance);
    void colorizeChanged(bool colorize);
    void topLeftPointChanged(QPointF topLeftPoint);
    void imageRationChanged(double ration);
    void colorIndexChanged();
    void tofDataChanged();
    void sgbmDataChanged();
    void CNNRunningChanged();

protected:
    void itemChange(ItemChange change, const ItemChangeData &data) override;

private:
    void countSecond();
    void repaint();
    void follow(const ImageData::Frame &frame);
    FramePlace drawFrame(QPainter &painter, const ImageData::Frame &frame);
    FramePlace place() const;
    FrameLook look(const QSize &window) const;
    DepthProbe *depthProbe() const;
    template <class Value>
    bool replace(Value &member, const Value &value);

    ImageType m_type = Gray;
    int m_sourceHeight = 0;
    int m_sourceWidth = 0;
    QJsonArray m_objects;
    bool m_horizontalFlip = false;
    bool m_verticalFlip = false;
    QPointer<QObject> m_source;
    double m_fps = 0;
    int m_frameCount = 0;
    QTimer *m_fpsTimer = nullptr;
    bool m_showPoints = true;
    float m_maxDistance = 1.2F;
    float m_minDistance = 0.2F;
    bool m_colorize = true;
    int m_colorIndex = 0;
    QPointF m_topLeftPoint;
    double m_imageRation = 0;
    QPointer<QObject> m_tofData;
    QPointer<QObject> m_sgbmData;
    bool m_CNNRunning = false;
    FrameImage m_frameImage;
};
