#include "device/RenderedTof.h"

#include "core/Clock.h"

#include <opencv2/imgproc.hpp>

namespace sim {

namespace {

cv::Size halved(cv::Size size)
{
    return {std::max(1, size.width / 2), std::max(1, size.height / 2)};
}

} // namespace

struct RenderedTof::Sensor {
    Sensor(const std::shared_ptr<const Scene> &scene, const PinholeMount &mount, cv::Size pictureSize)
        : size(pictureSize)
        , renderer(scene, mount.model(size))
        , half(scene, mount.model(halved(size)))
    {
    }

    const cv::Size size;
    Renderer renderer;
    Renderer half;
};

RenderedTof::RenderedTof(std::shared_ptr<const SharedWorld> world, const Setup &setup,
    std::shared_ptr<const Exposure> colorExposure)
    : m_world(std::move(world))
    , m_setup(setup)
    , m_sizes{setup.size, halved(setup.size)}
    , m_schedule(std::make_shared<RateSchedule>(setup.rate, setup.phase))
    , m_colorExposure(std::move(colorExposure))
    , m_optics(setup.seed * 16 + 13)
{
    for (std::size_t i = 0; i < m_sizes.size(); ++i)
        m_calibrations[i] = {setup.mount.calibration(m_sizes[i])};
}

RenderedTof::~RenderedTof() = default;

const std::vector<qv::Calibration> &RenderedTof::calibration() const
{
    return m_calibrations[m_resolution];
}

bool RenderedTof::setRate(double hz)
{
    m_schedule->setRate(hz);
    return true;
}

bool RenderedTof::setExposure(bool automatic, int gain, double milliseconds)
{
    return m_exposure.set(automatic, gain, milliseconds);
}

bool RenderedTof::setDistanceMode(int mode)
{
    if (m_setup.secondFamily || mode < 0 || mode >= TofMode::distanceModes)
        return false;
    m_distanceMode = mode;
    return true;
}

bool RenderedTof::setWorkMode(int mode)
{
    if (mode < 0 || mode >= TofMode::workModes)
        return false;
    m_workMode = mode;
    return true;
}

bool RenderedTof::setResolution(int resolution)
{
    if (resolution != 0 && resolution != 1)
        return false;
    m_resolution = static_cast<std::size_t>(resolution);
    return true;
}

bool RenderedTof::setGamma(double gamma)
{
    if (!(gamma >= 0 && gamma <= 10))
        return false;
    m_gamma = gamma;
    return true;
}

void RenderedTof::setSync(bool sync)
{
    m_schedule->setPhase(sync ? 0 : m_setup.phase);
}

TofMode RenderedTof::mode() const
{
    return m_setup.secondFamily ? TofMode::ofSecondFamily(m_workMode)
                                : TofMode::ofFirstFamily(m_workMode, m_distanceMode);
}

bool RenderedTof::expose(double due, const Wanted &wanted, Frames &frames)
{
    useResolution(m_resolution);
    const Pose pose = m_world->trajectory().pose(due) * m_setup.mount.bodyFromCamera;
    const double light = m_exposure.automatic() ? 1 : m_exposure.effect(0).factor;
    m_sensor->renderer.depth(pose, due, frames.depth);
    frames.infrared.release();
    if (wanted.infrared) {
        m_sensor->half.grey(pose, due, m_half);
        cv::resize(m_half, m_reflectance, m_sensor->size, 0, 0, cv::INTER_LINEAR);
        TofOptics::infrared(m_reflectance, frames.depth, light, m_gamma, frames.infrared);
    }
    if (wanted.color)
        colors(due, pose, frames.color);
    else
        frames.color.release();
    frames.edgeTimestampUs = Clock::microseconds(due);
    m_optics.measure(frames.depth, mode(), light, static_cast<std::uint64_t>(frames.edgeTimestampUs));
    return true;
}

void RenderedTof::useResolution(std::size_t resolution)
{
    if (resolution == m_usedResolution)
        return;
    m_usedResolution = resolution;
    m_sensor = std::make_unique<Sensor>(m_world->scene(), m_setup.mount, m_sizes[resolution]);
}

void RenderedTof::colors(double due, const Pose &pose, cv::Mat &out)
{
    m_sensor->half.color(pose, due, m_half);
    const cv::Scalar mean = cv::mean(m_half);
    const double grey = 0.299 * mean[0] + 0.587 * mean[1] + 0.114 * mean[2];
    const double factor = m_colorExposure ? m_colorExposure->effect(grey).factor : 1;
    cv::resize(m_half, out, m_sensor->size, 0, 0, cv::INTER_LINEAR);
    out.convertTo(out, -1, factor);
}

} // namespace sim
