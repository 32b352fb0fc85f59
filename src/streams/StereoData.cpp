#include "streams/StereoData.h"

#include "device/DeviceAccess.h"
#include "imaging/Relaxed.h"
#include "streams/CalibrationJson.h"
#include "streams/FrameSize.h"
#include "streams/Timing.h"
#include "streams/Truncate.h"

#include <QDebug>
#include <QTimer>
#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {

constexpr int cameraCount = 4;
constexpr int initialUvcMode = 2;

template <class Descriptor>
QVector<QPoint> pointsOf(const Descriptor &descriptor)
{
    QVector<QPoint> points;
    if (!descriptor.data)
        return points;
    points.reserve(int(descriptor.size));
    const float *pair = descriptor.data.get();
    for (unsigned int i = 0; i < descriptor.size; ++i, pair += 2)
        points.append({truncated(pair[0]), truncated(pair[1])});
    return points;
}

} // namespace

StereoData::StereoData(QObject *parent)
    : QObject(parent)
{
    makeImages();
    startTimer();
}

StereoData::StereoData(std::shared_ptr<qv::FisheyeCameras> fisheyeCameras, QObject *parent)
    : QObject(parent)
    , m_fisheyeCameras(std::move(fisheyeCameras))
{
    makeImages();
    if (!m_fisheyeCameras)
        throw std::runtime_error("Invalid FisheyeCameras");
    const auto cameras = camerasEx();
    sendUvcMode(initialUvcMode);
    if (cameras)
        registerKeyPoints(*cameras);
    else
        qCritical() << "No cam_ex";
    registerImages();
    m_fisheyeCameras->stop();
    startTimer();
}

StereoData::~StereoData()
{
    unregisterImages();
    unregisterKeyPoints();
    m_callbacks.close();
}

int StereoData::gain() const
{
    return m_gain;
}

int StereoData::brightness() const
{
    return m_brightness;
}

bool StereoData::autoExposure() const
{
    return m_autoExposure;
}

int StereoData::mode() const
{
    return m_mode;
}

int StereoData::count() const
{
    return m_count.load(relaxed);
}

int StereoData::dataFrameRate() const
{
    return m_frameCount.load(relaxed);
}

int StereoData::width() const
{
    return m_width.load(relaxed);
}

int StereoData::height() const
{
    return m_height.load(relaxed);
}

QObject *StereoData::image(Image img) const
{
    return fisheye(img);
}

bool StereoData::setImageRecordPath(int index, QString path)
{
    FisheyeData *image = fisheye(index);
    if (image)
        image->setRecordPath(path);
    return image;
}

bool StereoData::setImageRecording(int index, bool recording)
{
    FisheyeData *image = fisheye(index);
    if (image)
        image->setRecording(recording);
    return image;
}

bool StereoData::saveImage(int index, QString path)
{
    FisheyeData *image = fisheye(index);
    return image && image->save(path);
}

QJsonValue StereoData::calibrationJson() const
{
    return calibrationJsonOf(m_fisheyeCameras.get());
}

std::vector<qv::CalibrationEx> StereoData::calibrationsAtCalibrationResolution() const
{
    const auto cameras = camerasEx();
    return cameras ? cameras->calibrationsAtCalibrationResolution() : std::vector<qv::CalibrationEx>();
}

std::vector<qv::CalibrationEx> StereoData::calibrationsAtCurrentResolution() const
{
    const auto cameras = camerasEx();
    return cameras ? cameras->calibrationsAtCurrentResolution() : std::vector<qv::CalibrationEx>();
}

void StereoData::setGain(int gain)
{
    if (gain == m_gain)
        return;
    m_gain = gain;
    emit gainChanged(gain);
    sendExposure();
}

void StereoData::setBrightness(int brightness)
{
    if (brightness == m_brightness)
        return;
    m_brightness = brightness;
    emit brightnessChanged(brightness);
    sendExposure();
}

void StereoData::setAutoExposure(bool autoExposure)
{
    if (autoExposure == m_autoExposure)
        return;
    m_autoExposure = autoExposure;
    emit autoExposureChanged(autoExposure);
    sendExposure();
}

void StereoData::setFeFrameRate(float frameRate)
{
    if (m_fisheyeCameras)
        m_fisheyeCameras->setFramerate(frameRate);
}

void StereoData::setMode(int mode)
{
    if (mode == m_mode)
        return;
    m_mode = mode;
    emit modeChanged(mode);
    sendUvcMode(mode);
    if (mode == 0)
        clearPictures();
}

void StereoData::setCount(int count)
{
    if (m_count.exchange(count, relaxed) != count)
        emit countChanged(count);
}

void StereoData::setFrameRate(int frameRate)
{
    m_frameCount.store(frameRate, relaxed);
    emit dataFrameRateChanged(frameRate);
}

bool StereoData::setResolution(int resolutionMode)
{
    const auto cameras = camerasEx();
    const bool accepted = cameras && cameras->setResolution(resolutionMode);
    if (!accepted)
        qDebug() << "set stereo resolution failed";
    return accepted;
}

