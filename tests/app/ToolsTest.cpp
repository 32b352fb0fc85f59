#include "app/Tools.h"

#include "support/LogCatcher.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QGuiApplication>
#include <QMetaMethod>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QTimer>

using ::testing::ElementsAre;

namespace {

/// Stands in for the desktop's opener of one scheme and keeps what it was asked to open.
class Opener : public QObject {
    Q_OBJECT

public:
    explicit Opener(const QString &scheme)
        : m_scheme(scheme)
    {
        QDesktopServices::setUrlHandler(m_scheme, this, "open");
    }
    ~Opener() override { QDesktopServices::unsetUrlHandler(m_scheme); }

    QList<QUrl> opened;

public slots:
    void open(const QUrl &url) { opened.append(url); }

private:
    const QString m_scheme;
};

class FileOpener : public Opener {
public:
    FileOpener()
        : Opener(QStringLiteral("file"))
    {
    }
};

QString touch(const QDir &folder, const QString &name)
{
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    return file.fileName();
}

/// What the expression gives to a document that reaches the helper as `tools`.
QVariant evaluate(Tools &tools, const QByteArray &expression)
{
    QQmlEngine engine;
    engine.rootContext()->setContextProperty(QStringLiteral("tools"), &tools);
    QQmlComponent component(&engine);
    component.setData("import QtQuick 2.13\nQtObject { property var result: " + expression + " }", QUrl());
    const std::unique_ptr<QObject> object(component.create());
    EXPECT_TRUE(object) << component.errorString().toStdString();
    return object ? object->property("result") : QVariant();
}

} // namespace

TEST(Tools, offersItsTwelveMethodsInOrder)
{
    const QMetaObject &meta = Tools::staticMetaObject;
    std::vector<std::string> signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        signatures.push_back(
            std::string(meta.method(i).typeName()) + " " + meta.method(i).methodSignature().toStdString());

    EXPECT_THAT(signatures,
        ElementsAre("QQuaternion inverted(QQuaternion)", "QVector3D rotatedVector(QQuaternion,QVector3D)",
            "QMatrix4x4 apply(QVector3D,QQuaternion)", "QVector3D mapVector(QMatrix4x4,QVector3D)",
            "QString filename(QUrl)", "QString filepath(QUrl)", "QString folder(QUrl)",
            "QUrl folderUrl(QUrl)", "bool fileExists(QUrl)", "void copyToClipboard(QString)",
            "bool openUrl(QUrl)", "void clearEvents()"));
}

TEST(Tools, invertedNegatesTheAxis)
{
    // The inverse of a unit quaternion is its conjugate.
    const QQuaternion q(0.5F, 0.5F, -0.5F, 0.5F);
    EXPECT_TRUE(qFuzzyCompare(Tools().inverted(q), QQuaternion(0.5F, -0.5F, 0.5F, -0.5F)));
    // Of any other one it is the conjugate over the square of the length.
    EXPECT_TRUE(qFuzzyCompare(Tools().inverted(QQuaternion(0, 0, 0, 2)), QQuaternion(0, 0, 0, -0.5F)));
}

TEST(Tools, rotatedVectorTurnsAQuarterAboutZ)
{
    const float h = std::sqrt(0.5F);
    const QVector3D turned = Tools().rotatedVector(QQuaternion(h, 0, 0, h), QVector3D(1, 2, 3));
    EXPECT_TRUE(qFuzzyCompare(turned, QVector3D(-2, 1, 3)));
}

TEST(Tools, applyWithNothingToDoIsTheIdentity)
{
    EXPECT_EQ(Tools().apply(QVector3D(), QQuaternion()), QMatrix4x4());
}

TEST(Tools, applyRotatesBeforeItTranslates)
{
    const float h = std::sqrt(0.5F);
    const QMatrix4x4 matrix = Tools().apply(QVector3D(10, 20, 30), QQuaternion(h, 0, 0, h));
    // Quarter turn about z, then the translation: (1, 0, 0) -> (0, 1, 0) -> (10, 21, 30).
    EXPECT_TRUE(qFuzzyCompare(matrix.map(QVector3D(1, 0, 0)), QVector3D(10, 21, 30)));
}

