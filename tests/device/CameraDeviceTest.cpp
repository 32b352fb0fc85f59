#include "device/CameraDevice.h"

#include "device/FullDevice.h"
#include "support/FakeLibrary.h"
#include "support/LogCatcher.h"
#include "support/Wait.h"

#include <QJsonArray>
#include <QMetaProperty>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

using Names = std::vector<std::string>;

const char *const StreamProperties[] = {"imu", "stereo", "rgb", "tof", "sgbm", "edge", "slam", "objects",
    "tof3d", "planes", "edgePlanes", "map", "rgbd", "tofIr"};

/// The stream properties that aren't null.
Names streamsOf(const CameraDevice &camera)
{
    Names names;
    for (const char *name : StreamProperties)
        if (camera.property(name).value<QObject *>())
            names.emplace_back(name);
    return names;
}

struct FakeCameraModel : qv::CameraModel {
    FakeCameraModel(int w, int h)
        : m_width(w)
        , m_height(h)
    {
    }
    int width() override { return m_width; }
    int height() override { return m_height; }

private:
    const int m_width;
    const int m_height;
};

qv::CalibrationEx calibrationOf(int width, int height)
{
    qv::CalibrationEx calibration;
    calibration.cameraModels.push_back(std::make_shared<FakeCameraModel>(width, height));
    return calibration;
}

QJsonObject calibrationIn(const CameraDevice &camera)
{
    return camera.info()[QStringLiteral("calibration")].toObject();
}

struct Built {
    std::unique_ptr<CameraDevice> camera;
    QStringList log;
};

Built build(const std::shared_ptr<qv::Device> &device)
{
    const LogCatcher log;
    Built built;
    built.camera = std::make_unique<CameraDevice>(device, nullptr);
    built.log = log.lines();
    return built;
}

/// Which changed signals a camera sends, in order, with whether each came with a null.
class ChangeLog {
public:
    explicit ChangeLog(CameraDevice &camera)
    {
        watch(camera, "rgb", &CameraDevice::rgbChanged);
        watch(camera, "rgbd", &CameraDevice::rgbdChanged);
        watch(camera, "tof", &CameraDevice::tofChanged);
        watch(camera, "tofIr", &CameraDevice::tofIrChanged);
        watch(camera, "stereo", &CameraDevice::stereoChanged);
        watch(camera, "imu", &CameraDevice::imuChanged);
        watch(camera, "slam", &CameraDevice::slamChanged);
        watch(camera, "edge", &CameraDevice::edgeChanged);
        watch(camera, "objects", &CameraDevice::objectsChanged);
        watch(camera, "planes", &CameraDevice::planesChanged);
        watch(camera, "edgePlanes", &CameraDevice::edgePlanesChanged);
        watch(camera, "map", &CameraDevice::mapChanged);
        watch(camera, "tof3d", &CameraDevice::tof3dChanged);
        watch(camera, "sgbm", &CameraDevice::sgbmChanged);
    }

    Names names;

private:
    template <class Model>
    void watch(CameraDevice &camera, const char *name, void (CameraDevice::*changed)(Model *))
    {
        QObject::connect(&camera, changed, &m_context, [this, name, &camera](Model *model) {
            EXPECT_EQ(model, nullptr);
            EXPECT_EQ(camera.property(name).value<Model *>(), nullptr);
            names.emplace_back(name);
        });
    }

    QObject m_context;
};

const Names StopOrder{"rgb", "rgbd", "tof", "tofIr", "stereo", "imu", "slam", "edge", "objects", "planes",
    "edgePlanes", "map", "tof3d", "sgbm"};

/// A device that knows when it has gone.
class MortalDevice : public FakeDeviceEx {
public:
    ~MortalDevice() override { *gone = true; }
    bool *gone = nullptr;
};

} // namespace

