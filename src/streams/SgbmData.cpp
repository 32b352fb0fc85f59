#include "streams/SgbmData.h"

#include "imaging/Relaxed.h"
#include "streams/FrameSize.h"
#include "streams/Timing.h"
#include "streams/Truncate.h"

#include <QDebug>
#include <QImage>
#include <QThread>
#include <QTimer>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <utility>

namespace {

constexpr unsigned int zeroDepthInterval = 30;
constexpr double pi = 3.14159265358979323846;
// Of the range that a stereo pair can see: not those of the settings.
constexpr double halfFieldOfView = 48.0 * pi / 180.0;
constexpr double rangeBaseline = 0.08;

enum SgbmFrame { Disparity = 0, Depth = 1 };

// One count for all streams of the program, as there is one eye to read them.
EveryTwentieth averageDepth;

unsigned short to16Bits(int value)
{
    return static_cast<unsigned short>(value);
}

} // namespace

SgbmData::SgbmData(qv::Vsc *vsc, QObject *parent)
    : QObject(parent)
    , m_image(new ImageData(this))
    , m_vsc(vsc)
{
    m_image->setType(ImageData::Float);
    if (!m_vsc)
        throw std::runtime_error("Invalid VSC");
    m_maxDistance.store(m_config.maxDistance, relaxed);
    m_minDistance.store(m_config.minDistance, relaxed);
    m_frameTimer = new QTimer(this);
    m_frameTimer->setInterval(rateIntervalMs);
    connect(m_frameTimer, &QTimer::timeout, this, &SgbmData::reportFrameRate);
    m_frameTimer->start();
}

SgbmData::~SgbmData()
{
    unregisterFrames();
    m_callbacks.close();
}

ImageData *SgbmData::image() const
{
    return m_image;
}

int SgbmData::depth() const
{
    return m_depth.load(relaxed);
}

int SgbmData::frameRate() const
{
    return m_frameRate;
}

int SgbmData::centerAvgPx() const
{
    return m_centerAvgPx.load(relaxed);
}

bool SgbmData::pixelShow() const
{
    return m_pixelShow;
}

void SgbmData::setPixelShow(bool isShow)
{
    m_pixelShow = isShow;
    emit pixelShowChanged(isShow);
}

int SgbmData::width() const
{
    return m_width;
}

int SgbmData::height() const
{
    return m_height;
}

bool SgbmData::isEnable() const
{
    return m_isEnable;
}

int SgbmData::viewWidth() const
{
    return m_viewWidth;
}

int SgbmData::viewHeight() const
{
    return m_viewHeight;
}

int SgbmData::resolution() const
{
    return m_resolution;
}

void SgbmData::setResolution(int resolution)
{
    if (resolution == m_resolution)
        return;
    m_resolution = resolution;
    emit resolutionChanged();
}

int SgbmData::colorIndex() const
{
    return m_colorIndex.load(relaxed);
}

void SgbmData::setColorIndex(int colorIndex)
{
    if (m_colorIndex.exchange(colorIndex, relaxed) != colorIndex)
        emit colorIndexChanged();
}

bool SgbmData::isRunning() const
{
    return m_running.load(relaxed);
}

void SgbmData::setObjectX(int x)
{
    m_objectX.store(x, relaxed);
}

void SgbmData::setObjectY(int y)
{
    m_objectY.store(y, relaxed);
}

int SgbmData::objectDepth() const
{
    return m_objectDepth.load(relaxed);
}

bool SgbmData::save(QString path)
{
    if (!isRunning())
        return false;
    const ImageData::Frame frame = m_image->frame();
    if (!frame.data || qint64(frame.width) * frame.height > frame.dataSize)
        return false;
    return QImage(frame.data.get(), frame.width, frame.height, frame.width, QImage::Format_Grayscale8)
        .copy()
        .save(path);
}

template <class Change>
void SgbmData::resend(Change change)
{
    m_vsc->stop();
    change(m_config);
    m_vsc->start(m_config);
}

void SgbmData::reset()
{
    resend([](qv::SgbmConfig &) {});
}

void SgbmData::setSource(QString string)
{
    resend([&](qv::SgbmConfig &config) { config.source = string == QLatin1String("HW") ? 0 : 1; });
}