TEST(Tools, mapVectorOfZeroIsTheTranslation)
{
    QMatrix4x4 matrix;
    matrix.translate(4, -5, 6);
    EXPECT_EQ(Tools().mapVector(matrix, QVector3D()), QVector3D(4, -5, 6));
}

TEST(Tools, filenameIsTheDecodedLastPart)
{
    Tools tools;
    EXPECT_EQ(tools.filename(QUrl(QStringLiteral("file:///a/b%20c%25.png"))), QStringLiteral("b c%.png"));
    EXPECT_EQ(tools.filename(QUrl(QStringLiteral("file:///a/b/"))), QString());
}

TEST(Tools, filepathIsTheLocalFile)
{
    Tools tools;
    EXPECT_EQ(tools.filepath(QUrl(QStringLiteral("file:///a/b%20c"))), QStringLiteral("/a/b c"));
    EXPECT_EQ(tools.filepath(QUrl(QStringLiteral("https://host/a"))), QString());
}

TEST(Tools, folderIsTheAbsoluteFolderOfThePath)
{
    Tools tools;
    const QUrl url(QStringLiteral("file:///a/b%20c/d.png"));
    EXPECT_EQ(tools.folder(url), QStringLiteral("/a/b c"));
    EXPECT_EQ(tools.folderUrl(url), QUrl::fromLocalFile(QStringLiteral("/a/b c")));
    EXPECT_EQ(tools.folder(QUrl(QStringLiteral("x.png"))), QDir::currentPath());
}

TEST(Tools, folderKeepsTheSlashBeforeADrive)
{
    EXPECT_EQ(Tools().folder(QUrl(QStringLiteral("file:///C:/x/y"))), QStringLiteral("/C:/x"));
}

TEST(Tools, fileExistsLooksAtThePathComponent)
{
    const QTemporaryDir folder;
    const QString path = touch(QDir(folder.path()), QStringLiteral("with blank %41"));
    Tools tools;
    EXPECT_TRUE(tools.fileExists(QUrl::fromLocalFile(path)));
    EXPECT_TRUE(tools.fileExists(QUrl(folder.path()))) << "a plain path, as documents give it";
    EXPECT_FALSE(tools.fileExists(QUrl::fromLocalFile(path + QStringLiteral("x"))));
    EXPECT_FALSE(tools.fileExists(QUrl()));
}

TEST(Tools, copyToClipboardSetsTheClipboard)
{
    Tools().copyToClipboard(QStringLiteral("uuid 42"));
    EXPECT_EQ(QGuiApplication::clipboard()->text(QClipboard::Clipboard), QStringLiteral("uuid 42"));
}

TEST(Tools, openUrlRefusesAPathThatDoesNotExist)
{
    FileOpener opener;
    const LogCatcher log;
    EXPECT_FALSE(Tools().openUrl(QUrl(QStringLiteral("/no/such/thing"))));
    EXPECT_FALSE(Tools().openUrl(QUrl(QStringLiteral("file:///no/such/thing"))));
    EXPECT_FALSE(Tools().openUrl(QUrl()));
    EXPECT_THAT(log.lines(),
        ElementsAre(QStringLiteral("debug: Open URL QUrl(\"/no/such/thing\") false"),
            QStringLiteral("debug: Open URL QUrl(\"file:///no/such/thing\") false"),
            QStringLiteral("debug: Open URL QUrl(\"\") false")));
    EXPECT_TRUE(opener.opened.isEmpty());
}

TEST(Tools, openUrlHandsAnExistingFolderToTheDesktop)
{
    const QTemporaryDir folder;
    const QUrl url = QUrl::fromLocalFile(folder.path());
    FileOpener opener;
    const LogCatcher log;
    EXPECT_TRUE(Tools().openUrl(url));
    EXPECT_THAT(opener.opened, ElementsAre(url));
    EXPECT_THAT(
        log.lines(), ElementsAre(QStringLiteral("debug: Open URL QUrl(\"%1\") true").arg(url.toString())));
}

