#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

/// Like the main function of the other tests, but for the application object, which the program makes.
int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath("config").toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QDir::setCurrent(home.path());
    return RUN_ALL_TESTS();
}
