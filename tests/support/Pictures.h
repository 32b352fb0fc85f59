#pragma once

#include "device/qv/Records.h"

#include <cstring>
#include <functional>

/// Buffers for the records of the image streams.
namespace pictures {

using Buffer = std::shared_ptr<const unsigned char>;

/// A shared copy of `count` values.
template <class Value>
Buffer bufferOf(const Value *values, std::size_t count)
{
    std::shared_ptr<unsigned char> buffer(
        new unsigned char[count * sizeof(Value)], std::default_delete<unsigned char[]>());
    if (count > 0)
        std::memcpy(buffer.get(), values, count * sizeof(Value));
    return buffer;
}

template <class Value>
Buffer bufferOf(const std::vector<Value> &values)
{
    return bufferOf(values.data(), values.size());
}

/// `width * height` bytes, all of one grey.
inline Buffer grey(std::size_t width, std::size_t height, unsigned char value)
{
    return bufferOf(std::vector<unsigned char>(width * height, value));
}

inline qv::FisheyeImage fisheye(std::size_t width, std::size_t height, unsigned char value)
{
    return {width, height, grey(width, height, value)};
}

inline qv::FisheyeImages fisheyes(std::vector<qv::FisheyeImage> images)
{
    qv::FisheyeImages record;
    record.images = std::move(images);
    return record;
}

} // namespace pictures
