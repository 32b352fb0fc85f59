#include "device/SlamDefects.h"

#include <limits>

namespace sim {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

} // namespace

void makeUnreadable(qv::Pose &pose)
{
    pose.translation = {nan, infinity, 1e300};
    pose.rotation.fill(nan);
    pose.qw = nan;
    pose.confidence = infinity;
}

std::shared_ptr<const qv::SlamMap> damaged(std::shared_ptr<const qv::SlamMap> map, Defect defect)
{
    if (defect == Defect::NullData)
        return nullptr;
    if (defect == Defect::Empty)
        return std::make_shared<const qv::SlamMap>();
    if (defect != Defect::Unknown)
        return map;
    auto copy = std::make_shared<qv::SlamMap>(*map);
    copy->points.insert(copy->points.end(), {{nan, nan, nan}, {infinity, -infinity, 0}, {1e300, 0, -1e300}});
    return copy;
}

qv::Slam::Planes damaged(qv::Slam::Planes planes, Defect defect)
{
    if (defect == Defect::NullData)
        return nullptr;
    if (defect == Defect::Empty)
        return std::make_shared<const std::vector<qv::Plane>>();
    if (defect != Defect::Unknown)
        return planes;
    auto copy = std::make_shared<std::vector<qv::Plane>>(*planes);
    copy->insert(copy->end(),
        {{"wall", {}}, {"-3", {{0, 0, 1}}}, {"", {{0, 0, 1}, {1, 0, 1}}},
            {"99999999999999999999", {{nan, 0, 0}, {0, infinity, 0}, {1e300, 0, 1}}}});
    return copy;
}

} // namespace sim
