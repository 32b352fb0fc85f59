#pragma once

#include "core/Clock.h"
#include "device/DeviceFactory.h"
#include "device/qv/DeviceEx.h"
#include "sim/Records.h"
#include "world/Trajectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

using PoseTap = Tap<qv::Pose, qv::Slam>;

inline sim::DeviceConfig slamConfig(sim::Profile profile = sim::Profile::Headset)
{
    sim::DeviceConfig config;
    config.profile = profile;
    config.uuid = "test";
    return config;
}

inline std::shared_ptr<qv::Slam> edgeOf(const std::shared_ptr<sim::SimDevice> &device)
{
    const auto extended = std::dynamic_pointer_cast<qv::DeviceEx>(device);
    return extended ? extended->edge() : nullptr;
}

inline double seconds(const qv::Pose &pose)
{
    return static_cast<double>(pose.edgeTimestampUs) * 1e-6;
}

inline Eigen::Vector3d eigen(const qv::Vector3 &v)
{
    return {v.x, v.y, v.z};
}

inline Eigen::Matrix3d rotationOf(const qv::Pose &pose)
{
    return Eigen::Map<const Eigen::Matrix<double, 3, 3, Eigen::RowMajor>>(pose.rotation.data());
}

/// Where the frame of a SLAM lies whose first pose was that of a time: place and heading of the body there,
/// y straight down.
inline sim::Pose frameAt(const sim::Trajectory &trajectory, double t)
{
    const sim::Pose body = trajectory.pose(t);
    const Eigen::Vector3d ahead = body.linear() * Eigen::Vector3d::UnitZ();
    sim::Pose frame = sim::Pose::Identity();
    frame.linear().col(2) = Eigen::Vector3d(ahead.x(), 0, ahead.z()).normalized();
    frame.linear().col(1) = Eigen::Vector3d::UnitY();
    frame.linear().col(0) = frame.linear().col(1).cross(frame.linear().col(2));
    frame.translation() = body.translation();
    return frame;
}

/// Keeps the last of something that comes on other threads, and counts.
template <class T>
class Latest {
public:
    void set(T value)
    {
        const std::lock_guard lock(m_mutex);
        m_value = std::move(value);
        ++m_count;
    }
    T get() const
    {
        const std::lock_guard lock(m_mutex);
        return m_value;
    }
    int count() const
    {
        const std::lock_guard lock(m_mutex);
        return m_count;
    }

private:
    mutable std::mutex m_mutex;
    T m_value{};
    int m_count = 0;
};
