#pragma once

#include "device/qv/Records.h"
#include "device/qv/Stream.h"

namespace qv {

class ImuSensor : public virtual Stream<Imu> { };

} // namespace qv
