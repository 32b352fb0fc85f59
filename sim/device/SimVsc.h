#pragma once

#include "core/BufferPool.h"
#include "core/RateSchedule.h"
#include "device/SgbmFrames.h"
#include "device/StereoMatcher.h"
#include "device/StreamComponent.h"
#include "device/qv/Vsc.h"

namespace sim {

/// The stereo depth unit: a disparity frame and a depth frame at a time, as far as they are enabled.
/// Resolution 0 "VGA" is 640x400 unless the configuration says otherwise, 1 "720P" is 1280x720.
///
/// Source 0 is the matcher on the device, 1 that on the host, which is half as fast and finds more on plain
/// surfaces.
class SimVsc : public virtual qv::Vsc, public StreamComponent<qv::SgbmImage> {
public:
    SimVsc(std::shared_ptr<DeviceState> device, std::shared_ptr<const SharedWorld> world, FisheyeRig rig,
        cv::Size vga, double rate);

    /// With the settings of the last start.
    using StreamComponent<qv::SgbmImage>::start;
    /// The settings hold from the next frame on, also if the stream runs already.
    bool start(const qv::SgbmConfig &config) override;
    bool setResolution(const int &resolution) override;
    int resolution() override { return m_resolution; }
    /// Streams that are synchronous take their records at the same moments.
    void setSync(bool sync);

protected:
    void produce(double due, Defect defect) override;

private:
    enum Resolution { Vga = 0, Hd = 1 };

    SimVsc(std::shared_ptr<DeviceState> device, std::shared_ptr<const SharedWorld> world, FisheyeRig rig,
        cv::Size vga, std::shared_ptr<RateSchedule> schedule);
    qv::SgbmConfig config() const;
    qv::SgbmImage disparityFrame(double due, const SgbmFrames &frames);
    qv::SgbmImage depthFrame(double due, const SgbmFrames &frames);
    static qv::SgbmImage record(
        double due, int type, const cv::Mat &samples, std::shared_ptr<const unsigned char> data);
    static void damage(qv::SgbmImage &record, Defect defect);
    void send(qv::SgbmImage &record, Defect defect) const;

    const cv::Size m_vga;
    const double m_rate;
    const std::shared_ptr<RateSchedule> m_schedule;
    mutable std::mutex m_mutex;
    qv::SgbmConfig m_config;
    std::atomic<int> m_resolution{Vga};

    // Of the thread that makes the frames.
    StereoMatcher m_matcher;
    cv::Mat m_z;
    BufferPool m_depthPool;
    BufferPool m_disparityPool;
};

} // namespace sim
