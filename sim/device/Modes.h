#pragma once

namespace sim {

/// What `qv::DeviceEx::setImuMode` takes; there is no 3.
enum ImuMode : int { VSlamOnly = 0, VSlamAndImu = 1, ImuOnly = 2, FusionOnHost = 4 };

/// What `qv::DeviceEx::setUvcMode` takes.
enum UvcMode : int {
    NoStream = 0,
    VideoOnly = 1,
    Demo = 2,
    Debug = 3,
    DebugWithPoints = 4,
    DemoWithPoints = 5
};

} // namespace sim