TEST(Tools, openUrlKeepsTheQueryAndTheFragmentOfAFile)
{
    const QTemporaryDir folder;
    QUrl url = QUrl::fromLocalFile(touch(QDir(folder.path()), QStringLiteral("in dex.html")));
    url.setQuery(QStringLiteral("a=1"));
    url.setFragment(QStringLiteral("faults"));
    const FileOpener opener;
    EXPECT_TRUE(Tools().openUrl(url));
    EXPECT_THAT(opener.opened, ElementsAre(url));
    url.setPath(url.path() + QStringLiteral(".gone"));
    EXPECT_FALSE(Tools().openUrl(url));
    EXPECT_EQ(opener.opened.size(), 1);
}

TEST(Tools, openUrlTakesAPlainTextFromADocument)
{
    const QTemporaryDir parent;
    const QString path = parent.filePath(QStringLiteral("Aufnähme 1"));
    ASSERT_TRUE(QDir().mkpath(path));
    FileOpener opener;
    Tools tools;
    EXPECT_EQ(evaluate(tools, "tools.openUrl(\"" + path.toUtf8() + "\")"), QVariant(true));
    EXPECT_THAT(opener.opened, ElementsAre(QUrl::fromLocalFile(path)));
}

TEST(Tools, openUrlTakesTheSignsOfAUrlForLettersOfAName)
{
    const QTemporaryDir parent;
    Tools tools;
    // Folders that stand beside the wrong ones: "run" is what is left of the first text's path.
    ASSERT_TRUE(QDir(parent.path()).mkpath(QStringLiteral("run")));
    for (const char *name : {"run#1", "run?b", "run?b#c d", "a%20b", "100%", "Lauf ä#2"}) {
        const QString path = parent.filePath(QString::fromUtf8(name));
        ASSERT_TRUE(QDir().mkpath(path));
        const FileOpener opener;
        EXPECT_TRUE(tools.openUrl(QUrl(path))) << name;
        EXPECT_THAT(opener.opened, ElementsAre(QUrl::fromLocalFile(path))) << name;
    }
}

TEST(Tools, openUrlLeavesOutTheFragmentOfAPageThatExists)
{
    const QTemporaryDir folder;
    const QString path = touch(QDir(folder.path()), QStringLiteral("in dex.html"));
    const FileOpener opener;
    EXPECT_TRUE(Tools().openUrl(QUrl(folder.path() + QStringLiteral("/in%20dex.html?q#faults"))));
    EXPECT_THAT(opener.opened, ElementsAre(QUrl::fromLocalFile(path)));
}

TEST(Tools, openUrlPassesOtherSchemesOnAsTheyAre)
{
    const Opener opener(QStringLiteral("qv-test"));
    const LogCatcher log;
    const QUrl url(QStringLiteral("qv-test://host/no/such%20thing?a=1#b"));
    EXPECT_TRUE(Tools().openUrl(url));
    EXPECT_THAT(opener.opened, ElementsAre(url));
    EXPECT_THAT(
        log.lines(), ElementsAre(QStringLiteral("debug: Open URL QUrl(\"%1\") true").arg(url.toString())));
}

TEST(Tools, openUrlTakesARelativePathFromTheWorkingDirectory)
{
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("doc")));
    const QString path = touch(QDir(QStringLiteral("doc")), QStringLiteral("index.html"));
    FileOpener opener;
    EXPECT_TRUE(Tools().openUrl(QUrl(QStringLiteral("doc/index.html"))));
    EXPECT_THAT(opener.opened, ElementsAre(QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath())));
}

TEST(Tools, clearEventsRunsWhatIsPending)
{
    bool ran = false;
    QTimer::singleShot(0, qApp, [&ran] { ran = true; });
    Tools().clearEvents();
    EXPECT_TRUE(ran);
}

TEST(Tools, documentsReachTheArithmetic)
{
    Tools tools;
    EXPECT_EQ(evaluate(tools,
                  "tools.mapVector(tools.apply(Qt.vector3d(1, 2, 3), Qt.quaternion(1, 0, 0, 0)),"
                  " Qt.vector3d(1, 1, 1))"),
        QVariant(QVector3D(2, 3, 4)));
}

#include "ToolsTest.moc"
