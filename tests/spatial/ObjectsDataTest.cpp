#include "spatial/ObjectsData.h"

#include "support/FakeObjectDetector.h"
#include "support/LogCatcher.h"
#include "support/Wait.h"

#include <QElapsedTimer>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTimer>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

qv::Object person()
{
    return {1, "person", 10, 20.5, 30, 40, 0.876, {{1, 2, 0.5}, {-1, -1, 0}}};
}

} // namespace

TEST(ObjectsData, detectionRunsFromConstructionOn)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    {
        const ObjectsData data(detector, nullptr);
        EXPECT_THAT(detector->takeCalls(), ElementsAre("registerCallback", "start"));
        EXPECT_TRUE(data.objects().isEmpty());
        EXPECT_EQ(data.source(), ObjectsData::None);
        EXPECT_TRUE(data.model().isEmpty());
        EXPECT_TRUE(data.modelDescriptor().isEmpty());
        EXPECT_FALSE(data.enabled());
    }
    EXPECT_THAT(detector->takeCalls(), ElementsAre("unregisterCallback(1)", "stop"));
}

TEST(ObjectsData, destructorDoesNotTestTheId)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    {
        ObjectsData data(detector, nullptr);
        data.control(false);
        detector->takeCalls();
    }
    EXPECT_THAT(detector->takeCalls(), ElementsAre("unregisterCallback(-1)", "stop"));
}

TEST(ObjectsData, withoutADetectorEveryOperationIsHarmless)
{
    ObjectsData data;
    data.control(true);
    data.control(false);
    data.setSource(ObjectsData::RGB);
    data.updateCNNSource();
    data.setModel(QStringLiteral("/nowhere"));
    data.setEnabled(true);
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    data.setModel(file.fileName());
    const ObjectsData null(nullptr, nullptr);
    EXPECT_EQ(data.source(), ObjectsData::RGB);
    EXPECT_EQ(data.model(), file.fileName());
    EXPECT_TRUE(data.enabled());
}

TEST(ObjectsData, withoutADetectorADescriptorIsKeptAndSentNowhere)
{
    ObjectsData data;
    data.setSource(ObjectsData::RGB);
    data.setModelDescriptor(QStringLiteral("/a"));
    // Told later, so that the first one's time is over when this one's is.
    auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData other(detector, nullptr);
    detector->takeCalls();
    other.setModelDescriptor(QStringLiteral("/b"));
    ASSERT_TRUE(waitFor([&] { return !detector->calls().empty(); }));
    EXPECT_EQ(data.modelDescriptor(), QStringLiteral("/a"));
    EXPECT_EQ(data.source(), ObjectsData::RGB);
}

TEST(ObjectsData, detectionBecomesAnObjectWithEveryKey)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    const ObjectsData data(detector, nullptr);
    const QSignalSpy changed(&data, &ObjectsData::objectsChanged);
    detector->deliver({person(), {0, "chair", 1, 2, 3, 4, 1, {}}});
    detector->deliver({person(), {0, "chair", 1, 2, 3, 4, 1, {}}});
    EXPECT_EQ(changed.count(), 1);
    ASSERT_EQ(data.objects().size(), 2);
    const QJsonObject first = data.objects()[0].toObject();
    EXPECT_EQ(first["shape"].toInt(), 1);
    EXPECT_EQ(first["type"].toString(), QStringLiteral("person"));
    EXPECT_EQ(first["x"].toDouble(), 10);
    EXPECT_EQ(first["y"].toDouble(), 20.5);
    EXPECT_EQ(first["width"].toDouble(), 30);
    EXPECT_EQ(first["height"].toDouble(), 40);
    EXPECT_EQ(first["confidence"].toDouble(), 0.876);
    EXPECT_EQ(first["keypoints"].toArray(),
        (QJsonArray{QJsonObject{{"x", 1}, {"y", 2}}, QJsonObject{{"x", -1}, {"y", -1}}}));
    EXPECT_TRUE(data.objects()[1].toObject()["keypoints"].isArray());
    EXPECT_TRUE(data.objects()[1].toObject()["keypoints"].toArray().isEmpty());
}

TEST(ObjectsData, controlReplacesTheRegistration)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData data(detector, nullptr);
    detector->takeCalls();
    data.control(true);
    EXPECT_THAT(detector->takeCalls(), ElementsAre("unregisterCallback(1)", "registerCallback", "start"));
    data.control(false);
    data.control(false);
    EXPECT_THAT(detector->takeCalls(), ElementsAre("unregisterCallback(2)", "stop", "stop"));
}

TEST(ObjectsData, enabledAndSourceDoNotReachTheDetector)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData data(detector, nullptr);
    detector->takeCalls();
    const QSignalSpy enabled(&data, &ObjectsData::enabledChanged);
    const QSignalSpy source(&data, &ObjectsData::sourceChanged);
    data.setEnabled(true);
    data.setEnabled(true);
    data.setSource(ObjectsData::Left);
    data.setSource(ObjectsData::Left);
    EXPECT_EQ(enabled.count(), 1);
    EXPECT_EQ(source.count(), 1);
    EXPECT_THAT(detector->calls(), IsEmpty());
}

