#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTranslator>
#include <QXmlStreamReader>
#include <array>
#include <gmock/gmock.h>
#include <map>

namespace {

const std::array<const char *, 3> languages{"zh_CN", "ja_JP", "fr_FR"};

QString read(const QString &path)
{
    QFile file(QStringLiteral(QV_SOURCE_DIR "/") + path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

struct Message {
    QString context;
    QString source;
    QString translation;
    QString state;
    bool translated() const { return translation != source; }
};

/// The messages of a catalogue's source. A message without a translation holds its own source text.
std::vector<Message> catalogue(const char *language)
{
    std::vector<Message> messages;
    QXmlStreamReader xml(read(QStringLiteral("translations/viewer_%1.ts").arg(QLatin1String(language))));
    QString context;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("source")) {
            messages.push_back({context, xml.readElementText(), {}, {}});
        } else if (xml.name() == QLatin1String("translation")) {
            messages.back().state = xml.attributes().value(QLatin1String("type")).toString();
            messages.back().translation = xml.readElementText();
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return messages;
}

struct Size {
    int messages = 0;
    int translated = 0;
    bool operator==(const Size &other) const
    {
        return messages == other.messages && translated == other.translated;
    }
};

void PrintTo(const Size &size, std::ostream *out)
{
    *out << size.messages << " messages, " << size.translated << " translated";
}

using Sizes = std::map<std::string, Size>;

Sizes sizes(const char *language)
{
    Sizes found;
    for (const Message &message : catalogue(language)) {
        for (Size *size : {&found[message.context.toStdString()], &found["all"]}) {
            ++size->messages;
            size->translated += message.translated();
        }
    }
    return found;
}

/// The texts that a document of this base name may have translated.
QStringList textsOfDocument(const QString &name)
{
    static const QRegularExpression plain(QStringLiteral("qsTr\\(\"((?:[^\"\\\\]|\\\\.)*)\"\\)"));
    static const QRegularExpression optionText(QStringLiteral("\\btext\\(\"([^\"]*)\"\\)"));
    QStringList texts;
    const auto collect = [&texts](const QRegularExpression &pattern, const QString &document) {
        for (auto match = pattern.globalMatch(document); match.hasNext();)
            texts << match.next().captured(1).replace(QLatin1String("\\n"), QLatin1String("\n"));
    };
    collect(plain, read(QStringLiteral("qml/%1.qml").arg(name)));
    const QRegularExpression borrowed(QStringLiteral("qsTranslate\\(\"%1\", \"([^\"]*)\"\\)").arg(name));
    const QDir documents(QStringLiteral(QV_SOURCE_DIR "/qml"));
    for (const QString &document : documents.entryList({QStringLiteral("*.qml")}))
        collect(borrowed, read(QStringLiteral("qml/") + document));
    if (name == QLatin1String("main"))
        collect(optionText, read(QStringLiteral("src/app/CommandLine.cpp")));
    return texts;
}

/// Texts that stay in the catalogues though no document of that name says them any more.
const std::map<QString, QStringList> retired{
    {QStringLiteral("CameraView"), {QStringLiteral("Colorize")}},
    {QStringLiteral("InfoDialog"), {QStringLiteral("Device info")}},
    {QStringLiteral("SgbmView"),
        {QStringLiteral("AVG PX       "), QStringLiteral("Confidence [px]"), QStringLiteral("Depth       "),
            QStringLiteral("Dewarp       "), QStringLiteral("Fillholes       "), QStringLiteral("Mask"),
            QStringLiteral("show depth ")}},
    {QStringLiteral("SlamView"),
        {QStringLiteral("CSlam mode"), QStringLiteral("Load"), QStringLiteral("Slam mode"),
            QStringLiteral("Visual odometry")}},
    {QStringLiteral("main"), {QStringLiteral("QVSDK Viewer"), QStringLiteral("UUID:")}},
};

struct Row {
    const char *context;
    const char *source;
    const char *chinese;
    const char *japanese; ///< null: no translation
};

const std::vector<Row> wording{
    {"main", "Documentation", "文档", "ドキュメンテーション"},
    {"main", "Info", "信息", "情報"},
    {"main", "Save images", "保存画面", "画像保存"},
    {"main", "Save path", "保存路径", "保存先"},
    {"main", "Save video", "保存视频", "動画保存"},
    {"main", "Show console", "显示命令行", nullptr},
    {"main", "advanced", "高级", nullptr},
    {"InfoDialog", "Copied", "已复制", nullptr},
    {"InfoDialog", "Device info", "设备信息", nullptr},
    {"VersionDialog", "Copied", "已复制", "已复制"},
    {"SettingsView", "Language", "语言", "語言"},
    {"SettingsView", "Options", "设置", "設定"},
    {"SettingsView", "Enable CNN", "使能CNN功能", "CNN機能をオン"},
    {"SettingsView", "Enable Sync", "使能同步功能", "同期機能をオン"},
    {"SettingsView", "IMU Offset", "IMU偏移", "IMU時差調整"},
    {"SettingsView", "Edge Prediction", "边缘预测", "エッジ結果補正時差調整"},
};

/// What the interface shows with the compiled catalogue: an unknown message shows its source.
QString shown(const QTranslator &translator, const char *context, const QString &source)
{
    const QString text = translator.translate(context, source.toUtf8().constData());
    return text.isNull() ? source : text;
}

QString compiled(const char *language)
{
    return QStringLiteral(QV_CATALOGUES "/viewer_%1.qm").arg(QLatin1String(language));
}

} // namespace

TEST(Catalogues, chineseHasItsContextsMessagesAndTranslations)
{
    EXPECT_EQ(sizes("zh_CN"),
        (Sizes{{"CalibrationDialog", {1, 0}}, {"CalibrationDisplay", {4, 0}}, {"CameraView", {20, 20}},
            {"EyetrackingView", {6, 6}}, {"ImuView", {8, 8}}, {"InfoDialog", {2, 2}}, {"Logo", {1, 0}},
            {"RgbView", {1, 1}}, {"SettingsView", {8, 7}}, {"SgbmView", {12, 4}}, {"SlamView", {32, 15}},
            {"StereoView", {15, 5}}, {"Tof3DView", {4, 2}}, {"TofView", {15, 3}}, {"VersionDialog", {2, 1}},
            {"main", {9, 7}}, {"all", {140, 81}}}));
}

TEST(Catalogues, japaneseHasItsContextsMessagesAndTranslations)
{
    EXPECT_EQ(sizes("ja_JP"),
        (Sizes{{"CalibrationDialog", {1, 0}}, {"CalibrationDisplay", {4, 0}}, {"CameraView", {38, 28}},
            {"EyetrackingView", {6, 4}}, {"ImuView", {8, 8}}, {"InfoDialog", {2, 1}}, {"Logo", {1, 0}},
            {"RgbView", {1, 1}}, {"SettingsView", {8, 7}}, {"SgbmView", {12, 9}}, {"SlamView", {32, 20}},
            {"StereoView", {15, 5}}, {"Tof3DView", {4, 4}}, {"TofView", {15, 4}}, {"VersionDialog", {2, 1}},
            {"main", {9, 5}}, {"all", {158, 97}}}));
}

TEST(Catalogues, frenchHasSourceTextsOnly)
{
    EXPECT_EQ(sizes("fr_FR"),
        (Sizes{{"CalibrationDialog", {1, 0}}, {"CalibrationDisplay", {4, 0}}, {"CameraView", {12, 0}},
            {"EyetrackingView", {6, 0}}, {"ImuView", {8, 0}}, {"InfoDialog", {2, 0}}, {"Logo", {1, 0}},
            {"RgbView", {1, 0}}, {"SettingsView", {8, 0}}, {"SgbmView", {18, 0}}, {"SlamView", {32, 0}},
            {"StereoView", {15, 0}}, {"Tof3DView", {4, 0}}, {"TofView", {15, 0}}, {"VersionDialog", {2, 0}},
            {"main", {11, 0}}, {"all", {140, 0}}}));
}

TEST(Catalogues, haveTheFixedWording)
{
    const std::vector<Message> chinese = catalogue("zh_CN");
    const std::vector<Message> japanese = catalogue("ja_JP");
    const auto find = [](const std::vector<Message> &messages, const Row &row) {
        for (const Message &message : messages) {
            if (message.context == QLatin1String(row.context) && message.source == QLatin1String(row.source))
                return message.translation;
        }
        return QString();
    };
    for (const Row &row : wording) {
        EXPECT_EQ(find(chinese, row), QString::fromUtf8(row.chinese)) << row.context << ": " << row.source;
        const QString text = find(japanese, row);
        if (row.japanese)
            EXPECT_EQ(text, QString::fromUtf8(row.japanese)) << row.context << ": " << row.source;
        else
            EXPECT_TRUE(text.isEmpty() || text == QLatin1String(row.source)) << row.source;
    }
}

TEST(Catalogues, everyMessageIsSaidByItsDocumentOrKnownToBeRetired)
{
    std::map<QString, QStringList> unused;
    QStringList sources;
    for (const char *language : languages) {
        for (const Message &message : catalogue(language)) {
            const QString key = message.context + QLatin1Char('/') + message.source;
            if (sources.contains(key))
                continue;
            sources << key;
            if (!textsOfDocument(message.context).contains(message.source))
                unused[message.context] << message.source;
        }
    }
    EXPECT_EQ(sources.size(), 168);
    for (auto &texts : unused)
        texts.second.sort();
    EXPECT_EQ(unused, retired);
}

TEST(Catalogues, noMessageStandsTwiceOrUnfinished)
{
    for (const char *language : languages) {
        QStringList keys;
        for (const Message &message : catalogue(language)) {
            EXPECT_EQ(message.state, QString()) << message.source.toStdString();
            EXPECT_FALSE(message.translation.isEmpty()) << message.source.toStdString();
            keys << message.context + QLatin1Char('/') + message.source;
        }
        EXPECT_EQ(keys.removeDuplicates(), 0) << language;
    }
}

TEST(Catalogues, compiledOnesHoldEveryMessage)
{
    for (const char *language : languages) {
        QTranslator translator;
        ASSERT_TRUE(translator.load(compiled(language))) << language;
        for (const Message &message : catalogue(language)) {
            const QByteArray context = message.context.toUtf8();
            const QByteArray source = message.source.toUtf8();
            EXPECT_EQ(translator.translate(context.constData(), source.constData()), message.translation)
                << language << ": " << source.constData();
        }
    }
}

TEST(Catalogues, startAndHidViewStayEnglish)
{
    for (const char *language : languages) {
        QTranslator translator;
        ASSERT_TRUE(translator.load(compiled(language)));
        EXPECT_EQ(shown(translator, "start", QStringLiteral("QVSDK Viewer")), QStringLiteral("QVSDK Viewer"));
        for (const QString &text : textsOfDocument(QStringLiteral("HidView")))
            EXPECT_EQ(shown(translator, "HidView", text), text) << language;
        EXPECT_EQ(shown(translator, "main", QStringLiteral("Menu List")), QStringLiteral("Menu List"));
    }
}
