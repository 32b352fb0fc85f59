#pragma once

#include "core/Schedule.h"
#include "device/qv/Records.h"

#include <memory>
#include <vector>

namespace sim {

/// Where the pictures of one colour camera come from. Pictures are asked for on one thread, settings on any.
class ColorSource {
public:
    virtual ~ColorSource() = default;

    virtual std::shared_ptr<const Schedule> schedule() const = 0;
    /// The picture of a time that the schedule gave; false if there is none.
    virtual bool picture(double due, qv::ColorImage &record) = 0;
    /// At the current resolution.
    virtual const std::vector<qv::Calibration> &calibration() const = 0;

    virtual bool setRate(double) { return false; }
    virtual bool setExposure(bool, int, double) { return false; }
    virtual bool setResolution(int) { return false; }
    virtual void setAutomaticFocus(bool) { }
    /// 1 to 255 centimetres.
    virtual void setFocusDistance(int) { }
    /// On a common grid with the other streams or not.
    virtual void setSync(bool) { }
};

} // namespace sim