void SgbmData::setEnableDewarp(bool enable)
{
    resend([&](qv::SgbmConfig &config) { config.enableDewarp = enable ? 1 : 0; });
}

void SgbmData::setZoomFactor(float zoom_factor)
{
    resend([&](qv::SgbmConfig &config) { config.dewarpZoomFactor = zoom_factor; });
}

void SgbmData::setBaseline(float baseline)
{
    resend([&](qv::SgbmConfig &config) { config.baseline = baseline; });
}

void SgbmData::setFOV(float fov)
{
    resend([&](qv::SgbmConfig &config) { config.fov = fov; });
}

void SgbmData::setMaxDisparity(uchar max_disparity)
{
    resend([&](qv::SgbmConfig &config) { config.maxDisparity = max_disparity; });
}

void SgbmData::setMaxDistance(int maxDistance)
{
    resend([&](qv::SgbmConfig &config) {
        config.maxDistance = to16Bits(maxDistance);
        m_maxDistance.store(config.maxDistance, relaxed);
    });
}

void SgbmData::setMinDistance(int minDistance)
{
    resend([&](qv::SgbmConfig &config) {
        config.minDistance = to16Bits(minDistance);
        m_minDistance.store(config.minDistance, relaxed);
    });
}

void SgbmData::setDepth(bool isDepth)
{
    m_isDepth.store(isDepth, relaxed);
}

void SgbmData::setEnableFillHoles(bool isFillHoles)
{
    m_fillHoles.store(isFillHoles, relaxed);
}

void SgbmData::setEnableCenterAvgPx(bool isCenterAvgPx)
{
    m_enableCenterAvgPx.store(isCenterAvgPx, relaxed);
}

void SgbmData::setX(int x)
{
    m_x.store(x, relaxed);
    emit xChanged(x);
}

void SgbmData::setY(int y)
{
    m_y.store(y, relaxed);
    emit yChanged(y);
}

void SgbmData::setHoleSize(int holeSize)
{
    m_holeSize.store(holeSize, relaxed);
}

void SgbmData::setHoleMin(int holeMin)
{
    m_holeMin.store(to16Bits(holeMin), relaxed);
}

void SgbmData::setHoleMax(int holeMax)
{
    m_holeMax.store(to16Bits(holeMax), relaxed);
}

void SgbmData::setCenterAvgWidth(int width)
{
    m_centerAvgWidth.store(width, relaxed);
}

void SgbmData::setCenterAvgHeight(int height)
{
    m_centerAvgHeight.store(height, relaxed);
}

void SgbmData::setCenterAvgX(int x)
{
    m_centerAvgX.store(x, relaxed);
}

void SgbmData::setCenterAvgY(int y)
{
    m_centerAvgY.store(y, relaxed);
}

void SgbmData::control(bool enable)
{
    unregisterFrames();
    if (enable) {
        m_callbackId = m_vsc->registerCallback(
            m_callbacks.wrap([this](const qv::SgbmImage &frame) { takeFrame(frame); }));
        m_vsc->start(m_config);
        setResolution(m_vsc->resolution());
    } else {
        m_vsc->stop();
    }
    settle(enable);
}

void SgbmData::setViewSize(int w, int h)
{
    m_viewHeight = h / 2;
    m_viewWidth = w / 3;
    emit viewWidthChanged(m_viewWidth);
    emit viewHeightChanged(m_viewHeight);
    m_image->setViewerSize(w, h);
}

bool SgbmData::setSgbmResolution(int resolution)
{
    if (resolution == m_resolution)
        return true;
    m_resolution = resolution;
    const bool accepted = m_vsc->setResolution(resolution);
    if (!accepted)
        qDebug() << "set sgbm resolution failed";
    return accepted;
}

void SgbmData::unregisterFrames()
{
    if (m_callbackId != -1)
        m_vsc->unregisterCallback(std::exchange(m_callbackId, -1));
}

void SgbmData::settle(bool running)
{
    m_isEnable = false;
    emit isEnableChanged(false);
    QThread::msleep(settleMs);
    m_isEnable = true;
    emit isEnableChanged(true);
    m_running.store(running, relaxed);
}

void SgbmData::reportFrameRate()
{
    m_frameRate = m_frameCount.exchange(0, relaxed);
    emit frameRateChanged(m_frameRate);
}

