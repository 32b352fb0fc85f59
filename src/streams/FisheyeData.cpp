#include "streams/FisheyeData.h"

namespace {

constexpr int fisheyeVideoRate = 100;

bool holdsPicture(const ImageData::Frame &frame)
{
    return frame.data && frame.width > 0 && frame.height > 0
        && frame.dataSize >= qint64(frame.width) * frame.height;
}

} // namespace

FisheyeData::FisheyeData(QObject *parent)
    : AbstractImageData(false, parent)
{
    setRecordFrameRate(fisheyeVideoRate);
}

FisheyeData::~FisheyeData() = default;

QImage FisheyeData::toImage() const
{
    const ImageData::Frame frame = image()->frame();
    if (!holdsPicture(frame))
        return {};
    return QImage(frame.data.get(), frame.width, frame.height, frame.width, QImage::Format_Grayscale8).copy();
}

cv::Mat FisheyeData::toMat() const
{
    const ImageData::Frame frame = image()->frame();
    if (!holdsPicture(frame))
        return {};
    cv::Mat copy;
    cv::Mat(frame.height, frame.width, CV_8UC1, const_cast<unsigned char *>(frame.data.get())).copyTo(copy);
    return copy;
}

void FisheyeData::setImage(int width, int height, std::shared_ptr<const unsigned char> data, int dataSize)
{
    beginFrame(width, height);
    image()->set(width, height, std::move(data), dataSize);
    endFrame();
}

void FisheyeData::setImageAndPoints(
    int width, int height, std::shared_ptr<const unsigned char> data, int dataSize, QVector<QPoint> points)
{
    beginFrame(width, height);
    image()->set(width, height, std::move(data), dataSize, std::move(points));
    endFrame();
}

void FisheyeData::setPoints(QVector<QPoint> points)
{
    image()->setPoints(std::move(points));
}

void FisheyeData::setViewSize(int w, int h)
{
    image()->setViewerSize(w, h);
}

void FisheyeData::beginFrame(int width, int height)
{
    tick();
    setSourceWidth(width);
    setSourceHeight(height);
}

void FisheyeData::endFrame()
{
    if (recording())
        writeFrame();
}
