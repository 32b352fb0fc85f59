#include "app/TranslateController.h"

#include <QCoreApplication>
#include <QTranslator>

namespace {

QString catalogue(TranslateController::Language language)
{
    switch (language) {
    case TranslateController::Chinese:
        return QStringLiteral(":/viewer_zh_CN.qm");
    case TranslateController::Japanese:
        return QStringLiteral(":/viewer_ja_JP.qm");
    case TranslateController::French:
        return QStringLiteral(":/viewer_fr_FR.qm");
    case TranslateController::English:
        break;
    }
    return QString();
}

} // namespace

TranslateController::TranslateController(QQmlEngine *engine)
    : m_engine(engine)
    , m_translator(new QTranslator(this))
{
    QCoreApplication::installTranslator(m_translator);
}

TranslateController *TranslateController::instance(QQmlEngine *engine)
{
    static TranslateController controller(engine);
    return &controller;
}

void TranslateController::loadLanguage(Language lan)
{
    // Empty and not null: null stands for Qt's own delimiters and for the suffix ".qm".
    const QString empty = QLatin1String("");
    m_translator->load(catalogue(lan), empty, empty, empty);
    if (m_engine)
        m_engine->retranslate();
}
