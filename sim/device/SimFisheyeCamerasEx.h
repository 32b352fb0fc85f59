#pragma once

#include "device/SimFisheyeCameras.h"
#include "device/qv/FisheyeCamerasEx.h"

namespace sim {

/// Fisheye cameras with tracked key points, which come on a thread of their own. The UVC modes 0 and 1 have
/// none, the demo modes few and the debug modes many; neither has the IMU mode "IMU only", which tracks
/// nothing.
class SimFisheyeCamerasEx : public SimFisheyeCameras, public virtual qv::FisheyeCamerasEx {
public:
    SimFisheyeCamerasEx(std::shared_ptr<DeviceState> device, std::shared_ptr<FisheyeSource> source);

    int registerKeyPoints4Callback(
        std::function<void(const qv::FisheyeKeyPoints<4, 32> &)> callback) override;
    int registerKeyPoints2Callback(
        std::function<void(const qv::FisheyeKeyPoints<2, 32> &)> callback) override;
    void unregisterKeyPoints2Callback(int id) override;
    void unregisterKeyPoints4Callback(int id) override;
    const std::vector<qv::CalibrationEx> &calibrationsAtCurrentResolution() override;
    const std::vector<qv::CalibrationEx> &calibrationsAtCalibrationResolution() override;
    bool setResolution(int resolutionMode) override;

protected:
    void aboutToStart() override;
    void stopped() override;
    void scheduleChanged() override;

private:
    void track(double due);
    /// How many points a camera the device's modes let out.
    std::size_t pointLimit() const;
    template <std::size_t N>
    void deliverPoints(
        double due, std::size_t limit, Callbacks<const qv::FisheyeKeyPoints<N, 32> &> &callbacks);

    Callbacks<const qv::FisheyeKeyPoints<2, 32> &> m_pairCallbacks;
    Callbacks<const qv::FisheyeKeyPoints<4, 32> &> m_quadCallbacks;
    StreamThread m_pointThread; ///< last, so that it ends before what it uses
};

} // namespace sim
