#pragma once

#include <cstddef>
#include <limits>

/// Whether a picture's sides and its size in bytes are numbers that the frame holder can carry.
inline bool isCarriable(std::size_t width, std::size_t height, std::size_t bytesPerPixel)
{
    constexpr std::size_t most = std::numeric_limits<int>::max();
    return width <= most && height <= most && (height == 0 || width <= most / height / bytesPerPixel);
}

/// Whether a record of the device has a picture, and a buffer that holds all of it.
template <class Record>
bool isWhole(const Record &record, std::size_t bytesPerPixel)
{
    return record.data && record.width > 0 && record.height > 0
        && isCarriable(record.width, record.height, bytesPerPixel)
        && record.dataSize >= record.width * record.height * bytesPerPixel;
}
