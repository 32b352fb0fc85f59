#pragma once

#include "device/PointCloud.h"
#include "world/CameraModel.h"

#include <memory>
#include <mutex>

namespace sim {

/// Brings depth pictures into space: the rays of a lens, kept for the picture size that was asked for last.
/// Thread-safe.
class DepthRays {
public:
    explicit DepthRays(std::shared_ptr<const CameraModel> lens);

    /// The points of all pixels that have a reading, row by row; `depth` is CV_32FC1 in metres.
    std::shared_ptr<qv::PointCloud> cloud(const cv::Mat &depth);

private:
    std::shared_ptr<const cv::Mat> raysOf(cv::Size size);

    const std::shared_ptr<const CameraModel> m_lens;
    std::mutex m_mutex;
    std::shared_ptr<const cv::Mat> m_rays; ///< CV_32FC2: x and y at a depth of one metre
};

} // namespace sim