TEST(ObjectsData, eachSourceHasTheDetectorsNumber)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData data(detector, nullptr);
    detector->takeCalls();
    for (const auto source : {ObjectsData::None, ObjectsData::Left, ObjectsData::Right, ObjectsData::RGB,
             ObjectsData::TOF, ObjectsData::SGBM}) {
        data.setSource(source);
        data.updateCNNSource();
    }
    EXPECT_THAT(detector->calls(),
        ElementsAre("setSource(255)", "setSource(0)", "setSource(1)", "setSource(2)", "setSource(3)",
            "setSource(255)"));
}

TEST(ObjectsData, existingModelReachesTheDetectorOnce)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData data(detector, nullptr);
    detector->takeCalls();
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    data.setModel(file.fileName());
    data.setModel(file.fileName());
    EXPECT_THAT(detector->calls(), ElementsAre("setModel(" + file.fileName().toStdString() + ")"));
}

TEST(ObjectsData, aModelIsStoredAndAnnouncedBeforeItReachesTheDetector)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData data(detector, nullptr);
    detector->takeCalls();
    QObject::connect(&data, &ObjectsData::modelChanged, [&](const QString &model) {
        detector->log->add("modelChanged", model.toStdString(), data.model() == model);
    });
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    const std::string path = file.fileName().toStdString();
    data.setModel(file.fileName());
    EXPECT_THAT(
        detector->takeCalls(), ElementsAre("modelChanged(" + path + ", true)", "setModel(" + path + ")"));
    data.setModel(file.fileName());
    EXPECT_THAT(detector->takeCalls(), IsEmpty());
    data.setModel(QStringLiteral("/not/there"));
    EXPECT_THAT(detector->takeCalls(), ElementsAre("modelChanged(/not/there, true)"));
}

TEST(ObjectsData, signalsCarryWhatIsStored)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData data(detector, nullptr);
    const QSignalSpy objects(&data, &ObjectsData::objectsChanged);
    const QSignalSpy source(&data, &ObjectsData::sourceChanged);
    const QSignalSpy enabled(&data, &ObjectsData::enabledChanged);
    detector->deliver({person()});
    data.setObjects({1, 2});
    data.setSource(ObjectsData::Right);
    data.setEnabled(true);
    ASSERT_EQ(objects.count(), 2);
    EXPECT_EQ(objects[0][0].toJsonArray()[0].toObject()["type"].toString(), QStringLiteral("person"));
    EXPECT_EQ(objects[1][0].toJsonArray(), (QJsonArray{1, 2}));
    ASSERT_EQ(source.count(), 1);
    EXPECT_EQ(source[0][0].value<ObjectsData::Source>(), ObjectsData::Right);
    ASSERT_EQ(enabled.count(), 1);
    EXPECT_TRUE(enabled[0][0].toBool());
}

TEST(ObjectsData, refusedAndMissingModelsAreLoggedAndKept)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    detector->modelResult = false;
    ObjectsData data(detector, nullptr);
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    const LogCatcher log;
    data.setModel(file.fileName());
    EXPECT_EQ(data.model(), file.fileName());
    data.setModel(QStringLiteral("/not/there"));
    EXPECT_EQ(data.model(), QStringLiteral("/not/there"));
    data.setModel(QString());
    EXPECT_EQ(log.lines(),
        (QStringList{"warning: Failed to set model", "debug: Model not found:  \"/not/there\""}));
}

TEST(ObjectsData, descriptorArrivesASecondAfterTheModel)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData data(detector, nullptr);
    detector->takeCalls();
    QTemporaryFile model;
    ASSERT_TRUE(model.open());
    QElapsedTimer clock;
    clock.start();
    data.setModelDescriptor(QStringLiteral("/a"));
    data.setModelDescriptor(QStringLiteral("/b"));
    data.setModel(model.fileName());
    const std::string modelCall = "setModel(" + model.fileName().toStdString() + ")";
    EXPECT_THAT(detector->calls(), ElementsAre(modelCall));
    // Timers end in their order, however late.
    QTimer later;
    later.setSingleShot(true);
    std::size_t callsByThen = 0;
    QObject::connect(&later, &QTimer::timeout, [&] { callsByThen = detector->calls().size(); });
    later.start(1500);
    ASSERT_TRUE(waitFor([&] { return detector->calls().size() > 1; }));
    EXPECT_GE(clock.elapsed(), 950);
    ASSERT_TRUE(waitFor([&] { return detector->calls().size() == 5; }));
    EXPECT_THAT(detector->calls(),
        ElementsAre(modelCall, "setDescriptor(/b)", "source", "setDescriptor(/b)", "source"));
    ASSERT_TRUE(waitFor([&] { return !later.isActive(); }));
    EXPECT_EQ(callsByThen, 5U);
}

