#include "app/Tools.h"

#include <QClipboard>
#include <QDebug>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>

namespace {

/// What a text without a scheme can mean. It has been through the parser of URLs, to which '#' and '?' end
/// the path and a percent sign encodes; in the name of a folder they are letters like any other.
QStringList plainPaths(const QUrl &url)
{
    QString whole = url.path(QUrl::FullyDecoded);
    if (url.hasQuery())
        whole += QLatin1Char('?') + url.query(QUrl::FullyDecoded);
    if (url.hasFragment())
        whole += QLatin1Char('#') + url.fragment(QUrl::FullyDecoded);
    return {url.toString(QUrl::FullyEncoded), whole, url.path(QUrl::FullyDecoded)};
}

/// The desktop's openers answer true for files that don't exist, and take a plain path with blanks or
/// non-Latin letters for an encoded one: local targets are looked up here and go out as file URLs, with the
/// query and the fragment that they came with as such.
bool openWithDesktop(const QUrl &url)
{
    if (url.isLocalFile())
        return QFileInfo::exists(url.toLocalFile()) && QDesktopServices::openUrl(url);
    if (!url.scheme().isEmpty())
        return QDesktopServices::openUrl(url);
    const QStringList paths = plainPaths(url);
    for (const QString &path : paths) {
        const QFileInfo target(path);
        if (target.exists())
            return QDesktopServices::openUrl(QUrl::fromLocalFile(target.absoluteFilePath()));
    }
    return false;
}

} // namespace

Tools::Tools(QObject *parent)
    : QObject(parent)
{
}

QQuaternion Tools::inverted(QQuaternion q)
{
    return q.inverted();
}

QVector3D Tools::rotatedVector(QQuaternion q, QVector3D v)
{
    return q.rotatedVector(v);
}

QMatrix4x4 Tools::apply(QVector3D translation, QQuaternion rotation)
{
    QMatrix4x4 matrix;
    matrix.translate(translation);
    matrix.rotate(rotation);
    return matrix;
}

QVector3D Tools::mapVector(QMatrix4x4 m, QVector3D v)
{
    return m.map(v);
}

QString Tools::filename(QUrl url)
{
    return url.fileName(QUrl::FullyDecoded);
}

QString Tools::filepath(QUrl url)
{
    return url.toLocalFile();
}

QString Tools::folder(QUrl url)
{
    return QFileInfo(url.path(QUrl::FullyDecoded)).absoluteDir().path();
}

QUrl Tools::folderUrl(QUrl url)
{
    return QUrl::fromLocalFile(folder(url));
}

bool Tools::fileExists(QUrl url)
{
    return QFile::exists(url.path(QUrl::FullyDecoded));
}

void Tools::copyToClipboard(QString text)
{
    QGuiApplication::clipboard()->setText(text, QClipboard::Clipboard);
}

bool Tools::openUrl(QUrl url)
{
    const bool opened = openWithDesktop(url);
    qDebug() << "Open URL" << url << opened;
    return opened;
}

void Tools::clearEvents()
{
    QCoreApplication::processEvents();
}
