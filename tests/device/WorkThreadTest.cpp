#include "device/WorkThread.h"

#include "support/FakeDevice.h"
#include "support/FakeLibrary.h"

namespace {

/// The loop without its thread, so that a test runs it in its own.
class Loop : public WorkThread {
public:
    using WorkThread::run;
};

/// Runs the loop until it has asked `questions` times, and answers what it posted.
std::vector<fake::Devices> answersOf(int questions)
{
    std::vector<fake::Devices> answers;
    Loop loop;
    QObject::connect(&loop, &WorkThread::resultReady, [&](const fake::Devices &devices) {
        answers.push_back(devices);
        if (static_cast<int>(answers.size()) == questions)
            loop.end();
    });
    loop.run();
    return answers;
}

} // namespace

TEST(WorkThread, asksWithFixedArguments)
{
    fake::library().reset();
    answersOf(2);
    const auto calls = fake::library().getDevicesCalls();
    ASSERT_EQ(calls.size(), 2U);
    for (const fake::GetDevicesCall &call : calls) {
        EXPECT_EQ(call.timeout, 15.0);
        EXPECT_EQ(call.desc, "");
        EXPECT_EQ(call.stopWaiting, nullptr);
        EXPECT_EQ(call.mode, 0);
        EXPECT_EQ(call.support, 0);
    }
}

TEST(WorkThread, postsEveryAnswerAlsoAnUnchangedOne)
{
    fake::library().reset();
    const auto device = std::make_shared<FakeDevice>();
    const fake::Devices devices{{"a", device}};
    fake::library().setDevices(devices);
    EXPECT_THAT(answersOf(3), testing::ElementsAre(devices, devices, devices));
}

TEST(WorkThread, keepsNoDeviceBetweenItsQuestions)
{
    fake::library().reset();
    auto device = std::make_shared<FakeDevice>();
    fake::library().setDevices({{"a", device}});
    answersOf(1);
    fake::library().setDevices({});
    EXPECT_EQ(device.use_count(), 1);
}

TEST(WorkThread, whatTheLibraryThrowsGoesThrough)
{
    fake::library().reset();
    fake::library().setOnGetDevices([] { throw std::runtime_error("no bus"); });
    EXPECT_THROW(answersOf(1), std::runtime_error);
}

TEST(WorkThread, hasNoParentAndAsksNothingOnceEnded)
{
    fake::library().reset();
    Loop loop;
    EXPECT_EQ(loop.parent(), nullptr);
    loop.end();
    loop.run();
    EXPECT_THAT(fake::library().getDevicesCalls(), testing::IsEmpty());
}