TEST(CameraDevice, offersItsPropertiesInOrder)
{
    const QMetaObject &meta = CameraDevice::staticMetaObject;
    Names properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        properties.push_back(std::string(property.typeName()) + ' ' + property.name()
            + (property.isWritable() ? " writable " : " ") + property.notifySignal().name().toStdString());
    }
    EXPECT_THAT(properties,
        ElementsAre("QString uuid uuidChanged", "QString version versionChanged",
            "QJsonObject info infoChanged", "ImuData* imu imuChanged", "StereoData* stereo stereoChanged",
            "RgbData* rgb rgbChanged", "TofData* tof tofChanged", "SgbmData* sgbm sgbmChanged",
            "SlamData* edge edgeChanged", "SlamData* slam slamChanged", "ObjectsData* objects objectsChanged",
            "Tof3dData* tof3d tof3dChanged", "PlanesData* planes planesChanged",
            "PlanesData* edgePlanes edgePlanesChanged", "MapData* map mapChanged",
            "RgbdData* rgbd rgbdChanged", "TofIrData* tofIr tofIrChanged",
            "bool recording writable recordingChanged", "bool recordingSlam writable recordingSlamChanged",
            "bool downSample writable downSampleChanged", "bool fisheyeSwitch writable fisheyeSwitchChanged",
            "bool afRGB writable afRGBChanged", "bool rgb2 writable rgb2Changed"));
}

TEST(CameraDevice, offersItsSignalsSlotsAndInvokablesInOrder)
{
    const QMetaObject &meta = CameraDevice::staticMetaObject;
    Names signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        signatures.push_back(meta.method(i).methodSignature().toStdString());
    EXPECT_THAT(signatures,
        ElementsAre("uuidChanged(QString)", "imuChanged(ImuData*)", "stereoChanged(StereoData*)",
            "rgbChanged(RgbData*)", "tofChanged(TofData*)", "sgbmChanged(SgbmData*)",
            "slamChanged(SlamData*)", "edgeChanged(SlamData*)", "objectsChanged(ObjectsData*)",
            "versionChanged(QString)", "tof3dChanged(Tof3dData*)", "planesChanged(PlanesData*)",
            "edgePlanesChanged(PlanesData*)", "mapChanged(MapData*)", "recordingChanged(bool)",
            "recordingSlamChanged(bool)", "infoChanged(QJsonObject)", "rgbdChanged(RgbdData*)",
            "downSampleChanged()", "savePcd(QString)", "fisheyeSwitchChanged()", "tofIrChanged(TofIrData*)",
            "afRGBChanged()", "rgb2Changed()", "saveImages(QString)", "saveImages()", "setRecording(bool)",
            "setRecordingSlam(bool)", "enableSync(bool)", "sendHid(QString)", "getGlassLog()"));
}

TEST(CameraDevice, fullDeviceHasEveryStreamButTheEdgePlanes)
{
    const FullDevice full;
    const Built built = build(full.device);
    Names expected(std::begin(StreamProperties), std::end(StreamProperties));
    expected.erase(std::find(expected.begin(), expected.end(), "edgePlanes"));
    EXPECT_EQ(streamsOf(*built.camera), expected);
    EXPECT_EQ(built.camera->uuid(), QStringLiteral("full"));
    EXPECT_THAT(built.log, Not(Contains(QStringLiteral("critical: No edge"))));
}

TEST(CameraDevice, makesItsModelsInOrder)
{
    const FullDevice full;
    const CameraDevice camera(full.device, nullptr);
    Names classes;
    for (const QObject *child : camera.children())
        classes.emplace_back(child->metaObject()->className());
    EXPECT_THAT(classes,
        ElementsAre("RgbData", "TofData", "TofIrData", "StereoData", "RgbdData", "SgbmData", "Tof3dData",
            "SlamData", "MapData", "SlamData", "PlanesData", "ObjectsData", "ImuData"));
    EXPECT_EQ(camera.edge(), camera.children().at(7));
    EXPECT_EQ(camera.slam(), camera.children().at(9));
}

// A test that it has the component, then the component itself.
TEST(CameraDevice, asksTheDeviceAfreshForEachModel)
{
    const FullDevice full;
    const CameraDevice camera(full.device, nullptr);
    Names asks = full.device->asks.calls();
    ASSERT_EQ(asks.size(), 28U);
    // The arguments of one constructor are fetched in any order.
    std::sort(asks.begin() + 15, asks.begin() + 18);
    EXPECT_THAT(asks,
        ElementsAre("colorCamera", "colorCamera", "tofCamera", "tofCamera", "tofCamera", "tofCamera",
            "fisheyeCameras", "fisheyeCameras", "tofCamera", "tofCamera", "vsc", "vsc", "edge", "tofCamera",
            "colorCamera", "colorCamera", "slam", "tofCamera", "slam", "slam", "slam", "slam", "slam", "slam",
            "objectDetector", "objectDetector", "imuSensor", "imuSensor"));
}

