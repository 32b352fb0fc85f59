#include "device/CameraListener.h"

#include "device/CameraDevice.h"
#include "support/FakeDevice.h"
#include "support/FakeLibrary.h"
#include "support/LogCatcher.h"
#include "support/Wait.h"

#include <QElapsedTimer>
#include <QMetaProperty>
#include <QPointer>
#include <QTimer>
#include <set>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Names = std::vector<std::string>;

fake::Devices devicesOf(const Names &names)
{
    fake::Devices devices;
    for (const std::string &name : names) {
        const auto device = std::make_shared<FakeDevice>();
        device->uuid = name;
        devices[name] = device;
    }
    return devices;
}

Names namesOf(const QList<QObject *> &cameras)
{
    Names names;
    for (QObject *const camera : cameras)
        names.push_back(qobject_cast<CameraDevice *>(camera)->uuid().toStdString());
    return names;
}

/// A listener whose answers and ticks the test gives itself. The library's own answers are not delivered,
/// since the event loop doesn't run.
class CameraListenerTest : public testing::Test {
protected:
    void SetUp() override { fake::library().reset(); }

    void tick(const fake::Devices &devices)
    {
        m_listener.setDevices(devices);
        m_listener.run();
    }

    void tick(const Names &names) { tick(devicesOf(names)); }

    Names shown() const { return namesOf(m_listener.cameras()); }

    const LogCatcher m_log;
    CameraListener m_listener{nullptr, 3};
};

/// What the list's memory does when one walks it with a pointer: removing closes the gap from the nearer
/// end, in place, and the pointer goes on behind the removed slot.
Names survivors(const Names &listed, const std::set<std::string> &connected)
{
    std::vector<std::string> slot = listed;
    std::size_t begin = 0;
    std::size_t end = slot.size();
    std::size_t pointer = begin;
    while (pointer < end) {
        if (connected.count(slot[pointer]) == 0) {
            const std::size_t before = pointer - begin;
            if (2 * before < end - begin) {
                for (std::size_t i = pointer; i > begin; --i)
                    slot[i] = slot[i - 1];
                ++begin;
            } else {
                for (std::size_t i = pointer; i + 1 < end; ++i)
                    slot[i] = slot[i + 1];
                --end;
            }
        }
        ++pointer;
    }
    return {
        slot.begin() + static_cast<std::ptrdiff_t>(begin), slot.begin() + static_cast<std::ptrdiff_t>(end)};
}

} // namespace

TEST_F(CameraListenerTest, answerTypeIsRegisteredByItsName)
{
    EXPECT_NE(QMetaType::type("std::map<std::string,std::shared_ptr<qv::Device> >"), QMetaType::UnknownType);
}

TEST_F(CameraListenerTest, offersItsInterface)
{
    const QMetaObject &meta = CameraListener::staticMetaObject;
    EXPECT_EQ(meta.propertyCount() - meta.propertyOffset(), 1);
    const QMetaProperty cameras = meta.property(meta.indexOfProperty("cameras"));
    EXPECT_STREQ(cameras.typeName(), "QList<QObject*>");
    EXPECT_FALSE(cameras.isWritable());
    EXPECT_EQ(cameras.notifySignal().methodSignature(), "camerasChanged(QList<QObject*>)");
    EXPECT_EQ(meta.method(meta.indexOfSlot("listen()")).methodType(), QMetaMethod::Slot);
    EXPECT_GE(meta.indexOfSlot("setDevices(std::map<std::string,std::shared_ptr<qv::Device> >)"), 0);
    EXPECT_EQ(meta.method(meta.indexOfMethod("run()")).methodType(), QMetaMethod::Method);
}

TEST_F(CameraListenerTest, firstTickSwitchesTheTimerToASecond)
{
    const auto *const timer = m_listener.findChild<QTimer *>();
    EXPECT_EQ(timer->interval(), 6500);
    EXPECT_FALSE(timer->isSingleShot());
    EXPECT_TRUE(timer->isActive());
    m_listener.run();
    EXPECT_EQ(timer->interval(), 1000);
}