TEST(ObjectsData, theSameDescriptorAgainIsNoChange)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData data(detector, nullptr);
    const QSignalSpy changed(&data, &ObjectsData::modelDescriptorChanged);
    data.setModelDescriptor(QStringLiteral("/a"));
    data.setModelDescriptor(QStringLiteral("/a"));
    EXPECT_EQ(changed.count(), 1);
}

TEST(ObjectsData, aDescriptorOfAModelThatIsGoneIsSentNowhere)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    auto gone = std::make_unique<ObjectsData>(detector, nullptr);
    gone->setModelDescriptor(QStringLiteral("/a"));
    gone.reset();
    detector->takeCalls();
    auto otherDetector = std::make_shared<FakeObjectDetector>();
    ObjectsData other(otherDetector, nullptr);
    otherDetector->takeCalls();
    other.setModelDescriptor(QStringLiteral("/b"));
    ASSERT_TRUE(waitFor([&] { return !otherDetector->calls().empty(); }));
    EXPECT_THAT(detector->calls(), IsEmpty());
}

TEST(ObjectsData, pathsReachTheDetectorAsUtf8)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData data(detector, nullptr);
    detector->takeCalls();
    const QTemporaryDir folder;
    QFile model(folder.filePath(QStringLiteral("\u6a21.bin")));
    ASSERT_TRUE(model.open(QIODevice::WriteOnly));
    const std::string path = folder.path().toStdString();
    data.setModelDescriptor(QStringLiteral("/\u6a21"));
    data.setModel(model.fileName());
    EXPECT_THAT(detector->takeCalls(), ElementsAre("setModel(" + path + "/\xE6\xA8\xA1.bin)"));
    ASSERT_TRUE(waitFor([&] { return !detector->calls().empty(); }));
    EXPECT_EQ(detector->calls().front(), "setDescriptor(/\xE6\xA8\xA1)");
}

TEST(ObjectsData, detectorsSourceIsReadBackWhateverItAnswers)
{
    struct Row {
        int answer;
        ObjectsData::Source source;
    };
    const std::vector<Row> rows{{0, ObjectsData::Left}, {1, ObjectsData::Right}, {2, ObjectsData::RGB},
        {3, ObjectsData::TOF}, {4, ObjectsData::SGBM}, {-1, ObjectsData::SGBM}, {255, ObjectsData::SGBM}};
    std::vector<std::shared_ptr<FakeObjectDetector>> detectors;
    std::vector<std::unique_ptr<ObjectsData>> models;
    std::vector<std::unique_ptr<QSignalSpy>> changes;
    for (const Row &row : rows) {
        detectors.push_back(std::make_shared<FakeObjectDetector>());
        detectors.back()->sourceResult = row.answer;
        detectors.back()->descriptorResult = false;
        models.push_back(std::make_unique<ObjectsData>(detectors.back(), nullptr));
        models.back()->setSource(ObjectsData::SGBM);
        detectors.back()->takeCalls();
        changes.push_back(std::make_unique<QSignalSpy>(models.back().get(), &ObjectsData::sourceChanged));
        models.back()->setModelDescriptor(QStringLiteral("/a"));
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ASSERT_TRUE(waitFor([&] { return !detectors[i]->calls().empty(); }));
        EXPECT_EQ(models[i]->source(), rows[i].source) << rows[i].answer;
        EXPECT_EQ(changes[i]->count(), rows[i].source == ObjectsData::SGBM ? 0 : 1) << rows[i].answer;
    }
}

TEST(ObjectsData, refusedSourceStaysOurs)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    detector->setSourceResult = false;
    ObjectsData data(detector, nullptr);
    detector->takeCalls();
    data.setSource(ObjectsData::Left);
    const LogCatcher log;
    data.updateCNNSource();
    EXPECT_THAT(detector->calls(), ElementsAre("setSource(0)"));
    EXPECT_EQ(data.source(), ObjectsData::Left);
    EXPECT_EQ(log.lines(), QStringList());
}

TEST(ObjectsData, emptyDescriptorIsTheWordEmptyAndCountsAsAChangeEachTime)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData data(detector, nullptr);
    detector->takeCalls();
    const QSignalSpy changed(&data, &ObjectsData::modelDescriptorChanged);
    data.setModelDescriptor(QStringLiteral("/a"));
    data.setModelDescriptor(QString());
    data.setModelDescriptor(QString());
    EXPECT_EQ(data.modelDescriptor(), QStringLiteral("empty"));
    ASSERT_EQ(changed.count(), 3);
    EXPECT_EQ(changed.last().first().toString(), QStringLiteral("empty"));
    ASSERT_TRUE(waitFor([&] { return detector->calls().size() == 6; }));
    EXPECT_EQ(detector->calls()[4], "setDescriptor(empty)");
}

TEST(ObjectsData, callbackOnItsWayFindsTheModelGone)
{
    auto detector = std::make_shared<FakeObjectDetector>();
    auto data = std::make_unique<ObjectsData>(detector, nullptr);
    const auto late = detector->callbacks.held();
    data.reset();
    late.front()({person()});
    EXPECT_EQ(detector->callbacks.count(), 0U);
}
