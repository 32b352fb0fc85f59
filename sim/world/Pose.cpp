#include "world/Pose.h"

namespace sim {

Pose mounted(double x, double y, double z, double yaw, double pitch, double roll)
{
    Pose pose = Pose::Identity();
    pose.translation() << x, y, z;
    pose.linear() = (Eigen::AngleAxisd(yaw * radiansPerDegree, Eigen::Vector3d::UnitY())
        * Eigen::AngleAxisd(pitch * radiansPerDegree, Eigen::Vector3d::UnitX())
        * Eigen::AngleAxisd(roll * radiansPerDegree, Eigen::Vector3d::UnitZ()))
                        .toRotationMatrix();
    return pose;
}

} // namespace sim
