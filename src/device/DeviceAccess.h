#pragma once

#include "device/qv/DeviceEx.h"

#include <QObject>
#include <memory>

/// What owns the stream models of one device, as far as the models need to know it.
class DeviceOwner {
public:
    virtual ~DeviceOwner() = default;
    virtual std::shared_ptr<qv::Device> device() const = 0;
};

Q_DECLARE_INTERFACE(DeviceOwner, "Quivra.QVSDK.DeviceOwner/1.0")

/// How a stream model reaches the device it belongs to.
namespace DeviceAccess {

/// The device of the `DeviceOwner` that is the parent of `object`; null when there is none.
std::shared_ptr<qv::Device> device(const QObject *object);

/// The same device where it is a `qv::DeviceEx`; null where it isn't.
std::shared_ptr<qv::DeviceEx> deviceEx(const QObject *object);

} // namespace DeviceAccess