TEST(CameraDevice, asksADeviceWithoutComponentsOnceForEachModel)
{
    const auto device = std::make_shared<FakeDeviceEx>();
    const CameraDevice camera(device, nullptr);
    EXPECT_THAT(device->asks.calls(),
        ElementsAre("colorCamera", "tofCamera", "tofCamera", "fisheyeCameras", "tofCamera", "vsc", "edge",
            "tofCamera", "slam", "slam", "slam", "objectDetector", "imuSensor"));
}

TEST(CameraDevice, edgeAndSlamHaveTheirOwnComponents)
{
    const FullDevice full;
    const CameraDevice camera(full.device, nullptr);
    full.edge->takeCalls();
    full.slam->takeCalls();
    camera.edge()->control(true);
    EXPECT_THAT(full.edge->calls(), Contains("start"));
    EXPECT_THAT(full.slam->calls(), Not(Contains("start")));
    camera.slam()->control(true);
    EXPECT_THAT(full.slam->calls(), Contains("start"));
}

TEST(CameraDevice, imuOnlyDeviceHasNothingElse)
{
    const auto device = std::make_shared<FakeDevice>();
    device->imuComponent = std::make_shared<FakeImuSensor>();
    const Built built = build(device);
    EXPECT_EQ(streamsOf(*built.camera), (Names{"imu"}));
    const QJsonObject info = built.camera->info();
    EXPECT_EQ(info[QStringLiteral("features")], QJsonValue(QJsonObject()));
    EXPECT_EQ(info[QStringLiteral("calibration")], QJsonValue(QJsonObject()));
    EXPECT_EQ(info.size(), 2);
}

TEST(CameraDevice, plainDeviceSaysThatItHasNoEdge)
{
    const QStringList log = build(std::make_shared<FakeDevice>()).log;
    QStringList critical;
    for (const QString &line : log)
        if (line.startsWith(QStringLiteral("critical: ")))
            critical.append(line);
    EXPECT_EQ(
        critical, (QStringList{QStringLiteral("critical: No edge_ex"), QStringLiteral("critical: No edge")}));
}

TEST(CameraDevice, extendedDeviceWithoutAnEdgeSaysSo)
{
    const QStringList log = build(std::make_shared<FakeDeviceEx>()).log;
    EXPECT_THAT(log, Contains(QStringLiteral("critical: No edge")));
    EXPECT_THAT(log, Not(Contains(QStringLiteral("critical: No edge_ex"))));
}

TEST(CameraDevice, plainDeviceWithTofAndColourHasTof3dWithoutAnEdge)
{
    const auto device = std::make_shared<FakeDevice>();
    device->tofComponent = std::make_shared<FakeTofCamera>();
    device->colorComponent = std::make_shared<FakeColorCamera>();
    const Built built = build(device);
    EXPECT_EQ(streamsOf(*built.camera), (Names{"rgb", "tof", "tof3d", "rgbd", "tofIr"}));
    EXPECT_TRUE(built.camera->tof3d()->rgbAvailable());
    QStringList edge;
    for (const QString &line : built.log)
        if (line.contains(QStringLiteral("edge"), Qt::CaseInsensitive))
            edge.append(line);
    EXPECT_THAT(edge,
        ElementsAre(QStringLiteral("critical: No edge_ex"), QStringLiteral("debug: No Edge available"),
            QStringLiteral("critical: No edge")))
        << "the edge is looked for before the model that takes it is made";
}

TEST(CameraDevice, connectionsWithoutTheirEndsAreReportedByQtInOrder)
{
    const QStringList log = build(std::make_shared<FakeDevice>()).log;
    ASSERT_GE(log.size(), 5);
    const char *const senders[] = {"StereoData", "TofData", "RgbData", "CameraDevice"};
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(log[i].startsWith(
            QStringLiteral("warning: QObject::connect(%1, ").arg(QLatin1String(senders[i]))))
            << log[i].toStdString();
    EXPECT_EQ(log[4], QStringLiteral("critical: No edge_ex"));
    EXPECT_EQ(log.filter(QStringLiteral("QObject::connect")).size(), 4);
}

TEST(CameraDevice, tofWithoutColourHasNoTof3d)
{
    const auto device = std::make_shared<FakeDevice>();
    device->tofComponent = std::make_shared<FakeTofCamera>();
    EXPECT_EQ(streamsOf(*build(device).camera), (Names{"tof", "rgbd", "tofIr"}));
}

