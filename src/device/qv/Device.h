#pragma once

#include "device/qv/ColorCamera.h"
#include "device/qv/FisheyeCamerasEx.h"
#include "device/qv/ImuSensor.h"
#include "device/qv/ObjectDetector.h"
#include "device/qv/Slam.h"
#include "device/qv/TofCamera.h"
#include "device/qv/Vsc.h"

#include <map>

namespace qv {

/// One connected device. Stays valid while anyone holds it, also after the hardware has gone; a
/// component that the device lacks is null, and each call answers the same component.
class Device {
public:
    virtual ~Device() = default;
    /// "true" or "false" marks a feature; the key "version" holds the firmware version.
    virtual std::map<std::string, std::string> info() = 0;
    virtual std::shared_ptr<Slam> slam() = 0;
    virtual std::shared_ptr<ImuSensor> imuSensor() = 0;
    virtual std::shared_ptr<FisheyeCameras> fisheyeCameras() = 0;
    virtual std::shared_ptr<ColorCamera> colorCamera() = 0;
    virtual std::shared_ptr<TofCamera> tofCamera() = 0;
    virtual std::shared_ptr<Vsc> vsc() = 0;
    virtual std::shared_ptr<ObjectDetector> objectDetector() = 0;
    /// One HID exchange; both vectors have 63 bytes when called.
    virtual bool hidWriteAndRead(
        const std::vector<unsigned char> &command, std::vector<unsigned char> &result) = 0;
    virtual bool enableSync(bool isSync) = 0;
    /// The uuid, equal to the key in the map of `getDevices`.
    virtual std::string id() = 0;
};

} // namespace qv
