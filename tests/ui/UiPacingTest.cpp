#include "app/FramePacer.h"
#include "ui/Page.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <iostream>
#include <memory>

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
    if (!window->findChild<FramePacer *>())
        GTEST_SKIP() << "a graphics card draws here";
    // The thread that draws may still be at it when this test has ended.
    struct Drawn {
        std::atomic<int> pictures{0};
        std::atomic<bool> hasOwnThread{true};
    };
    const auto drawn = std::make_shared<Drawn>();
    QObject context;
    QObject::connect(
        window, &QQuickWindow::beforeRendering, &context,
        [drawn] {
            drawn->hasOwnThread = QThread::currentThread() != qApp->thread();
            QThread::msleep(pictureMs);
            ++drawn->pictures;
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
    ASSERT_TRUE(waitFor([&] { return drawn->pictures >= 8; }, minute));
    turn.stop();
    moved->setOpacity(1);
    if (!drawn->hasOwnThread)
        GTEST_SKIP() << "the interface's own thread draws here";
    const auto blocked =
        std::count_if(gaps.begin(), gaps.end(), [](qint64 gap) { return gap >= pictureMs / 2; });
    std::cout << gaps.size() << " turns in " << drawn->pictures << " pictures of " << pictureMs << " ms; "
              << blocked << " waited for one, " << *std::max_element(gaps.begin(), gaps.end())
              << " ms at most\n";
    // Without the pacer each of them does; a busy machine holds up a few by itself.
    EXPECT_LE(blocked, drawn->pictures / 2);
}

TEST(Pacing, picturesGoOnAfterAGrab)
{
    QQuickWindow *const window = WindowDriver::window();
    const auto pictures = std::make_shared<std::atomic<int>>(0);
    QObject context;
    QObject::connect(
        window, &QQuickWindow::frameSwapped, &context, [pictures] { ++*pictures; }, Qt::DirectConnection);
    QQuickItem *const moved = WindowDriver::byName("mainWindow");
    for (int i = 0; i < 3; ++i) {
        ASSERT_FALSE(WindowDriver::grab().isNull());
        const int before = *pictures;
        moved->setOpacity(i % 2 == 0 ? 0.99 : 1);
        EXPECT_TRUE(waitFor([&] { return *pictures > before; }));
    }
    moved->setOpacity(1);
}
