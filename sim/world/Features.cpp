#include "world/Features.h"

#include <random>

namespace sim {

Features::Features(std::shared_ptr<const Scene> scene, unsigned seed)
    : m_scene(std::move(scene))
{
    std::mt19937 random(seed);
    auto unit = [&random] { return static_cast<double>(random() >> 8) / double(1 << 24); };
    double area = 0;
    for (const Surface &surface : m_scene->surfaces())
        area += surface.width * surface.height;
    for (const Surface &surface : m_scene->surfaces()) {
        const int count = 2 + static_cast<int>(22000 * surface.width * surface.height / area);
        for (int i = 0; i < count; ++i) {
            const double a = surface.width * unit();
            const double b = surface.height * unit();
            m_all.push_back({static_cast<int>(m_all.size()), surface.at(a, b), surface.id});
        }
    }
}

std::vector<std::pair<int, Eigen::Vector2f>> Features::visible(
    const CameraModel &model, const Pose &worldFromCamera, double t, std::size_t limit) const
{
    std::vector<std::pair<int, Eigen::Vector2f>> out;
    const Pose cameraFromWorld = worldFromCamera.inverse();
    const cv::Size size = model.size();
    // A stride through the points that is coprime to any count near theirs: a fixed order that mixes the
    // surfaces.
    const std::size_t stride = 7919;
    for (std::size_t i = 0; i < m_all.size() && out.size() < limit; ++i) {
        const Feature &feature = m_all[i * stride % m_all.size()];
        const auto pixel = model.project(cameraFromWorld * feature.position);
        if (!pixel || pixel->x() < 0 || pixel->y() < 0 || pixel->x() > size.width - 1
            || pixel->y() > size.height - 1)
            continue;
        if (m_scene->sees(worldFromCamera.translation(), feature.position, t))
            out.emplace_back(feature.id, pixel->cast<float>());
    }
    return out;
}

} // namespace sim
