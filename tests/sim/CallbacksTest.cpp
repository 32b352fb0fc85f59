#include "core/Callbacks.h"

#include "support/Wait.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

using sim::Callbacks;

TEST(Callbacks, idsBeginAtZeroAndAreNeverReused)
{
    Callbacks<int> callbacks;
    const int first = callbacks.add([](int) {});
    callbacks.remove(first);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(callbacks.add([](int) {}), 1);
    EXPECT_EQ(callbacks.add([](int) {}), 2);
}

TEST(Callbacks, emptyFunctionIsNotRegistered)
{
    Callbacks<int> callbacks;
    EXPECT_EQ(callbacks.add(nullptr), -1);
    EXPECT_TRUE(callbacks.empty());
}

TEST(Callbacks, removingWhatIsNotThereIsHarmless)
{
    Callbacks<int> callbacks;
    int calls = 0;
    const int id = callbacks.add([&](int) { ++calls; });
    callbacks.remove(-1);
    callbacks.remove(1000);
    callbacks.call(0);
    callbacks.remove(id);
    callbacks.remove(id);
    callbacks.call(0);
    EXPECT_EQ(calls, 1);
}

TEST(Callbacks, areCalledInTheOrderOfRegistration)
{
    Callbacks<int> callbacks;
    std::vector<int> order;
    for (int i = 0; i < 5; ++i)
        callbacks.add([&order, i](int) { order.push_back(i); });
    callbacks.call(0);
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(Callbacks, oneThatThrowsKeepsNothingFromTheOthers)
{
    Callbacks<int> callbacks;
    int sum = 0;
    callbacks.add([](int) { throw std::runtime_error("invalid vector<T> subscript"); });
    callbacks.add([](int) { throw 7; });
    callbacks.add([&](int value) { sum += value; });
    callbacks.call(3);
    callbacks.call(4);
    EXPECT_EQ(sum, 7);
}

TEST(Callbacks, removeWaitsForTheCallThatRuns)
{
    Callbacks<> callbacks;
    std::atomic<bool> inside{false};
    std::atomic<bool> mayLeave{false};
    std::atomic<bool> left{false};
    const int id = callbacks.add([&] {
        inside = true;
        while (!mayLeave)
            std::this_thread::yield();
        left = true;
    });
    std::thread caller([&] { callbacks.call(); });
    ASSERT_TRUE(waitFor([&] { return inside.load(); }));

    std::atomic<bool> removed{false};
    bool leftBeforeRemoved = false;
    std::thread remover([&] {
        callbacks.remove(id);
        leftBeforeRemoved = left;
        removed = true;
    });
    EXPECT_FALSE(removed);
    mayLeave = true;
    caller.join();
    remover.join();
    EXPECT_TRUE(leftBeforeRemoved);
}

TEST(Callbacks, removeFromInsideReturnsAtOnce)
{
    Callbacks<> callbacks;
    int calls = 0;
    int id = -1;
    id = callbacks.add([&] {
        ++calls;
        callbacks.remove(id);
    });
    callbacks.call();
    callbacks.call();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(callbacks.empty());
}

TEST(Callbacks, whatAFunctionHoldsGoesWhenItIsRemoved)
{
    Callbacks<> callbacks;
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = held;
    const int id = callbacks.add([held] {});
    held.reset();
    EXPECT_FALSE(watch.expired());
    callbacks.remove(id);
    EXPECT_TRUE(watch.expired());
}

TEST(Callbacks, oneAddedDuringACallIsCalledNextTime)
{
    Callbacks<> callbacks;
    int calls = 0;
    bool added = false;
    callbacks.add([&] {
        if (!std::exchange(added, true))
            callbacks.add([&] { ++calls; });
    });
    callbacks.call();
    EXPECT_EQ(calls, 0);
    callbacks.call();
    EXPECT_EQ(calls, 1);
}

TEST(Callbacks, noneRunsAfterItsRemovalWhileThreadsCallAndRegister)
{
    Callbacks<> callbacks;
    std::atomic<bool> ending{false};
    std::vector<std::thread> callers;
    for (int i = 0; i < 2; ++i) {
        callers.emplace_back([&] {
            while (!ending)
                callbacks.call();
        });
    }
    std::atomic<int> calls{0};
    std::atomic<int> late{0};
    for (int round = 0; round < 500; ++round) {
        auto alive = std::make_unique<std::atomic<bool>>(true);
        const int id = callbacks.add([&calls, &late, flag = alive.get()] {
            ++calls;
            if (!*flag)
                ++late;
        });
        if (round % 50 == 0)
            waitFor([&, before = calls.load()] { return calls > before; });
        callbacks.remove(id);
        *alive = false;
    }
    ending = true;
    for (std::thread &caller : callers)
        caller.join();
    EXPECT_EQ(late, 0);
    EXPECT_GT(calls, 0);
}
