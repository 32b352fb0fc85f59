#include "app/Viewer.h"

#include "app/Tools.h"
#include "app/TranslateController.h"
#include "app/Version.h"
#include "device/CameraListener.h"
#include "support/FakeDevice.h"
#include "support/FakeLibrary.h"
#include "support/LogCatcher.h"

#include <QApplication>
#include <QDebug>
#include <QFont>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQmlContext>
#include <QSurfaceFormat>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::Not;

namespace {

struct Outcome {
    int exitCode = 0;
    QStringList log;
};

QVariant property(const QQmlApplicationEngine &engine, const char *name)
{
    return engine.rootContext()->contextProperty(QString::fromLatin1(name));
}

CameraListener &listenerOf(const QQmlApplicationEngine &engine)
{
    return *property(engine, "listener").value<CameraListener *>();
}

/// Runs the program to the end of its first turn of the event loop, with its log caught: `-c` leaves the
/// message handler as it is.
Outcome run(std::vector<std::string> options, const ViewerHook &hook = {}, int exitCode = 0)
{
    options.insert(options.begin(), {"viewer", "-c"});
    std::vector<char *> arguments;
    for (std::string &option : options)
        arguments.push_back(option.data());
    arguments.push_back(nullptr);

    const LogCatcher log;
    const int result = runViewer(static_cast<int>(options.size()), arguments.data(),
        [&](QQmlApplicationEngine &engine, QApplication &app) {
            if (hook)
                hook(engine, app);
            QTimer::singleShot(0, &app, [exitCode] { QCoreApplication::exit(exitCode); });
        });
    return {result, log.lines()};
}

/// The lines of `all` that are among `wanted`, in their order.
QStringList only(const QStringList &all, const QStringList &wanted)
{
    QStringList lines;
    for (const QString &line : all)
        if (wanted.contains(line))
            lines.append(line);
    return lines;
}

/// Runs the program in a process that its own command line is to end, and that looks at its end whether the
/// library was asked for devices.
[[noreturn]] void runToItsEnd(std::string option)
{
    std::atexit([] {
        // Long enough for a thread that has been started to ask its first question.
        for (int i = 0; i < 100 && fake::library().getDevicesCalls().empty(); ++i)
            QThread::msleep(5);
        if (!fake::library().getDevicesCalls().empty())
            std::fputs("asked for devices\n", stderr);
    });
    std::string name = "viewer";
    char *arguments[] = {name.data(), option.data(), nullptr};
    runViewer(2, arguments);
    std::_Exit(99);
}

class Viewer : public testing::Test {
protected:
    void SetUp() override { fake::library().reset(); }
};

using ViewerDeathTest = Viewer;

} // namespace

TEST_F(ViewerDeathTest, versionEndsBeforeAnyDeviceWork)
{
    EXPECT_EXIT(runToItsEnd("--version"), testing::ExitedWithCode(0), Not(HasSubstr("asked")));
}

TEST_F(ViewerDeathTest, helpEndsBeforeAnyDeviceWork)
{
    EXPECT_EXIT(runToItsEnd("--help"), testing::ExitedWithCode(0), Not(HasSubstr("asked")));
}

TEST_F(ViewerDeathTest, helpAndVersionNeedNoDisplay)
{
    for (const char *word : {"-h", "--help", "-v", "--version"}) {
        EXPECT_EXIT(
            {
                for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
                    qunsetenv(name);
                runToItsEnd(word);
            },
            testing::ExitedWithCode(0), "")
            << word;
    }
}

TEST_F(ViewerDeathTest, unknownOptionEndsBeforeAnyDeviceWork)
{
    EXPECT_EXIT(runToItsEnd("--nonsense"), testing::ExitedWithCode(1),
        AllOf(HasSubstr("nonsense"), Not(HasSubstr("asked"))));
}

TEST_F(Viewer, documentSeesItsContext)
{
    bool seen = false;
    run({}, [&seen](QQmlApplicationEngine &engine, QApplication &) {
        ASSERT_EQ(engine.rootObjects().size(), 1);
        const QObject *const document = engine.rootObjects().first();
        EXPECT_EQ(document->property("versions"), QVariant(QStringLiteral("3.2.0-2-20230907 1.2.3")));
        EXPECT_EQ(document->property("isAdvanced"), QVariant(false));
        EXPECT_EQ(document->property("cameraCount"), QVariant(0));
        EXPECT_EQ(document->property("fileName"), QVariant(QStringLiteral("b")));
        EXPECT_EQ(document->property("french"), QVariant(3));
        seen = true;
    });
    EXPECT_TRUE(seen);
}

