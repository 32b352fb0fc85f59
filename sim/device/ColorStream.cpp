#include "device/ColorStream.h"

#include <algorithm>

namespace sim {

namespace {

constexpr int unknownCodec = 9;

/// A grey picture of about half the size, as if another resolution had been chosen for a moment.
void replaceBySmaller(qv::ColorImage &record)
{
    const int width = static_cast<int>(record.width / 4 + 1) * 2;
    const int height = static_cast<int>(record.height / 4 + 1) * 2;
    const cv::Mat grey(height, width, CV_8UC3, cv::Scalar::all(96));
    ColorEncoder(static_cast<ColorCodec>(record.codec)).encode(grey, grey.size(), record);
}

/// Half the bytes, and no byte of memory behind them.
void cut(qv::ColorImage &record)
{
    const unsigned int size = record.dataSize / 2;
    const std::shared_ptr<unsigned char> data(
        new unsigned char[size], std::default_delete<unsigned char[]>());
    std::copy_n(record.data.get(), size, data.get());
    record.data = data;
    record.dataSize = size;
}

} // namespace

ColorStream::ColorStream(
    std::string name, std::shared_ptr<DeviceState> device, std::shared_ptr<ColorSource> source)
    : StreamComponent(std::move(name), std::move(device), source->schedule())
    , m_source(std::move(source))
{
}

void ColorStream::setSync(bool sync)
{
    m_source->setSync(sync);
    scheduleChanged();
}

void ColorStream::scheduleChanged()
{
    thread().reschedule();
}

void ColorStream::produce(double due, Defect defect)
{
    qv::ColorImage record;
    if (callbacks().empty() || !m_source->picture(due, record))
        return;
    record.hostTimestamp = Clock::now();
    damage(record, defect);
    deliver(record);
}

void ColorStream::damage(qv::ColorImage &record, Defect defect) const
{
    if (defect == Defect::NullData || defect == Defect::Empty)
        record.data = nullptr;
    if (defect == Defect::ZeroSize || defect == Defect::Empty)
        record.width = record.height = 0;
    if (defect == Defect::Empty)
        record.dataSize = 0;
    if (defect == Defect::Short)
        cut(record);
    if (defect == Defect::Resize)
        replaceBySmaller(record);
    if (defect == Defect::Unknown)
        record.codec = unknownCodec;
}

} // namespace sim
