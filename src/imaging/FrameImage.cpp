#include "imaging/FrameImage.h"

#include <QBuffer>
#include <QImageReader>
#include <cstring>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace {

/// Bytes that a frame of this type and size needs at least; none that can be told from the size of a JPEG.
/// Who makes `Color` frames doesn't give their true size, and so none is asked for.
qint64 neededBytes(const ImageData::Frame &frame)
{
    const qint64 pixels = static_cast<qint64>(frame.width) * frame.height;
    switch (frame.type) {
    case ImageData::Gray:
        return pixels;
    case ImageData::YUYV:
    case ImageData::Short:
    case ImageData::IR:
        return pixels * 2;
    case ImageData::YUV420p:
        return pixels * 3 / 2;
    case ImageData::Float:
        return pixels * 4;
    default:
        return 0;
    }
}

/// Sides that a raster image can be scaled from.
bool isDrawable(int side)
{
    return side > 0 && side <= std::numeric_limits<short>::max();
}

bool isWhole(const ImageData::Frame &frame)
{
    return isDrawable(frame.width) && isDrawable(frame.height) && frame.dataSize >= neededBytes(frame);
}

bool isEven(const ImageData::Frame &frame)
{
    return frame.width % 2 == 0 && frame.height % 2 == 0;
}

QSize sizeOf(const ImageData::Frame &frame)
{
    return {frame.width, frame.height};
}

QSize shownSize(const QSize &image, const ImageData::Frame &frame, const FrameLook &look)
{
    return look.window == sizeOf(frame) ? image : fittedSize(image, look.window);
}

} // namespace

bool FrameLook::operator==(const FrameLook &other) const
{
    return window == other.window && horizontalFlip == other.horizontalFlip
        && verticalFlip == other.verticalFlip && range == other.range && colorIndex == other.colorIndex;
}

const QImage &FrameImage::image(const ImageData::Frame &frame, const FrameLook &look)
{
    if (frame.number == m_number && look == m_look)
        return m_image;
    m_number = frame.number;
    m_look = look;
    try {
        make(frame, look);
    } catch (const cv::Exception &) {
        m_image = {};
    }
    return m_image;
}

void FrameImage::make(const ImageData::Frame &frame, const FrameLook &look)
{
    const bool seen = !look.window.isEmpty();
    if (seen && frame.type == ImageData::JPEG) {
        decode(frame);
        m_image = m_decoded.isNull() ? QImage()
                                     : m_decoded.scaled(shownSize(m_decoded.size(), frame, look))
                                           .mirrored(look.horizontalFlip, look.verticalFlip);
    } else if (seen && isWhole(frame)) {
        convert(frame, look);
    } else {
        m_image = {};
    }
}

void FrameImage::decode(const ImageData::Frame &frame)
{
    if (frame.number == m_decodedNumber)
        return;
    m_decodedNumber = frame.number;
    m_image = {}; // it may share the decoded pixels
    auto bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(frame.data.get()), qMax(0, frame.dataSize));
    QBuffer buffer(&bytes);
    // Into the image that is there: a picture of the same size needs no fresh memory.
    if (!QImageReader(&buffer, "JPG").read(&m_decoded))
        m_decoded = {};
}

void FrameImage::convert(const ImageData::Frame &frame, const FrameLook &look)
{
    const auto *data = frame.data.get();
    switch (frame.type) {
    case ImageData::Gray:
        return pick(frame, look, QImage::Format_RGB888, GreyRow{data, frame.width});
    case ImageData::Color:
        return pick(frame, look, QImage::Format_RGB888, ColorRow{data, frame.width});
    case ImageData::YUYV:
        return pick(frame, look, QImage::Format_RGB888, YuyvRow{data, frame.width, frame.height});
    case ImageData::YUV420p:
        if (isEven(frame))
            return pick(frame, look, QImage::Format_RGB888, I420Row{data, frame.width, frame.height});
        break;
    case ImageData::Float:
    case ImageData::Short:
        return pickDepth(frame, look);
    case ImageData::IR:
        return pick(frame, look, QImage::Format_RGBA8888, InfraredRow{data, frame.width});
    default:
        break;
    }
    m_image = {};
}

void FrameImage::pickDepth(const ImageData::Frame &frame, const FrameLook &look)
{
    updatePalette(look.colorIndex);
    m_coloring.range = look.range;
    m_coloring.reserve(frame.width);
    const auto *data = frame.data.get();
    if (frame.type == ImageData::Float)
        pick(frame, look, QImage::Format_RGB888, FloatRow{data, frame.width, &m_coloring});
    else if (frame.type == ImageData::Short)
        pick(frame, look, QImage::Format_RGB888, ShortRow{data, frame.width, &m_coloring});
    else
        throw std::runtime_error("no way");
}

/// A picture wider than its frame takes its pixels from a frame row that is converted once.
template <class Row>
void FrameImage::pick(const ImageData::Frame &frame, const FrameLook &look, QImage::Format format, Row row)
{
    updateMap(sizeOf(frame), look, format);
    if (m_image.size() != m_mapped.to || m_image.format() != QImage::Format_RGB32)
        m_image = QImage(m_mapped.to, QImage::Format_RGB32);
    if (m_image.isNull())
        return;
    const int count = m_image.width();
    const bool widen = count > frame.width;
    const auto stride = m_image.bytesPerLine();
    auto *line = m_image.bits();
    for (std::size_t y = 0; y < m_map.rows.size(); ++y, line += stride) {
        auto *out = reinterpret_cast<QRgb *>(line);
        if (y > 0 && m_map.rows[y] == m_map.rows[y - 1]) {
            std::memcpy(line, line - stride, static_cast<std::size_t>(stride));
        } else if (widen) {
            row(m_map.rows[y], m_allColumns.data(), frame.width, m_line.data());
            for (int x = 0; x < count; ++x)
                out[x] = m_line[m_map.columns[x]];
        } else {
            row(m_map.rows[y], m_map.columns.data(), count, out);
        }
    }
}

void FrameImage::updateMap(const QSize &from, const FrameLook &look, QImage::Format format)
{
    const QSize to = fittedSize(from, look.window);
    if (m_mapped.from == from && m_mapped.to == to && m_mapped.format == format
        && m_mapped.horizontalFlip == look.horizontalFlip && m_mapped.verticalFlip == look.verticalFlip)
        return;
    m_map = scaledPixelMap(from, to, format);
    m_map.mirror(look.horizontalFlip, look.verticalFlip);
    m_mapped = {from, to, format, look.horizontalFlip, look.verticalFlip};
    m_allColumns.resize(from.width());
    std::iota(m_allColumns.begin(), m_allColumns.end(), 0);
    m_line.resize(from.width());
}

void FrameImage::updatePalette(int colorIndex)
{
    if (m_colorIndex == colorIndex)
        return;
    m_coloring.palette = depthPalette(colorIndex);
    m_colorIndex = colorIndex;
}
