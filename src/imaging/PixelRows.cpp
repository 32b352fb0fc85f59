#include "imaging/PixelRows.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr QRgb opaque = 0xff000000;

const unsigned char *rowOf(const unsigned char *data, int row, int width, int bytesPerPixel)
{
    return data + static_cast<std::ptrdiff_t>(row) * width * bytesPerPixel;
}

constexpr QRgb grey(unsigned char level)
{
    return opaque | level * 0x010101U;
}

/// The buffer of a frame has no alignment to rely on.
template <class T>
T load(const unsigned char *row, int column)
{
    T sample;
    std::memcpy(&sample, row + static_cast<std::ptrdiff_t>(column) * static_cast<int>(sizeof(T)), sizeof(T));
    return sample;
}

/// ITU-R BT.601, limited range, in 20-bit fixed point: the numbers and the rounding of `cv::cvtColor`.
struct Bt601 {
    static constexpr int shift = 20;
    int luma[256];
    int redOfV[256];
    int greenOfU[256];
    int greenOfV[256];
    int blueOfU[256];
};

constexpr Bt601 makeBt601()
{
    Bt601 table{};
    constexpr int half = 1 << (Bt601::shift - 1);
    for (int i = 0; i < 256; ++i) {
        table.luma[i] = (i > 16 ? i - 16 : 0) * 1220542;
        table.redOfV[i] = half + 1673527 * (i - 128);
        table.greenOfU[i] = half - 409993 * (i - 128);
        table.greenOfV[i] = -852492 * (i - 128);
        table.blueOfU[i] = half + 2116026 * (i - 128);
    }
    return table;
}

constexpr Bt601 bt601 = makeBt601();

unsigned int byteOf(int fixed)
{
    return static_cast<unsigned int>(std::clamp(fixed >> Bt601::shift, 0, 255));
}

QRgb fromYuv(unsigned char y, unsigned char u, unsigned char v)
{
    const int luma = bt601.luma[y];
    return opaque | byteOf(luma + bt601.redOfV[v]) << 16
        | byteOf(luma + bt601.greenOfU[u] + bt601.greenOfV[v]) << 8 | byteOf(luma + bt601.blueOfU[u]);
}

} // namespace

void GreyRow::operator()(int row, const int *columns, int count, QRgb *out) const
{
    const auto *pixels = rowOf(data, row, width, 1);
    for (int i = 0; i < count; ++i)
        out[i] = grey(pixels[columns[i]]);
}

void ColorRow::operator()(int row, const int *columns, int count, QRgb *out) const
{
    const auto *pixels = rowOf(data, row, width, 3);
    for (int i = 0; i < count; ++i) {
        const auto *pixel = pixels + static_cast<std::ptrdiff_t>(columns[i]) * 3;
        out[i] = qRgb(pixel[0], pixel[1], pixel[2]);
    }
}

void InfraredRow::operator()(int row, const int *columns, int count, QRgb *out) const
{
    const auto *pixels = rowOf(data, row, width, 2);
    for (int i = 0; i < count; ++i)
        out[i] = grey(static_cast<unsigned char>(load<unsigned short>(pixels, columns[i])));
}

void YuyvRow::operator()(int row, const int *columns, int count, QRgb *out) const
{
    const auto *pixels = rowOf(data, row, width, 2);
    // In a row of odd width the last pixel has no V of its own; what follows in the buffer is taken for it.
    const std::ptrdiff_t last = data + static_cast<std::ptrdiff_t>(width) * height * 2 - 1 - pixels;
    for (int i = 0; i < count; ++i) {
        const std::ptrdiff_t pair = static_cast<std::ptrdiff_t>(columns[i] / 2) * 4;
        out[i] = fromYuv(pixels[columns[i] * 2], pixels[pair + 1], pixels[std::min(pair + 3, last)]);
    }
}

void I420Row::operator()(int row, const int *columns, int count, QRgb *out) const
{
    const std::ptrdiff_t plane = static_cast<std::ptrdiff_t>(width) * height;
    const auto *luma = data + static_cast<std::ptrdiff_t>(row) * width;
    const auto *u = data + plane + static_cast<std::ptrdiff_t>(row / 2) * (width / 2);
    const auto *v = u + plane / 4;
    for (int i = 0; i < count; ++i)
        out[i] = fromYuv(luma[columns[i]], u[columns[i] / 2], v[columns[i] / 2]);
}

void DepthColoring::reserve(int count)
{
    const auto size = static_cast<std::size_t>(count);
    samples.resize(size);
    metres.resize(size);
    measured.resize(size);
    levels.resize(size);
}

void DepthColoring::color(int count, QRgb *out)
{
    const auto far = static_cast<float>(range.far);
    for (int i = 0; i < count; ++i) {
        measured[i] = metres[i] > noDepth;
        metres[i] = metres[i] > far ? far : metres[i];
    }
    depthLevels(metres.data(), count, range, levels.data());
    for (int i = 0; i < count; ++i)
        out[i] = measured[i] ? palette.levels[levels[i]] : palette.unmeasured;
}

void FloatRow::operator()(int row, const int *columns, int count, QRgb *out) const
{
    const auto *pixels = rowOf(data, row, width, 4);
    auto *metres = coloring->metres.data();
    for (int i = 0; i < count; ++i)
        metres[i] = load<float>(pixels, columns[i]);
    coloring->color(count, out);
}

void ShortRow::operator()(int row, const int *columns, int count, QRgb *out) const
{
    const auto *pixels = rowOf(data, row, width, 2);
    auto *samples = coloring->samples.data();
    for (int i = 0; i < count; ++i)
        samples[i] = load<unsigned short>(pixels, columns[i]);
    cv::Mat metres(1, count, CV_32FC1, coloring->metres.data());
    cv::Mat(1, count, CV_16UC1, samples).convertTo(metres, CV_32F, 4.0 / 32767);
    coloring->color(count, out);
}
