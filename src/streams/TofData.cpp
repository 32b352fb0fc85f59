#include "streams/TofData.h"

#include "device/qv/Library.h"
#include "imaging/Relaxed.h"
#include "streams/CalibrationJson.h"
#include "streams/FrameSize.h"
#include "streams/Timing.h"
#include "streams/TofPictures.h"
#include "streams/Truncate.h"

#include <QDebug>
#include <QThread>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <utility>

namespace {

constexpr int tofVideoRate = 15;
constexpr unsigned long workModeMs = 500;
constexpr int pcdPrecision = 8;

enum TofFrame { Millimetres = 0, Metres = 1, Infrared = 2 };
enum TofRunning { TofStarted = 0, TofStopped = 1 };

/// The sensor's work modes, by mode and frequency.
constexpr int workModes[3][2] = {{1, 0}, {3, 2}, {5, 4}};

// One count for all streams of the program, as there is one eye to read them.
EveryTwentieth averageMillimetres;
EveryTwentieth averageMetres;

} // namespace

TofData::TofData(std::shared_ptr<qv::TofCamera> tof, QObject *parent)
    : AbstractImageData(true, parent)
    , m_tof(std::move(tof))
    , m_image(new ImageData(this))
{
    setRecordFrameRate(tofVideoRate);
    m_image->setType(ImageData::Float);
    if (!m_tof)
        throw std::runtime_error("Invalid TofCamera");
    m_tof->setStreamMode(0);
    setManufacturer(m_tof->manufacturer());
}

TofData::~TofData()
{
    m_tof->unregisterCallback(m_callbackId);
    m_running = !m_tof->stop();
    m_callbacks.close();
}

ImageData *TofData::image() const
{
    return m_image;
}

int TofData::framerate() const
{
    return m_framerate;
}

double TofData::maxDistance() const
{
    return m_maxDistance.load(relaxed);
}

double TofData::minDistance() const
{
    return m_minDistance.load(relaxed);
}

bool TofData::pixelShow() const
{
    return m_pixelShow.load(relaxed);
}

void TofData::setPixelShow(bool isShow)
{
    m_pixelShow.store(isShow, relaxed);
    emit pixelShowChanged(isShow);
}

int TofData::depth() const
{
    return m_depth.load(relaxed);
}

int TofData::centerAvgPx() const
{
    return m_centerAvgPx.load(relaxed);
}

int TofData::manufacturer() const
{
    return m_manufacturer;
}

void TofData::setManufacturer(int manufacturer)
{
    if (manufacturer == m_manufacturer)
        return;
    m_manufacturer = manufacturer;
    emit manufacturerChanged();
}

bool TofData::isRunning() const
{
    return m_running.load(relaxed);
}

void TofData::setObjectX(int x)
{
    m_objectX.store(x, relaxed);
}

void TofData::setObjectY(int y)
{
    m_objectY.store(y, relaxed);
}

int TofData::objectDepth() const
{
    return m_objectDepth.load(relaxed);
}

QImage TofData::toImage() const
try {
    cv::Mat picture = toMat();
    if (picture.empty())
        return {};
    cv::cvtColor(picture, picture, cv::COLOR_BGR2RGB);
    return QImage(picture.data, picture.cols, picture.rows, int(picture.step), QImage::Format_RGB888).copy();
} catch (const cv::Exception &) {
    return {};
}

cv::Mat TofData::toMat() const
try {
    return depthPicture(m_image->frame(), minDistance(), maxDistance());
} catch (const cv::Exception &) {
    return {};
}

QJsonValue TofData::calibrationJson() const
{
    return calibrationJsonOf(m_tof.get());
}

void TofData::control(bool enable)
{
    if (enable) {
        unregisterFrames();
        registerFrames();
        RefreshSonyTofSetting();
        m_tof->start();
    } else {
        if (m_keepRunning)
            return;
        unregisterFrames();
        m_tof->unregisterCallback(-1);
        m_tof->stop();
    }
    settle(enable);
}

bool TofData::isEnable() const
{
    return m_isEnable.load(relaxed);
}

bool TofData::setDistanceMode(int distanceMode)
{
    const bool accepted = m_tof->setDistanceMode(distanceMode);
    if (!accepted)
        qDebug() << "setDistanceMode failed";
    return accepted;
}

