#include "device/DeviceAccess.h"

#include "support/FakeDevice.h"
#include "support/FakeOwner.h"

#include <gtest/gtest.h>

TEST(DeviceAccess, answersTheDeviceOfTheParent)
{
    FakeOwner owner;
    owner.held = std::make_shared<FakeDeviceEx>();
    const QObject model(&owner);
    EXPECT_EQ(DeviceAccess::device(&model), owner.held);
    EXPECT_EQ(DeviceAccess::deviceEx(&model), owner.held);
}

TEST(DeviceAccess, aPlainDeviceIsNoExtendedOne)
{
    FakeOwner owner;
    owner.held = std::make_shared<FakeDevice>();
    const QObject model(&owner);
    EXPECT_EQ(DeviceAccess::device(&model), owner.held);
    EXPECT_EQ(DeviceAccess::deviceEx(&model), nullptr);
}

TEST(DeviceAccess, anObjectThatBelongsToNoDeviceGetsNull)
{
    QObject other;
    const QObject model(&other), alone;
    FakeOwner empty;
    const QObject deviceless(&empty);
    for (const QObject *object : {&model, &alone, &deviceless}) {
        EXPECT_EQ(DeviceAccess::device(object), nullptr);
        EXPECT_EQ(DeviceAccess::deviceEx(object), nullptr);
    }
}
