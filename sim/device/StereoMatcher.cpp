#include "device/StereoMatcher.h"

#include "world/CameraModels.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace sim {

namespace {

/// Matching needs no more than this; finer pictures only have finer depth.
constexpr int gridWidth = 320;
constexpr int textureWindow = 7;
/// Mean of the horizontal Sobel slope over the window, below which all places look alike.
constexpr double leastTexture = 3.0;
constexpr double leastTextureThorough = 1.5;
/// What is in front of a point by less than this share of its distance is the same surface, sampled coarsely.
constexpr double sameSurface = 0.97;
/// Rays farther from the axis than this cosine tells have no depth along it that is worth telling.
constexpr double leastCosine = 0.05;
constexpr double farOutside = 1e6; ///< pixels

cv::Size gridOf(const cv::Size &size)
{
    const int width = std::min(gridWidth, size.width);
    return {width, std::max(1, size.height * width / size.width)};
}

} // namespace

bool StereoMatcher::Setup::operator==(const Setup &other) const
{
    return size == other.size && dewarp == other.dewarp && zoom == other.zoom && thorough == other.thorough;
}

/// What depends on the lens only, made anew when a setting of it changes.
struct StereoMatcher::Optics {
    /// One point of the grid: the picture's pixel in its middle, and that pixel's ray with z = 1, 0 if it
    /// has none.
    struct Sample {
        cv::Point pixel;
        Eigen::Vector3d ray;
    };

    Optics(const std::shared_ptr<const Scene> &scene, const Setup &setupOf,
        const std::shared_ptr<const CameraModel> &lens)
        : setup(setupOf)
        , gridSize(gridOf(setup.size))
        , gridLens(lens->scaled(gridSize.width, gridSize.height))
        , focal(setup.zoom * focalLength(gridSize.width, fieldOfView))
        , centre((gridSize.width - 1) / 2.0, (gridSize.height - 1) / 2.0)
        , picture(scene, lens)
        , matching(scene, gridLens)
    {
        samples.reserve(static_cast<std::size_t>(gridSize.area()));
        for (int y = 0; y < gridSize.height; ++y) {
            for (int x = 0; x < gridSize.width; ++x) {
                const cv::Point pixel((2 * x + 1) * setup.size.width / (2 * gridSize.width),
                    (2 * y + 1) * setup.size.height / (2 * gridSize.height));
                const Eigen::Vector3d ray = lens->unproject({pixel.x, pixel.y});
                const bool ahead = ray.z() > leastCosine;
                samples.push_back({pixel, ahead ? Eigen::Vector3d(ray / ray.z()) : Eigen::Vector3d(0, 0, 0)});
            }
        }
    }

    /// The pixel of the grid; far outside if the lens can't see the point. A pinhole is so simple that it is
    /// worth not asking its model.
    Eigen::Vector2d project(const Eigen::Vector3d &point) const
    {
        if (setup.dewarp && point.z() > 0)
            return {focal * point.x() / point.z() + centre.x(), focal * point.y() / point.z() + centre.y()};
        return gridLens->project(point).value_or(Eigen::Vector2d(farOutside, farOutside));
    }

    const Setup setup;
    const cv::Size gridSize;
    const std::shared_ptr<const CameraModel> gridLens;
    const double focal;
    const Eigen::Vector2d centre;
    Renderer picture;
    Renderer matching;
    std::vector<Sample> samples;
};

StereoMatcher::StereoMatcher(std::shared_ptr<const SharedWorld> world, FisheyeRig rig)
    : m_world(std::move(world))
    , m_rig(std::move(rig))
    , m_rightFromLeft(m_rig.mounts.at(1).bodyFromCamera.inverse() * m_rig.mounts.at(0).bodyFromCamera)
{
}

StereoMatcher::~StereoMatcher() = default;

double StereoMatcher::focalLength(int width, double degrees)
{
    if (!(degrees > 0 && degrees < 180))
        return 0;
    return width / (2 * std::tan(degrees / 2 * radiansPerDegree));
}

