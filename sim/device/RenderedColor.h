#pragma once

#include "core/RateSchedule.h"
#include "device/ColorEncoder.h"
#include "device/ColorSource.h"
#include "device/Exposure.h"
#include "device/FocusBlur.h"
#include "device/PinholeMount.h"
#include "device/SensorNoise.h"
#include "device/SharedWorld.h"
#include "world/Renderer.h"

#include <array>
#include <atomic>

namespace sim {

/// Colour pictures of the world through a polynomial lens. They are rendered at most 960 pixels wide and
/// enlarged, which costs a quarter and is about as sharp as a small lens.
class RenderedColor : public ColorSource {
public:
    struct Setup {
        PinholeMount mount;
        cv::Size size; ///< before another resolution is chosen
        double rate = 30;
        double phase = 0; ///< of its own clock, a fraction of the period
        ColorCodec codec = ColorCodec::Yuv420p;
        bool focuses = false; ///< a lens that can't be focused is sharp everywhere
        unsigned seed = 1;
    };

    /// `others` are the calibrations that follow its own in the list.
    RenderedColor(std::shared_ptr<const SharedWorld> world, const Setup &setup,
        const std::vector<qv::Calibration> &others = {});
    ~RenderedColor() override;

    std::shared_ptr<const Schedule> schedule() const override { return m_schedule; }
    bool picture(double due, qv::ColorImage &record) override;
    const std::vector<qv::Calibration> &calibration() const override;

    bool setRate(double hz) override;
    bool setExposure(bool automatic, int gain, double milliseconds) override;
    bool setResolution(int mode) override;
    void setAutomaticFocus(bool automatic) override { m_automaticFocus = automatic; }
    void setFocusDistance(int distance) override { m_focusDistance = distance; }
    void setSync(bool sync) override;

    /// Shared with whoever shows the same colours from elsewhere.
    const std::shared_ptr<Exposure> &exposure() const { return m_exposure; }

private:
    /// What it takes to make pictures at one size.
    struct Sensor;
    /// 0 to 4 as in `qv::ColorCamera::setResolution`; the last is the setup's own.
    static constexpr std::size_t modes = 6;

    void useMode(std::size_t mode);
    void expose(double due);
    void focus();
    Pose worldFromCamera(double t) const;

    const std::shared_ptr<const SharedWorld> m_world;
    const Setup m_setup;
    const std::array<cv::Size, modes> m_sizes;
    const std::shared_ptr<RateSchedule> m_schedule;
    const std::shared_ptr<Exposure> m_exposure = std::make_shared<Exposure>();
    std::array<std::vector<qv::Calibration>, modes> m_calibrations;
    std::atomic<std::size_t> m_mode{modes - 1};
    std::atomic<bool> m_automaticFocus{true};
    std::atomic<int> m_focusDistance{255};

    // Of the thread that makes the pictures.
    std::size_t m_usedMode = modes;
    std::unique_ptr<Sensor> m_sensor;
    SensorNoise m_noise;
    FocusBlur m_blur;
    ColorEncoder m_encoder;
    cv::Mat m_picture;
    cv::Mat m_before;
    cv::Mat m_metered;
    cv::Mat m_depth;
};

} // namespace sim
