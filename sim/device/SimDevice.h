#pragma once

#include "device/DeviceState.h"
#include "device/HidChannel.h"
#include "device/SimColorCamera.h"
#include "device/SimFisheyeCameras.h"
#include "device/SimImuSensor.h"
#include "device/SimObjectDetector.h"
#include "device/SimSlam.h"
#include "device/SimTofCamera.h"
#include "device/SimVsc.h"
#include "device/qv/Device.h"

namespace sim {

/// One simulated or replayed device. Components that it lacks are null.
class SimDevice : public virtual qv::Device {
public:
    struct Components {
        std::shared_ptr<SimImuSensor> imu;
        std::shared_ptr<SimFisheyeCameras> fisheye;
        std::shared_ptr<SimColorCamera> color;
        std::shared_ptr<SimTofCamera> tof;
        std::shared_ptr<SimSlam> slam;
        std::shared_ptr<SimSlam> edge; ///< only devices with the extensions hand it out
        std::shared_ptr<SimVsc> vsc;
        std::shared_ptr<SimObjectDetector> objects;
    };

    SimDevice(
        std::shared_ptr<DeviceState> state, std::map<std::string, std::string> info, Components components);
    ~SimDevice() override;

    std::map<std::string, std::string> info() override;
    std::shared_ptr<qv::Slam> slam() override { return m_components.slam; }
    std::shared_ptr<qv::ImuSensor> imuSensor() override { return m_components.imu; }
    std::shared_ptr<qv::FisheyeCameras> fisheyeCameras() override { return m_components.fisheye; }
    std::shared_ptr<qv::ColorCamera> colorCamera() override { return m_components.color; }
    std::shared_ptr<qv::TofCamera> tofCamera() override { return m_components.tof; }
    std::shared_ptr<qv::Vsc> vsc() override { return m_components.vsc; }
    std::shared_ptr<qv::ObjectDetector> objectDetector() override { return m_components.objects; }
    bool hidWriteAndRead(
        const std::vector<unsigned char> &command, std::vector<unsigned char> &result) override;
    bool enableSync(bool isSync) override;
    std::string id() override { return m_state->config().uuid; }

    /// The hardware has gone: operations fail from now on and the streams end. Waits for nothing.
    void unplug();
    DeviceState &state() { return *m_state; }

protected:
    const Components &components() const { return m_components; }
    /// For settings without an answer: whether to do it; writes it to the device's log.
    bool accepts(const char *setting, int value);

private:
    const std::shared_ptr<DeviceState> m_state;
    const std::map<std::string, std::string> m_info;
    const Components m_components;
    HidChannel m_hid;
};

} // namespace sim
