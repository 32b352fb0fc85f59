#include "streams/HoleFiller.h"

#include "streams/Truncate.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <opencv2/core/hal/intrin.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace {

using Key = std::int16_t;

constexpr Key noKey = std::numeric_limits<Key>::max();
constexpr int keyLanes = cv::v_int16x8::nlanes;
/// More keys than that overflow a lane's count.
constexpr int mostCounted = keyLanes * std::numeric_limits<Key>::max();

/// The samples of a frame as keys that sort like them, with `noKey` for every hole and for everything
/// outside. Where the top of the range is no hole, but the bottom is, the order is turned round to set
/// `noKey` free.
class KeyPlane {
public:
    KeyPlane(const unsigned short *samples, int width, int height, const HoleLimits &limits, int radius)
        : m_stride(width + 1 + 2 * radius)
        , m_turned(!limits.isHole(0xFFFF))
        , m_keys(std::size_t(m_stride) * std::size_t(height + 1 + 2 * radius), noKey)
    {
        for (int y = 0; y < height; ++y) {
            Key *keys = &m_keys[std::size_t((y + radius) * m_stride + radius)];
            const unsigned short *row = samples + std::size_t(y) * std::size_t(width);
            for (int x = 0; x < width; ++x)
                keys[x] = key(row[x], limits);
            keys[width] = key(y + 1 < height ? row[width] : 0, limits);
        }
        Key *past = &m_keys[std::size_t((height + radius) * m_stride + radius)];
        std::fill_n(past, width + 1, key(0, limits));
    }

    /// First key of the window around a pixel.
    const Key *window(int x, int y) const { return &m_keys[std::size_t(y * m_stride + x)]; }
    int stride() const { return m_stride; }
    bool isTurned() const { return m_turned; }

    unsigned short sample(Key key) const { return static_cast<unsigned short>((key ^ 0x8000) ^ turn()); }

private:
    unsigned short turn() const { return m_turned ? 0xFFFF : 0; }

    Key key(unsigned short sample, const HoleLimits &limits) const
    {
        return limits.isHole(sample) ? noKey : static_cast<Key>((sample ^ turn()) ^ 0x8000);
    }

    int m_stride;
    bool m_turned;
    std::vector<Key> m_keys;
};

/// The keys of one window, packed into vectors: first those that fill whole ones, row by row, then the rest
/// of each row in pairs, filled up with `noKey`. The side is an even number.
class Window {
public:
    explicit Window(int side)
        : m_side(side)
        , m_wholeLanes(side / keyLanes * keyLanes)
        , m_count((side * side + keyLanes - 1) / keyLanes * keyLanes)
        , m_keys(std::size_t(m_count), noKey)
    {
    }

    void gather(const KeyPlane &plane, int x, int y)
    {
        const Key *from = plane.window(x, y);
        Key *whole = m_keys.data(), *rest = whole + m_side * m_wholeLanes;
        for (int row = 0; row < m_side; ++row, from += plane.stride()) {
            int column = 0;
            for (; column < m_wholeLanes; column += keyLanes, whole += keyLanes)
                cv::v_store(whole, cv::v_load(from + column));
            for (; column < m_side; column += 2, rest += 2)
                std::memcpy(rest, from + column, 2 * sizeof(Key));
        }
    }

    /// Number, lowest and highest of the keys that are one.
    struct Summary {
        int count;
        Key lowest;
        Key highest;
    };

    Summary summary() const
    {
        const cv::v_int16x8 none = cv::v_setall_s16(noKey),
                            least = cv::v_setall_s16(std::numeric_limits<Key>::min());
        cv::v_int16x8 missing = cv::v_setzero_s16(), lowest = none, highest = least;
        for (int i = 0; i < m_count; i += keyLanes) {
            const cv::v_int16x8 keys = cv::v_load(&m_keys[std::size_t(i)]);
            const cv::v_int16x8 isNone = keys == none;
            missing = cv::v_sub_wrap(missing, isNone);
            lowest = cv::v_min(lowest, keys);
            highest = cv::v_max(highest, cv::v_select(isNone, least, keys));
        }
        return {m_count - sum(missing), cv::v_reduce_min(lowest), cv::v_reduce_max(highest)};
    }

