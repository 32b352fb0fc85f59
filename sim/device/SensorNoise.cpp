#include "device/SensorNoise.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

constexpr int fieldSlack = 64; // pixels that the field is larger than a picture, each way

} // namespace

SensorNoise::SensorNoise(std::uint64_t seed)
    : m_noise(seed)
{
}

void SensorNoise::add(cv::Mat &picture, double deviation, std::uint64_t moment)
{
    // In steps, or automatic exposure would ask for another field with every picture.
    const double step = std::round(deviation * 4) / 4;
    if (step <= 0)
        return;
    prepare(picture.size(), step);
    const std::uint64_t bits = m_noise.bits(moment);
    const cv::Rect window(static_cast<int>(bits % fieldSlack), static_cast<int>((bits >> 16) % fieldSlack),
        picture.cols, picture.rows);
    cv::add(picture, m_above(window), picture);
    cv::subtract(picture, m_below(window), picture);
}

void SensorNoise::prepare(cv::Size size, double deviation)
{
    if (size == m_size && deviation == m_deviation)
        return;
    m_size = size;
    m_deviation = deviation;
    cv::Mat field(size.height + fieldSlack, size.width + fieldSlack, CV_16SC1);
    cv::RNG random(m_noise.bits(0));
    random.fill(field, cv::RNG::NORMAL, 0, deviation);
    field.convertTo(m_above, CV_8U);
    field.convertTo(m_below, CV_8U, -1);
}

} // namespace sim
