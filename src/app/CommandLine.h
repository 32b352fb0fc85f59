#pragma once

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QStringList>

/// The program's options. Made after the application object, so that the texts can be translated.
class CommandLine {
public:
    static constexpr int DefaultDebugLevel = 2;
    static constexpr unsigned MaxDebugLevel = 6;

    CommandLine();

    /// Reads the arguments, the program's name first. Help, version and an unknown option end the process.
    void process(const QStringList &arguments);

    /// Whether log output goes to a console as Qt writes it.
    bool console() const;

    /// Level for the device library, 0 to 6. A value that isn't one is reported in the log and counts as
    /// the default.
    int debugLevel() const;

    bool advanced() const;

private:
    // Destroyed in reverse order: the options go before the parser.
    QCommandLineParser m_parser;
    QCommandLineOption m_console;
    QCommandLineOption m_debug;
    QCommandLineOption m_advanced;
};
