#include "ui/Space.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QtTest/QTest>
#include <algorithm>
#include <atomic>
#include <iostream>
#include <thread>
#include <unistd.h>

// A thousand poses a second from two sources that won't be throttled: clicks are answered, the recordings
// have every pose, and memory stays what it is once the paths are full. QV_POSES_SECONDS makes it long.

using namespace ui;

namespace {

constexpr int rate = 1000;
constexpr double pathSeconds = 100000.0 / rate;

int wantedSeconds()
{
    const int wanted = qEnvironmentVariableIntValue("QV_POSES_SECONDS");
    return wanted > 0 ? wanted : 8;
}

/// Megabytes.
double residentMemory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * double(sysconf(_SC_PAGESIZE)) / 1e6;
}

/// The times of all poses that the device sends, in memory that is taken beforehand.
class TimeTap {
public:
    TimeTap(std::shared_ptr<qv::Slam> slam, std::size_t expected)
        : m_slam(std::move(slam))
        , m_times(expected, 1)
        , m_id(m_slam->registerCallback([this](const qv::Pose &pose) {
            const std::size_t at = m_count.load();
            if (at < m_times.size())
                m_times[at] = pose.edgeTimestampUs;
            m_count = at + 1;
        }))
    {
    }
    ~TimeTap() { m_slam->unregisterCallback(m_id); }
    TimeTap(const TimeTap &) = delete;
    TimeTap &operator=(const TimeTap &) = delete;

    std::size_t count() const { return m_count; }
    std::vector<qint64> all() const
    {
        return {m_times.begin(), m_times.begin() + std::ptrdiff_t(std::min(count(), m_times.size()))};
    }

private:
    const std::shared_ptr<qv::Slam> m_slam;
    std::vector<qint64> m_times;
    std::atomic<std::size_t> m_count{0};
    const int m_id;
};

/// Clicks now and then, as a hand does, without regard to what the interface is at: the time from the release
/// of the button to what it changes.
class Clicker {
public:
    explicit Clicker(QQuickItem *box)
        : m_box(box)
        , m_thread([this] { run(); })
    {
    }
    ~Clicker() { stop(); }
    Clicker(const Clicker &) = delete;
    Clicker &operator=(const Clicker &) = delete;

    void stop()
    {
        if (!m_thread.joinable())
            return;
        // The interface goes on meanwhile, or the last click would wait for this.
        m_ends = true;
        waitFor([this] { return m_ended.load(); }, minute);
        m_thread.join();
        QCoreApplication::processEvents();
    }

    std::vector<double> milliseconds() const { return m_times; }

private:
    void run()
    {
        for (int i = 0; !m_ends; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(900 + 37 * (i % 7)));
            QMetaObject::invokeMethod(
                m_box, [this] { send(QEvent::MouseButtonPress, Qt::LeftButton); }, Qt::QueuedConnection);
            std::this_thread::sleep_for(std::chrono::milliseconds(80));
            const auto released = std::chrono::steady_clock::now();
            QMetaObject::invokeMethod(
                m_box, [this, released] { release(released); }, Qt::QueuedConnection);
        }
        m_ended = true;
    }

    void send(QEvent::Type type, Qt::MouseButtons buttons)
    {
        const QPointF place = WindowDriver::centre(m_box);
        QMouseEvent event(type, place, place, WindowDriver::window()->mapToGlobal(place.toPoint()),
            Qt::LeftButton, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(WindowDriver::window(), &event);
    }

    void release(std::chrono::steady_clock::time_point released)
    {
        const bool before = m_box->property("checked").toBool();
        send(QEvent::MouseButtonRelease, Qt::NoButton);
        if (m_box->property("checked").toBool() != before)
            m_times.push_back(
                std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - released)
                    .count());
    }

    QQuickItem *const m_box;
    std::vector<double> m_times; ///< of the interface's thread
    std::atomic<bool> m_ends{false};
    std::atomic<bool> m_ended{false};
    std::thread m_thread;
};

std::vector<qint64> recordedTimes(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    file.readLine();
    std::vector<qint64> times;
    while (!file.atEnd())
        times.push_back(file.readLine().split(',').value(1).toLongLong());
    return times;
}

