#include "support/Wait.h"
#include "ui/Program.h"
#include "ui/WindowDriver.h"

#include <QDir>
#include <QFileInfo>
#include <QQuickItem>
#include <algorithm>
#include <iostream>
#include <vector>

// Shows on a machine without a display what the viewer does: starts the program, switches every stream on by
// a click, tells what is seen and writes a picture of the window.

namespace {

constexpr const char *switches[] = {"imuButton", "stereoButton", "slamButton", "tofButton", "irButton",
    "rgbButton", "rgb2Button", "rgbdButton", "sgbmButton"};

/// The read-outs of the views: their first label starts with the stream's name in brackets.
void collectReadouts(QQuickItem *item, QStringList &found)
{
    if (!item->isVisible() || item->width() <= 0)
        return;
    const QString text = item->property("text").toString();
    if (text.startsWith(QLatin1Char('[')) && text.contains(QLatin1Char(']')) && !found.contains(text))
        found << text;
    for (QQuickItem *child : item->childItems())
        collectReadouts(child, found);
}

int fail(const char *what)
{
    std::cerr << what << std::endl;
    return 1;
}

bool delivers(const QString &readout)
{
    return !readout.contains(QLatin1String("@0fps")) && !readout.contains(QLatin1String("0x0"));
}

/// Streams that deliver, of all that are on.
int counting(const QStringList &readouts)
{
    return int(std::count_if(readouts.begin(), readouts.end(), delivers));
}

QStringList readouts()
{
    QStringList found;
    collectReadouts(WindowDriver::window()->contentItem(), found);
    return found;
}

int show(const QString &file)
{
    constexpr int minute = 60000;
    if (!waitFor([] { return WindowDriver::page() != nullptr; }, minute))
        return fail("No device appeared within a minute.");
    QQuickItem *page = WindowDriver::page();
    auto *camera = WindowDriver::byId(page, "view")->property("camera").value<QObject *>();
    std::cout << "device: " << qPrintable(camera->property("uuid").toString()) << ", firmware "
              << qPrintable(camera->property("version").toString()) << std::endl;

    int on = 0;
    for (const char *name : switches) {
        QQuickItem *item = WindowDriver::itemById(page, name);
        if (!item || !item->isVisible() || !waitFor([item] { return item->isEnabled(); }, 1000))
            continue;
        WindowDriver::click(item);
        on += item->property("checked").toBool();
    }
    waitFor([on] { return counting(readouts()) >= on; }, minute);
    waitFor([] { return false; }, 3000); // let the pictures of a few seconds come in, for a lively shot
    const QStringList seen = readouts();
    for (const QString &readout : seen)
        std::cout << "stream: " << qPrintable(readout.simplified())
                  << (delivers(readout) ? "" : ": it is on, but the device sends nothing") << std::endl;
    if (!WindowDriver::grab().save(file))
        return fail("The picture could not be written.");
    std::cout << "picture: " << qPrintable(QFileInfo(file).absoluteFilePath()) << std::endl;
    // A recording may lack what its kind of camera could send.
    const int least = qEnvironmentVariableIsSet("QVSIM_REPLAY") ? 1 : on;
    return counting(seen) >= least ? 0 : fail("Not every stream delivered.");
}

} // namespace

QString prepare(const QString &home)
{
    Q_UNUSED(home)
    keepFilm();
    return {};
}

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::cerr << "usage: viewer-shot FILE.png [options of the viewer]" << std::endl;
        return 2;
    }
    const QString file = QFileInfo(QString::fromLocal8Bit(argv[1])).absoluteFilePath();
    std::vector<char *> arguments{argv[0]};
    arguments.insert(arguments.end(), argv + 2, argv + argc);
    return runProgram(int(arguments.size()), arguments.data(), [file] { return show(file); });
}
