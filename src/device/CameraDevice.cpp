#include "device/CameraDevice.h"

#include "device/HidChannel.h"
#include "device/InformationMap.h"
#include "device/qv/DeviceEx.h"

#include <QDebug>

namespace {

struct FeatureFlag {
    const char *label;
    void (CameraDevice::*set)(bool);
};

const FeatureFlag FeatureFlags[] = {
    {"downsample Available", &CameraDevice::setDownSample},
    {"fisheye Switch Available", &CameraDevice::setFisheyeSwitch},
    {"af R G B Available", &CameraDevice::setAfRGB},
    {"rgb2 Available", &CameraDevice::setRgb2},
};

/// The kind of model that a calibration describes best; with a blank, for a size to follow.
QString modelWord(const qv::CalibrationEx &calibration)
{
    if (!calibration.pdcm.empty())
        return QStringLiteral("pdcm ");
    if (!calibration.ucm.empty())
        return QStringLiteral("ucm ");
    if (!calibration.seucm.empty())
        return QStringLiteral("seucm ");
    return QString();
}

/// Picture size of the first camera, like 640*400; empty where the list has no camera model.
QString pictureSize(const std::vector<qv::CalibrationEx> &calibrations)
{
    if (calibrations.empty() || calibrations.front().cameraModels.empty())
        return QString();
    const std::shared_ptr<qv::CameraModel> &model = calibrations.front().cameraModels.front();
    return model ? QStringLiteral("%1*%2").arg(model->width()).arg(model->height()) : QString();
}

} // namespace

CameraDevice::CameraDevice(std::shared_ptr<qv::Device> device, QObject *parent)
    : QObject(parent)
    , m_device(std::move(device))
{
    if (!m_device)
        return;
    m_uuid = QString::fromStdString(m_device->id());
    readInformation();
    makeImageModels();
    connectModels();
    makeOtherModels();
    m_info[QStringLiteral("calibration")] = calibration();
}

CameraDevice::~CameraDevice()
{
    stop();
    // `SgbmData` holds a plain pointer into the device, so no model may outlive it.
    qDeleteAll(findChildren<QObject *>(QString(), Qt::FindDirectChildrenOnly));
}

void CameraDevice::readInformation()
{
    std::map<std::string, std::string> entries;
    try {
        entries = m_device->info();
        const auto version = entries.find("version");
        if (version != entries.end())
            m_version = QString::fromStdString(version->second);
    } catch (...) {
        m_version = QString();
    }
    const InformationMap information(entries);
    m_info = information.texts();
    m_info[QStringLiteral("features")] = information.features();
    setFeatures(information.features());
}

void CameraDevice::setFeatures(const QJsonObject &features)
{
    for (const FeatureFlag &flag : FeatureFlags) {
        const QJsonValue value = features[QLatin1String(flag.label)];
        if (value.isBool())
            (this->*flag.set)(value.toBool());
    }
}

void CameraDevice::makeImageModels()
{
    if (m_device->colorCamera())
        m_rgb = new RgbData(m_device->colorCamera(), this);
    if (m_device->tofCamera())
        m_tof = new TofData(m_device->tofCamera(), this);
    if (m_device->tofCamera())
        m_tofIr = new TofIrData(m_device->tofCamera(), this);
    if (m_device->fisheyeCameras())
        m_stereo = new StereoData(m_device->fisheyeCameras(), this);
    if (m_device->tofCamera())
        m_rgbd = new RgbdData(m_device->tofCamera(), this);
    if (m_device->vsc())
        m_sgbm = new SgbmData(m_device->vsc().get(), this);
}

// A device without one of the ends goes on without that connection, with Qt's own warning.
void CameraDevice::connectModels()
{
    connect(m_stereo, &StereoData::resetSgbm, m_sgbm, &SgbmData::reset);
    connect(m_tof, &TofData::tofRunning, m_rgbd, &RgbdData::setEnable);
    connect(m_rgb, &RgbData::rgbRunning, m_rgbd, &RgbdData::setEnable);
    connect(this, &CameraDevice::savePcd, m_tof, &TofData::savePcd);
}

void CameraDevice::makeOtherModels()
{
    const std::shared_ptr<qv::Slam> edge = edgeComponent();
    if (m_device->tofCamera() && m_device->colorCamera())
        m_tof3d = new Tof3dData(m_device->tofCamera(), m_device->colorCamera(), m_device->slam(), edge, this);
    if (edge)
        m_edge = new SlamData(edge, this);
    else
        qCritical() << "No edge";
    if (m_device->slam())
        m_map = new MapData(m_device->slam(), this);
    if (m_device->slam())
        m_slam = new SlamData(m_device->slam(), this);
    if (m_device->slam())
        m_planes = new PlanesData(m_device->slam(), this);
    if (m_device->objectDetector())
        m_objects = new ObjectsData(m_device->objectDetector(), this);
    if (m_device->imuSensor())
        m_imu = new ImuData(m_device->imuSensor(), this);
}

std::shared_ptr<qv::Slam> CameraDevice::edgeComponent() const
{
    if (const auto deviceEx = std::dynamic_pointer_cast<qv::DeviceEx>(m_device))
        return deviceEx->edge();
    qCritical() << "No edge_ex";
    return nullptr;
}