TEST(CameraDevice, absentCapabilityIsNotReported)
{
    const FullDevice full;
    full.device->detectorComponent = nullptr;
    full.device->imuComponent = nullptr;
    full.device->slamComponent = nullptr;
    const Built built = build(full.device);
    EXPECT_EQ(
        streamsOf(*built.camera), (Names{"stereo", "rgb", "tof", "sgbm", "edge", "tof3d", "rgbd", "tofIr"}));
    for (const QString &line : built.log)
        EXPECT_FALSE(line.startsWith(QStringLiteral("critical: "))) << line.toStdString();
}

TEST(CameraDevice, withoutADeviceItIsEmpty)
{
    const CameraDevice camera(nullptr, nullptr);
    EXPECT_THAT(streamsOf(camera), IsEmpty());
    EXPECT_EQ(camera.uuid(), QString());
}

TEST(CameraDevice, informationIsSorted)
{
    const auto device = std::make_shared<FakeDevice>();
    device->infoMap = {{"version", "3.1.4"}, {"serialNumber", "0042"}, {"edgeAvailable", "true"},
        {"eyeTracking", "false"}, {"odd", "True"}, {"one", "1"}};
    const Built built = build(device);
    EXPECT_EQ(built.camera->version(), QStringLiteral("3.1.4"));
    EXPECT_EQ(built.camera->info(),
        (QJsonObject{{"Firmware Version", "3.1.4"}, {"serial Number", "0042"}, {"odd", "True"}, {"one", "1"},
            {"features", QJsonObject{{"edge Available", true}, {"eye Tracking", false}}},
            {"calibration", QJsonObject()}}));
}

TEST(CameraDevice, informationIsReadOnce)
{
    const FullDevice full;
    full.device->infoMap = {{"version", "3.1.4"}, {"rgb2Available", "true"}};
    const Built built = build(full.device);
    built.camera->info();
    built.camera->version();
    const auto calls = full.device->calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "info"), 1);
}

TEST(CameraDevice, objectsReplaceEntriesOfTheirNames)
{
    const auto device = std::make_shared<FakeDevice>();
    device->infoMap = {{"features", "many"}, {"calibration", "none"}, {"other", "kept"}};
    EXPECT_EQ(build(device).camera->info(),
        (QJsonObject{
            {"features", QJsonObject()}, {"calibration", QJsonObject()}, {"other", QStringLiteral("kept")}}));
}

TEST(CameraDevice, versionIsEmptyWithoutAnEntry)
{
    const Built built = build(std::make_shared<FakeDevice>());
    EXPECT_EQ(built.camera->version(), QString());
    EXPECT_FALSE(built.camera->info().contains(QStringLiteral("Firmware Version")));
}

TEST(CameraDevice, informationThatThrowsLeavesTheRest)
{
    const auto device = std::make_shared<FakeDevice>();
    device->infoThrows = true;
    device->imuComponent = std::make_shared<FakeImuSensor>();
    const Built built = build(device);
    EXPECT_EQ(built.camera->version(), QString());
    EXPECT_EQ(built.camera->uuid(), QStringLiteral("fake"));
    EXPECT_EQ(
        built.camera->info(), (QJsonObject{{"features", QJsonObject()}, {"calibration", QJsonObject()}}));
    EXPECT_EQ(streamsOf(*built.camera), (Names{"imu"}));
}

TEST(CameraDevice, featuresSetTheirFlags)
{
    const std::pair<const char *, const char *> flags[] = {{"downsampleAvailable", "downSample"},
        {"fisheyeSwitchAvailable", "fisheyeSwitch"}, {"afRGBAvailable", "afRGB"}, {"rgb2Available", "rgb2"}};
    for (const auto &[key, property] : flags) {
        for (const char *value : {"true", "false", "True", "1", ""}) {
            const auto device = std::make_shared<FakeDevice>();
            device->infoMap[key] = value;
            const Built built = build(device);
            for (const auto &other : flags)
                EXPECT_EQ(built.camera->property(other.second).toBool(),
                    std::string(value) == "true" && other.second == property)
                    << key << ' ' << value << ' ' << other.second;
        }
    }
}

