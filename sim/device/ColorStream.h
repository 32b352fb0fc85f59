#pragma once

#include "device/ColorEncoder.h"
#include "device/ColorSource.h"
#include "device/StreamComponent.h"

namespace sim {

/// The stream of one colour camera, under the name that faults know it by.
class ColorStream : public StreamComponent<qv::ColorImage> {
public:
    ColorStream(std::string name, std::shared_ptr<DeviceState> device, std::shared_ptr<ColorSource> source);

    /// Streams that are synchronous take their records at the same moments.
    void setSync(bool sync);
    bool streaming() { return thread().running(); }

protected:
    void produce(double due, Defect defect) override;
    void scheduleChanged();
    ColorSource &source() { return *m_source; }

private:
    void damage(qv::ColorImage &record, Defect defect) const;

    const std::shared_ptr<ColorSource> m_source;
};

} // namespace sim
