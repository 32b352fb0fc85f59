#pragma once

#include "device/qv/Camera.h"
#include "device/qv/Stream.h"

namespace qv {

class ColorCamera : public virtual Stream<ColorImage>, public virtual Camera {
public:
    /// 0 1920x1080, 1 1280x720, 2 640x480, 3 320x240, 4 2560x1920.
    virtual void setResolution(const int &resolution) = 0;
    /// 0 automatic focus, 1 manual focus.
    virtual void setRgbMode(const int &mode) = 0;
    /// Focal distance, 1 to 255.
    virtual void setRgbDistance(int distance) = 0;
    /// Camera 1 is the second colour camera.
    virtual void startCamera(int index) = 0;
    virtual bool stopCamera(int index) = 0;
    virtual int registerCallback2(std::function<void(const ColorImage &)> callback) = 0;
    virtual void unregisterCallback2(int id) = 0;
};

} // namespace qv
