#include "world/Renderer.h"

#include <opencv2/imgproc.hpp>

namespace sim {

struct Renderer::Work {
    std::vector<Eigen::Vector3d> rays;
};

Renderer::Renderer(std::shared_ptr<const Scene> scene, std::shared_ptr<const CameraModel> model)
    : m_scene(std::move(scene))
    , m_model(std::move(model))
    , m_work(std::make_unique<Work>())
{
    const cv::Size size = m_model->size();
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            m_work->rays.push_back(m_model->unproject({x, y}));
}

Renderer::~Renderer() = default;

void Renderer::depth(const Pose &worldFromCamera, double t, cv::Mat &z, cv::Mat *surface)
{
    z.create(m_model->size(), CV_32FC1);
    if (surface)
        surface->create(m_model->size(), CV_16SC1);
    std::size_t i = 0;
    for (int y = 0; y < z.rows; ++y) {
        for (int x = 0; x < z.cols; ++x, ++i) {
            const Eigen::Vector3d &ray = m_work->rays[i];
            std::optional<Hit> hit;
            if (!ray.isZero())
                hit = m_scene->cast(worldFromCamera.translation(), worldFromCamera.linear() * ray, t);
            z.at<float>(y, x) = hit ? static_cast<float>(hit->distance * ray.z()) : 0;
            if (surface)
                surface->at<short>(y, x) = static_cast<short>(hit ? hit->surface : -1);
        }
    }
}

void Renderer::grey(const Pose &worldFromCamera, double t, cv::Mat &out, double gain)
{
    cv::Mat rgb;
    color(worldFromCamera, t, rgb, gain);
    cv::cvtColor(rgb, out, cv::COLOR_RGB2GRAY);
}

void Renderer::color(const Pose &worldFromCamera, double t, cv::Mat &rgb, double gain)
{
    rgb.create(m_model->size(), CV_8UC3);
    std::size_t i = 0;
    for (int y = 0; y < rgb.rows; ++y) {
        for (int x = 0; x < rgb.cols; ++x, ++i) {
            const Eigen::Vector3d &ray = m_work->rays[i];
            std::optional<Hit> hit;
            if (!ray.isZero())
                hit = m_scene->cast(worldFromCamera.translation(), worldFromCamera.linear() * ray, t);
            double value = 0;
            if (hit) {
                const int tile = int(hit->uv.x() / 0.1) + int(hit->uv.y() / 0.1) + hit->surface * 5;
                value = (0.55 + 0.25 * hit->normal.dot(Eigen::Vector3d(0.3, -0.8, -0.52)))
                    * (tile % 2 ? 200 : 255);
            }
            const auto byte = cv::saturate_cast<unsigned char>(value * gain);
            rgb.at<cv::Vec3b>(y, x) = cv::Vec3b(byte, byte, byte);
        }
    }
}

} // namespace sim
