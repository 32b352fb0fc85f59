#pragma once

#include "core/Schedule.h"
#include "device/qv/Records.h"

#include <memory>
#include <optional>

namespace sim {

/// Where inertial readings come from.
class ImuSource {
public:
    virtual ~ImuSource() = default;
    virtual std::shared_ptr<const Schedule> schedule() const = 0;
    /// The reading of a time that the schedule gave. `raw` leaves the sensor's biases in.
    virtual std::optional<qv::Imu> reading(double due, bool raw) const = 0;
    /// On a common grid with the other streams or not.
    virtual void setSync(bool) { }
};

} // namespace sim
