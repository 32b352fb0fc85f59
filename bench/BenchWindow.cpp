#include "ui/Page.h"

#include <QTimer>
#include <chrono>
#include <ctime>
#include <iostream>

// The whole program in a window: how busy the interface thread is while stereo pictures of all cameras come
// in. Needs a display; the machine's other work shows in the figures, so look at the shares, not at the sums.

using namespace ui;

namespace {

double processorSeconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

double wallSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void spend(int seconds)
{
    QEventLoop loop;
    QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
    loop.exec();
}

int measure()
{
    if (!pageAppears() || !id("stereoButton"))
        return 1;
    clickSwitch("stereoButton");
    QQuickItem *view = id("stereoView");
    if (!waitFor([view] { return view->width() > 100 && colours(WindowDriver::grab(view)) > 50; }, minute))
        return 1;
    WindowDriver::click(WindowDriver::byName("gridButton", view));
    setDrawer(false);
    spend(3);

    std::atomic<int> shown{0};
    QObject::connect(
        WindowDriver::window(), &QQuickWindow::frameSwapped, WindowDriver::window(), [&] { ++shown; },
        Qt::DirectConnection);
    int frames = 0;
    int seconds = 0;
    QQuickItem *readOut = WindowDriver::byName("infoLabel", view);
    const double wall = wallSeconds();
    const double thread = processorSeconds(CLOCK_THREAD_CPUTIME_ID);
    const double process = processorSeconds(CLOCK_PROCESS_CPUTIME_ID);
    for (; seconds < 10; ++seconds) {
        spend(1);
        frames += rateOf(readOut);
    }
    const double spent = wallSeconds() - wall;
    std::cout << "frame sets a second     " << frames / double(seconds) << "\npictures of the window  "
              << shown / spent << " a second\ninterface thread        "
              << 100 * (processorSeconds(CLOCK_THREAD_CPUTIME_ID) - thread) / spent
              << " % of a core\nwhole program           "
              << 100 * (processorSeconds(CLOCK_PROCESS_CPUTIME_ID) - process) / spent
              << " % of a core, the simulated device included" << std::endl;
    return 0;
}

} // namespace

QString prepare(const QString &home)
{
    Q_UNUSED(home)
    qputenv("QVSIM", "headset");
    return {};
}

int main(int argc, char **argv)
{
    return runProgram(argc, argv, measure);
}
