#pragma once

#include "device/qv/Records.h"
#include "streams/BufferPool.h"

/// Samples outside these limits, in millimetres, are holes.
struct HoleLimits {
    unsigned short min = 200;
    unsigned short max = 10000;

    bool isHole(unsigned short sample) const { return sample < min || sample > max; }
};

/// Closes the small holes of 16-bit depth maps. A hole that the closing of the valid pixels covers, twice
/// with an ellipse about as large as the window, takes the upper median of the valid samples around it.
class HoleFiller {
public:
    /// `frame` holds `width * height` samples of 16 bits. `size` is the radius of the window in pixels: it
    /// reaches from -size up to, but not including, size. With a size of 0 the answer shares the frame's
    /// buffer. The window's bound takes in the column and the row just past the frame: the first sample of
    /// the next row stands there, and zeros past the last one. Throws `cv::Exception` for a size that is out
    /// of all reason.
    qv::SgbmImage fillHoles(const qv::SgbmImage &frame, const HoleLimits &limits, float size);

private:
    BufferPool m_buffers;
};