/// All that was sent from the first recorded one on, in its order.
void expectAllRecorded(const char *name, const QString &path, const TimeTap &tap)
{
    const std::vector<qint64> rows = recordedTimes(path);
    ASSERT_GT(rows.size(), std::size_t(rate));
    const std::vector<qint64> sent = tap.all();
    const auto first = std::find(sent.begin(), sent.end(), rows.front());
    ASSERT_LE(std::ptrdiff_t(rows.size()), sent.end() - first);
    EXPECT_TRUE(std::equal(rows.begin(), rows.end(), first)) << name;
    int skipped = 0;
    for (std::size_t i = 1; i < rows.size(); ++i)
        skipped += rows[i] - rows[i - 1] > 1500;
    std::cout << name << ": " << rows.size() << " recorded in " << double(rows.back() - rows.front()) * 1e-6
              << " s; the device itself has left out some " << skipped << " times\n";
}

void report(std::vector<double> times)
{
    ASSERT_FALSE(times.empty());
    std::sort(times.begin(), times.end());
    const auto late = std::count_if(times.begin(), times.end(), [](double t) { return t > 100; });
    std::cout << times.size() << " clicks answered in " << times[times.size() / 2] << " ms (median), "
              << times[times.size() * 95 / 100] << " ms (95 of 100), " << times.back() << " ms at most; "
              << late << " took more than 100 ms\n";
}

} // namespace

QString prepare(const QString &home)
{
    QFile file(home + QStringLiteral("/devices.json"));
    file.open(QIODevice::WriteOnly);
    file.write(R"({"devices": [{ "profile": "headset",
        "streams": { "slam": { "rate": 1000 }, "edge": { "rate": 1000 } },
        "faults": { "refuse": ["handleOverrate"] } }]})");
    qputenv("QVSIM_CONFIG", file.fileName().toLocal8Bit());
    return {};
}

TEST(Overrate, bothSourcesAreRecordedWhileClicksAreAnswered)
{
    ASSERT_TRUE(pageAppears());
    const auto expected = std::size_t(wantedSeconds() + 120) * rate;
    TimeTap hostTap(hostSource(), expected);
    TimeTap edgeTap(edgeSource(), expected);
    clickSwitch("slamButton");
    setDrawer(false);
    ASSERT_TRUE(waitFor([] { return id("slamView")->width() > 300; }, minute));
    // From here on both come: the host's hasn't been enabled by its own button.
    WindowDriver::click(slamItem("edgeSourceButton"));
    ASSERT_TRUE(waitFor([&] { return edgeTap.count() > rate && colours(sceneImage()) > 8; }, minute));
    QQuickItem *button = slamItem("pathBtn");
    WindowDriver::click(button);
    const QDir folder(button->property("path").toString());
    {
        Clicker clicker(slamItem("mapCheckbox"));
        QElapsedTimer clock;
        clock.start();
        double full = 0;
        double highest = 0;
        qint64 told = 0;
        waitFor(
            [&] {
                const double seconds = double(clock.elapsed()) / 1000;
                highest = std::max(highest, residentMemory());
                if (full == 0 && seconds > pathSeconds + 20)
                    full = residentMemory();
                if (clock.elapsed() / 30000 > told) {
                    told = clock.elapsed() / 30000;
                    std::cout << seconds << " s: " << residentMemory() << " MB" << std::endl;
                }
                return seconds > wantedSeconds();
            },
            wantedSeconds() * 2000);
        clicker.stop();
        std::cout << "memory: " << full << " MB with full paths, " << residentMemory() << " MB at the end, "
                  << highest << " MB at most\n";
        if (full > 0) {
            EXPECT_LT(residentMemory(), 1.1 * full);
        }
        report(clicker.milliseconds());
    }
    WindowDriver::click(button);
    expectAllRecorded("host", folder.filePath(QStringLiteral("host.csv")), hostTap);
    expectAllRecorded("edge", folder.filePath(QStringLiteral("edge.csv")), edgeTap);
}
