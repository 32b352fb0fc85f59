#pragma once

#include "support/FakeColorCamera.h"
#include "support/FakeDevice.h"
#include "support/FakeFisheyeCameras.h"
#include "support/FakeImuSensor.h"
#include "support/FakeObjectDetector.h"
#include "support/FakeSlam.h"
#include "support/FakeTofCamera.h"
#include "support/FakeVsc.h"

/// A device that has every component, each with its own call log.
struct FullDevice {
    FullDevice()
    {
        device->uuid = "full";
        device->slamComponent = slam;
        device->edgeComponent = edge;
        device->imuComponent = imu;
        device->fisheyeComponent = fisheyes;
        device->colorComponent = color;
        device->tofComponent = tof;
        device->vscComponent = vsc;
        device->detectorComponent = detector;
    }

    std::shared_ptr<FakeDeviceEx> device = std::make_shared<FakeDeviceEx>();
    std::shared_ptr<FakeSlam> slam = std::make_shared<FakeSlam>();
    std::shared_ptr<FakeSlam> edge = std::make_shared<FakeSlam>();
    std::shared_ptr<FakeImuSensor> imu = std::make_shared<FakeImuSensor>();
    std::shared_ptr<FakeFisheyeCamerasEx> fisheyes = std::make_shared<FakeFisheyeCamerasEx>();
    std::shared_ptr<FakeColorCamera> color = std::make_shared<FakeColorCamera>();
    std::shared_ptr<FakeTofCamera> tof = std::make_shared<FakeTofCamera>();
    std::shared_ptr<FakeVsc> vsc = std::make_shared<FakeVsc>();
    std::shared_ptr<FakeObjectDetector> detector = std::make_shared<FakeObjectDetector>();
};
