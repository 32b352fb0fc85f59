#pragma once

#include <QtGlobal>

/// Writes one message to stderr as a bare line in the local 8-bit encoding: no prefix, time, category or
/// source location. Callable from any thread.
void writeBareLine(QtMsgType type, const QMessageLogContext &context, const QString &message);

/// Makes `writeBareLine` the handler of all Qt messages.
void installMessageHandler();

/// Sends stdout and stderr to the terminal the program was started from, or to a new console window. Does
/// something on Windows only: elsewhere the streams are where they should be.
void openConsole();