    /// The key that has `rank` keys before it, found by halving the range between the two ends. `guess` is
    /// where to begin: neighbours look alike.
    Key select(int rank, Key lowest, Key highest, Key guess) const
    {
        int low = lowest, high = highest, step = firstStep;
        int probe = std::clamp<int>(guess, low, high);
        while (low < high) {
            const bool isUp = countUpTo(Key(probe)) <= rank;
            if (isUp)
                low = probe + 1;
            else
                high = probe;
            // Away from the guess in growing steps, until these are no better than halving.
            const int middle = (low + high) >> 1;
            probe = isUp ? std::min(low + step, middle) : std::max(high - step, middle);
            step = std::min(4 * step, widestStep);
        }
        return Key(low);
    }

private:
    static constexpr int firstStep = 16;
    static constexpr int widestStep = 65536;

    static int sum(const cv::v_int16x8 &lanes)
    {
        return cv::v_reduce_sum(cv::v_dotprod(lanes, cv::v_setall_s16(1)));
    }

    int countUpTo(Key limit) const
    {
        const cv::v_int16x8 limits = cv::v_setall_s16(limit);
        cv::v_int16x8 beyond = cv::v_setzero_s16();
        for (int i = 0; i < m_count; i += keyLanes)
            beyond = cv::v_sub_wrap(beyond, cv::v_load(&m_keys[std::size_t(i)]) > limits);
        return m_count - sum(beyond);
    }

    int m_side;
    int m_wholeLanes;
    int m_count;
    std::vector<Key> m_keys;
};

/// 255 where a hole is to be filled.
cv::Mat holesToFill(
    const unsigned short *samples, int width, int height, const HoleLimits &limits, float size)
{
    cv::Mat valid(height, width, CV_8UC1);
    for (std::size_t i = 0, count = valid.total(); i < count; ++i)
        valid.data[i] = limits.isHole(samples[i]) ? 0 : 0xFF;
    const int side = 2 * int((size + 1) * 0.5F) + 1;
    const cv::Mat kernel =
        cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(side, side), cv::Point(-1, -1));
    cv::Mat closed, holes;
    cv::morphologyEx(valid, closed, cv::MORPH_CLOSE, kernel, cv::Point(-1, -1), 2, cv::BORDER_CONSTANT);
    cv::bitwise_not(valid, valid);
    cv::bitwise_and(closed, valid, holes);
    return holes;
}

} // namespace

qv::SgbmImage HoleFiller::fillHoles(const qv::SgbmImage &frame, const HoleLimits &limits, float size)
{
    const int radius = truncated(size);
    if (radius <= 0)
        return frame;
    // Before the ellipse is made, which would take as much memory as the window has pixels.
    const std::int64_t side = 2 * std::int64_t(radius);
    CV_Assert(side * side <= mostCounted);
    const int width = int(frame.width), height = int(frame.height);
    const std::size_t bytes = frame.width * frame.height * sizeof(unsigned short);
    const std::shared_ptr<unsigned char> buffer = m_buffers.take(bytes);
    std::memcpy(buffer.get(), frame.data.get(), bytes);
    auto *samples = reinterpret_cast<unsigned short *>(buffer.get());

    const cv::Mat holes = holesToFill(samples, width, height, limits, size);
    const KeyPlane plane(samples, width, height, limits, radius);
    Window window{int(side)};
    Key median = 0;
    for (int y = 0; y < height; ++y) {
        const unsigned char *hole = holes.ptr(y);
        for (int x = 0; x < width; ++x) {
            if (!hole[x])
                continue;
            window.gather(plane, x, y);
            const Window::Summary keys = window.summary();
            if (keys.count == 0)
                continue;
            const int rank = plane.isTurned() ? keys.count - 1 - keys.count / 2 : keys.count / 2;
            median = window.select(rank, keys.lowest, keys.highest, median);
            samples[y * width + x] = plane.sample(median);
        }
    }
    qv::SgbmImage filled = frame;
    filled.data = buffer;
    filled.dataSize = static_cast<unsigned int>(bytes);
    return filled;
}
