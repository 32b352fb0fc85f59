#include "ui/Program.h"

#include "app/Viewer.h"
#include "support/Wait.h"
#include "ui/WindowDriver.h"

#include <QApplication>
#include <QDir>
#include <QPointer>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QTemporaryDir>
#include <QTimer>
#include <iostream>

namespace {

constexpr int skipped = 77; // what ctest takes for a skipped test

void useHome(const QTemporaryDir &home)
{
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toLocal8Bit());
    qputenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toLocal8Bit());
    qputenv("XDG_CACHE_HOME", home.filePath(QStringLiteral("cache")).toLocal8Bit());
    qputenv("XDG_PICTURES_DIR", home.filePath(QStringLiteral("pictures")).toLocal8Bit());
    QDir::setCurrent(home.path());
}

bool isFilmKept = false;

/// Plays the film as fast as it can be read, and then has the first devices come at once.
void skipFilm(const QQmlApplicationEngine &engine)
{
    constexpr int limit = 60000;
    const QPointer<QQuickItem> film = WindowDriver::byName("film");
    if (!film)
        return;
    film->setProperty("speed", 50);
    waitFor([&] { return !film || !film->isVisible(); }, limit);
    auto *const listener =
        engine.rootContext()->contextProperty(QStringLiteral("listener")).value<QObject *>();
    for (auto *timer : listener->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly))
        timer->setInterval(100);
}

} // namespace

void keepFilm()
{
    isFilmKept = true;
}

int runProgram(int argc, char **argv, const std::function<int()> &body)
{
    const QTemporaryDir home;
    useHome(home);
    const QString reason = prepare(home.path());
    if (!reason.isEmpty()) {
        std::cerr << "skipped: " << qPrintable(reason) << std::endl;
        return skipped;
    }
    int answer = -1;
    const int code = runViewer(argc, argv, [&](QQmlApplicationEngine &engine, QApplication &application) {
        LogWatch::install();
        QTimer::singleShot(0, &application, [&] {
            if (!isFilmKept)
                skipFilm(engine);
            answer = body();
            QCoreApplication::exit(answer);
        });
    });
    return answer == 0 ? code : answer;
}
