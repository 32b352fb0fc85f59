#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

/// Runs the viewer in this process, in a temporary home of its own, and `body` inside its event loop once the
/// first document is loaded. Answers what `body` answered, or -1 when the program ended before.
int runProgram(int argc, char **argv, const std::function<int()> &body);

/// Keeps the splash film and the time until the first devices are shown as long as they are. Otherwise the
/// film is played fast, and the devices follow at once; to be called in `prepare`.
void keepFilm();

/// Implemented by each test program: sets the environment that the device library reads, before it starts.
/// `home` is the temporary home. Returns a reason to skip all its tests, or nothing.
QString prepare(const QString &home);
