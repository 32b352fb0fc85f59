#pragma once

#include "device/qv/ImuSensor.h"
#include "support/FakeStream.h"

class FakeImuSensor : public FakeStream<qv::ImuSensor, qv::Imu> { };
