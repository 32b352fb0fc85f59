#include "ui/Page.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <iostream>

// Pictures that take very long to draw don't keep the interface from what comes meanwhile.

using namespace ui;

namespace {

constexpr int pictureMs = 400;

} // namespace

QString prepare(const QString &home)
{
    Q_UNUSED(home)
    qputenv("QVSIM", "imu-only");
    return {};
}

TEST(Pacing, interfaceStaysFreeWhilePicturesTakeLong)
{
    ASSERT_TRUE(pageAppears());
    QQuickWindow *const window = WindowDriver::window();
    std::atomic<int> pictures{0};
    std::atomic<bool> hasOwnThread{true};
    QObject context;
    QObject::connect(
        window, &QQuickWindow::beforeRendering, &context,
        [&] {
            hasOwnThread = QThread::currentThread() != qApp->thread();
            QThread::msleep(pictureMs);
            ++pictures;
        },
        Qt::DirectConnection);
    // Many turns of the event loop in a picture's time, and something new to draw in each of them.
    QTimer turn;
    QElapsedTimer sinceTurn;
    std::vector<qint64> gaps;
    QQuickItem *const moved = WindowDriver::byName("mainWindow");
    QObject::connect(&turn, &QTimer::timeout, &context, [&] {
        if (sinceTurn.isValid())
            gaps.push_back(sinceTurn.elapsed());
        sinceTurn.start();
        moved->setOpacity(1 - double(gaps.size() % 50) / 100);
    });
    turn.start(5);
    ASSERT_TRUE(waitFor([&] { return pictures >= 8; }, minute));
    turn.stop();
    moved->setOpacity(1);
    if (!hasOwnThread)
        GTEST_SKIP() << "the interface's own thread draws here";
    const auto blocked =
        std::count_if(gaps.begin(), gaps.end(), [](qint64 gap) { return gap >= pictureMs / 2; });
    std::cout << gaps.size() << " turns in " << pictures << " pictures of " << pictureMs << " ms; " << blocked
              << " waited for one, " << *std::max_element(gaps.begin(), gaps.end()) << " ms at most\n";
    // The first may have begun before, and one may slip in where a machine is busy.
    EXPECT_LE(blocked, 2);
}

TEST(Pacing, picturesGoOnAfterAGrab)
{
    QQuickWindow *const window = WindowDriver::window();
    std::atomic<int> pictures{0};
    QObject context;
    QObject::connect(
        window, &QQuickWindow::frameSwapped, &context, [&] { ++pictures; }, Qt::DirectConnection);
    QQuickItem *const moved = WindowDriver::byName("mainWindow");
    for (int i = 0; i < 3; ++i) {
        ASSERT_FALSE(WindowDriver::grab().isNull());
        const int before = pictures;
        moved->setOpacity(i % 2 == 0 ? 0.99 : 1);
        EXPECT_TRUE(waitFor([&] { return pictures > before; }));
    }
    moved->setOpacity(1);
}
