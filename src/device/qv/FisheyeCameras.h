#pragma once

#include "device/qv/Camera.h"
#include "device/qv/Stream.h"

namespace qv {

class FisheyeCameras : public virtual Stream<FisheyeImages>, public virtual Camera { };

} // namespace qv
