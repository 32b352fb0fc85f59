#include <QDir>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

/// Runs the tests of one folder with a home of their own, so that no setting of the machine's user leaks in.
int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath("config").toLocal8Bit());
    qputenv("XDG_DATA_HOME", home.filePath("data").toLocal8Bit());
    qputenv("XDG_CACHE_HOME", home.filePath("cache").toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QDir::setCurrent(home.path());
    const QGuiApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
