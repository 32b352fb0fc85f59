#include "streams/RgbData.h"

#include "imaging/Relaxed.h"
#include "streams/CalibrationJson.h"
#include "streams/FrameSize.h"
#include "streams/Timing.h"
#include "streams/YuvToRgb.h"

#include <QDebug>
#include <QThread>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <stdexcept>
#include <utility>

namespace {

constexpr int rgbVideoRate = 30;
constexpr int secondCamera = 1;
constexpr int lastResolution = 4;

enum RgbRunning { RgbStarted = 2, RgbStopped = 3 };

std::optional<ImageData::Type> typeOf(int codec)
{
    switch (codec) {
    case 0:
        return ImageData::YUYV;
    case 1:
        return ImageData::YUV420p;
    case 2:
        return ImageData::JPEG;
    default:
        return std::nullopt;
    }
}

cv::Mat decodedJpeg(const ImageData::Frame &frame)
{
    if (!frame.data || frame.dataSize <= 0)
        return {};
    auto *bytes = const_cast<unsigned char *>(frame.data.get());
    return cv::imdecode(cv::Mat(1, frame.dataSize, CV_8UC1, bytes), cv::IMREAD_ANYCOLOR);
}

cv::Mat convertedYuv(const ImageData::Frame &frame)
{
    if (!frame.data || frame.width <= 0 || frame.height <= 0)
        return {};
    cv::Mat matrix(frame.height, frame.width, CV_8UC3);
    if (!yuvToRgb(frame, matrix.data, int(matrix.step)))
        return {};
    cv::cvtColor(matrix, matrix, cv::COLOR_RGB2BGR);
    return matrix;
}

} // namespace

RgbData::RgbData(std::shared_ptr<qv::ColorCamera> colorCamera, QObject *parent)
    : AbstractImageData(true, parent)
    , m_colorCamera(std::move(colorCamera))
    , m_image(new ImageData(this))
    , m_image2(new ImageData(this))
{
    if (!m_colorCamera)
        throw std::runtime_error("Invalid ColorCamera");
    setRecordFrameRate(rgbVideoRate);
}

RgbData::~RgbData()
{
    m_colorCamera->unregisterCallback(m_callbackId);
    m_colorCamera->unregisterCallback2(m_callback2Id);
    m_running = !m_colorCamera->stop();
    m_running2 = !m_colorCamera->stopCamera(secondCamera);
    m_callbacks.close();
}

ImageData *RgbData::image() const
{
    return m_image;
}

ImageData *RgbData::image2() const
{
    return m_image2.load(relaxed);
}

void RgbData::setImage2(ImageData *image2)
{
    if (m_image2.exchange(image2, relaxed) == image2)
        return;
    if (image2)
        connect(image2, &QObject::destroyed, this, [this, image2] {
            ImageData *gone = image2;
            m_image2.compare_exchange_strong(gone, nullptr, relaxed);
        });
    emit image2Changed();
}

int RgbData::framerate() const
{
    return m_framerate;
}

int RgbData::mode() const
{
    return m_mode;
}

int RgbData::resolution() const
{
    return m_resolution;
}

bool RgbData::isEnable() const
{
    return m_isEnable;
}

bool RgbData::isEnable2() const
{
    return m_isEnable2;
}

void RgbData::setIsEnable2(bool isEnable2)
{
    if (isEnable2 == m_isEnable2)
        return;
    m_isEnable2 = isEnable2;
    emit isEnable2Changed();
}

bool RgbData::isRunning() const
{
    return m_running;
}

QImage RgbData::toImage() const
{
    const ImageData::Frame frame = m_image->frame();
    QImage image(frame.width, frame.height, QImage::Format_RGB888);
    switch (frame.type) {
    case ImageData::YUYV:
    case ImageData::YUV420p:
        return !image.isNull() && yuvToRgb(frame, image.bits(), image.bytesPerLine()) ? image : QImage();
    case ImageData::JPEG:
        image.loadFromData(frame.data.get(), frame.data ? frame.dataSize : 0, "JPG");
        return image;
    default:
        return image;
    }
}

cv::Mat RgbData::toMat() const
try {
    const ImageData::Frame frame = m_image->frame();
    switch (frame.type) {
    case ImageData::YUYV:
    case ImageData::YUV420p:
        return convertedYuv(frame);
    case ImageData::JPEG:
        return decodedJpeg(frame);
    default:
        return frame.width > 0 && frame.height > 0 ? cv::Mat(frame.height, frame.width, CV_8UC3, cv::Scalar())
                                                   : cv::Mat();
    }
} catch (const cv::Exception &) {
    return {};
}