std::shared_ptr<const CameraModel> StereoMatcher::lens(const Setup &setup) const
{
    if (!setup.dewarp)
        return UnifiedModel(m_rig.mounts.front().lens).scaled(setup.size.width, setup.size.height);
    qv::PolynomialDistortionCameraModel pinhole;
    pinhole.w = setup.size.width;
    pinhole.h = setup.size.height;
    pinhole.fx = pinhole.fy = setup.zoom * focalLength(pinhole.w, fieldOfView);
    pinhole.u0 = (pinhole.w - 1) / 2.0;
    pinhole.v0 = (pinhole.h - 1) / 2.0;
    return std::make_shared<PolynomialModel>(pinhole);
}

void StereoMatcher::match(double due, const Setup &setup, cv::Mat &z)
{
    if (!m_optics || !(m_optics->setup == setup))
        m_optics = std::make_unique<Optics>(m_world->scene(), setup, lens(setup));
    const Pose body = m_world->trajectory().pose(due);
    const Pose left = body * m_rig.mounts[0].bodyFromCamera;
    m_optics->picture.depth(left, due, z);
    m_optics->matching.depth(left * m_rightFromLeft.inverse(), due, m_rightZ);
    m_optics->matching.grey(left, due, m_grey);
    findPlain(setup.thorough ? leastTextureThorough : leastTexture);
    findOccluded(z);
    cutHoles(z);
}

void StereoMatcher::findPlain(double least)
{
    cv::Sobel(m_grey, m_slope, CV_16S, 1, 0);
    cv::convertScaleAbs(m_slope, m_steepness);
    cv::boxFilter(m_steepness, m_texture, CV_32F, {textureWindow, textureWindow});
    cv::compare(m_texture, least, m_holes, cv::CMP_LT);
}

/// A point is matched only if the right camera has the same surface where the point would be.
void StereoMatcher::findOccluded(const cv::Mat &z)
{
    const cv::Size grid = m_optics->gridSize;
    const Optics::Sample *sample = m_optics->samples.data();
    const Eigen::Matrix3d toRight = m_rightFromLeft.linear();
    const Eigen::Vector3d shift = m_rightFromLeft.translation();
    for (int y = 0; y < grid.height; ++y) {
        unsigned char *hole = m_holes.ptr<unsigned char>(y);
        for (int x = 0; x < grid.width; ++x, ++sample) {
            if (hole[x])
                continue;
            hole[x] = 255;
            const double depth = static_cast<double>(z.at<float>(sample->pixel));
            if (!(depth > 0) || sample->ray.z() == 0)
                continue;
            const Eigen::Vector3d point = toRight * (depth * sample->ray) + shift;
            const Eigen::Vector2d pixel = m_optics->project(point);
            if (!(pixel.cwiseAbs().maxCoeff() < farOutside))
                continue;
            const cv::Point there(cvFloor(pixel.x()), cvRound(pixel.y()));
            if (there.x < 0 || there.y < 0 || there.x + 1 >= grid.width || there.y >= grid.height)
                continue;
            // Beside an edge the nearer surface takes the match.
            const float *row = m_rightZ.ptr<float>(there.y) + there.x;
            const double first = static_cast<double>(std::min(row[0], row[1]));
            if (first > 0 && first < point.z() * sameSurface)
                continue;
            hole[x] = 0;
        }
    }
}

void StereoMatcher::cutHoles(cv::Mat &z) const
{
    const cv::Size grid = m_optics->gridSize;
    std::vector<int> columns(static_cast<std::size_t>(z.cols));
    for (int x = 0; x < z.cols; ++x)
        columns[static_cast<std::size_t>(x)] = x * grid.width / z.cols;
    for (int y = 0; y < z.rows; ++y) {
        const unsigned char *hole = m_holes.ptr<unsigned char>(y * grid.height / z.rows);
        float *depth = z.ptr<float>(y);
        for (int x = 0; x < z.cols; ++x) {
            if (hole[columns[static_cast<std::size_t>(x)]])
                depth[x] = 0;
        }
    }
}

} // namespace sim
