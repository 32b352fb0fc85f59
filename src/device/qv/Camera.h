#pragma once

#include "device/qv/Records.h"

namespace qv {

/// The camera face of a component.
class Camera {
public:
    virtual ~Camera() = default;
    virtual const std::vector<Calibration> &calibration() = 0;
    virtual bool setFramerate(float fps) = 0;
    /// `aecMode` is 0 for automatic exposure and 1 otherwise.
    virtual bool setExposure(int aecMode, int gain, float exposureMs) = 0;
};

} // namespace qv
