#pragma once

#include "device/qv/Records.h"
#include "ui/CaptureFiles.h"

#include <QImage>
#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <vector>

/// Records of the device library and saved pictures in one form: B, G, R, or grey for the fisheye cameras.
namespace ui {

inline cv::Mat matrixOf(const QImage &image)
{
    const QImage bgr = image.convertToFormat(QImage::Format_BGR888);
    return cv::Mat(
        bgr.height(), bgr.width(), CV_8UC3, const_cast<uchar *>(bgr.bits()), std::size_t(bgr.bytesPerLine()))
        .clone();
}

inline cv::Mat matrixOf(const qv::FisheyeImage &image)
{
    return cv::Mat(
        int(image.height), int(image.width), CV_8UC1, const_cast<unsigned char *>(image.data.get()));
}

inline cv::Mat matrixOf(const qv::ColorImage &image)
{
    cv::Mat bgr;
    const cv::Mat yuv(
        int(image.height) * 3 / 2, int(image.width), CV_8UC1, const_cast<unsigned char *>(image.data.get()));
    cv::cvtColor(yuv, bgr, cv::COLOR_YUV2BGR_I420);
    return bgr;
}

inline double metresAt(const qv::DepthImage &image, std::size_t pixel)
{
    if (image.type == 1)
        return reinterpret_cast<const float *>(image.data.get())[pixel];
    return reinterpret_cast<const std::int16_t *>(image.data.get())[pixel] / 1000.0;
}

/// The distance to the most similar of the pictures, see `captures::difference`, and the first one's index.
inline double nearest(const cv::Mat &picture, const std::vector<cv::Mat> &all, std::size_t *index = nullptr)
{
    double best = 256;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const double distance = captures::difference(picture, all[i]);
        if (distance < best && index)
            *index = i;
        best = std::min(best, distance);
    }
    return best;
}

} // namespace ui
