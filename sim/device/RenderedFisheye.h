#pragma once

#include "core/BufferPool.h"
#include "core/RateSchedule.h"
#include "device/Exposure.h"
#include "device/FisheyeRig.h"
#include "device/FisheyeSource.h"
#include "device/SensorNoise.h"
#include "device/SharedWorld.h"
#include "world/Renderer.h"

#include <atomic>
#include <opencv2/core.hpp>

namespace sim {

/// Fisheye pictures of the world, ray-cast from where the cameras of a rig are at the time, and key points
/// that are the world's features under the same lenses. Resolution 2 "VGA" is the rig's own size, 640x400
/// unless the configuration says otherwise; 3 "720P" is 1280x720.
class RenderedFisheye : public FisheyeSource {
public:
    RenderedFisheye(std::shared_ptr<const SharedWorld> world, FisheyeRig rig, double rate, unsigned seed);
    ~RenderedFisheye() override;

    std::shared_ptr<const Schedule> schedule() const override { return m_schedule; }
    std::size_t cameraCount() const override { return m_rig.mounts.size(); }
    bool pictures(double due, qv::FisheyeImages &record) override;
    KeyPoints keyPoints(double due, std::size_t limit) override;

    const std::vector<qv::Calibration> &calibration() const override { return m_calibration; }
    const std::vector<qv::CalibrationEx> &calibrationsAtCurrentResolution() const override;
    const std::vector<qv::CalibrationEx> &calibrationsAtCalibrationResolution() const override;

    bool setRate(double hz) override;
    bool setExposure(bool automatic, int gain, double milliseconds) override;
    bool setResolution(int mode) override;
    void setSync(bool sync) override;

private:
    enum Mode { Vga = 2, Hd = 3 };
    struct Camera;

    const std::vector<qv::CalibrationEx> &calibrations(int mode) const;
    void useMode(int mode);
    double sceneMean(double due);
    void shoot(Camera &camera, double due, const Exposure::Effect &effect, cv::Mat &out) const;
    Pose worldFromCamera(std::size_t camera, double t) const;

    const std::shared_ptr<const SharedWorld> m_world;
    const FisheyeRig m_rig;
    const std::shared_ptr<RateSchedule> m_schedule;
    const std::vector<qv::CalibrationEx> m_vga;
    const std::vector<qv::CalibrationEx> m_hd;
    const std::vector<qv::Calibration> m_calibration;
    const unsigned m_seed;
    Exposure m_exposure;
    std::atomic<int> m_mode{Vga};

    // Of the thread that makes the pictures.
    int m_usedMode = 0;
    std::vector<std::unique_ptr<Camera>> m_cameras;
    BufferPool m_pool;
};

} // namespace sim
