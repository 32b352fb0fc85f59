#include "support/Wait.h"
#include "ui/Program.h"
#include "ui/WindowDriver.h"

#include <QElapsedTimer>
#include <QQmlEngine>
#include <QQmlExpression>
#include <algorithm>
#include <cstdio>
#include <vector>

/// What a long path costs the interface: the redraw after fifty poses, and for how long at a time the event
/// loop is kept from anything else while the device moves on. Needs a display.

namespace {

constexpr int minute = 60000;

QQuickItem *view()
{
    return WindowDriver::itemById(WindowDriver::page(), "slamView");
}

QVariant run(const QString &script)
{
    QQmlExpression expression(
        QQmlEngine::contextForObject(WindowDriver::byName("scene3d", view())), nullptr, script);
    return expression.evaluate();
}

/// A walk of a few metres with a step a pose; goes on where it ended.
void walkTo(int points)
{
    run(QStringLiteral("while (root.slamPath.length < %1) {"
                       " const t = 0.002 * root.slamPath.length;"
                       " root.slamPath.push(Qt.vector3d(2 * Math.sin(t), 0.1 * Math.sin(7 * t),"
                       " 2 * Math.cos(0.7 * t))) }")
            .arg(points));
}

double milliseconds(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

void print(const char *what, int points, std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    std::printf("%7d  %-22s %8.2f %8.2f %8.2f\n", points, what, times[times.size() / 2],
        times[times.size() * 95 / 100], times.back());
}

void measure(int points)
{
    walkTo(points - 1000);
    run(QStringLiteral("root.drawSlamPath()"));
    std::vector<double> redraws;
    for (int added = points - 950; added <= points; added += 50) {
        walkTo(added);
        QElapsedTimer timer;
        timer.start();
        run(QStringLiteral("root.drawSlamPath()"));
        redraws.push_back(milliseconds(timer));
        QCoreApplication::processEvents();
    }
    print("redraw", points, redraws);

    QMetaObject::invokeMethod(
        run(QStringLiteral("control.slam")).value<QObject *>(), "resume", Qt::DirectConnection);
    std::vector<double> gaps;
    QElapsedTimer whole;
    whole.start();
    while (whole.elapsed() < 5000) {
        QElapsedTimer timer;
        timer.start();
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        gaps.push_back(milliseconds(timer));
    }
    QMetaObject::invokeMethod(
        run(QStringLiteral("control.slam")).value<QObject *>(), "pause", Qt::DirectConnection);
    print("turn of the event loop", points, gaps);
}

int bench()
{
    if (!waitFor([] { return WindowDriver::page() != nullptr; }, minute))
        return 1;
    WindowDriver::click(WindowDriver::itemById(WindowDriver::page(), "slamButton"));
    const auto draws = [] {
        return view()->width() > 300 && run(QStringLiteral("root.slamPath.length")).toInt() > 400;
    };
    if (!waitFor(draws, minute))
        return 1;
    // The map alone keeps a software renderer busy.
    WindowDriver::click(WindowDriver::byName("mapCheckbox", view()));
    QMetaObject::invokeMethod(run(QStringLiteral("control.slam")).value<QObject *>(), "pause");
    std::printf("\n%7s  %-22s %8s %8s %8s\n", "points", "ms", "median", "95%", "most");
    for (const int points : {1000, 10000, 100000})
        measure(points);
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
    return runProgram(argc, argv, bench);
}