TEST(CameraDevice, flagSettersTellChangesOnly)
{
    CameraDevice camera(nullptr, nullptr);
    const QSignalSpy changed(&camera, &CameraDevice::downSampleChanged);
    camera.setDownSample(true);
    camera.setDownSample(true);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_TRUE(camera.downSample());
    const QSignalSpy other(&camera, &CameraDevice::fisheyeSwitchChanged);
    EXPECT_TRUE(camera.setProperty("fisheyeSwitch", true));
    EXPECT_TRUE(camera.setProperty("fisheyeSwitch", true));
    EXPECT_EQ(other.count(), 1);
    const QSignalSpy focus(&camera, &CameraDevice::afRGBChanged);
    EXPECT_TRUE(camera.setProperty("afRGB", true));
    EXPECT_TRUE(camera.setProperty("afRGB", true));
    EXPECT_EQ(focus.count(), 1);
    const QSignalSpy second(&camera, &CameraDevice::rgb2Changed);
    EXPECT_TRUE(camera.setProperty("rgb2", true));
    EXPECT_TRUE(camera.setProperty("rgb2", true));
    EXPECT_EQ(second.count(), 1);
}

TEST(CameraDevice, calibrationGathersTheThreeCameras)
{
    const FullDevice full;
    qv::Calibration calibration;
    calibration.translation[0] = 0.5;
    full.fisheyes->calibrations = {calibration, calibration};
    full.tof->calibrations = {calibration};
    full.color->calibrations = {calibration, calibration, calibration};
    const Built built = build(full.device);
    const QJsonObject gathered = calibrationIn(*built.camera);
    EXPECT_EQ(gathered.keys(),
        (QStringList{QStringLiteral("color"), QStringLiteral("stereo"), QStringLiteral("tof")}));
    EXPECT_EQ(gathered[QStringLiteral("stereo")].toArray().size(), 2);
    EXPECT_EQ(gathered[QStringLiteral("stereo")], built.camera->stereo()->calibrationJson());
    EXPECT_EQ(gathered[QStringLiteral("tof")], built.camera->tof()->calibrationJson());
    EXPECT_EQ(gathered[QStringLiteral("tof")].toArray().size(), 1);
    EXPECT_EQ(gathered[QStringLiteral("color")], built.camera->rgb()->calibrationJson());
    EXPECT_EQ(gathered[QStringLiteral("color")].toArray().size(), 3);
}

TEST(CameraDevice, stereoWithoutCalibrationsHasNoResolutions)
{
    const FullDevice full;
    full.fisheyes->currentCalibrations = {calibrationOf(640, 400)};
    const Built built = build(full.device);
    EXPECT_TRUE(calibrationIn(*built.camera).contains(QStringLiteral("stereo")));
    EXPECT_FALSE(calibrationIn(*built.camera).contains(QStringLiteral("stereo calibration resolution")));
    EXPECT_FALSE(calibrationIn(*built.camera).contains(QStringLiteral("stereo current resolution")));
    EXPECT_THAT(full.fisheyes->calls(), Not(Contains("calibrationsAtCurrentResolution")));
}

TEST(CameraDevice, stereoResolutionsNameTheKindOfModel)
{
    struct Case {
        bool seucm, ucm, pdcm;
        const char *expected;
    };
    for (const Case &c : {Case{false, false, false, "640*400"}, Case{true, false, false, "seucm 640*400"},
             Case{true, true, false, "ucm 640*400"}, Case{false, true, true, "pdcm 640*400"},
             Case{true, false, true, "pdcm 640*400"}, Case{true, true, true, "pdcm 640*400"}}) {
        const FullDevice full;
        qv::CalibrationEx calibration = calibrationOf(640, 400);
        calibration.seucm.resize(c.seucm);
        calibration.ucm.resize(c.ucm);
        calibration.pdcm.resize(c.pdcm);
        calibration.cameraModels.push_back(std::make_shared<FakeCameraModel>(2, 2));
        full.fisheyes->calibrationCalibrations = {calibration, calibrationOf(1, 1)};
        full.fisheyes->currentCalibrations = {calibrationOf(1280, 720)};
        const QJsonObject gathered = calibrationIn(*build(full.device).camera);
        EXPECT_EQ(gathered[QStringLiteral("stereo calibration resolution")].toString(),
            QString::fromLatin1(c.expected));
        EXPECT_EQ(
            gathered[QStringLiteral("stereo current resolution")].toString(), QStringLiteral("1280*720"));
    }
}