DepthRange SgbmData::range(int width) const
{
    const double seen = width / (2 * std::tan(halfFieldOfView)) * rangeBaseline;
    return {m_minDistance.load(relaxed) / 1000.0, std::min(m_maxDistance.load(relaxed) / 1000.0, seen)};
}

PixelBox SgbmData::box() const
{
    return {m_centerAvgX.load(relaxed), m_centerAvgY.load(relaxed), m_centerAvgWidth.load(relaxed),
        m_centerAvgHeight.load(relaxed)};
}

void SgbmData::takeFrame(const qv::SgbmImage &frame)
{
    if (frame.width == 0 || frame.height == 0)
        return;
    if (m_isDepth.load(relaxed)) {
        if (frame.type == Depth && isWhole(frame, sizeof(unsigned short))
            && isCarriable(frame.width, frame.height, 3))
            onDepthFrame(frame);
    } else if (frame.type == Disparity && isWhole(frame, 1) && isCarriable(frame.width, frame.height, 3)) {
        onDisparityFrame(frame);
    }
}

void SgbmData::onDepthFrame(const qv::SgbmImage &frame)
{
    m_frameCount.fetch_add(1, relaxed);
    const int width = int(frame.width), height = int(frame.height);
    const qv::SgbmImage filled = withoutHoles(frame);
    const DepthSamples<unsigned short> samples(filled.data.get(), width, height);
    if (const auto object = samples.at(pixelIndex(m_objectX.load(relaxed), m_objectY.load(relaxed), width)))
        m_objectDepth.store(*object, relaxed);
    readDepth(samples, width);
    m_image->setType(ImageData::Color);
    if (m_enableCenterAvgPx.load(relaxed) && averageDepth()) {
        m_centerAvgPx.store(truncated(samples.mean<std::int64_t>(box(), 1)), relaxed);
        emit centerAvgPxChanged(centerAvgPx());
    }
    // The size is that of the samples, not that of the colours: those who draw colours don't ask for it.
    m_image->set(width, height, coloured(filled), width * height * 2);
}

void SgbmData::onDisparityFrame(const qv::SgbmImage &frame)
{
    m_frameCount.fetch_add(1, relaxed);
    ImageData::Buffer buffer;
    try {
        const auto picture = std::make_shared<cv::Mat>(disparityPicture(frame, m_config.mode));
        buffer = ImageData::Buffer(picture, picture->data);
    } catch (const cv::Exception &) {
        // Shown as an empty picture.
    }
    m_image->setType(ImageData::Color);
    m_image->set(int(frame.width), int(frame.height), buffer, int(frame.width * frame.height * 3));
}

qv::SgbmImage SgbmData::withoutHoles(const qv::SgbmImage &frame)
try {
    const HoleLimits limits{m_holeMin.load(relaxed), m_holeMax.load(relaxed)};
    return m_filler.fillHoles(
        frame, limits, m_fillHoles.load(relaxed) ? float(m_holeSize.load(relaxed)) : 0.0F);
} catch (const cv::Exception &) {
    return frame;
}

void SgbmData::readDepth(const DepthSamples<unsigned short> &samples, int width)
{
    const int x = m_x.load(relaxed);
    if (x == -1)
        return;
    const auto sample = samples.at(pixelIndex(x, m_y.load(relaxed), width));
    if (!sample)
        return;
    m_depth.store(*sample, relaxed);
    if (*sample != 0 || m_zeroDepthCount.fetch_add(1, relaxed) % zeroDepthInterval == 0)
        emit depthChanged(*sample);
}

std::shared_ptr<const unsigned char> SgbmData::coloured(const qv::SgbmImage &frame)
try {
    const int scheme = m_colorIndex.load(relaxed);
    std::optional<int> colorMap = scheme;
    if (!m_fillHoles.load(relaxed))
        colorMap = cv::COLORMAP_JET;
    else if (scheme == 0)
        colorMap = SgbmColors::plainColors;
    const std::size_t count = frame.width * frame.height;
    const auto buffer = m_buffers.take(3 * count);
    m_colors.depthToPixels(frame.data.get(), count, range(int(frame.width)), colorMap, buffer.get());
    return buffer;
} catch (const cv::Exception &) {
    return nullptr;
}
