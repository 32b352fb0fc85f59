#include "app/Viewer.h"

#include "app/CommandLine.h"
#include "app/MessageLog.h"
#include "app/Multisampling.h"
#include "app/QmlTypes.h"
#include "app/Tools.h"
#include "app/TranslateController.h"
#include "app/Version.h"
#include "device/CameraListener.h"
#include "device/qv/Library.h"

#include <QApplication>
#include <QDebug>
#include <QFont>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickWindow>
#include <QSurfaceFormat>

namespace {

QString libraryVersion()
{
    return QString::fromStdString(qv::version().toString());
}

void exitWhenNotCreated(QQmlApplicationEngine &engine, QApplication &application, const QUrl &document)
{
    QObject::connect(
        &engine, &QQmlApplicationEngine::objectCreated, &application,
        [document](QObject *object, const QUrl &url) {
            if (!object && url == document)
                QCoreApplication::exit(-1);
        },
        Qt::QueuedConnection);
}

#ifdef Q_OS_LINUX
/// Help and version are words for a terminal: they come without a display too.
void allowWordsWithoutDisplay(int argc, char **argv)
{
    const auto isSet = [](const char *name) { return !qEnvironmentVariableIsEmpty(name); };
    if (isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM"))
        return;
    const QStringList words{QStringLiteral("-h"), QStringLiteral("--help"), QStringLiteral("--help-all"),
        QStringLiteral("-v"), QStringLiteral("--version")};
    for (int i = 1; i < argc; ++i) {
        if (words.contains(QString::fromLocal8Bit(argv[i])))
            qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}
#endif

} // namespace

void prepareProcess()
{
    // Documents are compiled from the resources on every start.
    qputenv("QML_DISABLE_DISK_CACHE", "1");
    // While a 3D scene is hidden and nothing else changes, no picture is drawn; the scene would have the
    // interface wait for one all the same, for good.
    qputenv("QT3D_SCENE3D_STOP_RENDER_HIDDEN", "1");
    // Every second vertical blank is enough for pictures of at most 50 a second and halves the rendering.
    QSurfaceFormat format;
    format.setSwapInterval(2);
    QSurfaceFormat::setDefaultFormat(format);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
}

void setIdentity(QApplication &application)
{
    application.setOrganizationName(QStringLiteral("Quivra"));
    application.setApplicationName(QStringLiteral("QVSDK-Viewer"));
    application.setApplicationDisplayName(QStringLiteral("QVSDK Viewer"));
    application.setApplicationVersion(applicationVersion());
    application.setWindowIcon(QIcon(QStringLiteral(":/images/quivra_ico")));
    QFont font;
    font.setWeight(QFont::Bold);
    font.setFamily(QStringLiteral("Calibri"));
    QApplication::setFont(font);
}

void setContextProperties(
    QQmlApplicationEngine &engine, QApplication &application, CameraListener &listener, bool advanced)
{
    QQmlContext *const context = engine.rootContext();
    context->setContextProperty(
        QStringLiteral("TranslateController"), TranslateController::instance(&engine));
    context->setContextProperty(QStringLiteral("version"), applicationVersion());
    context->setContextProperty(QStringLiteral("advanced"), advanced);
    context->setContextProperty(QStringLiteral("qv_sdk_version"), libraryVersion());
    context->setContextProperty(QStringLiteral("tools"), new Tools(&application));
    context->setContextProperty(QStringLiteral("listener"), &listener);
}

int runViewer(int argc, char **argv, const ViewerHook &hook)
{
    // What stands on this stack goes in reverse order when the loop ends: the documents while the devices
    // still run, then the application, whose children they are.
    prepareProcess();
#ifdef Q_OS_LINUX
    allowWordsWithoutDisplay(argc, argv);
#endif
    QApplication application(argc, argv);
    setIdentity(application);

    CommandLine commandLine;
    commandLine.process(QCoreApplication::arguments());
    if (commandLine.console())
        openConsole();
    else
        installMessageHandler();
    const int logLevel = commandLine.debugLevel();
    const bool advanced = commandLine.advanced();
    qDebug() << "QVSDK" << libraryVersion();
    qDebug() << "Viewer" << applicationVersion();

    registerQmlTypes();
    auto *const listener = new CameraListener(&application, logLevel);
    registerLanguageType();
    QQmlApplicationEngine engine;
    setContextProperties(engine, application, *listener, advanced);

    const QUrl document(QStringLiteral("qrc:/start.qml"));
    exitWhenNotCreated(engine, application, document);
    engine.load(document);
    const QList<QObject *> roots = engine.rootObjects();
    for (QObject *root : roots) {
        if (auto *const window = qobject_cast<QQuickWindow *>(root))
            spareSoftwareRenderer(window);
    }
    if (hook)
        hook(engine, application);
    return QCoreApplication::exec();
}
