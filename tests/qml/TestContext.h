#pragma once

#include "app/Tools.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QQmlAbstractUrlInterceptor>
#include <QStringList>
#include <QTranslator>
#include <QUrl>
#include <QVariant>

class QQmlEngine;

/// Stands in for the list of devices: the documents read `cameras`, the tests set it by `list`.
class FakeListener : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<QObject *> cameras READ cameras NOTIFY camerasChanged)

public:
    using QObject::QObject;

    QList<QObject *> cameras() const { return m_cameras; }
    Q_INVOKABLE void list(const QVariantList &cameras);

signals:
    void camerasChanged(QList<QObject *> cameras);

private:
    QList<QObject *> m_cameras;
};

/// The real helper, but for the desktop: what would be opened is noted instead.
class FakeTools : public Tools {
    Q_OBJECT
    Q_PROPERTY(QStringList opened MEMBER m_opened)
    Q_PROPERTY(bool opens MEMBER m_opens)

public:
    using Tools::Tools;

    Q_INVOKABLE bool openUrl(const QUrl &url);
    Q_INVOKABLE QString clipboardText() const;

private:
    QStringList m_opened;
    bool m_opens = true; ///< what the desktop answers
};

/// Notes the languages that are asked for. All but the first translate every text to its context and itself.
class FakeTranslateController : public QTranslator {
    Q_OBJECT
    Q_PROPERTY(QVariantList loaded MEMBER m_loaded)

public:
    FakeTranslateController(QQmlEngine *engine, QObject *parent);
    ~FakeTranslateController() override;

    Q_INVOKABLE void loadLanguage(int language);

    bool isEmpty() const override { return m_loaded.isEmpty() || m_loaded.last().toInt() == 0; }
    QString translate(const char *context, const char *source, const char *comment, int n) const override;

private:
    QPointer<QQmlEngine> m_engine;
    QVariantList m_loaded;
};

/// What goes through Qt's message functions, for the tests to look at and to be strict about.
class MessageLog : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Takes over the messages and forgets the earlier ones. They are passed on as well.
    Q_INVOKABLE void start();
    /// Warnings and worse since the start.
    Q_INVOKABLE QStringList warnings() const;
    Q_INVOKABLE QStringList lines() const;
};

/// Puts a document of the tests in the place of one of the program's, for what is loaded from then on.
class DocumentSwap : public QObject, public QQmlAbstractUrlInterceptor {
    Q_OBJECT

public:
    using QObject::QObject;

    Q_INVOKABLE void replace(const QUrl &document, const QUrl &by) { m_replaced.insert(document, by); }
    Q_INVOKABLE void restore(const QUrl &document) { m_replaced.remove(document); }

    QUrl intercept(const QUrl &path, DataType) override { return m_replaced.value(path, path); }

private:
    QHash<QUrl, QUrl> m_replaced;
};

/// What the documents' own type of settings can't: take entries out of the store, and read another file.
class StoredSettings : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Removes a category with all its keys ("preferSettings1"), or one key of it ("preferSettings1/name").
    Q_INVOKABLE void forget(const QString &entry);
    /// The values of a file in the INI format, by "section/key".
    Q_INVOKABLE QVariantMap entries(const QString &file) const;
};

/// Counts how often the documents asked the program to end.
class QuitCounter : public QObject {
    Q_OBJECT
    Q_PROPERTY(int count MEMBER m_count)

public:
    explicit QuitCounter(QQmlEngine *engine);

private:
    int m_count = 0;
};

/// Makes frame holders with a grey frame in them, and puts new frames into them.
class FrameMaker : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    Q_INVOKABLE QObject *make(int width, int height);
    Q_INVOKABLE void refill(QObject *image, int width, int height);
};

/// Publishes the fakes to each engine that the test runner makes.
class TestContext : public QObject {
    Q_OBJECT

public slots:
    void applicationAvailable();
    void qmlEngineAvailable(QQmlEngine *engine);
};
