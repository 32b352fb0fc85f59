#pragma once

#include "world/CameraModel.h"
#include "world/DrawList.h"
#include "world/Kernels.h"
#include "world/Pose.h"
#include "world/RayTable.h"
#include "world/Scene.h"
#include "world/Textures.h"

#include <memory>
#include <opencv2/core.hpp>

namespace sim {

/// Pictures of the scene through one camera: holds the camera's rays and all scratch memory, so each camera
/// has its own, and one thread at a time may use it. Same scene, pose and time give the same bytes.
///
/// Outputs are made with the model's size if they haven't got it. Each pixel is what `Scene::cast` finds
/// along its ray, but for rounding: blocks of pixels that meet one surface only, which are most, are just
/// filled faster.
class Renderer {
public:
    Renderer(std::shared_ptr<const Scene> scene, std::shared_ptr<const CameraModel> model);
    Renderer(const Renderer &) = delete;
    Renderer &operator=(const Renderer &) = delete;

    /// `z`: CV_32FC1, distance along the optical axis in metres, 0 where there is nothing or the lens has no
    /// ray. `surface`: CV_16SC1, ids as in `Scene`, -1 for none.
    void depth(const Pose &worldFromCamera, double t, cv::Mat &z, cv::Mat *surface = nullptr);
    /// CV_8UC1; `gain` scales the brightness, which saturates.
    void grey(const Pose &worldFromCamera, double t, cv::Mat &out, double gain = 1.0);
    /// CV_8UC3 in the order red, green, blue.
    void color(const Pose &worldFromCamera, double t, cv::Mat &rgb, double gain = 1.0);

private:
    template <typename Visit>
    void forEachBlock(const Pose &worldFromCamera, double t, const Visit &visit);
    void sortIntoTiles();
    void selectForTile(std::size_t tile);
    void selectForBlock(const RayTable::Block &block, std::size_t position);
    bool oneCovers() const { return m_candidates.size() == 1 && m_candidates[0].covers; }
    short idOf(std::int32_t which) const;
    void meet(const RayTable::Block &block, bool scaled);
    const Texture::Level &levelFor(const RayTable::Block &block, const DrawList::Flat &surface) const;
    /// Fills `m_at` and `m_levels`; answers the stride for the sampling kernels.
    int prepareSampling(const RayTable::Block &block);
    template <typename Put>
    void shadeRounds(const RayTable::Block &block, const Put &put);

    std::shared_ptr<const Scene> m_scene;
    RayTable m_rays;
    std::shared_ptr<const Textures> m_textures;
    DrawList m_list;
    std::vector<std::vector<int>> m_tileItems; ///< what each tile may touch, roughly
    DrawList::Candidates m_tileCandidates;
    DrawList::Candidates m_candidates;
    std::vector<unsigned char> m_touched; ///< by candidate of the tile, then by block
    kernels::Meeting m_meetings[2];
    kernels::Meeting *m_meeting = &m_meetings[0];
    kernels::Meeting *m_spare = &m_meetings[1];
    kernels::TexelPositions m_at;
    const Texture::Level *m_levels[kernels::lanes] = {};
    std::vector<const Texture::Level *> m_candidateLevels;
};

} // namespace sim
