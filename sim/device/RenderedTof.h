#pragma once

#include "core/RateSchedule.h"
#include "device/Exposure.h"
#include "device/PinholeMount.h"
#include "device/SharedWorld.h"
#include "device/TofOptics.h"
#include "device/TofSource.h"
#include "world/Renderer.h"

#include <array>
#include <atomic>

namespace sim {

/// Depth, infrared and aligned colour of the world, from where the ToF camera is. Infrared and colour are
/// rendered at half the size and enlarged.
class RenderedTof : public TofSource {
public:
    struct Setup {
        PinholeMount mount;
        cv::Size size; ///< of the whole sensor
        double rate = 30;
        double phase = 0; ///< of its own clock, a fraction of the period
        bool secondFamily = false;
        unsigned seed = 1;
    };

    /// `colorExposure` is that of the colour camera, by which aligned colours are exposed.
    RenderedTof(std::shared_ptr<const SharedWorld> world, const Setup &setup,
        std::shared_ptr<const Exposure> colorExposure);
    ~RenderedTof() override;

    std::shared_ptr<const Schedule> schedule() const override { return m_schedule; }
    bool expose(double due, const Wanted &wanted, Frames &frames) override;
    const std::vector<qv::Calibration> &calibration() const override;

    bool hasInfrared() const override { return true; }
    bool setRate(double hz) override;
    bool setExposure(bool automatic, int gain, double milliseconds) override;
    bool setDistanceMode(int mode) override;
    bool setWorkMode(int mode) override;
    bool setResolution(int resolution) override;
    bool setGamma(double gamma) override;
    void setSync(bool sync) override;

private:
    struct Sensor;

    TofMode mode() const;
    void useResolution(std::size_t resolution);
    void colors(double due, const Pose &pose, cv::Mat &out);

    const std::shared_ptr<const SharedWorld> m_world;
    const Setup m_setup;
    const std::array<cv::Size, 2> m_sizes;
    const std::shared_ptr<RateSchedule> m_schedule;
    const std::shared_ptr<const Exposure> m_colorExposure;
    std::array<std::vector<qv::Calibration>, 2> m_calibrations;
    Exposure m_exposure;
    std::atomic<int> m_distanceMode{1};
    std::atomic<int> m_workMode{1};
    std::atomic<std::size_t> m_resolution{0};
    std::atomic<double> m_gamma{2.8};

    // Of the thread that makes the pictures.
    std::size_t m_usedResolution = 2;
    std::unique_ptr<Sensor> m_sensor;
    TofOptics m_optics;
    cv::Mat m_half;
    cv::Mat m_reflectance;
};

} // namespace sim