TEST(CameraDevice, calibrationListsAreAskedInOrder)
{
    const FullDevice full;
    full.fisheyes->calibrationCalibrations = {calibrationOf(640, 400)};
    full.fisheyes->currentCalibrations = {calibrationOf(640, 400)};
    const Built built = build(full.device);
    Names asked;
    for (const std::string &call : full.fisheyes->calls())
        if (call.rfind("calibrations", 0) == 0)
            asked.push_back(call);
    EXPECT_THAT(asked, ElementsAre("calibrationsAtCalibrationResolution", "calibrationsAtCurrentResolution"));
}

TEST(CameraDevice, calibrationWithoutCameraModelsDoesNoHarm)
{
    const FullDevice full;
    qv::CalibrationEx bare;
    qv::CalibrationEx null;
    null.cameraModels = {nullptr};
    full.fisheyes->calibrationCalibrations = {bare};
    full.fisheyes->currentCalibrations = {null};
    const QJsonObject gathered = calibrationIn(*build(full.device).camera);
    EXPECT_EQ(gathered[QStringLiteral("stereo calibration resolution")].toString(), QString());
    EXPECT_EQ(gathered[QStringLiteral("stereo current resolution")].toString(), QString());

    full.fisheyes->currentCalibrations = {};
    EXPECT_EQ(
        calibrationIn(*build(full.device).camera)[QStringLiteral("stereo current resolution")].toString(),
        QString());
}

TEST(CameraDevice, enableSyncPassesTheFlagAndTheAnswer)
{
    const auto device = std::make_shared<FakeDevice>();
    CameraDevice camera(device, nullptr);
    device->takeCalls();
    const LogCatcher log;
    EXPECT_TRUE(camera.enableSync(true));
    EXPECT_THAT(log.lines(), IsEmpty());
    device->syncSucceeds = false;
    EXPECT_FALSE(camera.enableSync(false));
    EXPECT_THAT(log.lines(), ElementsAre(QStringLiteral("debug: set sync failed")));
    EXPECT_THAT(device->calls(), ElementsAre("enableSync(true)", "enableSync(false)"));
}

TEST(CameraDevice, savePcdReachesTheTofModel)
{
    fake::library().reset();
    const FullDevice full;
    CameraDevice camera(full.device, nullptr);
    camera.tof()->control(true);
    emit camera.savePcd(QStringLiteral("/there/cloud.pcd"));
    qv::DepthImage frame;
    frame.width = 2;
    frame.height = 1;
    frame.data =
        std::shared_ptr<const unsigned char>(new unsigned char[4](), std::default_delete<unsigned char[]>());
    frame.dataSize = 4;
    full.tof->deliver(frame);
    ASSERT_EQ(fake::library().pcdSaves().size(), 1U);
    EXPECT_EQ(fake::library().pcdSaves().front().path, "/there/cloud.pcd");
}

TEST(CameraDevice, runningColourAndTofEnableRgbd)
{
    const FullDevice full;
    CameraDevice camera(full.device, nullptr);
    EXPECT_FALSE(camera.rgbd()->property("enable").toBool());
    emit camera.tof()->tofRunning(0);
    EXPECT_FALSE(camera.rgbd()->property("enable").toBool());
    emit camera.rgb()->rgbRunning(2);
    EXPECT_TRUE(camera.rgbd()->property("enable").toBool());
    emit camera.tof()->tofRunning(1);
    EXPECT_FALSE(camera.rgbd()->property("enable").toBool());
}

TEST(CameraDevice, resetSgbmReachesTheSgbmModel)
{
    const FullDevice full;
    CameraDevice camera(full.device, nullptr);
    const int receivers = QMetaObject::invokeMethod(camera.stereo(), "resetSgbm", Qt::DirectConnection);
    EXPECT_TRUE(receivers);
    EXPECT_TRUE(
        QObject::disconnect(camera.stereo(), &StereoData::resetSgbm, camera.sgbm(), &SgbmData::reset));
}

TEST(CameraDevice, stopDropsTheStreamsInOrder)
{
    const FullDevice full;
    CameraDevice camera(full.device, nullptr);
    const QObjectList models = camera.children();
    ChangeLog changes(camera);
    const LogCatcher log;

    camera.stop();

    EXPECT_EQ(changes.names, StopOrder);
    EXPECT_THAT(streamsOf(camera), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(QStringLiteral("debug: Stop camera")));
    EXPECT_EQ(camera.children(), models);
}

