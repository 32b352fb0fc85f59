#include "device/DepthRays.h"

#include <cmath>
#include <limits>

namespace sim {

DepthRays::DepthRays(std::shared_ptr<const CameraModel> lens)
    : m_lens(std::move(lens))
{
}

std::shared_ptr<qv::PointCloud> DepthRays::cloud(const cv::Mat &depth)
{
    const std::shared_ptr<const cv::Mat> rays = raysOf(depth.size());
    auto cloud = std::make_shared<qv::PointCloud>();
    cloud->points.reserve(depth.total());
    for (int y = 0; y < depth.rows; ++y) {
        const auto *z = depth.ptr<float>(y);
        const auto *ray = rays->ptr<cv::Vec2f>(y);
        for (int x = 0; x < depth.cols; ++x) {
            // Lenses have no ray in some corners, and records of others may hold anything.
            if (z[x] > 0 && std::isfinite(z[x] * ray[x][0]) && std::isfinite(z[x] * ray[x][1]))
                cloud->points.push_back({z[x] * ray[x][0], z[x] * ray[x][1], z[x]});
        }
    }
    return cloud;
}

std::shared_ptr<const cv::Mat> DepthRays::raysOf(cv::Size size)
{
    const std::lock_guard lock(m_mutex);
    if (m_rays && m_rays->size() == size)
        return m_rays;
    const std::shared_ptr<CameraModel> lens = m_lens->scaled(size.width, size.height);
    auto rays = std::make_shared<cv::Mat>(size, CV_32FC2);
    const float none = std::numeric_limits<float>::quiet_NaN();
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const Eigen::Vector3d ray = lens->unproject({x, y});
            rays->at<cv::Vec2f>(y, x) = ray.z() > 0
                ? cv::Vec2f(static_cast<float>(ray.x() / ray.z()), static_cast<float>(ray.y() / ray.z()))
                : cv::Vec2f(none, none);
        }
    }
    m_rays = rays;
    return m_rays;
}

} // namespace sim
