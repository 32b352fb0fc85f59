#pragma once

#include "imaging/ImageData.h"

/// Converts a frame of type `YUYV` or `YUV420p` to packed R, G, B. False, with `rgb` in any state, if the
/// frame is of another type, shorter than its size says, or more than swscale can do.
bool yuvToRgb(const ImageData::Frame &frame, unsigned char *rgb, int bytesPerLine);
