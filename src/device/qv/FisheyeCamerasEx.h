#pragma once

#include "device/qv/FisheyeCameras.h"

namespace qv {

/// Reached by a dynamic cast from `FisheyeCameras`.
class FisheyeCamerasEx : public virtual FisheyeCameras {
public:
    virtual int registerKeyPoints4Callback(std::function<void(const FisheyeKeyPoints<4, 32> &)> callback) = 0;
    virtual int registerKeyPoints2Callback(std::function<void(const FisheyeKeyPoints<2, 32> &)> callback) = 0;
    virtual void unregisterKeyPoints2Callback(int id) = 0;
    virtual void unregisterKeyPoints4Callback(int id) = 0;
    virtual const std::vector<CalibrationEx> &calibrationsAtCurrentResolution() = 0;
    virtual const std::vector<CalibrationEx> &calibrationsAtCalibrationResolution() = 0;
    /// 2 is VGA, 3 is 720P.
    virtual bool setResolution(int resolutionMode) = 0;
};

} // namespace qv