TEST(CameraDevice, modelsDieInTheEventLoopInTheOrderOfTheStop)
{
    const FullDevice full;
    CameraDevice camera(full.device, nullptr);
    Names died;
    for (QObject *const model : camera.children())
        QObject::connect(model, &QObject::destroyed,
            [&died, name = std::string(model->metaObject()->className())] { died.push_back(name); });
    camera.stop();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_THAT(died,
        ElementsAre("RgbData", "RgbdData", "TofData", "TofIrData", "StereoData", "ImuData", "SlamData",
            "SlamData", "ObjectsData", "PlanesData", "MapData", "Tof3dData", "SgbmData"));
    EXPECT_THAT(camera.children(), IsEmpty());
}

TEST(CameraDevice, secondStopLogsAndTellsAgain)
{
    const FullDevice full;
    CameraDevice camera(full.device, nullptr);
    camera.stop();
    ChangeLog changes(camera);
    const LogCatcher log;
    camera.stop();
    EXPECT_EQ(changes.names, StopOrder);
    EXPECT_THAT(log.lines(), ElementsAre(QStringLiteral("debug: Stop camera")));
}

TEST(CameraDevice, modelsDieBeforeTheDeviceIsReleased)
{
    bool deviceGone = false;
    int modelsGone = 0;
    const FullDevice full;
    auto device = std::make_shared<MortalDevice>();
    device->gone = &deviceGone;
    device->vscComponent = full.vsc;
    device->fisheyeComponent = full.fisheyes;
    device->imuComponent = full.imu;
    auto camera = std::make_unique<CameraDevice>(device, nullptr);
    device.reset();
    for (QObject *const model : camera->children())
        QObject::connect(model, &QObject::destroyed, [&] {
            EXPECT_FALSE(deviceGone);
            ++modelsGone;
        });
    camera.reset();
    EXPECT_EQ(modelsGone, 3);
    EXPECT_TRUE(deviceGone);
}

TEST(CameraDevice, destructionStops)
{
    const FullDevice full;
    auto camera = std::make_unique<CameraDevice>(full.device, nullptr);
    ChangeLog changes(*camera);
    const LogCatcher log;
    camera.reset();
    EXPECT_EQ(changes.names, StopOrder);
    EXPECT_THAT(log.lines(), Contains(QStringLiteral("debug: Stop camera")));
    EXPECT_EQ(full.device.use_count(), 1);
}

TEST(CameraDevice, stopWhileStreamsRunLeavesNoCallback)
{
    const FullDevice full;
    CameraDevice camera(full.device, nullptr);
    camera.stereo()->control(true);
    camera.imu()->control(true);
    camera.slam()->control(true);
    camera.stop();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(full.fisheyes->callbacks.count(), 0U);
    EXPECT_EQ(full.imu->callbacks.count(), 0U);
    EXPECT_EQ(full.slam->callbacks.count(), 0U);
}

TEST(CameraDevice, modelsReachTheDeviceThroughIt)
{
    const FullDevice full;
    const CameraDevice camera(full.device, nullptr);
    EXPECT_EQ(DeviceAccess::device(camera.stereo()), full.device);
    EXPECT_EQ(DeviceAccess::deviceEx(camera.imu()), full.device);
}

TEST(CameraDevice, documentsSeeTheModelsOrNull)
{
    FullDevice full;
    full.device->detectorComponent = nullptr;
    CameraDevice camera(full.device, nullptr);
    QQmlEngine engine;
    engine.rootContext()->setContextProperty(QStringLiteral("camera"), &camera);
    QQmlComponent component(&engine);
    component.setData(
        "import QtQml 2.13\n"
        "QtObject { property string types: ['imu', 'stereo', 'rgb', 'tof', 'sgbm', 'edge', 'slam',"
        " 'objects', 'tof3d', 'planes', 'edgePlanes', 'map', 'rgbd', 'tofIr'].map(function(name)"
        " { return camera[name] === null ? 'null' : camera[name] === undefined ? 'undefined' : 'set' })"
        ".join(' ') }",
        QUrl());
    const std::unique_ptr<QObject> object(component.create());
    ASSERT_TRUE(object) << component.errorString().toStdString();
    EXPECT_EQ(object->property("types").toString(),
        QStringLiteral("set set set set set set set null set set null set set set"));
}
