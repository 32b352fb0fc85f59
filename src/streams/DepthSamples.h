#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <optional>

/// Reading depth out of frames. Whatever is asked for, only the samples of the frame are touched.

/// A box of frame pixels; it may reach past the frame.
struct PixelBox {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// Where a pixel stands in a frame, counted through the rows.
inline std::int64_t pixelIndex(int x, int y, int width)
{
    return std::int64_t(y) * width + x;
}

/// The samples of one frame, rows packed, at any address.
template <class Sample>
class DepthSamples {
public:
    DepthSamples(const unsigned char *bytes, int width, int height)
        : m_bytes(bytes)
        , m_width(width)
        , m_height(height)
    {
    }

    /// `index` counts through the rows; nothing for one that is outside the frame.
    std::optional<Sample> at(std::int64_t index) const
    {
        if (index < 0 || index >= std::int64_t(m_width) * m_height)
            return std::nullopt;
        return sample(index);
    }

    /// Sum of all samples of the box that the frame has, by the number of those that aren't 0; times `scale`.
    template <class Sum>
    double mean(const PixelBox &box, double scale) const
    {
        Sum sum = 0;
        std::int64_t count = 0;
        const std::int64_t left = std::max(box.x, 0), top = std::max(box.y, 0);
        const std::int64_t right = std::min<std::int64_t>(std::int64_t(box.x) + box.width, m_width);
        const std::int64_t bottom = std::min<std::int64_t>(std::int64_t(box.y) + box.height, m_height);
        for (std::int64_t row = top; row < bottom; ++row) {
            for (std::int64_t column = left; column < right; ++column) {
                const Sample value = sample(row * m_width + column);
                sum += value;
                count += value != Sample(0);
            }
        }
        return double(sum) * scale / double(std::max<std::int64_t>(count, 1));
    }

private:
    Sample sample(std::int64_t index) const
    {
        Sample value;
        std::memcpy(&value, m_bytes + index * std::int64_t(sizeof(Sample)), sizeof(Sample));
        return value;
    }

    const unsigned char *m_bytes;
    int m_width;
    int m_height;
};

/// True on every twentieth call: an average costs more than the eye could follow. Thread-safe.
class EveryTwentieth {
public:
    bool operator()() { return m_calls.fetch_add(1, std::memory_order_relaxed) % 20 == 19; }

private:
    std::atomic<unsigned int> m_calls{0};
};
