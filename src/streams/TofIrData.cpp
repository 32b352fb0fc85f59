#include "streams/TofIrData.h"

#include "device/DeviceAccess.h"
#include "streams/FrameSize.h"
#include "streams/TofPictures.h"

#include <QDebug>
#include <cstring>
#include <utility>

namespace {

constexpr int infraredFrame = 2;
constexpr std::size_t sampleBytes = 2;

} // namespace

TofIrData::TofIrData(std::shared_ptr<qv::TofCamera> tof, QObject *parent)
    : AbstractImageData(true, parent)
    , m_tof(std::move(tof))
    , m_image(new ImageData(this))
{
    m_image->setType(ImageData::IR);
}

TofIrData::~TofIrData()
{
    if (m_tof) {
        unregister();
        m_tof->unregisterCallback(-1);
    }
    m_callbacks.close();
}

ImageData *TofIrData::image() const
{
    return m_image;
}

int TofIrData::manufacturer() const
{
    return 0;
}

void TofIrData::setManufacturer(int) { }

QImage TofIrData::toImage() const
{
    return infraredPicture(m_image->frame());
}

cv::Mat TofIrData::toMat() const
{
    return {};
}

void TofIrData::control(bool enable)
{
    if (!m_tof)
        return;
    if (!enable) {
        unregister();
        m_tof->unregisterCallback(-1);
        return;
    }
    if (m_tof->manufacturer() == 0 && !enableInfrared())
        return;
    unregister();
    m_callbackId =
        m_tof->registerCallback(m_callbacks.wrap([this](const qv::DepthImage &frame) { takeFrame(frame); }));
}

void TofIrData::setViewSize(int w, int h)
{
    m_image->setViewerSize(w, h);
}

bool TofIrData::save(QString path)
{
    const QImage image = toImage();
    return !image.isNull() && image.save(path);
}

bool TofIrData::enableInfrared()
{
    const auto device = DeviceAccess::device(this);
    if (!device)
        return false;
    const auto camera = device->tofCamera();
    const bool enabled = camera && camera->enableIr(true);
    qDebug() << (enabled ? "Enable IR successfully" : "Enable IR failed");
    return enabled;
}

void TofIrData::unregister()
{
    if (m_callbackId != -1)
        m_tof->unregisterCallback(std::exchange(m_callbackId, -1));
}

void TofIrData::takeFrame(const qv::DepthImage &frame)
{
    if (frame.type != infraredFrame || !isWhole(frame, sampleBytes))
        return;
    tick();
    const std::size_t size = frame.width * frame.height * sampleBytes;
    const auto buffer = m_buffers.take(size);
    std::memcpy(buffer.get(), frame.data.get(), size);
    m_image->set(int(frame.width), int(frame.height), buffer, int(size));
    setSourceWidth(int(frame.width));
    setSourceHeight(int(frame.height));
}
