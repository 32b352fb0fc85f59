#include "streams/HoleFiller.h"

#include "support/Pictures.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <random>

using pictures::bufferOf;

namespace {

using Samples = std::vector<unsigned short>;

qv::SgbmImage record(int width, int height, const Samples &samples)
{
    qv::SgbmImage image;
    image.type = 1;
    image.width = std::size_t(width);
    image.height = std::size_t(height);
    image.confidence = 0.5;
    image.hostTimestamp = 12.5;
    image.edgeTimestampUs = 99;
    image.data = bufferOf(samples);
    image.dataSize = static_cast<unsigned int>(samples.size() * 2);
    return image;
}

Samples samplesOf(const qv::SgbmImage &image)
{
    const auto *values = reinterpret_cast<const unsigned short *>(image.data.get());
    return {values, values + image.width * image.height};
}

/// The algorithm as it is told, step by step, on a copy with zeros behind.
Samples plainly(int width, int height, const Samples &samples, const HoleLimits &limits, float size)
{
    Samples padded = samples;
    padded.resize(std::size_t(width) * std::size_t(height + 2) + 2, 0);
    cv::Mat valid(height, width, CV_16UC1);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            valid.at<unsigned short>(y, x) = limits.isHole(samples[std::size_t(y * width + x)]) ? 0 : 0xFFFF;
    }
    const int k = 2 * int((size + 1) * 0.5) + 1;
    const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(k, k), cv::Point(-1, -1));
    cv::Mat closed, notValid, holes;
    cv::morphologyEx(valid, closed, cv::MORPH_CLOSE, kernel, cv::Point(-1, -1), 2, cv::BORDER_CONSTANT);
    cv::bitwise_not(valid, notValid);
    cv::bitwise_and(closed, notValid, holes);

    Samples filled = samples;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (holes.at<unsigned short>(y, x) == 0)
                continue;
            Samples around;
            for (int row = -int(size); float(row) < size; ++row) {
                for (int column = -int(size); float(column) < size; ++column) {
                    if (unsigned(y + row) > unsigned(height) || unsigned(x + column) > unsigned(width))
                        continue;
                    const unsigned short sample = padded[std::size_t((y + row) * width + x + column)];
                    if (!limits.isHole(sample))
                        around.push_back(sample);
                }
            }
            if (around.empty())
                continue;
            std::sort(around.begin(), around.end());
            filled[std::size_t(y * width + x)] = around[around.size() / 2];
        }
    }
    return filled;
}

Samples random(int width, int height, double missing, int lowest, int highest, unsigned int seed)
{
    std::mt19937 generator(seed);
    std::uniform_int_distribution<int> depth(lowest, highest);
    std::uniform_real_distribution<double> chance(0, 1);
    Samples samples;
    for (int i = 0; i < width * height; ++i)
        samples.push_back(chance(generator) < missing ? static_cast<unsigned short>(0)
                                                      : static_cast<unsigned short>(depth(generator)));
    return samples;
}

} // namespace

TEST(HoleFiller, aSizeOfZeroSharesTheBuffer)
{
    HoleFiller filler;
    const auto frame = record(3, 1, {1000, 0, 1000});
    const auto filled = filler.fillHoles(frame, {}, 0);
    EXPECT_EQ(filled.data, frame.data);
    EXPECT_EQ(filler.fillHoles(frame, {}, -3).data, frame.data);
}

