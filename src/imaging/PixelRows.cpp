#include "imaging/PixelRows.h"

#include <algorithm>
#include <cstring>
#include <opencv2/core/hal/intrin.hpp>

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

/// What one of Y, U and V adds to a pixel, in the order of the bytes of a `QRgb`.
struct alignas(16) Terms {
    int blue;
    int green;
    int red;
    int alpha;
};

/// ITU-R BT.601, limited range, in 20-bit fixed point: the numbers and the rounding of `cv::cvtColor`.
struct Bt601 {
    static constexpr int shift = 20;
    Terms y[256];
    Terms u[256];
    Terms v[256];
};

constexpr Bt601 makeBt601()
{
    Bt601 table{};
    constexpr int half = 1 << (Bt601::shift - 1);
    for (int i = 0; i < 256; ++i) {
        const int luma = (i > 16 ? i - 16 : 0) * 1220542;
        table.y[i] = {luma, luma, luma, 255 << Bt601::shift};
        table.u[i] = {half + 2116026 * (i - 128), half - 409993 * (i - 128), 0, 0};
        table.v[i] = {0, -852492 * (i - 128), half + 1673527 * (i - 128), 0};
    }
    return table;
}

constexpr Bt601 bt601 = makeBt601();

struct Yuv {
    unsigned char y;
    unsigned char u;
    unsigned char v;
};

cv::v_int32x4 channels(const Yuv &pixel)
{
    const auto load = [](const Terms &terms) { return cv::v_load_aligned(&terms.blue); };
    return (load(bt601.y[pixel.y]) + load(bt601.u[pixel.u]) + load(bt601.v[pixel.v])) >> Bt601::shift;
}

/// Packing clamps to 0 to 255. Four pixels at a time; `at` gives the i-th.
template <class At>
void convertYuv(int count, QRgb *out, At at)
{
    using cv::v_pack;
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        const auto first = v_pack(channels(at(i)), channels(at(i + 1)));
        const auto second = v_pack(channels(at(i + 2)), channels(at(i + 3)));
        cv::v_store(reinterpret_cast<unsigned char *>(out + i), cv::v_pack_u(first, second));
    }
    for (; i < count; ++i) {
        const auto pixel = v_pack(channels(at(i)), cv::v_setzero_s32());
        unsigned char bytes[16];
        cv::v_store(bytes, cv::v_pack_u(pixel, pixel));
        std::memcpy(out + i, bytes, sizeof(QRgb));
    }
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
    convertYuv(count, out, [=](int i) {
        const std::ptrdiff_t pair = static_cast<std::ptrdiff_t>(columns[i] / 2) * 4;
        return Yuv{pixels[columns[i] * 2], pixels[pair + 1], pixels[std::min(pair + 3, last)]};
    });
}

void I420Row::operator()(int row, const int *columns, int count, QRgb *out) const
{
    const std::ptrdiff_t plane = static_cast<std::ptrdiff_t>(width) * height;
    const auto *luma = data + static_cast<std::ptrdiff_t>(row) * width;
    const auto *u = data + plane + static_cast<std::ptrdiff_t>(row / 2) * (width / 2);
    const auto *v = u + plane / 4;
    convertYuv(count, out, [=](int i) {
        return Yuv{luma[columns[i]], u[columns[i] / 2], v[columns[i] / 2]};
    });
}

void DepthColoring::reserve(int count)
{
    const auto size = static_cast<std::size_t>(count);
    samples.resize(size);
    metres.resize(size);
    clipped.resize(size);
    levels.resize(size);
}

void DepthColoring::color(int count, QRgb *out)
{
    const auto far = static_cast<float>(range.far);
    const float *depth = metres.data();
    float *nearer = clipped.data();
    for (int i = 0; i < count; ++i)
        nearer[i] = depth[i] > far ? far : depth[i];
    depthLevels(nearer, count, range, levels.data());
    const unsigned char *level = levels.data();
    for (int i = 0; i < count; ++i)
        out[i] = depth[i] > noDepth ? palette.levels[level[i]] : palette.unmeasured;
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
