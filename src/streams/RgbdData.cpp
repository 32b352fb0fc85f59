#include "streams/RgbdData.h"

#include "streams/DepthColorPixels.h"
#include "streams/FrameSize.h"

#include <utility>

namespace {

constexpr std::size_t pixelBytes = 7;
constexpr std::size_t colorBytes = 3;

} // namespace

RgbdData::RgbdData(std::shared_ptr<qv::TofCamera> tofCamera, QObject *parent)
    : AbstractImageData(true, parent)
    , m_tofCamera(std::move(tofCamera))
    , m_frameCallback(m_callbacks.wrap([this](const qv::DepthColorImage &frame) { takeFrame(frame); }))
    , m_image(new ImageData(this))
{
    m_image->setType(ImageData::Color);
}

RgbdData::~RgbdData()
{
    if (m_callbackId != -1)
        m_tofCamera->unregisterColorDepthImageCallback(m_callbackId);
    m_callbacks.close();
}

ImageData *RgbdData::image() const
{
    return m_image;
}

bool RgbdData::enable() const
{
    return m_enable;
}

QImage RgbdData::toImage() const
{
    return {};
}

cv::Mat RgbdData::toMat() const
{
    return {};
}

bool RgbdData::control(bool isStart)
{
    if (!m_tofCamera || (!isStart && m_callbackId == -1))
        return false;
    bool answer = false;
    if (m_callbackId != -1)
        answer = m_tofCamera->unregisterColorDepthImageCallback(std::exchange(m_callbackId, -1));
    if (!isStart)
        return answer;
    m_callbackId = m_tofCamera->registerColorDepthImageCallback(m_frameCallback);
    return m_callbackId != -1;
}

void RgbdData::setEnable(int v)
{
    if (v == 0 || v == 1)
        m_tofRunning = v == 0;
    else if (v == 2 || v == 3)
        m_rgbRunning = v == 2;
    m_enable = m_tofRunning && m_rgbRunning;
    emit enableChanged(m_enable);
}

void RgbdData::setViewSize(int w, int h)
{
    m_image->setViewerSize(w, h);
}

void RgbdData::reset() { }

void RgbdData::takeFrame(const qv::DepthColorImage &frame)
{
    if (frame.width == 0 || frame.height == 0 || !frame.data
        || !isCarriable(frame.width, frame.height, pixelBytes))
        return;
    const std::size_t count = frame.width * frame.height;
    const auto buffer = m_buffers.take(count * colorBytes);
    unpackColor(frame.data.get(), count, buffer.get());
    m_image->set(int(frame.width), int(frame.height), buffer, int(count * colorBytes));
}
