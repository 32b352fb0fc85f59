#pragma once

#include "core/Schedule.h"
#include "device/qv/Records.h"

#include <memory>
#include <vector>

namespace sim {

/// Where the pictures of a set of fisheye cameras come from. Pictures are asked for on one thread, key points
/// on another, settings on any.
class FisheyeSource {
public:
    using KeyPoints = std::vector<std::vector<float>>; ///< one list of x, y, x, y, ... a camera, in pixels

    virtual ~FisheyeSource() = default;

    virtual std::shared_ptr<const Schedule> schedule() const = 0;
    virtual std::size_t cameraCount() const = 0;
    /// The pictures of a time that the schedule gave; false if there are none.
    virtual bool pictures(double due, qv::FisheyeImages &record) = 0;
    /// At most `limit` points a camera.
    virtual KeyPoints keyPoints(double due, std::size_t limit) = 0;

    virtual const std::vector<qv::Calibration> &calibration() const = 0;
    virtual const std::vector<qv::CalibrationEx> &calibrationsAtCurrentResolution() const = 0;
    virtual const std::vector<qv::CalibrationEx> &calibrationsAtCalibrationResolution() const = 0;

    virtual bool setRate(double) { return false; }
    virtual bool setExposure(bool, int, double) { return false; }
    virtual bool setResolution(int) { return false; }
    /// On a common grid with the other streams or not.
    virtual void setSync(bool) { }
};

} // namespace sim