TEST_F(Viewer, documentsHaveTheTypes)
{
    run({}, [](QQmlApplicationEngine &engine, QApplication &) {
        for (const char *type : {"ImagePainter", "ObjectsData", "Tof3dData", "StereoData", "PointCloud",
                 "PointCloudGeometry", "PointCloudColor", "PointCloudColorGeometry"}) {
            QQmlComponent component(&engine);
            component.setData(QByteArray("import ") + type + " 1.0; " + type + " {}", QUrl());
            EXPECT_TRUE(component.isReady()) << component.errorString().toStdString();
        }
    });
}

TEST_F(Viewer, contextHoldsTheThreeObjects)
{
    run({}, [](QQmlApplicationEngine &engine, QApplication &app) {
        EXPECT_EQ(property(engine, "TranslateController").value<TranslateController *>(),
            TranslateController::instance(nullptr));
        auto *const tools = property(engine, "tools").value<Tools *>();
        ASSERT_NE(tools, nullptr);
        EXPECT_EQ(tools->parent(), &app);
        EXPECT_EQ(listenerOf(engine).parent(), &app);
        EXPECT_EQ(property(engine, "version").userType(), int(QMetaType::QString));
        EXPECT_EQ(property(engine, "advanced").userType(), int(QMetaType::Bool));
        EXPECT_EQ(property(engine, "qv_sdk_version"), QVariant(QStringLiteral("1.2.3")));
    });
}

TEST_F(Viewer, advancedOptionReachesTheDocuments)
{
    run({"-a"}, [](QQmlApplicationEngine &engine, QApplication &) {
        EXPECT_EQ(property(engine, "advanced"), QVariant(true));
    });
}

TEST_F(Viewer, processIsSetUp)
{
    qunsetenv("QML_DISABLE_DISK_CACHE");
    qunsetenv("QT3D_SCENE3D_STOP_RENDER_HIDDEN");
    run({}, [](QQmlApplicationEngine &, QApplication &) {
        EXPECT_EQ(qgetenv("QML_DISABLE_DISK_CACHE"), "1");
        EXPECT_EQ(qgetenv("QT3D_SCENE3D_STOP_RENDER_HIDDEN"), "1") << "a hidden scene would stop the program";
        EXPECT_EQ(QSurfaceFormat::defaultFormat().swapInterval(), 2);
        EXPECT_TRUE(QCoreApplication::testAttribute(Qt::AA_EnableHighDpiScaling));
    });
}

TEST_F(Viewer, applicationHasItsIdentity)
{
    run({}, [](QQmlApplicationEngine &, QApplication &) {
        EXPECT_EQ(QCoreApplication::organizationName(), QStringLiteral("Quivra"));
        EXPECT_EQ(QCoreApplication::applicationName(), QStringLiteral("QVSDK-Viewer"));
        EXPECT_EQ(QGuiApplication::applicationDisplayName(), QStringLiteral("QVSDK Viewer"));
        EXPECT_EQ(QCoreApplication::applicationVersion(), applicationVersion());
        EXPECT_FALSE(QGuiApplication::windowIcon().pixmap(16).isNull());
        EXPECT_EQ(QApplication::font().family(), QStringLiteral("Calibri"));
        EXPECT_EQ(QApplication::font().weight(), 75);
        EXPECT_EQ(QApplication::font("QLabel").family(), QStringLiteral("Calibri"));
    });
}

TEST_F(Viewer, logsBothVersionsInQuotes)
{
    fake::library().setVersionText("9.8.7");
    const QStringList log = run({}).log;
    EXPECT_THAT(log.mid(0, 2),
        ElementsAre(
            QStringLiteral("debug: QVSDK \"9.8.7\""), QStringLiteral("debug: Viewer \"3.2.0-2-20230907\"")));
}

TEST_F(Viewer, reportsAnInvalidLevelBeforeTheVersions)
{
    const QStringList log = run({"-d", "abc"}).log;
    EXPECT_THAT(log.mid(0, 2),
        ElementsAre(QStringLiteral("debug: Invalid debug level:  \"abc\""),
            QStringLiteral("debug: QVSDK \"1.2.3\"")));
}

TEST_F(Viewer, levelGoesToTheLibraryForKnownDevices)
{
    const auto device = std::make_shared<FakeDevice>();
    for (const auto &[option, level] : std::map<std::string, int>{{"0", 0}, {"6", 6}, {"7", 2}, {"-1", 2}}) {
        fake::library().reset();
        run({"-d", option}, [&device](QQmlApplicationEngine &engine, QApplication &) {
            listenerOf(engine).setDevices({{device->uuid, device}});
            listenerOf(engine).run();
            EXPECT_THAT(fake::library().logLevels(), testing::IsEmpty());
            listenerOf(engine).run();
        });
        EXPECT_THAT(fake::library().logLevels(), ElementsAre(level)) << option;
    }
}

