#include "streams/TofPictures.h"

#include "imaging/WideVectors.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <opencv2/imgproc.hpp>

namespace {

// A quotient costs several products. A thousand's inverse in two parts, of which the first times a sample is
// exact, gives the same float as the quotient in double precision for each of the 65536 samples.
constexpr float coarseInverse = 131.0F / 131072;
constexpr float fineInverse = float(0.001 - double(coarseInverse));

constexpr double farthest = 9.5;
constexpr double nearest = 0.1;
/// The infrared sample that takes the last colour.
constexpr float infraredScale = 2494.0F;

bool isWholeFrame(const ImageData::Frame &frame, int bytesPerPixel)
{
    return frame.data && frame.width > 0 && frame.height > 0
        && frame.dataSize >= qint64(frame.width) * frame.height * bytesPerPixel;
}

cv::Mat ownMetres(const ImageData::Frame &frame)
{
    cv::Mat metres(frame.height, frame.width, CV_32FC1);
    std::memcpy(metres.data, frame.data.get(), metres.total() * metres.elemSize());
    return metres;
}

ColorTable makeIrColorTable()
{
    ColorTable table = depthColorTable;
    table.front() = {0, 0, 0};
    table.back() = {64, 0, 255};
    return table;
}

#ifdef QV_WIDE_VECTORS
/// Eight samples at a time, as far as there are eight; answers how many that were. For processors with AVX2,
/// which take half the time that way.
__attribute__((target("avx2"))) std::size_t wideMillimetresToMetres(
    const unsigned char *millimetres, std::size_t count, float *metres)
{
    const __m256 coarse = _mm256_set1_ps(coarseInverse), fine = _mm256_set1_ps(fineInverse);
    std::size_t done = 0;
    for (; count - done >= 8; done += 8) {
        const auto *bytes = reinterpret_cast<const __m128i *>(millimetres + done * sizeof(std::int16_t));
        const __m256 values = _mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(_mm_loadu_si128(bytes)));
        _mm256_storeu_ps(
            metres + done, _mm256_add_ps(_mm256_mul_ps(values, coarse), _mm256_mul_ps(values, fine)));
    }
    return done;
}
#endif

/// The grey of an infrared sample.
unsigned char infraredGrey(unsigned short sample)
{
    const float level = std::clamp(float(sample) * 255.0F / infraredScale, 0.0F, 255.0F);
    const auto &color = irColorTable[std::size_t(level)];
    return static_cast<unsigned char>((color[0] + color[1] + color[2]) / 3);
}

} // namespace

const ColorTable irColorTable = makeIrColorTable();

void millimetresToMetres(const unsigned char *millimetres, std::size_t count, float *metres)
{
    std::size_t i = 0;
#ifdef QV_WIDE_VECTORS
    if (__builtin_cpu_supports("avx2"))
        i = wideMillimetresToMetres(millimetres, count, metres);
#endif
    for (; i < count; ++i) {
        std::int16_t value;
        std::memcpy(&value, millimetres + i * sizeof(value), sizeof(value));
        metres[i] = float(value) * coarseInverse + float(value) * fineInverse;
    }
}

cv::Mat depthPicture(const ImageData::Frame &frame, double near, double far)
{
    if (!isWholeFrame(frame, sizeof(float)))
        return {};
    cv::Mat out = cv::Mat::zeros(frame.height, frame.width, CV_8UC3);
    cv::Mat source = ownMetres(frame);
    cv::Mat measured, valid, mask, grey, colored;
    cv::threshold(source, measured, farthest, 0, cv::THRESH_TOZERO_INV);
    cv::threshold(source, valid, nearest, 1.0, cv::THRESH_BINARY);
    valid.convertTo(mask, CV_8U, 255, 0);
    cv::threshold(measured, source, far, far, cv::THRESH_TRUNC);
    measured.convertTo(grey, CV_8U, 255 / (far - near), -255 * near / (far - near));
    colored.create(frame.height, frame.width, CV_8UC3);
    cv::applyColorMap(grey, colored, cv::COLORMAP_RAINBOW);
    cv::cvtColor(grey, colored, cv::COLOR_GRAY2BGR);
    colored.copyTo(out, mask);
    cv::LUT(out, depthColorLut(), out);
    cv::cvtColor(out, out, cv::COLOR_BGR2RGB);
    return out;
}

QImage infraredPicture(const ImageData::Frame &frame)
{
    if (!isWholeFrame(frame, sizeof(unsigned short)))
        return {};
    QImage image(frame.width, frame.height, QImage::Format_RGBA8888);
    const unsigned char *bytes = frame.data.get();
    for (int y = 0; y < image.height(); ++y) {
        unsigned char *out = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x, bytes += sizeof(unsigned short), out += 4) {
            unsigned short sample;
            std::memcpy(&sample, bytes, sizeof(sample));
            std::fill_n(out, 3, infraredGrey(sample));
            out[3] = 255;
        }
    }
    return image;
}
