#pragma once

#include "core/BufferPool.h"
#include "device/FisheyeSource.h"
#include "device/StreamComponent.h"
#include "device/qv/FisheyeCameras.h"

namespace sim {

/// The fisheye cameras, without what only the extended ones have. The UVC mode 0 lets no picture out.
class SimFisheyeCameras : public virtual qv::FisheyeCameras, public StreamComponent<qv::FisheyeImages> {
public:
    SimFisheyeCameras(std::shared_ptr<DeviceState> device, std::shared_ptr<FisheyeSource> source);

    bool start() override;
    bool stop() override;
    const std::vector<qv::Calibration> &calibration() override;
    bool setFramerate(float fps) override;
    bool setExposure(int aecMode, int gain, float exposureMs) override;
    /// Streams that are synchronous take their records at the same moments.
    void setSync(bool sync);

    /// For those on the device who need the pictures: the stream runs while anyone holds it, whether it has
    /// been started or not, and whoever is registered gets pictures.
    void hold();
    void release();

protected:
    void produce(double due, Defect defect) override;
    virtual void scheduleChanged();
    FisheyeSource &source() { return *m_source; }
    const FisheyeSource &source() const { return *m_source; }

private:
    bool needed() const;
    void damage(qv::FisheyeImages &record, Defect defect) const;

    const std::shared_ptr<FisheyeSource> m_source;
    std::atomic<int> m_holders{0};
    std::atomic<bool> m_started{false};
};

} // namespace sim
