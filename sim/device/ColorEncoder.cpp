#include "device/ColorEncoder.h"

#include <algorithm>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

namespace sim {

namespace {

constexpr int jpegQuality = 90;

void fit(const cv::Mat &from, cv::Mat &to, cv::Size size)
{
    const bool smaller = size.width < from.cols || size.height < from.rows;
    if (size == from.size())
        from.copyTo(to);
    else
        cv::resize(from, to, size, 0, 0, smaller ? cv::INTER_AREA : cv::INTER_LINEAR);
}

void splitRow(const unsigned char *rgb, int count, unsigned char *y, unsigned char *u, unsigned char *v)
{
    for (int x = 0; x < count; ++x) {
        const int r = rgb[3 * x];
        const int g = rgb[3 * x + 1];
        const int b = rgb[3 * x + 2];
        y[x] = static_cast<unsigned char>((66 * r + 129 * g + 25 * b + 4224) >> 8);
        u[x] = static_cast<unsigned char>((-38 * r - 74 * g + 112 * b + 32896) >> 8);
        v[x] = static_cast<unsigned char>((112 * r - 94 * g - 18 * b + 32896) >> 8);
    }
}

void interleaveRow(
    const unsigned char *y, const unsigned char *u, const unsigned char *v, int width, unsigned char *to)
{
    const int pairs = width / 2;
    for (int i = 0; i < pairs; ++i) {
        to[4 * i] = y[2 * i];
        to[4 * i + 1] = u[i];
        to[4 * i + 2] = y[2 * i + 1];
        to[4 * i + 3] = v[i];
    }
    if (width % 2 != 0) {
        to[4 * pairs] = y[2 * pairs];
        to[4 * pairs + 1] = u[pairs];
    }
}

} // namespace

ColorEncoder::ColorEncoder(ColorCodec codec)
    : m_codec(codec)
{
}

void ColorEncoder::encode(const cv::Mat &rgb, cv::Size size, qv::ColorImage &record)
{
    record.codec = static_cast<int>(m_codec);
    record.width = static_cast<std::size_t>(size.width);
    record.height = static_cast<std::size_t>(size.height);
    if (m_codec == ColorCodec::Jpeg) {
        encodeJpeg(rgb, size, record);
        return;
    }
    const std::size_t bytes = packedSize(m_codec, size);
    const std::shared_ptr<unsigned char> buffer = m_pool.take(bytes);
    split(rgb);
    if (m_codec == ColorCodec::Yuyv)
        encodeYuyv(size, buffer.get());
    else
        encodeYuv420p(size, buffer.get());
    record.data = buffer;
    record.dataSize = static_cast<unsigned int>(bytes);
}

void ColorEncoder::split(const cv::Mat &rgb)
{
    m_y.create(rgb.size(), CV_8UC1);
    m_u.create(rgb.size(), CV_8UC1);
    m_v.create(rgb.size(), CV_8UC1);
    for (int row = 0; row < rgb.rows; ++row)
        splitRow(rgb.ptr(row), rgb.cols, m_y.ptr(row), m_u.ptr(row), m_v.ptr(row));
}

void ColorEncoder::encodeYuyv(cv::Size size, unsigned char *to)
{
    const cv::Size half((size.width + 1) / 2, size.height);
    fit(m_y, m_fullY, size);
    fit(m_u, m_fullU, half);
    fit(m_v, m_fullV, half);
    const std::size_t stride = 2 * static_cast<std::size_t>(size.width);
    for (int row = 0; row < size.height; ++row, to += stride)
        interleaveRow(m_fullY.ptr(row), m_fullU.ptr(row), m_fullV.ptr(row), size.width, to);
}

void ColorEncoder::encodeYuv420p(cv::Size size, unsigned char *to)
{
    const cv::Size half((size.width + 1) / 2, (size.height + 1) / 2);
    cv::Mat y(size, CV_8UC1, to);
    cv::Mat u(half, CV_8UC1, to + y.total());
    cv::Mat v(half, CV_8UC1, to + y.total() + u.total());
    fit(m_y, y, size);
    fit(m_u, u, half);
    fit(m_v, v, half);
}

void ColorEncoder::encodeJpeg(const cv::Mat &rgb, cv::Size size, qv::ColorImage &record)
{
    cv::cvtColor(rgb, m_bgr, cv::COLOR_RGB2BGR);
    fit(m_bgr, m_fullY, size);
    cv::imencode(".jpg", m_fullY, m_jpeg, {cv::IMWRITE_JPEG_QUALITY, jpegQuality});
    const std::shared_ptr<unsigned char> buffer = m_pool.take(m_jpeg.size());
    std::copy(m_jpeg.begin(), m_jpeg.end(), buffer.get());
    record.data = buffer;
    record.dataSize = static_cast<unsigned int>(m_jpeg.size());
}

} // namespace sim