bool TofData::setLibWorkMode(int workMode)
{
    const bool accepted = m_tof->setLibWorkMode(workMode);
    QThread::msleep(workModeMs);
    if (!accepted)
        qDebug() << "setLibWorkMode failed";
    return accepted;
}

bool TofData::RefreshSonyTofSetting()
{
    const bool accepted = m_tof->setSonyTofSetting(m_workMode, m_resolution, m_fps);
    if (!accepted)
        qDebug() << "setSonyTofSetting failed";
    return accepted;
}

void TofData::setX(int x)
{
    m_x.store(x, relaxed);
}

void TofData::setY(int y)
{
    m_y.store(y, relaxed);
}

void TofData::setViewSize(int w, int h)
{
    m_image->setViewerSize(w, h);
}

void TofData::setCenterAvgX(int x)
{
    m_centerAvgX.store(x, relaxed);
}

void TofData::setCenterAvgY(int y)
{
    m_centerAvgY.store(y, relaxed);
}

void TofData::setCenterAvgWidth(int width)
{
    m_centerAvgWidth.store(width, relaxed);
}

void TofData::setCenterAvgHeight(int height)
{
    m_centerAvgHeight.store(height, relaxed);
}

void TofData::setEnableCenterAvgPx(bool enable)
{
    m_enableCenterAvgPx.store(enable, relaxed);
}

void TofData::setTofIrGamma(double gamma)
{
    m_tof->setTofIrGamma(gamma);
}

void TofData::setFramerate(int framerate)
{
    if (framerate == m_framerate)
        return;
    m_framerate = framerate;
    emit framerateChanged(framerate);
    if (m_tof->setFramerate(float(framerate)))
        setRecordFrameRate(m_framerate);
}

void TofData::setMaxDistance(double maxDistance)
{
    m_maxDistance.store(maxDistance, relaxed);
    emit maxDistanceChanged(maxDistance);
}

void TofData::setMinDistance(double minDistance)
{
    m_minDistance.store(minDistance, relaxed);
    emit minDistanceChanged(minDistance);
}

int TofData::mode() const
{
    return m_mode;
}

int TofData::frequency() const
{
    return m_frequency;
}

int TofData::resolution() const
{
    return m_resolution;
}

int TofData::fps() const
{
    return m_fps;
}

void TofData::setMode(int mode)
{
    if (mode == m_mode)
        return;
    m_mode = mode;
    updateWorkMode();
    RefreshSonyTofSetting();
}

void TofData::setFrequency(int frequency)
{
    if (frequency == m_frequency)
        return;
    m_frequency = frequency;
    updateWorkMode();
    RefreshSonyTofSetting();
}

void TofData::setResolution(int resolution)
{
    if (resolution == m_resolution)
        return;
    m_resolution = resolution;
    RefreshSonyTofSetting();
}

void TofData::setFps(int fps)
{
    if (fps == m_fps)
        return;
    m_fps = fps;
    RefreshSonyTofSetting();
}

bool TofData::startOrStop(bool isStart)
{
    const bool wasRunning = isRunning();
    if (!isStart) {
        if (wasRunning)
            m_keepRunning = false;
        return wasRunning;
    }
    if (wasRunning)
        return false;
    registerFrames();
    RefreshSonyTofSetting();
    m_running.store(true, relaxed);
    m_keepRunning = true;
    return m_tof->start();
}

void TofData::savePcd(QString path)
{
    const std::lock_guard lock(m_pcdMutex);
    m_pcdPath = path;
    m_savePcdRequested.store(true, relaxed);
}

bool TofData::save(QString path)
{
    const bool wasRunning = isRunning();
    if (wasRunning) {
        const QImage image = toImage();
        if (!image.isNull())
            image.save(path);
    }
    return wasRunning;
}

void TofData::registerFrames()
{
    m_callbackId = m_tof->registerCallback(
        m_callbacks.wrap([this](const qv::DepthImage &frame) { onDepthImage(frame); }));
}

void TofData::unregisterFrames()
{
    if (m_callbackId != -1)
        m_tof->unregisterCallback(std::exchange(m_callbackId, -1));
}