TEST_F(CameraListenerTest, withoutADeviceNothingIsToldOrSet)
{
    const QSignalSpy changed(&m_listener, &CameraListener::camerasChanged);
    m_listener.run();
    m_listener.run();
    EXPECT_EQ(changed.count(), 0);
    EXPECT_THAT(fake::library().logLevels(), IsEmpty());
    EXPECT_THAT(m_listener.cameras(), IsEmpty());
}

TEST_F(CameraListenerTest, setDevicesAloneChangesNothing)
{
    const QSignalSpy changed(&m_listener, &CameraListener::camerasChanged);
    m_listener.setDevices(devicesOf({"a"}));
    EXPECT_EQ(changed.count(), 0);
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(CameraListenerTest, addsInUuidOrderWithASignalEach)
{
    std::vector<Names> told;
    QObject::connect(&m_listener, &CameraListener::camerasChanged,
        [&told](const QList<QObject *> &cameras) { told.push_back(namesOf(cameras)); });
    testing::internal::CaptureStderr();
    tick(Names{"b", "a"});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "New camera in viewer: a\nNew camera in viewer: b\n");
    EXPECT_THAT(told, ElementsAre(Names{"a"}, Names{"a", "b"}));
    EXPECT_EQ(m_listener.cameras().first()->parent(), &m_listener);
}

TEST_F(CameraListenerTest, keepsTheOrderOfFirstAppearance)
{
    tick(Names{"b"});
    tick(Names{"a", "b", "c"});
    EXPECT_EQ(shown(), (Names{"b", "a", "c"}));
}

TEST_F(CameraListenerTest, logLevelGoesToTheLibraryOncePerKnownDeviceAndTick)
{
    tick(Names{"a"});
    EXPECT_THAT(fake::library().logLevels(), IsEmpty());
    tick(Names{"a", "b"});
    EXPECT_THAT(fake::library().logLevels(), ElementsAre(3));
    m_listener.run();
    EXPECT_THAT(fake::library().logLevels(), ElementsAre(3, 3, 3));
}

TEST_F(CameraListenerTest, knownDeviceKeepsItsObject)
{
    tick(Names{"a"});
    QObject *const camera = m_listener.cameras().first();
    const QSignalSpy changed(&m_listener, &CameraListener::camerasChanged);
    // Another device under the same uuid: unplugged and plugged in again between two ticks.
    tick(Names{"a"});
    EXPECT_EQ(m_listener.cameras().first(), camera);
    EXPECT_EQ(changed.count(), 0);
}

TEST_F(CameraListenerTest, unpluggedDeviceLeavesTheListAtOnceAndDiesInTheEventLoop)
{
    auto devices = devicesOf({"a", "b"});
    const std::weak_ptr<qv::Device> device = devices["a"];
    tick(devices);
    devices.clear();
    const QPointer<QObject> camera = m_listener.cameras().first();
    std::vector<Names> told;
    QObject::connect(&m_listener, &CameraListener::camerasChanged,
        [&told](const QList<QObject *> &cameras) { told.push_back(namesOf(cameras)); });
    testing::internal::CaptureStderr();

    tick(Names{"b"});

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Camera a will be removed from viewer\n");
    EXPECT_THAT(told, ElementsAre(Names{"b"}));
    EXPECT_FALSE(camera.isNull());
    EXPECT_FALSE(device.expired());
    EXPECT_FALSE(m_log.lines().contains(QStringLiteral("debug: Stop camera")));
    QCoreApplication::sendPostedEvents(camera, QEvent::DeferredDelete);
    EXPECT_TRUE(camera.isNull());
    EXPECT_TRUE(device.expired());
    EXPECT_TRUE(m_log.lines().contains(QStringLiteral("debug: Stop camera")));
}

TEST_F(CameraListenerTest, anAnswerThatComesWhileItAddsCountsForWhatFollows)
{
    std::vector<Names> told;
    QObject::connect(&m_listener, &CameraListener::camerasChanged, [&](const QList<QObject *> &cameras) {
        told.push_back(namesOf(cameras));
        if (told.size() == 1)
            m_listener.setDevices(devicesOf({"c"}));
    });
    tick(Names{"a", "b"});
    EXPECT_THAT(told, ElementsAre(Names{"a"}, Names{"a", "b"}, Names{"b"}, Names{}));
    m_listener.run();
    EXPECT_EQ(shown(), (Names{"c"}));
}

