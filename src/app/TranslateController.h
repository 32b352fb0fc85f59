#pragma once

#include <QObject>
#include <QPointer>
#include <QQmlEngine>

class QTranslator;

/// Changes the interface's language while it runs. One for the process; main thread only.
class TranslateController : public QObject {
    Q_OBJECT

public:
    /// A document may pass any number, so that the type holds them all.
    enum Language : int { English, Chinese, Japanese, French };
    Q_ENUM(Language)

    /// The single instance, made on the first call, when it also installs its translator on the
    /// application; later calls ignore their argument.
    static TranslateController *instance(QQmlEngine *engine);

    /// Loads the catalogue of the language and has the engine evaluate its texts anew. English, and any
    /// value that is no language, empty the translator, as does a catalogue that can't be read.
    Q_INVOKABLE void loadLanguage(Language lan);

private:
    explicit TranslateController(QQmlEngine *engine);

    QPointer<QQmlEngine> m_engine;
    QTranslator *m_translator = nullptr;
};