QJsonValue RgbData::calibrationJson() const
{
    return calibrationJsonOf(m_colorCamera.get());
}

void RgbData::setFramerate(int framerate)
{
    if (framerate == m_framerate)
        return;
    m_framerate = framerate;
    emit framerateChanged(framerate);
    qDebug() << "Set framerate to" << framerate;
    if (m_colorCamera->setFramerate(float(framerate)))
        setRecordFrameRate(framerate);
}

void RgbData::setMode(int mode)
{
    if (mode == m_mode)
        return;
    m_mode = mode;
    emit modeChanged(mode);
}

void RgbData::setResolution(int resolution)
{
    if (resolution == m_resolution)
        return;
    m_resolution = resolution;
    emit resolutionChanged(resolution);
    if (resolution >= 0 && resolution <= lastResolution)
        m_colorCamera->setResolution(resolution);
}

bool RgbData::save(QString path)
{
    if (!m_running)
        return false;
    const QImage image = toImage();
    if (!image.isNull())
        image.save(path, nullptr, -1);
    return m_running;
}

bool RgbData::startOrStop(bool isStart)
{
    if (isStart && !m_running) {
        registerFirst();
        m_heldOpen = true;
        return m_colorCamera->start();
    }
    if (!isStart && m_running) {
        m_heldOpen = false;
        return true;
    }
    return false;
}

void RgbData::control(bool enable, int camIndex)
{
    if (camIndex == 0)
        controlFirst(enable);
    else if (camIndex == secondCamera)
        controlSecond(enable);
}

void RgbData::setViewSize(int w, int h)
{
    m_image->setViewerSize(w, h);
}

void RgbData::setView2Size(int w, int h)
{
    if (ImageData *second = image2())
        second->setViewerSize(w, h);
}

void RgbData::setRGBMode(int mode)
{
    m_colorCamera->setRgbMode(mode);
}

void RgbData::setRGBDistance(int distance)
{
    m_colorCamera->setRgbDistance(distance);
}

void RgbData::registerFirst()
{
    m_callbackId = m_colorCamera->registerCallback(
        m_callbacks.wrap([this](const qv::ColorImage &frame) { takeFrame(frame); }));
}

void RgbData::unregisterFirst()
{
    if (m_callbackId == -1)
        return;
    m_colorCamera->unregisterCallback(m_callbackId);
    m_callbackId = -1;
}

void RgbData::unregisterSecond()
{
    if (m_callback2Id == -1)
        return;
    m_colorCamera->unregisterCallback2(m_callback2Id);
    m_callback2Id = -1;
}

void RgbData::controlFirst(bool enable)
{
    if (!enable && m_heldOpen)
        return;
    unregisterFirst();
    if (enable) {
        registerFirst();
        m_colorCamera->start();
    } else {
        m_colorCamera->stop();
    }
    m_isEnable = false;
    emit isEnableChanged(false);
    QThread::msleep(settleMs);
    m_isEnable = true;
    emit isEnableChanged(true);
    m_running = enable;
    emit rgbRunning(enable ? RgbStarted : RgbStopped);
}

void RgbData::controlSecond(bool enable)
{
    unregisterSecond();
    if (enable) {
        m_callback2Id = m_colorCamera->registerCallback2(
            m_callbacks.wrap([this](const qv::ColorImage &frame) { takeSecondFrame(frame); }));
        m_colorCamera->startCamera(secondCamera);
    } else {
        m_colorCamera->stopCamera(secondCamera);
    }
    setIsEnable2(false);
    QThread::msleep(settleMs);
    setIsEnable2(true);
    m_running2 = enable;
    emit rgbRunning(enable ? RgbStarted : RgbStopped);
}

void RgbData::takeFrame(const qv::ColorImage &frame)
{
    tick();
    show(m_image, frame);
}

void RgbData::takeSecondFrame(const qv::ColorImage &frame)
{
    tick2();
    show(image2(), frame);
}

void RgbData::show(ImageData *image, const qv::ColorImage &frame)
{
    const auto type = typeOf(frame.codec);
    constexpr unsigned int most = std::numeric_limits<int>::max();
    if (!type || !isCarriable(frame.width, frame.height, 3) || frame.dataSize > most)
        return;
    if (image) {
        image->setType(*type);
        image->set(int(frame.width), int(frame.height), frame.data, int(frame.dataSize));
    }
    setSourceWidth(int(frame.width));
    setSourceHeight(int(frame.height));
    // Both cameras append what the first one shows.
    if (recording())
        writeFrame();
}
