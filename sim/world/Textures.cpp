#include "world/Textures.h"

#include "world/Lighting.h"
#include "world/Painter.h"

#include <map>
#include <mutex>
#include <opencv2/imgproc.hpp>

namespace sim {

Textures::Textures(const Scene &scene)
{
    const Lighting lighting(scene.room());
    for (const Surface &surface : scene.surfaces()) {
        Painter painter(surface, scene.seed());
        cv::Mat image = painter.paint();
        if (!Painter::isLuminous(surface.paint)) {
            cv::Mat light;
            cv::resize(lighting.over(surface), light, image.size(), 0, 0, cv::INTER_LINEAR);
            cv::merge(std::vector<cv::Mat>(3, light), light);
            cv::multiply(image, light, image, 1, CV_8U);
        }
        m_textures.emplace_back(image, painter.density());
    }
}

std::shared_ptr<const Textures> Textures::of(const Scene &scene)
{
    static std::mutex mutex;
    static std::map<unsigned, std::weak_ptr<const Textures>> known;
    static std::shared_ptr<const Textures> last;
    const std::lock_guard<std::mutex> lock(mutex);
    std::weak_ptr<const Textures> &entry = known[scene.seed()];
    std::shared_ptr<const Textures> out = entry.lock();
    if (!out) {
        out = std::make_shared<Textures>(scene);
        entry = out;
    }
    last = out;
    return out;
}

} // namespace sim
