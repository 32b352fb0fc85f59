#include "app/CommandLine.h"

#include <QCoreApplication>
#include <QDebug>

namespace {

QString text(const char *source)
{
    return QCoreApplication::translate("main", source);
}

} // namespace

CommandLine::CommandLine()
    : m_console(QStringLiteral("c"), text("Show console"))
    , m_debug({QStringLiteral("d"), QStringLiteral("debug")},
          text("Debug level [debug=1, info=2, warn=3, err=4, critical=5, off=6]"), text("debug"))
    , m_advanced({QStringLiteral("a"), QStringLiteral("advanced")}, text("advanced"))
{
    m_advanced.setFlags(QCommandLineOption::HiddenFromHelp);
    m_parser.setApplicationDescription(QStringLiteral("QVSDK Viewer"));
    m_parser.addHelpOption();
    m_parser.addVersionOption();
    m_parser.addOption(m_console);
    m_parser.addOption(m_debug);
    m_parser.addOption(m_advanced);
}

void CommandLine::process(const QStringList &arguments)
{
    m_parser.process(arguments);
}

bool CommandLine::console() const
{
    return m_parser.isSet(m_console);
}

int CommandLine::debugLevel() const
{
    if (!m_parser.isSet(m_debug))
        return DefaultDebugLevel;
    const QString value = m_parser.value(m_debug);
    bool ok = false;
    const int level = value.toInt(&ok, 10);
    // As unsigned, so that one comparison refuses the negative numbers too.
    if (ok && static_cast<unsigned>(level) <= MaxDebugLevel)
        return level;
    qDebug() << "Invalid debug level: " << value;
    return DefaultDebugLevel;
}

bool CommandLine::advanced() const
{
    return m_parser.isSet(m_advanced);
}
