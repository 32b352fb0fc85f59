#pragma once

#include "world/CameraModel.h"

#include <cstddef>
#include <vector>

namespace sim {

/// The rays of a camera, once, in blocks of 8 by 8 pixels, and for each block and each tile of 8 by 8 blocks
/// the narrow bundle about its rays that lets whole blocks be judged at once.
class RayTable {
public:
    static constexpr int side = 8; ///< pixels of a block, and blocks of a tile, each way
    static constexpr std::size_t lanes = std::size_t(side) * side;

    /// All unit rays d of a bundle are within `reach` of the unit vector `axis`: |d - axis| <= reach. They
    /// are also within `slack` of the bilinear patch between the four corner rays, so that a linear form of d
    /// is bounded by its values at the corners, give or take `slack` times its norm; this is much the sharper
    /// bound.
    struct Bundle {
        float axis[3] = {0, 0, 1};
        float reach = 0;
        float cosine = 1; ///< of the widest angle to the axis
        float sine = 0;
        float cornerX[4] = {}; ///< clockwise
        float cornerY[4] = {};
        float cornerZ[4] = {};
        float sideX[4] = {}; ///< unit inward normals of the planes between neighbouring corners
        float sideY[4] = {};
        float sideZ[4] = {};
        float slack = 2;
        bool whole = true; ///< each pixel has a ray
        bool empty = false; ///< none has
    };
    /// Rays in the camera's frame by row; past the picture's edge the last ray repeats; zero where there is
    /// none.
    struct Block {
        alignas(32) float x[lanes];
        alignas(32) float y[lanes];
        alignas(32) float z[lanes];
        Bundle bundle;
        float pixelAngle = 0; ///< radians from one pixel to the next, about
        int left = 0; ///< pixel of the first lane
        int top = 0;
    };
    /// Up to `lanes` bundles side by side, for quick tests of them all.
    struct BundleSet {
        alignas(32) float axisX[lanes] = {};
        alignas(32) float axisY[lanes] = {};
        alignas(32) float axisZ[lanes] = {};
        alignas(32) float reach[lanes] = {};
        alignas(32) float cosine[lanes] = {};
        alignas(32) float sine[lanes] = {};
        std::size_t count = 0;

        void add(const Bundle &bundle);
    };
    /// Neighbouring blocks, from `first` on in `blocks`; `set` holds their bundles.
    struct Tile {
        Bundle bundle;
        BundleSet set;
        std::size_t first = 0;
    };

    explicit RayTable(const CameraModel &model);

    cv::Size size() const { return m_size; }
    const std::vector<Block> &blocks() const { return m_blocks; } ///< tile by tile
    const std::vector<Tile> &tiles() const { return m_tiles; }
    /// The bundles of the tiles, in their order, each set but the last full.
    const std::vector<BundleSet> &tileSets() const { return m_tileSets; }

private:
    void addBlock(int left, int top);
    void addTile(const cv::Rect &pixels);
    Bundle bundleOf(const cv::Rect &pixels) const;
    void addCorners(const cv::Rect &pixels, Bundle &bundle) const;
    const cv::Vec3f &ray(int x, int y) const
    {
        return m_pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_size.width)
            + static_cast<std::size_t>(x)];
    }

    cv::Size m_size;
    std::vector<Block> m_blocks;
    std::vector<Tile> m_tiles;
    std::vector<BundleSet> m_tileSets;
    std::vector<cv::Vec3f> m_pixels; ///< only while the table is being made
};

} // namespace sim
