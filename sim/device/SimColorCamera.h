#pragma once

#include "device/ColorStream.h"
#include "device/qv/ColorCamera.h"

namespace sim {

/// The colour camera, and the second one where there is one: a camera of its own, with the size, rate and
/// codec of its configuration. All settings are those of the first.
class SimColorCamera : public virtual qv::ColorCamera, public ColorStream {
public:
    /// `second` may be null.
    SimColorCamera(std::shared_ptr<DeviceState> device, std::shared_ptr<ColorSource> source,
        std::shared_ptr<ColorStream> second);

    const std::vector<qv::Calibration> &calibration() override;
    bool setFramerate(float fps) override;
    bool setExposure(int aecMode, int gain, float exposureMs) override;
    void setResolution(const int &resolution) override;
    void setRgbMode(const int &mode) override;
    void setRgbDistance(int distance) override;
    void startCamera(int index) override;
    bool stopCamera(int index) override;
    /// -1 without a second camera.
    int registerCallback2(std::function<void(const qv::ColorImage &)> callback) override;
    void unregisterCallback2(int id) override;

    bool hasSecond() const { return m_second != nullptr; }
    /// Of both cameras.
    void setSync(bool sync);

private:
    ColorStream *camera(int index);

    const std::shared_ptr<ColorStream> m_second;
};

} // namespace sim
