#include "world/Features.h"

#include "world/DrawList.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <numeric>
#include <opencv2/imgproc.hpp>
#include <random>

namespace sim {
namespace {

/// Each cell of this size, in metres, gives one point.
constexpr double cellSize = 0.092;

bool hides(const DrawList::Flat &surface, const float *ray, float inverse)
{
    const float own = surface.plane[0] * ray[0] + surface.plane[1] * ray[1] + surface.plane[2] * ray[2];
    if (own <= inverse)
        return false;
    const float a = surface.right[0] * ray[0] + surface.right[1] * ray[1] + surface.right[2] * ray[2];
    const float b = surface.down[0] * ray[0] + surface.down[1] * ray[1] + surface.down[2] * ray[2];
    return a >= 0 && b >= 0 && a <= surface.width * own && b <= surface.height * own;
}

bool hides(const DrawList::Round &body, const float *ray, float inverse)
{
    float square = 0;
    float along = 0;
    for (int row = 0; row < 3; ++row) {
        const float part =
            body.ball[3 * row] * ray[0] + body.ball[3 * row + 1] * ray[1] + body.ball[3 * row + 2] * ray[2];
        square += part * part;
        along -= part * body.origin[row];
    }
    const float discriminant = along * along - square * body.offset;
    return along > 0 && discriminant > 0 && along + std::sqrt(discriminant) > inverse * body.offset;
}

/// True if anything is met along the unit ray before `distance`, but for the last few millimetres.
bool isHidden(const DrawList &list, const Eigen::Vector3d &point)
{
    const double distance = point.norm();
    const float ray[3] = {static_cast<float>(point.x() / distance), static_cast<float>(point.y() / distance),
        static_cast<float>(point.z() / distance)};
    const auto inverse = static_cast<float>(1 / std::max(1e-3, distance - 0.004));
    for (const DrawList::Round &body : list.rounds())
        if (hides(body, ray, inverse))
            return true;
    return std::any_of(list.flats().begin(), list.flats().end(),
        [&](const DrawList::Flat &surface) { return hides(surface, ray, inverse); });
}

} // namespace

Features::Features(std::shared_ptr<const Scene> scene, unsigned seed)
    : m_scene(std::move(scene))
{
    const std::shared_ptr<const Textures> textures = Textures::of(*m_scene);
    std::vector<float> strengths;
    for (const Surface &surface : m_scene->surfaces())
        collect(surface, (*textures)[surface.id], strengths);

    // Strong corners tend to come first, but weaker ones get their turns all over the room.
    std::mt19937 random(seed);
    std::vector<double> keys;
    for (const float strength : strengths) {
        const double luck = (static_cast<double>(random() >> 8) + 1) / double(1 << 24);
        keys.push_back(std::log(luck) / (1e-5 + strength));
    }
    m_ranked.resize(m_all.size());
    std::iota(m_ranked.begin(), m_ranked.end(), std::size_t(0));
    std::stable_sort(
        m_ranked.begin(), m_ranked.end(), [&](std::size_t a, std::size_t b) { return keys[a] > keys[b]; });
}

std::shared_ptr<const Features> Features::of(const std::shared_ptr<const Scene> &scene)
{
    static std::mutex mutex;
    static std::shared_ptr<const Features> last;
    const std::lock_guard<std::mutex> lock(mutex);
    if (!last || last->m_scene->seed() != scene->seed())
        last = std::make_shared<Features>(scene);
    return last;
}

/// The strongest corner of each cell of a surface.
void Features::collect(const Surface &surface, const Texture &texture, std::vector<float> &strengths)
{
    const Texture::Level &level = texture.levels()[texture.levels().size() > 1 ? 1 : 0];
    const int width = std::max(1, static_cast<int>(surface.width * level.density));
    const int height = std::max(1, static_cast<int>(surface.height * level.density));
    // The texture is only read.
    const cv::Mat grey(height, width, CV_8UC1, const_cast<std::uint8_t *>(level.grey) + level.stride + 1,
        static_cast<std::size_t>(level.stride));
    cv::Mat corners;
    cv::cornerMinEigenVal(grey, corners, 3);
    const int columns = std::max(1, static_cast<int>(std::lround(surface.width / cellSize)));
    const int rows = std::max(1, static_cast<int>(std::lround(surface.height / cellSize)));
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const cv::Rect cell(cv::Point(width * column / columns, height * row / rows),
                cv::Point(width * (column + 1) / columns, height * (row + 1) / rows));
            if (cell.empty())
                continue;
            double strength = 0;
            cv::Point best;
            cv::minMaxLoc(corners(cell), nullptr, &strength, nullptr, &best);
            const double a = (cell.x + best.x + 0.5) / level.density;
            const double b = (cell.y + best.y + 0.5) / level.density;
            m_all.push_back({static_cast<int>(m_all.size()),
                surface.at(std::min(a, surface.width), std::min(b, surface.height)), surface.id});
            strengths.push_back(static_cast<float>(strength));
        }
    }
}

std::optional<Eigen::Vector2d> Features::pixelOf(const Feature &feature, const CameraModel &model,
    const Pose &worldFromCamera, const Pose &cameraFromWorld) const
{
    const Surface &surface = m_scene->surfaces()[static_cast<std::size_t>(feature.surface)];
    if (surface.normal.dot(worldFromCamera.translation() - feature.position) <= 1e-3)
        return std::nullopt;
    auto pixel = model.project(cameraFromWorld * feature.position);
    const cv::Size size = model.size();
    if (!pixel || pixel->x() < 0 || pixel->y() < 0 || pixel->x() > size.width - 1
        || pixel->y() > size.height - 1)
        return std::nullopt;
    return pixel;
}

std::vector<std::pair<int, Eigen::Vector2f>> Features::visible(
    const CameraModel &model, const Pose &worldFromCamera, double t, std::size_t limit) const
{
    std::vector<std::pair<int, Eigen::Vector2f>> out;
    DrawList list;
    list.build(*m_scene, worldFromCamera, t);
    const Pose cameraFromWorld = worldFromCamera.inverse();
    for (const std::size_t index : m_ranked) {
        if (out.size() >= limit)
            break;
        const Feature &feature = m_all[index];
        const auto pixel = pixelOf(feature, model, worldFromCamera, cameraFromWorld);
        if (pixel && !isHidden(list, cameraFromWorld * feature.position))
            out.emplace_back(feature.id, pixel->cast<float>());
    }
    return out;
}

std::vector<int> Features::explore(const CameraModel &model, const Pose &worldFromCamera, double t,
    const std::vector<bool> &known, std::size_t &cursor, std::size_t budget) const
{
    std::vector<int> out;
    DrawList list;
    list.build(*m_scene, worldFromCamera, t);
    const Pose cameraFromWorld = worldFromCamera.inverse();
    for (std::size_t i = 0; i < m_ranked.size() && budget > 0; ++i) {
        const std::size_t index = m_ranked[cursor++ % m_ranked.size()];
        if (known[index] || !pixelOf(m_all[index], model, worldFromCamera, cameraFromWorld))
            continue;
        --budget;
        if (!isHidden(list, cameraFromWorld * m_all[index].position))
            out.push_back(m_all[index].id);
    }
    return out;
}

} // namespace sim
