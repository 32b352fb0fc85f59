#pragma once

#include <QMutex>
#include <QObject>
#include <QPoint>
#include <QVector>
#include <QtGlobal>
#include <atomic>
#include <memory>

/// Latest frame of one image stream, handed from a library thread to whoever paints or saves it.
/// Copies no pixels: holder and readers share ownership of the buffer.
class ImageData : public QObject {
    Q_OBJECT
    Q_PROPERTY(int width READ width WRITE setWidth NOTIFY widthChanged)
    Q_PROPERTY(int height READ height WRITE setHeight NOTIFY heightChanged)
    Q_PROPERTY(QVector<QPoint> points READ points WRITE setPoints NOTIFY pointsChanged)

public:
    /// How the buffer is to be read; `ImagePainter::ImageType` has the same numbers.
    enum Type : int {
        Gray, ///< 8 bits a pixel, rows packed
        Color, ///< 24 bits a pixel, R, G, B, rows packed
        YUYV, ///< packed 4:2:2, 2 bytes a pixel
        YUV420p, ///< planes Y, U, V (I420): `height` times 3/2 rows of `width` bytes
        JPEG, ///< one JPEG file of `dataSize` bytes
        Float, ///< 32-bit float a pixel, depth in metres
        Short, ///< 16-bit unsigned a pixel
        IR ///< 16-bit unsigned a pixel, infrared intensity
    };
    Q_ENUM(Type)

    using Buffer = std::shared_ptr<const unsigned char>;

    /// Buffer, size and type that belong together.
    struct Frame {
        Buffer data;
        int width = 0;
        int height = 0;
        int dataSize = 0;
        int type = Gray;
        quint64 number = 0; ///< of the hand-over, unique in the program; 0 before the first
    };

    explicit ImageData(QObject *parent = nullptr);

    int width() const;
    void setWidth(int width);
    int height() const;
    void setHeight(int height);
    int dataSize() const;
    int type() const;
    /// Emits nothing. Takes effect with the next `set`.
    void setType(int type);

    /// The current buffer; null before the first frame. Stays valid while the caller holds it, also after
    /// a newer frame has replaced it. Thread-safe.
    Buffer data() const;

    /// The current frame as one consistent snapshot, with the type that was set when it was handed over.
    /// Thread-safe.
    Frame frame() const;

    /// Key points, in frame pixels. Thread-safe.
    QVector<QPoint> points() const;

public slots:
    /// Hands over a frame. Called on the producer's thread; the signals leave on it, under the frame lock,
    /// so that a slot on the same thread must not read this object back.
    void set(int width, int height, std::shared_ptr<const unsigned char> data, int dataSize);
    void set(int width, int height, std::shared_ptr<const unsigned char> data, int dataSize,
        QVector<QPoint> points);
    void setPoints(QVector<QPoint> points);
    /// A 0 leaves the stored value as it is, each on its own.
    void setViewerSize(int w, int h);

signals:
    void widthChanged(int width);
    void heightChanged(int height);
    void update();
    void pointsChanged(QVector<QPoint> points);

private:
    void hand(int width, int height, Buffer data, int dataSize, const QVector<QPoint> *points);

    std::atomic<int> m_width{0};
    std::atomic<int> m_height{0};
    std::atomic<int> m_dataSize{0};
    std::atomic<int> m_type{Gray};
    Frame m_frame;
    QVector<QPoint> m_points;
    mutable QMutex m_pointsMutex;
    mutable QMutex m_dataMutex;
    int m_viewerWidth = 640;
    int m_viewerHeight = 400;
};
