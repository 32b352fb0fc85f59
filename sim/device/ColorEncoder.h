#pragma once

#include "core/BufferPool.h"
#include "device/ColorCodec.h"
#include "device/qv/Records.h"

#include <vector>

namespace sim {

/// Brings a rendered picture to the size and the packing of a colour camera's frames. Colour goes by BT.601
/// with head and foot room (16 to 235), as cameras send it. One thread at a time.
class ColorEncoder {
public:
    explicit ColorEncoder(ColorCodec codec);

    /// `rgb`: CV_8UC3, red first, of any size; `size` is that of the frame. Fills the record's picture.
    void encode(const cv::Mat &rgb, cv::Size size, qv::ColorImage &record);

private:
    void split(const cv::Mat &rgb);
    void encodeYuyv(cv::Size size, unsigned char *to);
    void encodeYuv420p(cv::Size size, unsigned char *to);
    void encodeJpeg(const cv::Mat &rgb, cv::Size size, qv::ColorImage &record);

    const ColorCodec m_codec;
    BufferPool m_pool;
    cv::Mat m_y;
    cv::Mat m_u;
    cv::Mat m_v;
    cv::Mat m_fullY;
    cv::Mat m_fullU;
    cv::Mat m_fullV;
    cv::Mat m_bgr;
    std::vector<unsigned char> m_jpeg;
};

} // namespace sim
