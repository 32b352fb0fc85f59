#include "world/Kernels.h"

#include <cmath>
#include <cstring>

// One version with wider registers is built where the compiler can choose at load time. Both give the same
// bits: contraction into fused operations stays off. Sanitizers don't stand the choice.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__)        \
    && !defined(__SANITIZE_THREAD__)
#define QVSIM_WIDE __attribute__((target_clones("avx2", "default")))
#else
#define QVSIM_WIDE
#endif

namespace sim::kernels {

QVSIM_WIDE void touch(const RayTable::BundleSet &set, const DrawList::Flat &s, unsigned char *out)
{
    alignas(32) float outside[lanes];
    for (std::size_t i = 0; i < lanes; ++i)
        outside[i] = set.reach[i];
    for (int k = 0; k < 4; ++k) {
        const float x = s.edgeX[k];
        const float y = s.edgeY[k];
        const float z = s.edgeZ[k];
        for (std::size_t i = 0; i < lanes; ++i) {
            const float value = x * set.axisX[i] + y * set.axisY[i] + z * set.axisZ[i] + set.reach[i];
            outside[i] = value < outside[i] ? value : outside[i];
        }
    }
    for (std::size_t i = 0; i < lanes; ++i)
        out[i] = outside[i] >= 0 ? 1 : 0;
}

QVSIM_WIDE void touch(const RayTable::BundleSet &set, const DrawList::Round &body, unsigned char *out)
{
    const bool wide = body.sine >= 1;
    for (std::size_t i = 0; i < lanes; ++i) {
        const float toward =
            body.axis[0] * set.axisX[i] + body.axis[1] * set.axisY[i] + body.axis[2] * set.axisZ[i];
        const float limit = body.cosine * set.cosine[i] - body.sine * set.sine[i];
        out[i] = static_cast<unsigned char>((toward >= limit) | wide);
    }
}

Mapping mappingOf(const DrawList::Flat &surface, float density)
{
    // Texel centres are half a texel in; the margin adds one texel.
    constexpr float lowest = 0.5F * subTexel;
    const float scale = density * subTexel;
    Mapping out;
    for (int k = 0; k < 3; ++k) {
        out.plane[k] = surface.plane[k];
        out.u[k] = surface.right[k] * scale + lowest * surface.plane[k];
        out.v[k] = surface.down[k] * scale + lowest * surface.plane[k];
    }
    out.lowest = lowest;
    out.highestU = surface.width * scale + lowest;
    out.highestV = surface.height * scale + lowest;
    return out;
}

void clear(Meeting &meeting)
{
    for (std::size_t i = 0; i < lanes; ++i) {
        meeting.inverse[i] = 0;
        meeting.u[i] = 0;
        meeting.v[i] = 0;
        meeting.which[i] = -1;
    }
}

QVSIM_WIDE void meetAll(const RayTable::Block &block, const Mapping &m, int which, Meeting &meeting)
{
    for (std::size_t i = 0; i < lanes; ++i) {
        const float x = block.x[i];
        const float y = block.y[i];
        const float z = block.z[i];
        meeting.inverse[i] = m.plane[0] * x + m.plane[1] * y + m.plane[2] * z;
        meeting.u[i] = m.u[0] * x + m.u[1] * y + m.u[2] * z;
        meeting.v[i] = m.v[0] * x + m.v[1] * y + m.v[2] * z;
        meeting.which[i] = which;
    }
}

QVSIM_WIDE void meetFlat(
    const RayTable::Block &block, const Mapping &m, int which, const Meeting &before, Meeting &meeting)
{
    const float lowest = m.lowest;
    const float highestU = m.highestU;
    const float highestV = m.highestV;
    for (std::size_t i = 0; i < lanes; ++i) {
        const float x = block.x[i];
        const float y = block.y[i];
        const float z = block.z[i];
        const float inverse = m.plane[0] * x + m.plane[1] * y + m.plane[2] * z;
        const float u = m.u[0] * x + m.u[1] * y + m.u[2] * z;
        const float v = m.v[0] * x + m.v[1] * y + m.v[2] * z;
        const float low = lowest * inverse;
        const bool hit = (inverse > before.inverse[i]) & (u >= low) & (v >= low) & (u <= highestU * inverse)
            & (v <= highestV * inverse);
        meeting.inverse[i] = hit ? inverse : before.inverse[i];
        meeting.u[i] = hit ? u : before.u[i];
        meeting.v[i] = hit ? v : before.v[i];
        meeting.which[i] = hit ? which : before.which[i];
    }
}

QVSIM_WIDE void meetRound(const RayTable::Block &block, const DrawList::Round &body, int which,
    const Meeting &before, Meeting &meeting)
{
    const float *b = body.ball;
    const float *o = body.origin;
    const float beyond = body.offset;
    const float perOffset = 1 / body.offset;
    for (std::size_t i = 0; i < lanes; ++i) {
        const float x = block.x[i];
        const float y = block.y[i];
        const float z = block.z[i];
        const float p = b[0] * x + b[1] * y + b[2] * z;
        const float q = b[3] * x + b[4] * y + b[5] * z;
        const float r = b[6] * x + b[7] * y + b[8] * z;
        const float square = p * p + q * q + r * r;
        const float along = -(o[0] * p + o[1] * q + o[2] * r);
        const float discriminant = along * along - square * beyond;
        const float root = std::sqrt(discriminant > 0 ? discriminant : 0.0F);
        const float inverse = (along + root) * perOffset;
        const bool hit = (discriminant > 0) & (along > 0) & (inverse > before.inverse[i]);
        meeting.inverse[i] = hit ? inverse : before.inverse[i];
        meeting.u[i] = hit ? 0 : before.u[i];
        meeting.v[i] = hit ? 0 : before.v[i];
        meeting.which[i] = hit ? which : before.which[i];
    }
}

QVSIM_WIDE void texelPositions(const Meeting &meeting, TexelPositions &out)
{
    for (std::size_t i = 0; i < lanes; ++i) {
        const float inverse = meeting.inverse[i] > 0 ? meeting.inverse[i] : 1.0F;
        const float t = 1 / inverse;
        out.u[i] = static_cast<std::int32_t>(meeting.u[i] * t);
        out.v[i] = static_cast<std::int32_t>(meeting.v[i] * t);
    }
}

/// Light from the ceiling, some from the window's side and the rest from everywhere; the same constants as on
/// walls.
QVSIM_WIDE void shade(
    const RayTable::Block &block, const DrawList::Round &body, const Meeting &meeting, Shade &out)
{
    const float *b = body.ball;
    const float *o = body.origin;
    const float *w = body.worldNormal;
    for (std::size_t i = 0; i < lanes; ++i) {
        const float t = 1 / (meeting.inverse[i] > 0 ? meeting.inverse[i] : 1.0F);
        const float x = block.x[i] * t;
        const float y = block.y[i] * t;
        const float z = block.z[i] * t;
        const float p = o[0] + b[0] * x + b[1] * y + b[2] * z;
        const float q = o[1] + b[3] * x + b[4] * y + b[5] * z;
        const float r = o[2] + b[6] * x + b[7] * y + b[8] * z;
        const float nx = w[0] * p + w[1] * q + w[2] * r;
        const float ny = w[3] * p + w[4] * q + w[5] * r;
        const float nz = w[6] * p + w[7] * q + w[8] * r;
        const float norm = std::sqrt(nx * nx + ny * ny + nz * nz);
        const float above = (norm - ny) / (norm + norm + 1e-12F);
        const float beside = (norm + nx) / (norm + norm + 1e-12F);
        out.light[i] = 0.34F + 0.52F * above + 0.26F * beside * beside;
        out.along[i] = q;
    }
}

namespace {

struct Corners {
    alignas(32) std::uint16_t top[lanes]; ///< two neighbouring texels, the left one in the low byte
    alignas(32) std::uint16_t bottom[lanes];
};

} // namespace

QVSIM_WIDE static void blendGrey(const Corners &corners, const TexelPositions &at, std::uint8_t *out)
{
    alignas(32) std::uint16_t right[lanes];
    alignas(32) std::uint16_t low[lanes];
    for (std::size_t i = 0; i < lanes; ++i) {
        right[i] = static_cast<std::uint16_t>(at.u[i] & 255);
        low[i] = static_cast<std::uint16_t>(at.v[i] & 255);
    }
    for (std::size_t i = 0; i < lanes; ++i) {
        const std::uint16_t r = right[i];
        const std::uint16_t l = low[i];
        const auto left = static_cast<std::uint16_t>(256 - r);
        const auto high = static_cast<std::uint16_t>(256 - l);
        const auto a = static_cast<std::uint16_t>(
            static_cast<std::uint16_t>((corners.top[i] & 255) * left + (corners.top[i] >> 8) * r) >> 8);
        const auto b = static_cast<std::uint16_t>(
            static_cast<std::uint16_t>((corners.bottom[i] & 255) * left + (corners.bottom[i] >> 8) * r) >> 8);
        out[i] = static_cast<std::uint8_t>(static_cast<std::uint16_t>(a * high + b * l) >> 8);
    }
}

void sampleGrey(const TexelPositions &at, const Texture::Level *const *levels, int stride, std::uint8_t *out)
{
    Corners corners;
    auto pick = [&](std::size_t i, const std::uint8_t *grey, std::ptrdiff_t row) {
        const std::uint8_t *texel = grey + (at.v[i] >> 8) * row + (at.u[i] >> 8);
        std::memcpy(&corners.top[i], texel, 2);
        std::memcpy(&corners.bottom[i], texel + row, 2);
    };
    if (stride == 0) {
        const Texture::Level level = **levels;
        for (std::size_t i = 0; i < lanes; ++i)
            pick(i, level.grey, level.stride);
    } else {
        for (std::size_t i = 0; i < lanes; ++i)
            pick(i, levels[i]->grey, levels[i]->stride);
    }
    blendGrey(corners, at, out);
}

namespace {

/// The four texels about each lane's place, and the place between them, once for each channel.
struct Quads {
    alignas(32) std::uint32_t topLeft[lanes];
    alignas(32) std::uint32_t topRight[lanes];
    alignas(32) std::uint32_t bottomLeft[lanes];
    alignas(32) std::uint32_t bottomRight[lanes];
    alignas(32) std::uint64_t right[lanes];
    alignas(32) std::uint64_t low[lanes];
};

} // namespace

QVSIM_WIDE static void blendRgb(const Quads &quads, std::uint32_t *out)
{
    constexpr std::size_t count = 4 * lanes;
    const auto *topLeft = reinterpret_cast<const std::uint8_t *>(quads.topLeft);
    const auto *topRight = reinterpret_cast<const std::uint8_t *>(quads.topRight);
    const auto *bottomLeft = reinterpret_cast<const std::uint8_t *>(quads.bottomLeft);
    const auto *bottomRight = reinterpret_cast<const std::uint8_t *>(quads.bottomRight);
    alignas(32) std::uint16_t right[count];
    alignas(32) std::uint16_t low[count];
    std::memcpy(right, quads.right, sizeof right);
    std::memcpy(low, quads.low, sizeof low);
    alignas(32) std::uint8_t bytes[count];
    for (std::size_t i = 0; i < count; ++i) {
        const auto left = static_cast<std::uint16_t>(256 - right[i]);
        const auto high = static_cast<std::uint16_t>(256 - low[i]);
        const auto a = static_cast<std::uint16_t>(
            static_cast<std::uint16_t>(topLeft[i] * left + topRight[i] * right[i]) >> 8);
        const auto b = static_cast<std::uint16_t>(
            static_cast<std::uint16_t>(bottomLeft[i] * left + bottomRight[i] * right[i]) >> 8);
        bytes[i] = static_cast<std::uint8_t>(static_cast<std::uint16_t>(a * high + b * low[i]) >> 8);
    }
    std::memcpy(out, bytes, sizeof bytes);
}

void sampleRgb(const TexelPositions &at, const Texture::Level *const *levels, int stride, std::uint32_t *out)
{
    constexpr std::uint64_t each = 0x0001000100010001ULL;
    Quads quads;
    auto pick = [&](std::size_t i, const std::uint32_t *rgb, std::ptrdiff_t row) {
        const std::uint32_t *texel = rgb + (at.v[i] >> 8) * row + (at.u[i] >> 8);
        quads.topLeft[i] = texel[0];
        quads.topRight[i] = texel[1];
        quads.bottomLeft[i] = texel[row];
        quads.bottomRight[i] = texel[row + 1];
        quads.right[i] = static_cast<std::uint64_t>(at.u[i] & 255) * each;
        quads.low[i] = static_cast<std::uint64_t>(at.v[i] & 255) * each;
    };
    if (stride == 0) {
        const Texture::Level level = **levels;
        for (std::size_t i = 0; i < lanes; ++i)
            pick(i, level.rgb, level.stride);
    } else {
        for (std::size_t i = 0; i < lanes; ++i)
            pick(i, levels[i]->rgb, levels[i]->stride);
    }
    blendRgb(quads, out);
}

QVSIM_WIDE void depths(const RayTable::Block &block, const Meeting &meeting, float *out)
{
    for (std::size_t i = 0; i < lanes; ++i) {
        const float inverse = meeting.inverse[i];
        out[i] = inverse > 0 ? block.z[i] / inverse : 0.0F;
    }
}

} // namespace sim::kernels
