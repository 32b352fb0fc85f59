#include "app/Version.h"

namespace {

const QString VersionText = QStringLiteral("3.2.0-2") + QStringLiteral("-20230907");

} // namespace

const QString &applicationVersion()
{
    return VersionText;
}
