#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

namespace sim {

/// A surface's picture, shaded, in ever halved sizes, as grey and as colour. Each level has a margin of one
/// texel that repeats its edge, so that reading between four texels never leaves it.
class Texture {
public:
    struct Level {
        float density = 1; ///< texels a metre
        int stride = 0; ///< texels a row, both layers
        const std::uint8_t *grey = nullptr;
        const std::uint32_t *rgb = nullptr; ///< red in the lowest byte
    };

    Texture() = default;
    /// `rgb`: CV_8UC3, `density` texels to the metre.
    Texture(const cv::Mat &rgb, double density);

    const std::vector<Level> &levels() const { return m_levels; }
    /// The level with about one texel a pixel, `pixel` being its size on the surface in metres.
    const Level &levelFor(float pixel) const;

private:
    std::vector<Level> m_levels;
    std::vector<cv::Mat> m_storage;
};

} // namespace sim
