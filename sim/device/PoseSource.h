#pragma once

#include "core/Schedule.h"
#include "world/Pose.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace sim {

/// Where the poses of a device come from. World: y down.
class PoseSource {
public:
    struct Request {
        double due = 0; ///< a time that the schedule gave
        double since = 0; ///< seconds since the origin was taken: errors begin with it
        double ahead = 0; ///< seconds to predict
        bool corrected = false; ///< a map holds the drift down
    };
    struct Estimate {
        Pose worldFromBody = Pose::Identity();
        double turnRate = 0; ///< rad/s
        std::int64_t edgeTimestampUs = 0; ///< of the moment for which the pose holds
    };

    virtual ~PoseSource() = default;
    virtual std::shared_ptr<const Schedule> schedule() const = 0;
    /// Nothing where there is no pose to be had. On the stream's thread.
    virtual std::optional<Estimate> estimate(const Request &request) = 0;
    /// On a common grid with the other streams or not.
    virtual void setSync(bool) { }
    /// No more than so many poses a second from now on; false if there are no more anyway.
    virtual bool limitRate(double) { return false; }
};

} // namespace sim
