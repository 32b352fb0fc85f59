#include "device/CaptureFolder.h"

#include <QDateTime>
#include <QStandardPaths>

namespace {

QString timeName()
{
    // Colons are no part of a file name everywhere.
    return QDateTime::currentDateTime().toString(Qt::ISODate).replace(QLatin1Char(':'), QLatin1Char('-'));
}

void makeAndEnter(QDir &folder, const QString &name)
{
    folder.mkpath(name);
    folder.cd(name);
}

} // namespace

QDir makeCaptureFolder()
{
    QDir folder{QString()};
    if (folder.mkpath(QStringLiteral("capture"))) {
        folder.cd(QStringLiteral("capture"));
    } else {
        folder = QDir(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
        makeAndEnter(folder, QStringLiteral("qvsdk-viewer"));
    }
    makeAndEnter(folder, timeName());
    return folder;
}