TEST_F(Viewer, pollsBeforeTheEventLoopRuns)
{
    std::atomic<int> calls{0};
    fake::library().setOnGetDevices([&calls] { ++calls; });
    run({}, [&calls](QQmlApplicationEngine &, QApplication &) {
        while (calls == 0)
            QThread::yieldCurrentThread();
    });
    EXPECT_GT(calls, 0);
}

TEST_F(Viewer, pollsBeforeTheDocumentsHaveTheirContext)
{
    bool inTime = false;
    int versions = 0;
    // The text of the library's version is asked for twice: for the log, then for the context.
    fake::library().setOnVersionText([&] {
        if (++versions < 2)
            return;
        for (int i = 0; i < 10000 && fake::library().getDevicesCalls().empty(); ++i)
            QThread::msleep(1);
        inTime = !fake::library().getDevicesCalls().empty();
    });
    run({});
    EXPECT_EQ(versions, 2);
    EXPECT_TRUE(inTime);
}

TEST_F(Viewer, withoutAConsoleMessagesAreBareLines)
{
    const LogCatcher replaced;
    testing::internal::CaptureStderr();
    std::string name = "viewer";
    char *arguments[] = {name.data(), nullptr};
    runViewer(1, arguments, [](QQmlApplicationEngine &, QApplication &app) {
        QTimer::singleShot(0, &app, [] { QCoreApplication::quit(); });
    });
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(errors.find("QVSDK \"1.2.3\"\nViewer \"3.2.0-2-20230907\"\n"), 0U) << errors;
    EXPECT_TRUE(replaced.lines().isEmpty());
}

TEST_F(Viewer, exitCodeIsThatOfTheEventLoop)
{
    EXPECT_EQ(run({}, {}, 7).exitCode, 7);
}

TEST_F(Viewer, documentThatCanNotBeCreatedEndsWithMinusOne)
{
    Q_CLEANUP_RESOURCE(startup);
    std::string name = "viewer";
    std::string console = "-c";
    char *arguments[] = {name.data(), console.data(), nullptr};
    const LogCatcher log;
    EXPECT_EQ(runViewer(2, arguments), -1);
    EXPECT_THAT(log.lines(), Contains(QStringLiteral("debug: Viewer cameras stopped")));
    Q_INIT_RESOURCE(startup);
}

TEST_F(Viewer, otherDocumentThatCanNotBeCreatedDoesNotEndIt)
{
    std::string name = "viewer";
    std::string console = "-c";
    char *arguments[] = {name.data(), console.data(), nullptr};
    const LogCatcher log;
    const int result = runViewer(2, arguments, [](QQmlApplicationEngine &engine, QApplication &app) {
        engine.load(QUrl(QStringLiteral("qrc:/missing.qml")));
        // Long after the turn in which it would end, since the last code that is given in a turn counts.
        QTimer::singleShot(50, &app, [] { QCoreApplication::exit(7); });
    });
    EXPECT_EQ(result, 7);
}

TEST_F(Viewer, documentsGoBeforeDevicesAndDevicesBeforeTools)
{
    const auto device = std::make_shared<FakeDevice>();
    const Outcome outcome = run({}, [&device](QQmlApplicationEngine &engine, QApplication &) {
        listenerOf(engine).setDevices({{device->uuid, device}});
        listenerOf(engine).run();
        QObject::connect(&listenerOf(engine), &QObject::destroyed, [] { qDebug("listener gone"); });
        QObject::connect(
            property(engine, "tools").value<QObject *>(), &QObject::destroyed, [] { qDebug("tools gone"); });
    });
    const QStringList expected{QStringLiteral("debug: document gone"), QStringLiteral("debug: Stop camera"),
        QStringLiteral("debug: Viewer cameras stopped"), QStringLiteral("debug: listener gone"),
        QStringLiteral("debug: Stop camera"), QStringLiteral("debug: tools gone")};
    EXPECT_EQ(only(outcome.log, expected), expected);
    EXPECT_EQ(device.use_count(), 1);
}

TEST_F(Viewer, waitsForTheQuestionUnderWay)
{
    std::atomic<int> begun{0};
    std::atomic<int> ended{0};
    std::atomic<bool> windowGone{false};
    fake::library().setOnGetDevices([&] {
        ++begun;
        // Holds the first question until the documents have gone.
        while (!windowGone)
            QThread::yieldCurrentThread();
        // Time for a shutdown that doesn't wait to come to its end.
        QThread::msleep(200);
        ++ended;
    });
    run({}, [&](QQmlApplicationEngine &engine, QApplication &) {
        while (begun == 0)
            QThread::yieldCurrentThread();
        QObject::connect(&engine, &QObject::destroyed, [&windowGone] { windowGone = true; });
    });
    EXPECT_GE(begun, 1);
    EXPECT_EQ(begun, ended);
}
