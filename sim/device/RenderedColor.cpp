#include "device/RenderedColor.h"

#include "core/Clock.h"

#include <opencv2/imgproc.hpp>

namespace sim {

namespace {

constexpr int widestRendered = 640;

cv::Size renderedSize(cv::Size size)
{
    if (size.width <= widestRendered)
        return size;
    const int width = size.width <= 2 * widestRendered ? size.width / 2 : widestRendered;
    return {width, std::max(1, size.height * width / size.width)};
}

cv::Size meterSize(cv::Size size)
{
    return {std::max(8, size.width / 8), std::max(8, size.height / 8)};
}

} // namespace

struct RenderedColor::Sensor {
    Sensor(const std::shared_ptr<const Scene> &scene, const PinholeMount &mount, cv::Size frameSize)
        : size(frameSize)
        , focal(mount.lens.fx * renderedSize(size).width / mount.lens.w)
        , renderer(scene, mount.model(renderedSize(size)))
        , meter(scene, mount.model(meterSize(renderedSize(size))))
    {
    }

    const cv::Size size;
    const double focal; ///< pixels of the rendered picture
    Renderer renderer;
    Renderer meter; ///< a small picture to measure light and depth with
};

RenderedColor::RenderedColor(
    std::shared_ptr<const SharedWorld> world, const Setup &setup, const std::vector<qv::Calibration> &others)
    : m_world(std::move(world))
    , m_setup(setup)
    , m_sizes{cv::Size(1920, 1080), cv::Size(1280, 720), cv::Size(640, 480), cv::Size(320, 240),
          cv::Size(2560, 1920), setup.size}
    , m_schedule(std::make_shared<RateSchedule>(setup.rate, setup.phase))
    , m_noise(setup.seed * 16 + 11)
    , m_encoder(setup.codec)
{
    for (std::size_t mode = 0; mode < modes; ++mode) {
        m_calibrations[mode] = {setup.mount.calibration(m_sizes[mode])};
        m_calibrations[mode].insert(m_calibrations[mode].end(), others.begin(), others.end());
    }
}

RenderedColor::~RenderedColor() = default;

const std::vector<qv::Calibration> &RenderedColor::calibration() const
{
    return m_calibrations[m_mode];
}

bool RenderedColor::setRate(double hz)
{
    m_schedule->setRate(hz);
    return true;
}

bool RenderedColor::setExposure(bool automatic, int gain, double milliseconds)
{
    return m_exposure->set(automatic, gain, milliseconds);
}

bool RenderedColor::setResolution(int mode)
{
    if (mode < 0 || mode > 4)
        return false;
    m_mode = static_cast<std::size_t>(mode);
    return true;
}

void RenderedColor::setSync(bool sync)
{
    m_schedule->setPhase(sync ? 0 : m_setup.phase);
}

Pose RenderedColor::worldFromCamera(double t) const
{
    return m_world->trajectory().pose(t) * m_setup.mount.bodyFromCamera;
}

bool RenderedColor::picture(double due, qv::ColorImage &record)
{
    useMode(m_mode);
    expose(due);
    if (m_setup.focuses) {
        m_sensor->meter.depth(worldFromCamera(due), due, m_depth);
        focus();
    }
    m_encoder.encode(m_picture, m_sensor->size, record);
    record.edgeTimestampUs = Clock::microseconds(due);
    return true;
}

void RenderedColor::useMode(std::size_t mode)
{
    if (mode == m_usedMode)
        return;
    m_usedMode = mode;
    m_sensor = std::make_unique<Sensor>(m_world->scene(), m_setup.mount, m_sizes[mode]);
}

void RenderedColor::expose(double due)
{
    const Pose pose = worldFromCamera(due);
    const bool automatic = m_exposure->automatic();
    if (automatic)
        m_sensor->meter.grey(pose, due, m_metered);
    const Exposure::Effect effect = m_exposure->effect(automatic ? cv::mean(m_metered)[0] : 0);
    m_sensor->renderer.color(pose, due, m_picture, effect.factor);
    if (effect.milliseconds > Exposure::sharpMilliseconds && !automatic) {
        const double before = due - effect.milliseconds / 1000;
        m_sensor->renderer.color(worldFromCamera(before), before, m_before, effect.factor);
        cv::addWeighted(m_picture, 0.5, m_before, 0.5, 0, m_picture);
    }
    // Each colour of each pixel has noise of its own.
    cv::Mat samples = m_picture.reshape(1);
    m_noise.add(samples, effect.noise, static_cast<std::uint64_t>(Clock::microseconds(due)));
}

void RenderedColor::focus()
{
    const double distance = m_automaticFocus ? FocusBlur::middle(m_depth) : m_focusDistance / 100.0;
    m_blur.apply(m_picture, m_depth, distance, m_sensor->focal);
}

} // namespace sim
