#pragma once

#include <cstddef>
#include <opencv2/core.hpp>
#include <string>

namespace sim {

/// How colour pictures are packed, with the contract's numbers.
enum class ColorCodec : int { Yuyv = 0, Yuv420p = 1, Jpeg = 2 };

/// By the names of the configuration: "yuyv", "yuv420p", "jpeg"; the fallback, with a complaint, for any
/// other, and without one for an empty name.
ColorCodec colorCodecByName(const std::string &name, ColorCodec fallback);

/// Bytes of a picture that isn't compressed; each half-sized plane or pair rounded up.
std::size_t packedSize(ColorCodec codec, cv::Size size);

} // namespace sim
