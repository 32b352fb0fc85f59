#include "world/Renderer.h"

#include <algorithm>
#include <cmath>

namespace sim {
namespace {

using kernels::lanes;

constexpr int blockSide = RayTable::side;

/// Calls `row(first lane, pixels, x, y)` for each row of a block as far as it is inside the picture.
template <typename Row>
void forEachRow(const RayTable::Block &block, const cv::Size &size, const Row &row)
{
    const int columns = std::min(blockSide, size.width - block.left);
    const int rows = std::min(blockSide, size.height - block.top);
    for (int y = 0; y < rows; ++y)
        row(y * blockSide, columns, block.left, block.top + y);
}

void applyGain(cv::Mat &image, double gain)
{
    if (gain == 1.0)
        return;
    cv::Mat table(1, 256, CV_8UC1);
    for (int i = 0; i < 256; ++i)
        table.at<unsigned char>(i) = cv::saturate_cast<unsigned char>(i * gain);
    cv::LUT(image, table, image);
}

/// A flat texel for lanes that have none of a surface.
const Texture::Level &blankLevel()
{
    static const std::uint8_t grey[4] = {0, 0, 0, 0};
    static const std::uint32_t rgb[4] = {0, 0, 0, 0};
    static const Texture::Level level{1, 2, grey, rgb};
    return level;
}

float stripe(float along, float perUnit)
{
    return perUnit > 0 && std::sin(along * perUnit * 6.2832F) > 0.45F ? 0.62F : 1.0F;
}

} // namespace

Renderer::Renderer(std::shared_ptr<const Scene> scene, std::shared_ptr<const CameraModel> model)
    : m_scene(std::move(scene))
    , m_rays(*model)
{
}

void Renderer::sortIntoTiles()
{
    m_tileItems.resize(m_rays.tiles().size());
    for (std::vector<int> &items : m_tileItems)
        items.clear();
    unsigned char touched[lanes];
    for (int index = 0; index < m_list.size(); ++index) {
        std::size_t tile = 0;
        for (const RayTable::BundleSet &set : m_rays.tileSets()) {
            if (m_list.isFlat(index))
                kernels::touch(set, m_list.flat(index), touched);
            else
                kernels::touch(set, m_list.round(index), touched);
            for (std::size_t i = 0; i < set.count; ++i, ++tile)
                if (touched[i])
                    m_tileItems[tile].push_back(index);
        }
    }
}

void Renderer::selectForTile(std::size_t position)
{
    const RayTable::Tile &tile = m_rays.tiles()[position];
    m_tileCandidates.clear();
    if (tile.bundle.empty)
        return;
    float cover = 0;
    for (const int index : m_tileItems[position])
        m_list.judge(index, tile.bundle, m_tileCandidates, cover);
    DrawList::dropHidden(m_tileCandidates, cover);
    m_touched.resize(m_tileCandidates.size() * lanes);
    unsigned char *touched = m_touched.data();
    for (const DrawList::Candidate &candidate : m_tileCandidates) {
        if (m_list.isFlat(candidate.index))
            kernels::touch(tile.set, m_list.flat(candidate.index), touched);
        else
            kernels::touch(tile.set, m_list.round(candidate.index), touched);
        touched += lanes;
    }
}

void Renderer::selectForBlock(const RayTable::Block &block, std::size_t position)
{
    m_candidates.clear();
    if (block.bundle.empty)
        return;
    float cover = 0;
    const unsigned char *touched = m_touched.data() + position;
    for (const DrawList::Candidate &candidate : m_tileCandidates) {
        if (*touched)
            m_list.judge(candidate.index, block.bundle, m_candidates, cover);
        touched += lanes;
    }
    DrawList::dropHidden(m_candidates, cover);
}

/// `visit(block)` runs with `m_candidates` being what the block may see.
template <typename Visit>
void Renderer::forEachBlock(const Pose &worldFromCamera, double t, const Visit &visit)
{
    m_list.build(*m_scene, worldFromCamera, t);
    sortIntoTiles();
    for (std::size_t k = 0; k < m_rays.tiles().size(); ++k) {
        selectForTile(k);
        const RayTable::Tile &tile = m_rays.tiles()[k];
        for (std::size_t i = 0; i < tile.set.count; ++i) {
            const RayTable::Block &block = m_rays.blocks()[tile.first + i];
            selectForBlock(block, i);
            visit(block);
        }
    }
}

const Texture::Level &Renderer::levelFor(const RayTable::Block &block, const DrawList::Flat &surface) const
{
    const float *axis = block.bundle.axis;
    const float inverse =
        surface.plane[0] * axis[0] + surface.plane[1] * axis[1] + surface.plane[2] * axis[2];
    const float clamped = std::clamp(inverse, 0.02F * surface.planeNorm, surface.nearest);
    // Between the pixel's footprint across and along the slant.
    const float slant = std::sqrt(surface.planeNorm / clamped);
    return (*m_textures)[surface.id].levelFor(block.pixelAngle / clamped * std::min(slant, 2.5F));
}

/// Finds what each ray of the block meets; `scaled` if textures are going to be read.
void Renderer::meet(const RayTable::Block &block, bool scaled)
{
    m_candidateLevels.clear();
    auto levelOf = [&](const DrawList::Flat &surface) {
        m_candidateLevels.push_back(scaled ? &levelFor(block, surface) : &blankLevel());
        return m_candidateLevels.back()->density;
    };
    if (oneCovers()) {
        const DrawList::Flat &surface = m_list.flat(m_candidates[0].index);
        kernels::meetAll(block, kernels::mappingOf(surface, levelOf(surface)), 0, *m_meeting);
        return;
    }
    // What covers the block, if anything does, needs no tests and so comes first.
    const auto covering = std::find_if(m_candidates.begin(), m_candidates.end(),
        [](const DrawList::Candidate &candidate) { return candidate.covers; });
    if (covering == m_candidates.end())
        kernels::clear(*m_meeting);
    else
        std::iter_swap(covering, m_candidates.begin());
    for (std::size_t k = 0; k < m_candidates.size(); ++k) {
        const auto which = static_cast<std::int32_t>(k);
        const int index = m_candidates[k].index;
        if (!m_list.isFlat(index)) {
            m_candidateLevels.push_back(&blankLevel());
            kernels::meetRound(block, m_list.round(index), which, *m_meeting, *m_spare);
            std::swap(m_meeting, m_spare);
            continue;
        }
        const DrawList::Flat &surface = m_list.flat(index);
        const kernels::Mapping mapping = kernels::mappingOf(surface, levelOf(surface));
        if (k == 0 && m_candidates[0].covers) {
            kernels::meetAll(block, mapping, which, *m_meeting);
            continue;
        }
        kernels::meetFlat(block, mapping, which, *m_meeting, *m_spare);
        std::swap(m_meeting, m_spare);
    }
}

int Renderer::prepareSampling(const RayTable::Block &block)
{
    meet(block, true);
    kernels::texelPositions(*m_meeting, m_at);
    if (oneCovers()) {
        m_levels[0] = m_candidateLevels[0];
        return 0;
    }
    for (std::size_t i = 0; i < lanes; ++i) {
        const std::int32_t which = m_meeting->which[i];
        m_levels[i] = which < 0 ? &blankLevel() : m_candidateLevels[static_cast<std::size_t>(which)];
    }
    return 1;
}

/// `put(lane, body, brightness)` for each lane that meets a round body.
template <typename Put>
void Renderer::shadeRounds(const RayTable::Block &block, const Put &put)
{
    kernels::Shade shade;
    for (std::size_t k = 0; k < m_candidates.size(); ++k) {
        const int index = m_candidates[k].index;
        const auto which = static_cast<std::int32_t>(k);
        if (m_list.isFlat(index)
            || std::find(m_meeting->which, m_meeting->which + lanes, which) == m_meeting->which + lanes)
            continue;
        const DrawList::Round &body = m_list.round(index);
        kernels::shade(block, body, *m_meeting, shade);
        for (std::size_t i = 0; i < lanes; ++i)
            if (m_meeting->which[i] == which)
                put(i, body, 255 * shade.light[i] * stripe(shade.along[i], body.stripes));
    }
}

short Renderer::idOf(std::int32_t which) const
{
    if (which < 0)
        return -1;
    const int index = m_candidates[static_cast<std::size_t>(which)].index;
    return static_cast<short>(m_list.isFlat(index) ? m_list.flat(index).id : m_list.round(index).id);
}

void Renderer::depth(const Pose &worldFromCamera, double t, cv::Mat &z, cv::Mat *surface)
{
    const cv::Size size = m_rays.size();
    z.create(size, CV_32FC1);
    if (surface)
        surface->create(size, CV_16SC1);
    alignas(32) float depths[lanes];
    short ids[lanes];
    forEachBlock(worldFromCamera, t, [&](const RayTable::Block &block) {
        meet(block, false);
        kernels::depths(block, *m_meeting, depths);
        forEachRow(block, size, [&](int lane, int count, int x, int y) {
            std::copy_n(depths + lane, count, z.ptr<float>(y) + x);
        });
        if (!surface)
            return;
        if (oneCovers())
            std::fill_n(ids, lanes, idOf(0));
        else
            for (std::size_t i = 0; i < lanes; ++i)
                ids[i] = idOf(m_meeting->which[i]);
        forEachRow(block, size, [&](int lane, int count, int x, int y) {
            std::copy_n(ids + lane, count, surface->ptr<short>(y) + x);
        });
    });
}

void Renderer::grey(const Pose &worldFromCamera, double t, cv::Mat &out, double gain)
{
    if (!m_textures)
        m_textures = Textures::of(*m_scene);
    const cv::Size size = m_rays.size();
    out.create(size, CV_8UC1);
    alignas(32) std::uint8_t pixels[lanes];
    forEachBlock(worldFromCamera, t, [&](const RayTable::Block &block) {
        const int stride = prepareSampling(block);
        kernels::sampleGrey(m_at, m_levels, stride, pixels);
        if (stride)
            shadeRounds(block, [&](std::size_t lane, const DrawList::Round &body, float light) {
                const float grey = 0.299F * body.color[0] + 0.587F * body.color[1] + 0.114F * body.color[2];
                pixels[lane] = cv::saturate_cast<std::uint8_t>(grey * light);
            });
        forEachRow(block, size, [&](int lane, int count, int x, int y) {
            std::copy_n(pixels + lane, count, out.ptr<std::uint8_t>(y) + x);
        });
    });
    applyGain(out, gain);
}

void Renderer::color(const Pose &worldFromCamera, double t, cv::Mat &rgb, double gain)
{
    if (!m_textures)
        m_textures = Textures::of(*m_scene);
    const cv::Size size = m_rays.size();
    rgb.create(size, CV_8UC3);
    alignas(32) std::uint32_t pixels[lanes];
    forEachBlock(worldFromCamera, t, [&](const RayTable::Block &block) {
        const int stride = prepareSampling(block);
        kernels::sampleRgb(m_at, m_levels, stride, pixels);
        if (stride)
            shadeRounds(block, [&](std::size_t lane, const DrawList::Round &body, float light) {
                std::uint32_t pixel = 0;
                for (int c = 2; c >= 0; --c)
                    pixel = pixel << 8 | cv::saturate_cast<std::uint8_t>(body.color[c] * light);
                pixels[lane] = pixel;
            });
        forEachRow(block, size, [&](int lane, int count, int x, int y) {
            std::uint8_t *to = rgb.ptr<std::uint8_t>(y) + std::ptrdiff_t(3) * x;
            for (int i = 0; i < count; ++i, to += 3) {
                const std::uint32_t pixel = pixels[lane + i];
                to[0] = static_cast<std::uint8_t>(pixel);
                to[1] = static_cast<std::uint8_t>(pixel >> 8);
                to[2] = static_cast<std::uint8_t>(pixel >> 16);
            }
        });
    });
    applyGain(rgb, gain);
}

} // namespace sim
