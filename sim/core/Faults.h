#pragma once

#include <map>
#include <set>
#include <string>

namespace sim {

/// What goes wrong with the records of one stream; n counts its records, 0 is never.
struct StreamFaults {
    int dropEvery = 0;
    int lateEvery = 0;
    double lateMs = 0;
    int shortEvery = 0; ///< the record says or holds fewer bytes than a whole picture
    int nullEvery = 0; ///< no data
    int zeroEvery = 0; ///< width and height 0
    int emptyEvery = 0; ///< no pictures at all
    int resizeEvery = 0; ///< another picture size, for this one record
    int unknownEvery = 0; ///< a type or codec that nobody knows; inertial readings that are no numbers
    double stallAfter = -1; ///< seconds after the start; below zero is never
    double stallFor = 0; ///< seconds; 0 is for good
    double loseAfter = -1; ///< of poses: seconds after the start until tracking fails; below zero is never
    double loseFor = 0; ///< seconds; 0 is for good

    bool operator==(const StreamFaults &other) const;
};

/// What goes wrong with one device.
struct Faults {
    std::set<std::string> refuse; ///< operations, as "start", "fisheye.start", "hid"
    std::map<std::string, StreamFaults> streams; ///< by component
    bool throwInfo = false;
    double hidDelayMs = 0;
    double vanishAfter = -1; ///< seconds after the first start of a stream; below zero is never
    double returnAfter = -1; ///< seconds after it has vanished; below zero is never
    bool damageMap = false; ///< a saved map has a wrong byte in it

    /// By the operation alone or by component and operation.
    bool refuses(const std::string &component, const std::string &operation) const;
    StreamFaults stream(const std::string &component) const;
    bool operator==(const Faults &other) const;
};

} // namespace sim