void TofData::settle(bool running)
{
    m_isEnable.store(false, relaxed);
    QThread::msleep(settleMs);
    m_running.store(running, relaxed);
    m_isEnable.store(true, relaxed);
    emit tofRunning(running ? TofStarted : TofStopped);
}

void TofData::updateWorkMode()
{
    if (m_mode >= 0 && m_mode < 3 && m_frequency >= 0 && m_frequency < 2)
        m_workMode = workModes[m_mode][m_frequency];
}

PixelBox TofData::box() const
{
    return {m_centerAvgX.load(relaxed), m_centerAvgY.load(relaxed), m_centerAvgWidth.load(relaxed),
        m_centerAvgHeight.load(relaxed)};
}

bool TofData::isDamaged(const qv::DepthImage &frame)
{
    switch (frame.type) {
    case Millimetres:
        return !isWhole(frame, sizeof(std::int16_t));
    case Metres:
        return !isWhole(frame, sizeof(float));
    case Infrared:
        return !isCarriable(frame.width, frame.height, sizeof(float));
    default:
        return false;
    }
}

void TofData::onDepthImage(const qv::DepthImage &frame)
{
    // A damaged frame is as none: whoever waits for a point cloud gets that of the next one.
    if (isDamaged(frame))
        return;
    if (m_savePcdRequested.exchange(false, relaxed) && (frame.type == Millimetres || frame.type == Metres))
        savePointCloud(frame);
    switch (frame.type) {
    case Millimetres:
        takeMillimetres(frame);
        break;
    case Metres:
        takeMetres(frame);
        break;
    case Infrared:
        break;
    default:
        qDebug() << "The viewer does not support this ToF image format";
        return;
    }
    setSourceWidth(int(frame.width));
    setSourceHeight(int(frame.height));
    if (recording())
        writeFrame();
}

void TofData::savePointCloud(const qv::DepthImage &frame)
{
    std::unique_lock lock(m_pcdMutex);
    const std::string path = m_pcdPath.toLocal8Bit().toStdString();
    lock.unlock();
    qv::savePointCloudToPcd(path, m_tof->depthImageToPointCloud(frame), pcdPrecision, true);
}

void TofData::takeMillimetres(const qv::DepthImage &frame)
{
    tick();
    const int width = int(frame.width), height = int(frame.height);
    const std::size_t count = frame.width * frame.height;
    const auto metres = m_buffers.take(count * sizeof(float));
    millimetresToMetres(frame.data.get(), count, reinterpret_cast<float *>(metres.get()));

    const DepthSamples<std::int16_t> samples(frame.data.get(), width, height);
    // Both read one pixel to the left of the one they name.
    if (m_pixelShow.load(relaxed))
        reportDepth(
            samples.at(pixelIndex(m_x.load(relaxed), m_y.load(relaxed), width) - 1).value_or(depth()));
    const auto object = samples.at(pixelIndex(m_objectX.load(relaxed), m_objectY.load(relaxed), width) - 1);
    if (object)
        m_objectDepth.store(*object, relaxed);
    if (m_enableCenterAvgPx.load(relaxed) && averageMillimetres())
        reportAverage(samples.mean<std::int64_t>(box(), 1));
    m_image->set(width, height, metres, height * width * int(sizeof(float)));
}

void TofData::takeMetres(const qv::DepthImage &frame)
{
    tick();
    const int width = int(frame.width), height = int(frame.height);
    m_image->set(width, height, frame.data, height * width * int(sizeof(float)));

    const DepthSamples<float> samples(frame.data.get(), width, height);
    if (m_pixelShow.load(relaxed)) {
        const auto metres = samples.at(pixelIndex(m_x.load(relaxed), m_y.load(relaxed), width) - 1);
        reportDepth(metres ? truncated(*metres * 1000.0F) : depth());
    }
    if (m_enableCenterAvgPx.load(relaxed) && averageMetres())
        reportAverage(samples.mean<double>(box(), 1000.0));
}

void TofData::reportDepth(int depth)
{
    m_depth.store(depth, relaxed);
    emit depthChanged(depth);
}

void TofData::reportAverage(double average)
{
    m_centerAvgPx.store(truncated(average), relaxed);
    emit centerAvgPxChanged(centerAvgPx());
}