TEST(HoleFiller, aSingleHoleTakesTheUpperMedianAroundIt)
{
    HoleFiller filler;
    // A window of size 1 reaches one back and none ahead: of 1000, 2000 and 3000 the middle one.
    Samples samples(7 * 7, 9000);
    samples[2 * 7 + 2] = 1000;
    samples[2 * 7 + 3] = 3000;
    samples[3 * 7 + 2] = 2000;
    samples[3 * 7 + 3] = 0;
    const auto frame = record(7, 7, samples);
    const auto filled = filler.fillHoles(frame, {}, 1);
    EXPECT_NE(filled.data, frame.data);
    samples[3 * 7 + 3] = 2000;
    EXPECT_EQ(samplesOf(filled), samples);
    EXPECT_EQ(samplesOf(frame)[3 * 7 + 3], 0) << "the frame itself stays";
    EXPECT_EQ(filled.type, 1);
    EXPECT_EQ(filled.confidence, 0.5);
    EXPECT_EQ(filled.hostTimestamp, 12.5);
    EXPECT_EQ(filled.edgeTimestampUs, 99);
}

TEST(HoleFiller, limitsThemselvesAreNoHoles)
{
    EXPECT_TRUE(HoleLimits().isHole(199));
    EXPECT_FALSE(HoleLimits().isHole(200));
    EXPECT_FALSE(HoleLimits().isHole(10000));
    EXPECT_TRUE(HoleLimits().isHole(10001));
}

TEST(HoleFiller, isThePlainAlgorithmOnRandomFrames)
{
    HoleFiller filler;
    unsigned int seed = 1;
    for (const auto &[width, height] : {std::pair{1, 1}, std::pair{1, 9}, std::pair{9, 1}, std::pair{7, 5},
             std::pair{33, 21}, std::pair{64, 40}}) {
        for (const float size : {1.0F, 2.0F, 3.0F, 4.0F, 5.0F, 9.0F, 12.0F}) {
            for (const double missing : {0.02, 0.1, 0.5, 0.95, 1.0}) {
                const Samples samples = random(width, height, missing, 150, 10100, ++seed);
                ASSERT_EQ(samplesOf(filler.fillHoles(record(width, height, samples), {}, size)),
                    plainly(width, height, samples, {}, size))
                    << width << 'x' << height << " size " << size << " missing " << missing;
            }
        }
    }
}

TEST(HoleFiller, isThePlainAlgorithmForAnyLimits)
{
    HoleFiller filler;
    unsigned int seed = 1000;
    for (const unsigned short min : {0, 1, 30000, 65535}) {
        for (const unsigned short max : {0, 30000, 65534, 65535}) {
            const HoleLimits limits{min, max};
            for (const float size : {1.0F, 5.0F}) {
                const Samples samples = random(23, 17, 0.2, 0, 65535, ++seed);
                ASSERT_EQ(samplesOf(filler.fillHoles(record(23, 17, samples), limits, size)),
                    plainly(23, 17, samples, limits, size))
                    << min << " to " << max << " size " << size;
            }
        }
    }
}

TEST(HoleFiller, theColumnPastTheEdgeIsTheNextRowsFirst)
{
    // At the right edge the window takes in one sample more: the first one of the row below.
    HoleFiller filler;
    Samples samples(6 * 6, 0);
    for (int y = 0; y < 6; ++y)
        samples[std::size_t(y * 6)] = static_cast<unsigned short>(1000 + y);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (i % 6 == 4)
            samples[i] = 5000;
    }
    EXPECT_EQ(samplesOf(filler.fillHoles(record(6, 6, samples), {}, 2)), plainly(6, 6, samples, {}, 2));
}

TEST(HoleFiller, aHoleWithoutValidNeighboursStays)
{
    HoleFiller filler;
    const Samples samples(20 * 20, 0);
    EXPECT_EQ(samplesOf(filler.fillHoles(record(20, 20, samples), {}, 5)), samples);
}

TEST(HoleFiller, evenAHugeSizeIsThePlainAlgorithmOrARefusal)
{
    HoleFiller filler;
    const Samples samples = random(12, 9, 0.3, 200, 9000, 7);
    EXPECT_EQ(samplesOf(filler.fillHoles(record(12, 9, samples), {}, 40)), plainly(12, 9, samples, {}, 40));
    EXPECT_THROW(filler.fillHoles(record(12, 9, samples), {}, 400), cv::Exception);
}
