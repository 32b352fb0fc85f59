#include "streams/AbstractImageData.h"

#include "imaging/Relaxed.h"

#include <QDebug>
#include <opencv2/videoio.hpp>

AbstractImageData::AbstractImageData(bool isColor, QObject *parent)
    : AbstractData(parent)
    , m_isColor(isColor)
    , m_imageData(new ImageData(this))
{
}

AbstractImageData::~AbstractImageData()
{
    m_imageData->deleteLater();
    m_imageData = nullptr;
    closeVideoWriter();
}

int AbstractImageData::sourceWidth() const
{
    return m_sourceWidth.load(relaxed);
}

int AbstractImageData::sourceHeight() const
{
    return m_sourceHeight.load(relaxed);
}

ImageData *AbstractImageData::image() const
{
    return m_imageData;
}

void AbstractImageData::setRecording(bool recording)
{
    if (!storeRecording(recording))
        return;
    emit recordingChanged(recording);
    if (recordPath().isEmpty()) {
        qDebug() << "Invalid video path";
        return;
    }
    if (recording)
        openVideoWriter();
    else
        closeVideoWriter();
}

void AbstractImageData::setSourceWidth(int sourceWidth)
{
    if (m_sourceWidth.exchange(sourceWidth, relaxed) != sourceWidth)
        emit sourceWidthChanged(sourceWidth);
}

void AbstractImageData::setSourceHeight(int sourceHeight)
{
    if (m_sourceHeight.exchange(sourceHeight, relaxed) != sourceHeight)
        emit sourceHeightChanged(sourceHeight);
}

bool AbstractImageData::save(QString path)
{
    return toImage().save(path);
}

void AbstractImageData::setRecordFrameRate(int rate)
{
    m_recordFrameRate.store(rate, relaxed);
}

bool AbstractImageData::writeFrame()
try {
    if (!hasVideoWriter())
        return false;
    const cv::Mat frame = toMat();
    if (!frame.data || frame.total() == 0 || frame.dims == 0)
        return false;
    const std::lock_guard lock(recordMutex());
    if (!m_videoWriter)
        return false;
    m_videoWriter->write(frame);
    return true;
} catch (const cv::Exception &) {
    // A frame that the encoder can't take is missing from the video; the stream goes on.
    return false;
}

bool AbstractImageData::hasVideoWriter() const
{
    const std::lock_guard lock(recordMutex());
    return m_videoWriter != nullptr;
}

void AbstractImageData::openVideoWriter()
{
    const cv::Size size(sourceWidth(), sourceHeight());
    if (size.width <= 0 || size.height <= 0)
        qDebug() << "Invalid image size" << size.width << size.height;
    auto writer = std::make_unique<cv::VideoWriter>();
    try {
        writer->open(recordPath().toStdString(), cv::VideoWriter::fourcc('X', '2', '6', '4'),
            double(m_recordFrameRate.load(relaxed)), size, m_isColor);
    } catch (const cv::Exception &) {
        // OpenCV has told why; the writer stays closed and takes frames without effect.
    }
    const std::lock_guard lock(recordMutex());
    m_videoWriter = std::move(writer);
}

void AbstractImageData::closeVideoWriter()
{
    const std::lock_guard lock(recordMutex());
    if (!m_videoWriter)
        return;
    m_videoWriter->release();
    m_videoWriter.reset();
}
