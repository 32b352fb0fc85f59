#include "world/Texture.h"

#include <opencv2/imgproc.hpp>

namespace sim {

Texture::Texture(const cv::Mat &rgb, double density)
{
    cv::Mat image = rgb;
    for (;;) {
        cv::Mat grey;
        cv::Mat four;
        cv::cvtColor(image, grey, cv::COLOR_RGB2GRAY);
        cv::cvtColor(image, four, cv::COLOR_RGB2RGBA);
        cv::copyMakeBorder(grey, grey, 1, 1, 1, 1, cv::BORDER_REPLICATE);
        cv::copyMakeBorder(four, four, 1, 1, 1, 1, cv::BORDER_REPLICATE);
        Level level;
        level.density = static_cast<float>(density);
        level.stride = grey.cols;
        level.grey = grey.data;
        level.rgb = reinterpret_cast<const std::uint32_t *>(four.data);
        m_storage.push_back(grey);
        m_storage.push_back(four);
        m_levels.push_back(level);
        if (std::min(image.cols, image.rows) < 4)
            break;
        // Even sizes, so that texels of the halved picture lie exactly over four of this one.
        cv::Mat even;
        cv::copyMakeBorder(image, even, 0, image.rows & 1, 0, image.cols & 1, cv::BORDER_REPLICATE);
        cv::resize(even, image, even.size() / 2, 0, 0, cv::INTER_AREA);
        density /= 2;
    }
}

const Texture::Level &Texture::levelFor(float pixel) const
{
    std::size_t i = 0;
    float texels = pixel * m_levels[0].density;
    while (texels > 1.45F && i + 1 < m_levels.size()) {
        texels *= 0.5F;
        ++i;
    }
    return m_levels[i];
}

} // namespace sim
