#pragma once

#include "core/FaultInjector.h"
#include "device/qv/Slam.h"

namespace sim {

/// A pose that is nowhere.
void makeUnreadable(qv::Pose &pose);

/// The record itself, or what a defect makes of it.
std::shared_ptr<const qv::SlamMap> damaged(std::shared_ptr<const qv::SlamMap> map, Defect defect);
qv::Slam::Planes damaged(qv::Slam::Planes planes, Defect defect);

} // namespace sim
