#pragma once

#include "device/DeviceAccess.h"

/// Stands where a stream model's device object stands: its parent.
class FakeOwner : public QObject, public DeviceOwner {
    Q_OBJECT
    Q_INTERFACES(DeviceOwner)

public:
    std::shared_ptr<qv::Device> device() const override { return held; }

    std::shared_ptr<qv::Device> held;
};
