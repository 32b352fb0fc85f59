#pragma once

#include "world/DrawList.h"
#include "world/RayTable.h"
#include "world/Texture.h"

#include <cstdint>

namespace sim::kernels {

constexpr std::size_t lanes = RayTable::lanes;
/// Texture coordinates are in 1/256 of a texel, from the outer corner of a texture's margin.
constexpr float subTexel = 256;

/// What each ray of a block meets: 1/t, texture coordinates divided by t, and which candidate, -1 for none.
struct Meeting {
    alignas(32) float inverse[lanes];
    alignas(32) float u[lanes];
    alignas(32) float v[lanes];
    alignas(32) std::int32_t which[lanes];
};

/// A surface's linear forms with the texture's scale in them.
struct Mapping {
    float plane[3];
    float u[3];
    float v[3];
    float lowest; ///< of u and v at the surface's left and top
    float highestU;
    float highestV;
};

struct TexelPositions {
    alignas(32) std::int32_t u[lanes];
    alignas(32) std::int32_t v[lanes];
};

/// Light on round bodies: 0 to about 1.2, and where along the body's own y the ray meets it.
struct Shade {
    alignas(32) float light[lanes];
    alignas(32) float along[lanes];
};

/// Which bundles of a set may touch a thing at all: a quick test that errs on the side of yes.
void touch(const RayTable::BundleSet &set, const DrawList::Flat &surface, unsigned char *out);
void touch(const RayTable::BundleSet &set, const DrawList::Round &body, unsigned char *out);

Mapping mappingOf(const DrawList::Flat &surface, float density);
void clear(Meeting &meeting);
/// All rays meet the surface.
void meetAll(const RayTable::Block &block, const Mapping &mapping, int which, Meeting &meeting);
/// Those rays meet it that hit it nearer than what they met before. Not in place: a store under a mask is
/// slow.
void meetFlat(
    const RayTable::Block &block, const Mapping &mapping, int which, const Meeting &before, Meeting &meeting);
void meetRound(const RayTable::Block &block, const DrawList::Round &body, int which, const Meeting &before,
    Meeting &meeting);
void texelPositions(const Meeting &meeting, TexelPositions &out);
void shade(const RayTable::Block &block, const DrawList::Round &body, const Meeting &meeting, Shade &out);

/// `levels[i]` is the texture of lane i; one for all if `stride` is 0.
void sampleGrey(const TexelPositions &at, const Texture::Level *const *levels, int stride, std::uint8_t *out);
void sampleRgb(const TexelPositions &at, const Texture::Level *const *levels, int stride, std::uint32_t *out);

/// z-depth out of 1/t.
void depths(const RayTable::Block &block, const Meeting &meeting, float *out);

} // namespace sim::kernels