QJsonObject CameraDevice::calibration() const
{
    QJsonObject calibration;
    if (m_stereo) {
        calibration[QStringLiteral("stereo")] = m_stereo->calibrationJson();
        addStereoResolutions(calibration);
    }
    if (m_tof)
        calibration[QStringLiteral("tof")] = m_tof->calibrationJson();
    if (m_rgb)
        calibration[QStringLiteral("color")] = m_rgb->calibrationJson();
    return calibration;
}

void CameraDevice::addStereoResolutions(QJsonObject &calibration) const
{
    const std::vector<qv::CalibrationEx> calibrated = m_stereo->calibrationsAtCalibrationResolution();
    if (calibrated.empty())
        return;
    calibration[QStringLiteral("stereo calibration resolution")] =
        modelWord(calibrated.front()) + pictureSize(calibrated);
    calibration[QStringLiteral("stereo current resolution")] =
        pictureSize(m_stereo->calibrationsAtCurrentResolution());
}

std::shared_ptr<qv::Device> CameraDevice::device() const
{
    return m_device;
}

QString CameraDevice::uuid() const
{
    return m_uuid;
}

QString CameraDevice::version() const
{
    return m_version;
}

QJsonObject CameraDevice::info() const
{
    return m_info;
}

ImuData *CameraDevice::imu() const
{
    return m_imu;
}

StereoData *CameraDevice::stereo() const
{
    return m_stereo;
}

RgbData *CameraDevice::rgb() const
{
    return m_rgb;
}

TofData *CameraDevice::tof() const
{
    return m_tof;
}

SgbmData *CameraDevice::sgbm() const
{
    return m_sgbm;
}

SlamData *CameraDevice::edge() const
{
    return m_edge;
}

SlamData *CameraDevice::slam() const
{
    return m_slam;
}

ObjectsData *CameraDevice::objects() const
{
    return m_objects;
}

Tof3dData *CameraDevice::tof3d() const
{
    return m_tof3d;
}

PlanesData *CameraDevice::planes() const
{
    return m_planes;
}

PlanesData *CameraDevice::edgePlanes() const
{
    return m_edgePlanes;
}

MapData *CameraDevice::map() const
{
    return m_map;
}

RgbdData *CameraDevice::rgbd() const
{
    return m_rgbd;
}

TofIrData *CameraDevice::tofIr() const
{
    return m_tofIr;
}

bool CameraDevice::recording() const
{
    return m_recording;
}

bool CameraDevice::recordingSlam() const
{
    return m_recordingSlam;
}

bool CameraDevice::downSample() const
{
    return m_downSample;
}

bool CameraDevice::fisheyeSwitch() const
{
    return m_fisheyeSwitch;
}

bool CameraDevice::afRGB() const
{
    return m_afRGB;
}

bool CameraDevice::rgb2() const
{
    return m_rgb2;
}

void CameraDevice::setDownSample(bool available)
{
    setFlag(m_downSample, available, &CameraDevice::downSampleChanged);
}

void CameraDevice::setFisheyeSwitch(bool available)
{
    setFlag(m_fisheyeSwitch, available, &CameraDevice::fisheyeSwitchChanged);
}

void CameraDevice::setAfRGB(bool available)
{
    setFlag(m_afRGB, available, &CameraDevice::afRGBChanged);
}

void CameraDevice::setRgb2(bool available)
{
    setFlag(m_rgb2, available, &CameraDevice::rgb2Changed);
}

void CameraDevice::setFlag(bool &flag, bool value, void (CameraDevice::*changed)())
{
    if (flag == value)
        return;
    flag = value;
    emit(this->*changed)();
}

void CameraDevice::stop()
{
    qDebug() << "Stop camera";
    // Colour and depth pictures first, so that they stop feeding the models that derive from them.
    drop(m_rgb, &CameraDevice::rgbChanged);
    drop(m_rgbd, &CameraDevice::rgbdChanged);
    drop(m_tof, &CameraDevice::tofChanged);
    drop(m_tofIr, &CameraDevice::tofIrChanged);
    drop(m_stereo, &CameraDevice::stereoChanged);
    drop(m_imu, &CameraDevice::imuChanged);
    drop(m_slam, &CameraDevice::slamChanged);
    drop(m_edge, &CameraDevice::edgeChanged);
    drop(m_objects, &CameraDevice::objectsChanged);
    drop(m_planes, &CameraDevice::planesChanged);
    drop(m_edgePlanes, &CameraDevice::edgePlanesChanged);
    drop(m_map, &CameraDevice::mapChanged);
    drop(m_tof3d, &CameraDevice::tof3dChanged);
    drop(m_sgbm, &CameraDevice::sgbmChanged);
}

template <class Model>
void CameraDevice::drop(Model *&model, void (CameraDevice::*changed)(Model *))
{
    if (model)
        model->deleteLater();
    model = nullptr;
    emit(this->*changed)(nullptr);
}

bool CameraDevice::enableSync(bool isSync)
{
    const bool done = m_device && m_device->enableSync(isSync);
    if (!done)
        qDebug() << "set sync failed";
    return done;
}

QString CameraDevice::sendHid(QString msg)
{
    return HidChannel::send(m_device.get(), msg);
}

QString CameraDevice::getGlassLog()
{
    return HidChannel::glassLog(m_device.get());
}
