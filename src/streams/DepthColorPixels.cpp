#include "streams/DepthColorPixels.h"

#include <cstring>

void unpackColor(const unsigned char *pixels, std::size_t count, unsigned char *colors)
{
    constexpr std::size_t pixelBytes = 7;
    constexpr std::size_t colorBytes = 3;
    if (count == 0)
        return;
    // Four bytes at a time: the fourth is overwritten by the next pixel.
    for (std::size_t i = 0; i + 1 < count; ++i)
        std::memcpy(colors + colorBytes * i, pixels + pixelBytes * i, 4);
    std::memcpy(colors + colorBytes * (count - 1), pixels + pixelBytes * (count - 1), colorBytes);
}