void StereoData::control(bool enable)
{
    if (enable) {
        qDebug() << "StereoData::control start....................";
        const auto cameras = camerasEx();
        registerImages();
        if (cameras)
            registerKeyPoints(*cameras);
        else
            qCritical() << "No cam_ex";
        if (m_fisheyeCameras)
            m_fisheyeCameras->start();
    } else {
        qDebug() << "StereoData::control stop....................";
        unregisterImages();
        unregisterKeyPoints();
        if (m_fisheyeCameras)
            m_fisheyeCameras->stop();
    }
    m_running.store(enable, relaxed);
}

void StereoData::registerFisheyeCameras(bool enable)
{
    if (enable)
        registerImages();
    else if (!m_running.load(relaxed))
        unregisterImages();
}

void StereoData::setViewSize(int w, int h)
{
    for (const auto &[key, image] : m_images)
        image->setViewSize(w, h);
}

void StereoData::makeImages()
{
    for (int key = 0; key < cameraCount; ++key)
        m_images.emplace(key, new FisheyeData(this));
}

void StereoData::startTimer()
{
    m_timer = new QTimer(this);
    m_timer->setInterval(rateIntervalMs);
    connect(m_timer, &QTimer::timeout, this, &StereoData::reportFrameRate);
    m_timer->start();
}

std::shared_ptr<qv::FisheyeCamerasEx> StereoData::camerasEx() const
{
    return std::dynamic_pointer_cast<qv::FisheyeCamerasEx>(m_fisheyeCameras);
}

FisheyeData *StereoData::fisheye(int index) const
{
    const auto found = m_images.find(index);
    return found == m_images.end() ? nullptr : found->second;
}

void StereoData::sendExposure()
{
    if (m_fisheyeCameras)
        m_fisheyeCameras->setExposure(m_autoExposure ? 0 : 1, m_gain, float(m_brightness));
}

void StereoData::sendUvcMode(int mode)
{
    if (const auto device = DeviceAccess::deviceEx(this))
        device->setUvcMode(mode);
}

void StereoData::registerImages()
{
    if (!m_fisheyeCameras || m_imagesCallbackId != -1)
        return;
    m_imagesCallbackId = m_fisheyeCameras->registerCallback(
        m_callbacks.wrap([this](const qv::FisheyeImages &images) { takeImages(images); }));
}

void StereoData::unregisterImages()
{
    if (!m_fisheyeCameras || m_imagesCallbackId == -1)
        return;
    m_fisheyeCameras->unregisterCallback(m_imagesCallbackId);
    m_imagesCallbackId = -1;
}

void StereoData::registerKeyPoints(qv::FisheyeCamerasEx &cameras)
{
    if (m_keyPoints2CallbackId == -1)
        m_keyPoints2CallbackId = cameras.registerKeyPoints2Callback(m_callbacks.wrap(
            [this](const qv::FisheyeKeyPoints<2, 32> &keyPoints) { takeKeyPoints(keyPoints); }));
    if (m_keyPoints4CallbackId == -1)
        m_keyPoints4CallbackId = cameras.registerKeyPoints4Callback(m_callbacks.wrap(
            [this](const qv::FisheyeKeyPoints<4, 32> &keyPoints) { takeKeyPoints(keyPoints); }));
}

void StereoData::unregisterKeyPoints()
{
    const auto cameras = camerasEx();
    if (cameras && m_keyPoints2CallbackId != -1)
        cameras->unregisterKeyPoints2Callback(m_keyPoints2CallbackId);
    if (cameras && m_keyPoints4CallbackId != -1)
        cameras->unregisterKeyPoints4Callback(m_keyPoints4CallbackId);
    m_keyPoints2CallbackId = -1;
    m_keyPoints4CallbackId = -1;
}

void StereoData::clearPictures()
{
    for (const auto &[key, image] : m_images)
        image->setImageAndPoints(0, 0, nullptr, 0, {});
}

void StereoData::reportFrameRate()
{
    emit dataFrameRateChanged(m_frameCount.load(relaxed));
    m_frameCount.store(0, relaxed);
}

void StereoData::takeImages(const qv::FisheyeImages &images)
{
    m_frameCount.fetch_add(1, relaxed);
    if (images.images.empty())
        throw std::runtime_error("invalid vector<T> subscript");
    if (const qv::FisheyeImage &first = images.images[0]; isCarriable(first.width, first.height, 1)) {
        const int width = int(first.width);
        const int height = int(first.height);
        if (m_width.exchange(width, relaxed) != width)
            emit widthChanged(width);
        if (m_height.exchange(height, relaxed) != height)
            emit heightChanged(height);
    }
    const int count = int(images.images.size());
    for (int i = 0; i < std::min(count, cameraCount); ++i) {
        const qv::FisheyeImage &image = images.images[std::size_t(i)];
        if (isCarriable(image.width, image.height, 1))
            fisheye(i)->setImage(
                int(image.width), int(image.height), image.data, int(image.width * image.height));
    }
    setCount(count);
}

template <std::size_t N>
void StereoData::takeKeyPoints(const qv::FisheyeKeyPoints<N, 32> &keyPoints)
{
    const qv::FisheyeKeyPoints<N, 32> own = keyPoints;
    for (std::size_t i = 0; i < N; ++i) {
        if (FisheyeData *image = fisheye(int(i)))
            image->setPoints(pointsOf(own.descriptors[i]));
    }
}
