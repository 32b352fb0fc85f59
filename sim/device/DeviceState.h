#pragma once

#include "core/DeviceConfig.h"
#include "device/DeviceLog.h"
#include "device/Modes.h"

#include <atomic>
#include <memory>

namespace sim {

/// What all components of one device share: its description, its settings and whether it is still plugged in.
/// Thread-safe.
class DeviceState {
public:
    explicit DeviceState(DeviceConfig config);

    const DeviceConfig &config() const { return m_config; }

    std::shared_ptr<const Faults> faults() const;
    void setFaults(const Faults &faults);
    /// Whether the operation can't be done: the fault is on, or the hardware has gone.
    bool refuses(const std::string &component, const std::string &operation) const;

    bool gone() const { return m_gone; }
    void setGone() { m_gone = true; }
    /// Tells that a stream has started, which the fault of vanishing counts from.
    void noteStart();
    /// Whether the hardware is due to vanish, at `now` seconds of the clock.
    bool vanishes(double now) const;

    DeviceLog &log() { return m_log; }

    std::atomic<int> imuMode{VSlamAndImu};
    std::atomic<int> imuOffset{0}; ///< microseconds
    std::atomic<int> uvcMode{
        2}; ///< 0 none, 1 video, 2 demo, 5 demo with points, 3 debug, 4 debug with points
    std::atomic<int> edgePrediction{0}; ///< microseconds
    std::atomic<bool> sync{false}; ///< all streams at the same moments

private:
    const DeviceConfig m_config;
    std::shared_ptr<const Faults> m_faults;
    std::atomic<bool> m_gone{false};
    std::atomic<double> m_firstStart{-1};
    DeviceLog m_log;
};

} // namespace sim
