#pragma once

#include "core/Schedule.h"
#include "device/qv/Records.h"

#include <memory>
#include <opencv2/core.hpp>
#include <vector>

namespace sim {

/// Where the pictures of a ToF camera come from. Pictures are asked for on one thread, settings on any.
class TofSource {
public:
    struct Wanted {
        bool infrared = false;
        bool color = false;
    };
    /// Pictures of one size; those that were not wanted or can't be had are empty.
    struct Frames {
        cv::Mat depth; ///< CV_32FC1, metres along the axis, 0 without a reading
        cv::Mat infrared; ///< CV_16UC1
        cv::Mat color; ///< CV_8UC3, red first, as seen by the ToF camera
        std::int64_t edgeTimestampUs = 0;
    };

    virtual ~TofSource() = default;

    virtual std::shared_ptr<const Schedule> schedule() const = 0;
    /// The pictures of a time that the schedule gave, into `frames`, whose memory is used again; false if
    /// there are none.
    virtual bool expose(double due, const Wanted &wanted, Frames &frames) = 0;
    /// At the current resolution.
    virtual const std::vector<qv::Calibration> &calibration() const = 0;

    virtual bool hasInfrared() const { return false; }
    virtual bool setRate(double) { return false; }
    virtual bool setExposure(bool, int, double) { return false; }
    /// 0 short, 1 middle, 2 long.
    virtual bool setDistanceMode(int) { return false; }
    /// 0 to 5 as in `qv::TofCamera::setSonyTofSetting`.
    virtual bool setWorkMode(int) { return false; }
    /// 0 the whole sensor, 1 half of it each way.
    virtual bool setResolution(int) { return false; }
    virtual bool setGamma(double) { return false; }
    /// On a common grid with the other streams or not.
    virtual void setSync(bool) { }
};

} // namespace sim
