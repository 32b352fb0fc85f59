#pragma once

#include "core/BufferPool.h"
#include "device/DepthRays.h"
#include "device/StreamComponent.h"
#include "device/TofSource.h"
#include "device/qv/TofCamera.h"

namespace sim {

/// The ToF camera of either family. Depth and infrared pictures of one exposure come one after the other on
/// the same stream; colour aligned to the depth comes as long as the colour camera streams too.
///
/// The first family reads 16-bit millimetres and takes infrared pictures once it is told to; the second reads
/// float metres and always takes both.
class SimTofCamera : public virtual qv::TofCamera, public StreamComponent<qv::DepthImage> {
public:
    enum Family { First = 0, Second = 1 };
    /// What depth pictures are made of, with the contract's numbers.
    enum class Depth : int { Millimetres = 0, Metres = 1 };
    /// What `setStreamMode` takes.
    enum StreamMode { DepthAndInfrared = 0, DepthOnly = 1, InfraredOnly = 2 };

    struct Setup {
        Family family = Second;
        Depth depth = Depth::Metres;
        std::function<bool()> colorStreams; ///< empty without a colour camera
    };

    SimTofCamera(std::shared_ptr<DeviceState> device, std::shared_ptr<TofSource> source, Setup setup);

    const std::vector<qv::Calibration> &calibration() override;
    bool setFramerate(float fps) override;
    bool setExposure(int aecMode, int gain, float exposureMs) override;
    int registerColorDepthImageCallback(std::function<void(const qv::DepthColorImage &)> callback) override;
    bool unregisterColorDepthImageCallback(int id) override;
    /// In the camera's frame, metres. Null for infrared, for records without or with too little data and for
    /// sizes that are none.
    std::shared_ptr<qv::PointCloud> depthImageToPointCloud(const qv::DepthImage &image) override;
    bool setStreamMode(int mode) override;
    bool setDistanceMode(int mode) override;
    int manufacturer() override { return m_setup.family; }
    bool setLibWorkMode(int mode) override;
    bool enableIr(bool enable) override;
    /// The second family only.
    bool setSonyTofSetting(int workMode, int resolution, int fps) override;
    bool setTofIrGamma(double gamma) override;
    /// Streams that are synchronous take their records at the same moments.
    void setSync(bool sync);

protected:
    void produce(double due, Defect defect) override;

private:
    TofSource::Wanted wanted() const;
    void deliverDepth(Defect defect);
    void deliverColor(Defect defect);
    void deliverPicture(int type, const cv::Mat &picture, Defect defect);

    const std::shared_ptr<TofSource> m_source;
    const Setup m_setup;
    DepthRays m_rays;
    Callbacks<const qv::DepthColorImage &> m_colorCallbacks;
    std::atomic<bool> m_infrared;
    std::atomic<int> m_streamMode{DepthAndInfrared};

    // Of the stream's thread.
    TofSource::Frames m_frames;
    cv::Mat m_millimetres;
    BufferPool m_depthPool;
    BufferPool m_infraredPool;
    BufferPool m_colorPool;
};

} // namespace sim