TEST_F(CameraListenerTest, answersBetweenTwoTicksReplaceEachOther)
{
    const QSignalSpy changed(&m_listener, &CameraListener::camerasChanged);
    testing::internal::CaptureStderr();
    m_listener.setDevices(devicesOf({"a"}));
    m_listener.setDevices(devicesOf({"b"}));
    m_listener.run();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "New camera in viewer: b\n");
    EXPECT_EQ(shown(), (Names{"b"}));
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(CameraListenerTest, oneTickAddsBeforeItRemoves)
{
    tick(Names{"a"});
    testing::internal::CaptureStderr();
    tick(Names{"b"});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
        "New camera in viewer: b\nCamera a will be removed from viewer\n");
    EXPECT_EQ(shown(), (Names{"b"}));
}

TEST_F(CameraListenerTest, ofThreeNoneLags)
{
    for (const Names &left : {Names{}, Names{"a"}, Names{"b"}, Names{"c"}}) {
        tick(Names{"a", "b", "c"});
        tick(left);
        EXPECT_EQ(shown(), left);
        tick(Names{});
    }
}

TEST_F(CameraListenerTest, ofFourTheLastLagsBehindTheThird)
{
    tick(Names{"a", "b", "c", "d"});
    testing::internal::CaptureStderr();
    tick(Names{"a", "b"});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Camera c will be removed from viewer\n");
    EXPECT_EQ(shown(), (Names{"a", "b", "d"}));
    m_listener.run();
    EXPECT_EQ(shown(), (Names{"a", "b"}));
}

TEST_F(CameraListenerTest, removalWalksAsTheListClosesItsGaps)
{
    const Names all{"a", "b", "c", "d", "e", "f", "g"};
    testing::internal::CaptureStderr();
    for (std::size_t count = 1; count <= all.size(); ++count) {
        const Names listed(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count));
        for (unsigned mask = 0; mask < (1U << count); ++mask) {
            Names left;
            for (std::size_t i = 0; i < count; ++i)
                if (mask & (1U << i))
                    left.push_back(listed[i]);
            tick(listed);
            tick(left);
            EXPECT_EQ(shown(), survivors(listed, {left.begin(), left.end()})) << count << ' ' << mask;
            while (!shown().empty())
                tick(Names{});
        }
    }
    testing::internal::GetCapturedStderr();
}

TEST_F(CameraListenerTest, nullDeviceInAnAnswerIsPassedOver)
{
    const QSignalSpy changed(&m_listener, &CameraListener::camerasChanged);
    tick(fake::Devices{{"a", nullptr}});
    EXPECT_THAT(shown(), IsEmpty());
    EXPECT_EQ(changed.count(), 0);
}

TEST_F(CameraListenerTest, deviceThatThrowsItsInformationIsListedAllTheSame)
{
    const auto device = std::make_shared<FakeDevice>();
    device->infoThrows = true;
    tick(fake::Devices{{device->uuid, device}});
    EXPECT_EQ(shown(), (Names{device->uuid}));
}

TEST_F(CameraListenerTest, listenComparesAtOnceAndByAFurtherTimer)
{
    m_listener.setDevices(devicesOf({"a"}));
    m_listener.listen();
    EXPECT_EQ(shown(), (Names{"a"}));
    const auto timers = m_listener.findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(timers.size(), 2);
    EXPECT_TRUE(timers[0]->isActive());
    EXPECT_EQ(timers[0]->interval(), 6500);
    EXPECT_TRUE(timers[1]->isActive());
    EXPECT_EQ(timers[1]->interval(), 1000);
    EXPECT_FALSE(timers[1]->isSingleShot());
}

