#include "streams/CallbackGuard.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

TEST(CallbackGuard, runsTheCallbackWhileOpen)
{
    const CallbackGuard guard;
    int sum = 0;
    const std::function<void(int, int)> callback = guard.wrap([&](int a, int b) { sum += a * b; });
    callback(3, 4);
    EXPECT_EQ(sum, 12);
}

TEST(CallbackGuard, aCallbackThatOutlivesItsModelDoesNothing)
{
    std::function<void()> callback;
    int runs = 0;
    {
        const CallbackGuard guard;
        callback = guard.wrap([&] { ++runs; });
    }
    callback();
    EXPECT_EQ(runs, 0);
}

TEST(CallbackGuard, closeWaitsForARunningCallback)
{
    CallbackGuard guard;
    std::atomic<bool> inside{false}, leave{false}, left{false};
    const std::function<void()> callback = guard.wrap([&] {
        inside = true;
        while (!leave)
            std::this_thread::yield();
        left = true;
    });
    std::thread library(callback);
    while (!inside)
        std::this_thread::yield();
    std::thread release([&] { leave = true; });
    guard.close();
    EXPECT_TRUE(left);
    library.join();
    release.join();
}

TEST(CallbackGuard, callbacksOfOneGuardRunAtTheSameTime)
{
    const CallbackGuard guard;
    std::atomic<int> inside{0};
    const std::function<void()> callback = guard.wrap([&] {
        ++inside;
        while (inside < 2)
            std::this_thread::yield();
    });
    std::thread first(callback), second(callback);
    first.join();
    second.join();
    EXPECT_EQ(inside, 2);
}

TEST(CallbackGuard, whatACallbackThrowsReachesItsCallerAndReleasesTheGuard)
{
    CallbackGuard guard;
    const std::function<void()> callback = guard.wrap([] { throw std::runtime_error("told"); });
    EXPECT_THROW(callback(), std::runtime_error);
    guard.close();
    EXPECT_NO_THROW(callback());
}
