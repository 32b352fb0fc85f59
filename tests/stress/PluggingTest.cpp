// Devices come and go on the real device library while their streams run.
#include "device/CameraDevice.h"
#include "device/CameraListener.h"
#include "support/Wait.h"

#include <QFile>
#include <QPointer>
#include <QSaveFile>
#include <QTemporaryDir>
#include <algorithm>
#include <malloc.h>

namespace {

constexpr int DefaultChanges = 600;
constexpr int ChangeMs = 100;
/// What may stay behind after the warm-up: the allocator's own slack, not objects.
constexpr double MayGrowMiB = 8;

int changes()
{
    const int wanted = qEnvironmentVariableIntValue("QV_STRESS_CHANGES");
    return wanted > 0 ? wanted : DefaultChanges;
}

/// What is allocated and not freed. The resident size would count what the heap keeps for later, too.
double allocatedMiB()
{
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd) / (1 << 20);
}

/// The least of a second: threads that are just ending still hold what they worked on, some 10 to 16 MiB.
double settledMiB()
{
    double least = allocatedMiB();
    QElapsedTimer timer;
    timer.start();
    waitFor([&] {
        least = std::min(least, allocatedMiB());
        return timer.hasExpired(1000);
    });
    return least;
}

/// Describes the devices that are plugged in, for the library to read.
class Plugs {
public:
    Plugs()
    {
        plug(0);
        qputenv("QVSIM_CONFIG", path().toLocal8Bit());
    }

    /// Bit 0 the headset, bit 1 the four-camera device.
    void plug(int mask) const
    {
        QByteArray devices;
        if (mask & 1)
            devices += R"({"profile": "headset", "uuid": "A", "streams": {"fisheye": {"size": [160, 100]}}})";
        if (mask == 3)
            devices += ',';
        if (mask & 2)
            devices += R"({"profile": "quad", "uuid": "B", "streams": {"fisheye": {"size": [160, 100]}}})";
        QSaveFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[" + devices + "]");
        ASSERT_TRUE(file.commit());
    }

private:
    QString path() const { return m_folder.filePath(QStringLiteral("devices.json")); }

    const QTemporaryDir m_folder;
};

/// Switches on what a user can: every model of the device.
void startStreams(const CameraDevice &camera)
{
    for (QObject *const model : camera.children()) {
        if (model->metaObject()->indexOfMethod("control(bool)") >= 0)
            QMetaObject::invokeMethod(model, "control", Q_ARG(bool, true));
        else if (model->metaObject()->indexOfProperty("enabled") >= 0)
            model->setProperty("enabled", true);
    }
}

/// Everything that the listener has made, to see it go.
class Made {
public:
    void take(const QList<QObject *> &cameras)
    {
        for (QObject *const camera : cameras) {
            if (m_known.contains(camera) && m_known[camera])
                continue;
            m_known[camera] = camera;
            auto *const device = qobject_cast<CameraDevice *>(camera);
            m_objects.emplace_back(camera);
            for (QObject *const model : camera->children())
                m_objects.emplace_back(model);
            m_devices.emplace_back(device->device());
            m_devices.emplace_back(device->device()->fisheyeCameras());
            ++m_count;
            startStreams(*device);
            QObject::connect(device->stereo()->image(StereoData::Left)->findChild<ImageData *>(),
                &ImageData::update, device, [this] { ++m_frames; });
        }
    }

    int count() const { return m_count; }
    int frames() const { return m_frames; }

    int aliveObjects() const
    {
        return static_cast<int>(std::count_if(
            m_objects.begin(), m_objects.end(), [](const auto &object) { return !object.isNull(); }));
    }

    int aliveDevices() const
    {
        return static_cast<int>(std::count_if(
            m_devices.begin(), m_devices.end(), [](const auto &device) { return !device.expired(); }));
    }

private:
    QMap<QObject *, QPointer<QObject>> m_known;
    std::vector<QPointer<QObject>> m_objects;
    std::vector<std::weak_ptr<void>> m_devices; ///< the library's, and what streams longest of each
    int m_count = 0;
    int m_frames = 0;
};

} // namespace

TEST(Plugging, everyTenthOfASecondWhileStreamsRunLosesNothing)
{
    // One heap for all threads, or its fragments outweigh what a leak would add.
    mallopt(M_ARENA_MAX, 1);
    const Plugs plugs;
    Made made;
    double before = 0;
    double after = 0;
    {
        CameraListener listener(nullptr, 6);
        QObject::connect(&listener, &CameraListener::camerasChanged,
            [&made](const QList<QObject *> &cameras) { made.take(cameras); });
        const auto unplugAll = [&] {
            plugs.plug(0);
            return waitFor([&] {
                listener.run();
                return listener.cameras().isEmpty() && made.aliveObjects() == 0 && made.aliveDevices() == 0;
            });
        };
        const int all = changes();
        QElapsedTimer rhythm;
        for (int change = 0; change < all; ++change) {
            if (change == all / 4) {
                EXPECT_TRUE(unplugAll());
                before = settledMiB();
            }
            // Both, one, none, the other: each order of coming and going.
            plugs.plug(change % 4);
            rhythm.start();
            // In place of the listener's tick, which would pass over most of the changes.
            waitFor([&] {
                listener.run();
                return rhythm.elapsed() >= ChangeMs;
            });
        }
        EXPECT_TRUE(unplugAll()) << made.aliveObjects() << " objects and " << made.aliveDevices()
                                 << " devices are left";
        after = allocatedMiB();
        std::cout << after - before << " MiB grown at once\n";
        waitFor([&] {
            after = settledMiB();
            return after - before < MayGrowMiB;
        });
    }
    std::cout << made.count() << " devices made, " << made.frames() << " frames, " << after - before
              << " MiB grown\n";
    EXPECT_GT(made.count(), changes() / 4);
    EXPECT_GT(made.frames(), made.count() / 10);
    EXPECT_LT(after - before, MayGrowMiB);
}
