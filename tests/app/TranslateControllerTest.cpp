#include "app/TranslateController.h"

#include "app/QmlTypes.h"
#include "support/Wait.h"

#include <QFile>
#include <QProcess>
#include <QQmlComponent>
#include <QQmlContext>
#include <QResource>
#include <QTemporaryDir>

namespace {

/// An engine that outlives every test, as the instance keeps the first one for the process.
QQmlEngine &engine()
{
    static auto *const instance = new QQmlEngine(qApp);
    return *instance;
}

TranslateController &controller()
{
    return *TranslateController::instance(&engine());
}

/// A document with the name, and so the context, of the main page.
class Document {
public:
    Document()
        : m_component(&engine())
    {
        m_component.setData("import QtQml 2.13\n"
                            "QtObject { property string text: qsTr(\"Documentation\")\n"
                            "function choose(lan) { controller.loadLanguage(lan) } }",
            QUrl(QStringLiteral("qrc:/main.qml")));
        engine().rootContext()->setContextProperty(QStringLiteral("controller"), &controller());
        m_object.reset(m_component.create());
    }

    QString text() const { return m_object->property("text").toString(); }

    void choose(int language)
    {
        QMetaObject::invokeMethod(m_object.get(), "choose", Q_ARG(QVariant, language));
    }

private:
    QQmlComponent m_component;
    std::unique_ptr<QObject> m_object;
};

const QString English = QStringLiteral("Documentation");
const QString Chinese = QStringLiteral("文档");

} // namespace

TEST(TranslateController, thereIsOneInstance)
{
    TranslateController *const first = &controller();
    QQmlEngine other;
    EXPECT_EQ(TranslateController::instance(&other), first);
    EXPECT_EQ(TranslateController::instance(nullptr), first);
    // It still translates for the engine of the first call.
    Document document;
    TranslateController::instance(&other)->loadLanguage(TranslateController::Chinese);
    EXPECT_EQ(document.text(), Chinese);
    TranslateController::instance(&other)->loadLanguage(TranslateController::English);
    EXPECT_EQ(first->parent(), nullptr);
}

TEST(TranslateController, languagesAreNumberedFromEnglish)
{
    EXPECT_EQ(TranslateController::English, 0);
    EXPECT_EQ(TranslateController::Chinese, 1);
    EXPECT_EQ(TranslateController::Japanese, 2);
    EXPECT_EQ(TranslateController::French, 3);
}

TEST(TranslateController, startsInEnglish)
{
    EXPECT_EQ(Document().text(), English);
}

TEST(TranslateController, changesTheOpenDocumentAndBack)
{
    Document document;
    document.choose(1);
    EXPECT_EQ(document.text(), Chinese);
    document.choose(0);
    EXPECT_EQ(document.text(), English);
}

TEST(TranslateController, catalogueWithoutTranslationsShowsTheSource)
{
    Document document;
    document.choose(1);
    document.choose(3);
    EXPECT_EQ(document.text(), English);
    EXPECT_EQ(QCoreApplication::translate("main", "Info"), QStringLiteral("Informations")) << "it is loaded";
    document.choose(0);
    EXPECT_EQ(QCoreApplication::translate("main", "Info"), QStringLiteral("Info"));
}

TEST(TranslateController, anyOtherNumberIsEnglish)
{
    Document document;
    for (const int language : {99, -1, 4}) {
        document.choose(1);
        document.choose(language);
        EXPECT_EQ(document.text(), English) << language;
    }
}

TEST(TranslateController, missingCatalogueLeavesEnglish)
{
    // The tests bring no Japanese catalogue.
    Document document;
    document.choose(1);
    document.choose(2);
    EXPECT_EQ(document.text(), English);
}

TEST(TranslateController, japaneseIsTheShippedCatalogueOfItsName)
{
    const QTemporaryDir folder;
    const QString list = folder.filePath(QStringLiteral("japanese.qrc"));
    const QString resource = folder.filePath(QStringLiteral("japanese.rcc"));
    QFile out(list);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write("<RCC><qresource><file alias=\"viewer_ja_JP.qm\">" QV_CATALOGUES
              "/viewer_ja_JP.qm</file></qresource></RCC>");
    out.close();
    ASSERT_EQ(QProcess::execute(
                  QStringLiteral(QV_RCC), {QStringLiteral("--binary"), QStringLiteral("-o"), resource, list}),
        0);
    ASSERT_TRUE(QResource::registerResource(resource));
    Document document;
    document.choose(2);
    EXPECT_EQ(document.text(), QStringLiteral("ドキュメンテーション"));
    document.choose(0);
    EXPECT_EQ(document.text(), English);
    QResource::unregisterResource(resource);
}

TEST(TranslateController, fileWithOnlyASuffixInTheWorkingDirectoryIsNoCatalogue)
{
    ASSERT_TRUE(QFile::copy(QStringLiteral(":/viewer_zh_CN.qm"), QStringLiteral(".qm")));
    Document document;
    document.choose(0);
    EXPECT_EQ(document.text(), English);
    QFile::remove(QStringLiteral(".qm"));
}

TEST(TranslateController, languageCanNotBeCreatedInADocument)
{
    registerLanguageType();
    QQmlComponent component(&engine());
    component.setData("import Quivra.Translate 1.0\nLanguage { }", QUrl());
    EXPECT_TRUE(component.isError());
    EXPECT_TRUE(component.errorString().contains(QStringLiteral("can not create TranslateController")))
        << component.errorString().toStdString();
}

TEST(TranslateController, documentsNameTheLanguages)
{
    registerLanguageType();
    QQmlComponent component(&engine());
    component.setData("import QtQml 2.13\nimport Quivra.Translate 1.0\n"
                      "QtObject { property int french: Language.French }",
        QUrl());
    const std::unique_ptr<QObject> object(component.create());
    ASSERT_TRUE(object) << component.errorString().toStdString();
    EXPECT_EQ(object->property("french"), QVariant(3));
}