TEST(CameraListener, latestAnswerCounts)
{
    fake::library().reset();
    CameraListener listener(nullptr, 2);
    fake::library().setDevices(devicesOf({"a"}));
    // Two answers later the poll thread has done with the first, but the event loop hasn't turned.
    for (const int before = fake::library().answers(); fake::library().answers() < before + 2;)
        QThread::yieldCurrentThread();
    listener.run();
    EXPECT_TRUE(listener.cameras().isEmpty()) << "an answer is taken on the main thread alone";
    ASSERT_TRUE(waitFor([&] {
        listener.run();
        return namesOf(listener.cameras()) == Names{"a"};
    }));
    fake::library().setDevices(devicesOf({"a", "b"}));
    ASSERT_TRUE(waitFor([&] {
        listener.run();
        return namesOf(listener.cameras()) == Names{"a", "b"};
    }));
    fake::library().setDevices({});
    EXPECT_TRUE(waitFor([&] {
        listener.run();
        return listener.cameras().isEmpty();
    }));
}

TEST(CameraListener, noCameraBeforeTheFirstTick)
{
    fake::library().reset();
    fake::library().setDevices(devicesOf({"a"}));
    QElapsedTimer time;
    time.start();
    CameraListener listener(nullptr, 2);
    ASSERT_TRUE(waitFor([&] { return !listener.cameras().isEmpty(); }));
    EXPECT_GE(time.elapsed(), 6500);
    EXPECT_GE(fake::library().answers(), 2);

    // From now on once a second.
    fake::library().setDevices({});
    time.restart();
    ASSERT_TRUE(waitFor([&] { return listener.cameras().isEmpty(); }));
    EXPECT_LT(time.elapsed(), 6500);
}

TEST(CameraListener, destructionStopsEveryDeviceThenWaits)
{
    fake::library().reset();
    auto devices = devicesOf({"a", "b"});
    auto listener = std::make_unique<CameraListener>(nullptr, 2);
    listener->setDevices(devices);
    listener->run();
    const QSignalSpy changed(listener.get(), &CameraListener::camerasChanged);
    Names stopped;
    const QList<QObject *> cameras = listener->cameras();
    for (QObject *const camera : cameras)
        QObject::connect(qobject_cast<CameraDevice *>(camera), &CameraDevice::sgbmChanged,
            [&stopped, camera] { stopped.push_back(namesOf({camera}).front()); });
    const LogCatcher log;
    listener.reset();
    ASSERT_GE(stopped.size(), 2U);
    EXPECT_EQ(Names(stopped.begin(), stopped.begin() + 2), (Names{"a", "b"})) << "from the front";
    const QString stop = QStringLiteral("debug: Stop camera");
    EXPECT_THAT(
        log.lines(), ElementsAre(stop, stop, QStringLiteral("debug: Viewer cameras stopped"), stop, stop));
    EXPECT_EQ(changed.count(), 0);
    for (const auto &[name, device] : devices)
        EXPECT_EQ(device.use_count(), 1) << name;
}

TEST(CameraListener, destructionWaitsForTheQuestionUnderWay)
{
    fake::library().reset();
    std::atomic<bool> asked{false};
    std::atomic<bool> release{false};
    std::atomic<bool> answered{false};
    fake::library().setOnGetDevices([&] {
        asked = true;
        while (!release)
            QThread::yieldCurrentThread();
        // Time for a destruction that doesn't wait to come to its end.
        QThread::msleep(200);
        answered = true;
    });
    auto listener = std::make_unique<CameraListener>(nullptr, 2);
    while (!asked)
        QThread::yieldCurrentThread();
    auto device = std::make_shared<FakeDevice>();
    listener->setDevices({{device->uuid, device}});
    listener->run();
    // The last that happens before the wait is the stop of the devices.
    QObject::connect(qobject_cast<CameraDevice *>(listener->cameras().first()), &CameraDevice::sgbmChanged,
        [&release] { release = true; });
    listener.reset();
    EXPECT_TRUE(answered);
    EXPECT_EQ(fake::library().answers(), 1);
}

TEST(CameraListener, pollThreadDiesInTheEventLoop)
{
    fake::library().reset();
    std::atomic<QThread *> current{nullptr};
    fake::library().setOnGetDevices([&current] { current = QThread::currentThread(); });
    auto listener = std::make_unique<CameraListener>(nullptr, 2);
    while (!current)
        QThread::yieldCurrentThread();
    const QPointer<QThread> thread(current.load());
    listener.reset();
    ASSERT_FALSE(thread.isNull());
    EXPECT_TRUE(thread->isFinished());
    EXPECT_TRUE(waitFor([&thread] { return thread.isNull(); }));
}
