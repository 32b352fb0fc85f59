#pragma once

#include <QString>

/// The program's own version, as `--version`, the log and the interface show it.
const QString &applicationVersion();
