#include "TestContext.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QtQuickTest>

/// Runs the documents' tests with a home of their own, so that no stored setting leaks in or out.
int main(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toLocal8Bit());
    // Maps are saved there.
    qputenv("TMPDIR", home.path().toLocal8Bit());
    // Scenes are drawn only where there is OpenGL, which the offscreen platform can't give without a display.
    if (!qEnvironmentVariableIsSet("QV_TEST_SHOWN")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QUICK_BACKEND", "software");
    } else if (!qEnvironmentVariableIsSet("DISPLAY")) {
        return 77;
    }
    qputenv("QML_DISABLE_DISK_CACHE", "1");
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Quivra"));
    QApplication::setApplicationName(QStringLiteral("QVSDK-Viewer"));
    QTEST_SET_MAIN_SOURCE_PATH
    TestContext context;
    return quick_test_main_with_setup(argc, argv, "qml", QUICK_TEST_SOURCE_DIR, &context);
}
