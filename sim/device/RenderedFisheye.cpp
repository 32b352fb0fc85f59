#include "device/RenderedFisheye.h"

#include "core/Clock.h"
#include "device/FisheyeCalibration.h"

namespace sim {

namespace {

constexpr double fisheyePhase = 0.57;

std::vector<qv::Calibration> withoutExtension(const std::vector<qv::CalibrationEx> &records)
{
    return {records.begin(), records.end()};
}

std::shared_ptr<const CameraModel> modelOf(const qv::CalibrationEx &record)
{
    return std::make_shared<UnifiedModel>(record.ucm.front());
}

} // namespace

/// What it takes to make one camera's pictures at one size.
struct RenderedFisheye::Camera {
    Camera(const std::shared_ptr<const Scene> &scene, const std::shared_ptr<const CameraModel> &model,
        std::size_t cameraIndex, unsigned seed)
        : index(cameraIndex)
        , size(model->size())
        , renderer(scene, model)
        , meter(scene, model->scaled(size.width / 8, size.height / 8))
        , noise(seed * 16 + cameraIndex)
    {
    }

    const std::size_t index;
    const cv::Size size;
    Renderer renderer;
    Renderer meter; ///< a small picture to measure the light with
    SensorNoise noise;
    cv::Mat scratch;
};

RenderedFisheye::RenderedFisheye(
    std::shared_ptr<const SharedWorld> world, FisheyeRig rig, double rate, unsigned seed)
    : m_world(std::move(world))
    , m_rig(std::move(rig))
    , m_schedule(std::make_shared<RateSchedule>(rate, fisheyePhase))
    , m_vga(calibrate(m_rig, m_rig.mounts.front().lens.w, m_rig.mounts.front().lens.h))
    , m_hd(calibrate(m_rig, 1280, 720))
    , m_calibration(withoutExtension(m_vga))
    , m_seed(seed)
{
}

RenderedFisheye::~RenderedFisheye() = default;

const std::vector<qv::CalibrationEx> &RenderedFisheye::calibrations(int mode) const
{
    return mode == Hd ? m_hd : m_vga;
}

const std::vector<qv::CalibrationEx> &RenderedFisheye::calibrationsAtCurrentResolution() const
{
    return calibrations(m_mode);
}

const std::vector<qv::CalibrationEx> &RenderedFisheye::calibrationsAtCalibrationResolution() const
{
    return m_vga;
}

bool RenderedFisheye::setRate(double hz)
{
    m_schedule->setRate(hz);
    return true;
}

bool RenderedFisheye::setExposure(bool automatic, int gain, double milliseconds)
{
    return m_exposure.set(automatic, gain, milliseconds);
}

bool RenderedFisheye::setResolution(int mode)
{
    if (mode != Vga && mode != Hd)
        return false;
    m_mode = mode;
    return true;
}

void RenderedFisheye::setSync(bool sync)
{
    m_schedule->setPhase(sync ? 0 : fisheyePhase);
}

Pose RenderedFisheye::worldFromCamera(std::size_t camera, double t) const
{
    return m_world->trajectory().pose(t) * m_rig.mounts[camera].bodyFromCamera;
}

bool RenderedFisheye::pictures(double due, qv::FisheyeImages &record)
{
    useMode(m_mode);
    record.edgeTimestampUs = Clock::microseconds(due);
    const Exposure::Effect effect = m_exposure.effect(m_exposure.automatic() ? sceneMean(due) : 0);
    for (const std::unique_ptr<Camera> &camera : m_cameras) {
        const cv::Size size = camera->size;
        const auto buffer = m_pool.take(static_cast<std::size_t>(size.area()));
        cv::Mat picture(size, CV_8UC1, buffer.get());
        shoot(*camera, due, effect, picture);
        record.images.push_back(
            {static_cast<std::size_t>(size.width), static_cast<std::size_t>(size.height), buffer});
    }
    return true;
}

void RenderedFisheye::useMode(int mode)
{
    if (mode == m_usedMode)
        return;
    m_usedMode = mode;
    m_cameras.clear();
    for (const qv::CalibrationEx &record : calibrations(mode))
        m_cameras.push_back(
            std::make_unique<Camera>(m_world->scene(), modelOf(record), m_cameras.size(), m_seed));
}

/// Of all cameras together, since one exposure holds for all.
double RenderedFisheye::sceneMean(double due)
{
    double sum = 0;
    for (const std::unique_ptr<Camera> &camera : m_cameras) {
        camera->meter.grey(worldFromCamera(camera->index, due), due, camera->scratch);
        sum += cv::mean(camera->scratch)[0];
    }
    return sum / static_cast<double>(m_cameras.size());
}

void RenderedFisheye::shoot(Camera &camera, double due, const Exposure::Effect &effect, cv::Mat &out) const
{
    camera.renderer.grey(worldFromCamera(camera.index, due), due, out, effect.factor);
    if (effect.milliseconds > Exposure::sharpMilliseconds && !m_exposure.automatic()) {
        const double before = due - effect.milliseconds / 1000;
        camera.renderer.grey(worldFromCamera(camera.index, before), before, camera.scratch, effect.factor);
        cv::addWeighted(out, 0.5, camera.scratch, 0.5, 0, out);
    }
    camera.noise.add(out, effect.noise, static_cast<std::uint64_t>(Clock::microseconds(due)));
}

FisheyeSource::KeyPoints RenderedFisheye::keyPoints(double due, std::size_t limit)
{
    KeyPoints points;
    for (const qv::CalibrationEx &record : calibrations(m_mode)) {
        const UnifiedModel lens(record.ucm.front());
        const Pose pose = worldFromCamera(points.size(), due);
        std::vector<float> &list = points.emplace_back();
        for (const auto &[id, pixel] : m_world->features().visible(lens, pose, due, limit)) {
            list.push_back(pixel.x());
            list.push_back(pixel.y());
        }
    }
    return points;
}

} // namespace sim
