#include "TestContext.h"

#include "SlamDevice.h"
#include "app/QmlTypes.h"
#include "imaging/ImageData.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMutex>
#include <QMutexLocker>
#include <QQmlContext>
#include <QQmlEngine>
#include <QSettings>
#include <algorithm>
#include <memory>

namespace {

struct Messages {
    QMutex mutex;
    QStringList lines;
    QStringList warnings;
    QtMessageHandler next = nullptr;
};

Messages &messages()
{
    static Messages store;
    return store;
}

void noteMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    Messages &store = messages();
    {
        const QMutexLocker lock(&store.mutex);
        store.lines.append(text);
        if (type == QtWarningMsg || type == QtCriticalMsg)
            store.warnings.append(text);
    }
    store.next(type, context, text);
}

} // namespace

void FakeListener::list(const QVariantList &cameras)
{
    m_cameras.clear();
    for (const QVariant &camera : cameras)
        m_cameras.append(camera.value<QObject *>());
    emit camerasChanged(m_cameras);
}

bool FakeTools::openUrl(const QUrl &url)
{
    m_opened.append(url.toString());
    return m_opens;
}

QString FakeTools::clipboardText() const
{
    return QGuiApplication::clipboard()->text();
}

FakeTranslateController::FakeTranslateController(QQmlEngine *engine, QObject *parent)
    : QTranslator(parent)
    , m_engine(engine)
{
}

FakeTranslateController::~FakeTranslateController()
{
    QCoreApplication::removeTranslator(this);
}

void FakeTranslateController::loadLanguage(int language)
{
    m_loaded.append(language);
    QCoreApplication::removeTranslator(this);
    QCoreApplication::installTranslator(this);
    if (m_engine)
        m_engine->retranslate();
}

QString FakeTranslateController::translate(const char *context, const char *source, const char *, int) const
{
    if (isEmpty())
        return {};
    return QString::fromUtf8(context) + QLatin1Char('/') + QString::fromUtf8(source);
}

void MessageLog::start()
{
    Messages &store = messages();
    {
        const QMutexLocker lock(&store.mutex);
        store.lines.clear();
        store.warnings.clear();
    }
    // The runner installs a handler of its own whenever it begins a test.
    const QtMessageHandler previous = qInstallMessageHandler(&noteMessage);
    if (previous != &noteMessage)
        store.next = previous;
}

QStringList MessageLog::warnings() const
{
    const QMutexLocker lock(&messages().mutex);
    return messages().warnings;
}

QStringList MessageLog::lines() const
{
    const QMutexLocker lock(&messages().mutex);
    return messages().lines;
}

void StoredSettings::forget(const QString &entry)
{
    // The store removes everything for an empty name.
    if (!entry.isEmpty())
        QSettings().remove(entry);
}

QVariantMap StoredSettings::entries(const QString &file) const
{
    const QSettings settings(file, QSettings::IniFormat);
    QVariantMap entries;
    const QStringList keys = settings.allKeys();
    for (const QString &key : keys)
        entries.insert(key, settings.value(key));
    return entries;
}

QuitCounter::QuitCounter(QQmlEngine *engine)
    : QObject(engine)
{
    connect(engine, &QQmlEngine::quit, this, [this] { ++m_count; });
}

QObject *FrameMaker::make(int width, int height)
{
    auto *image = new ImageData(this);
    refill(image, width, height);
    return image;
}

void FrameMaker::refill(QObject *image, int width, int height)
{
    const int size = width * height;
    const std::shared_ptr<unsigned char> grey(
        new unsigned char[size], std::default_delete<unsigned char[]>());
    std::fill_n(grey.get(), size, static_cast<unsigned char>(128));
    qobject_cast<ImageData *>(image)->set(width, height, grey, size);
}

void TestContext::applicationAvailable()
{
    registerQmlTypes();
    qmlRegisterType<SlamDevice>("SlamDevice", 1, 0, "SlamDevice");
}

void TestContext::qmlEngineAvailable(QQmlEngine *engine)
{
    QQmlContext *context = engine->rootContext();
    context->setContextProperty(
        QStringLiteral("TranslateController"), new FakeTranslateController(engine, engine));
    context->setContextProperty(QStringLiteral("version"), QStringLiteral("3.2.0-2-20230907"));
    context->setContextProperty(QStringLiteral("advanced"), true);
    context->setContextProperty(QStringLiteral("qv_sdk_version"), QStringLiteral("1.2.3"));
    context->setContextProperty(QStringLiteral("tools"), new FakeTools(engine));
    context->setContextProperty(QStringLiteral("listener"), new FakeListener(engine));
    auto *documents = new DocumentSwap(engine);
    engine->setUrlInterceptor(documents);
    context->setContextProperty(QStringLiteral("documents"), documents);
    context->setContextProperty(QStringLiteral("frames"), new FrameMaker(engine));
    context->setContextProperty(QStringLiteral("quits"), new QuitCounter(engine));
    context->setContextProperty(QStringLiteral("messages"), new MessageLog(engine));
    context->setContextProperty(QStringLiteral("stored"), new StoredSettings(engine));
}
