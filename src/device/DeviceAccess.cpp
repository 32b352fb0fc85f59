#include "device/DeviceAccess.h"

std::shared_ptr<qv::Device> DeviceAccess::device(const QObject *object)
{
    const auto *owner = qobject_cast<DeviceOwner *>(object->parent());
    return owner ? owner->device() : nullptr;
}

std::shared_ptr<qv::DeviceEx> DeviceAccess::deviceEx(const QObject *object)
{
    return std::dynamic_pointer_cast<qv::DeviceEx>(device(object));
}
