#include "imaging/ImageData.h"

#include "imaging/MutexLock.h"
#include "imaging/Relaxed.h"

namespace {

/// Equal buffers don't mean equal frames: a producer may fill the same memory again.
quint64 nextNumber()
{
    static std::atomic<quint64> last{0};
    return last.fetch_add(1, relaxed) + 1;
}

} // namespace

ImageData::ImageData(QObject *parent)
    : QObject(parent)
{
}

int ImageData::width() const
{
    return m_width.load(relaxed);
}

int ImageData::height() const
{
    return m_height.load(relaxed);
}

int ImageData::dataSize() const
{
    return m_dataSize.load(relaxed);
}

int ImageData::type() const
{
    return m_type.load(relaxed);
}

void ImageData::setType(int type)
{
    m_type.store(type, relaxed);
}

ImageData::Buffer ImageData::data() const
{
    const MutexLock lock(&m_dataMutex);
    return m_frame.data;
}

ImageData::Frame ImageData::frame() const
{
    const MutexLock lock(&m_dataMutex);
    if (m_frame.number == 0)
        return {nullptr, width(), height(), dataSize(), type(), 0};
    return m_frame;
}

QVector<QPoint> ImageData::points() const
{
    const MutexLock lock(&m_pointsMutex);
    return m_points;
}

void ImageData::set(int width, int height, std::shared_ptr<const unsigned char> data, int dataSize)
{
    hand(width, height, std::move(data), dataSize, nullptr);
}

void ImageData::set(
    int width, int height, std::shared_ptr<const unsigned char> data, int dataSize, QVector<QPoint> points)
{
    hand(width, height, std::move(data), dataSize, &points);
}

void ImageData::hand(int width, int height, Buffer data, int dataSize, const QVector<QPoint> *points)
{
    const MutexLock lock(&m_dataMutex);
    m_frame.data.reset();
    m_dataSize.store(0, relaxed);
    setWidth(width);
    setHeight(height);
    if (points)
        setPoints(*points);
    m_frame = {std::move(data), width, height, dataSize, type(), nextNumber()};
    m_dataSize.store(dataSize, relaxed);
    emit update();
}

void ImageData::setPoints(QVector<QPoint> points)
{
    if (points == this->points())
        return;
    {
        const MutexLock lock(&m_pointsMutex);
        m_points = points;
    }
    emit pointsChanged(points);
}

void ImageData::setViewerSize(int w, int h)
{
    if (w != 0)
        m_viewerWidth = w;
    if (h != 0)
        m_viewerHeight = h;
}

void ImageData::setWidth(int width)
{
    if (m_width.exchange(width, relaxed) != width)
        emit widthChanged(width);
}

void ImageData::setHeight(int height)
{
    if (m_height.exchange(height, relaxed) != height)
        emit heightChanged(height);
}
