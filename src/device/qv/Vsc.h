#pragma once

#include "device/qv/Records.h"
#include "device/qv/Stream.h"

namespace qv {

/// Stereo depth, computed by the device. Lives as long as its device.
class Vsc : public virtual Stream<SgbmImage> {
public:
    using Stream<SgbmImage>::start;
    virtual bool start(const SgbmConfig &config) = 0;
    virtual bool setResolution(const int &resolution) = 0;
    virtual int resolution() = 0;
};

} // namespace qv
