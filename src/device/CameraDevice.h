#pragma once

#include "device/DeviceAccess.h"
#include "device/qv/Device.h"
// The property types have to be complete, or the documents see undefined.
#include "spatial/MapData.h"
#include "spatial/ObjectsData.h"
#include "spatial/PlanesData.h"
#include "spatial/SlamData.h"
#include "spatial/Tof3dData.h"
#include "streams/ImuData.h"
#include "streams/RgbData.h"
#include "streams/RgbdData.h"
#include "streams/SgbmData.h"
#include "streams/StereoData.h"
#include "streams/TofData.h"
#include "streams/TofIrData.h"

#include <QJsonObject>
#include <QObject>
#include <memory>
#include <string>

/// One connected device for the documents: its information, and one model per stream that it offers. A
/// stream that the device lacks is null. Makes its models once and keeps them until it is stopped. Lives on
/// the main thread.
class CameraDevice : public QObject, public DeviceOwner {
    Q_OBJECT
    Q_INTERFACES(DeviceOwner)
    Q_PROPERTY(QString uuid READ uuid NOTIFY uuidChanged)
    Q_PROPERTY(QString version READ version NOTIFY versionChanged)
    Q_PROPERTY(QJsonObject info READ info NOTIFY infoChanged)
    Q_PROPERTY(ImuData *imu READ imu NOTIFY imuChanged)
    Q_PROPERTY(StereoData *stereo READ stereo NOTIFY stereoChanged)
    Q_PROPERTY(RgbData *rgb READ rgb NOTIFY rgbChanged)
    Q_PROPERTY(TofData *tof READ tof NOTIFY tofChanged)
    Q_PROPERTY(SgbmData *sgbm READ sgbm NOTIFY sgbmChanged)
    Q_PROPERTY(SlamData *edge READ edge NOTIFY edgeChanged)
    Q_PROPERTY(SlamData *slam READ slam NOTIFY slamChanged)
    Q_PROPERTY(ObjectsData *objects READ objects NOTIFY objectsChanged)
    Q_PROPERTY(Tof3dData *tof3d READ tof3d NOTIFY tof3dChanged)
    Q_PROPERTY(PlanesData *planes READ planes NOTIFY planesChanged)
    Q_PROPERTY(PlanesData *edgePlanes READ edgePlanes NOTIFY edgePlanesChanged)
    Q_PROPERTY(MapData *map READ map NOTIFY mapChanged)
    Q_PROPERTY(RgbdData *rgbd READ rgbd NOTIFY rgbdChanged)
    Q_PROPERTY(TofIrData *tofIr READ tofIr NOTIFY tofIrChanged)
    Q_PROPERTY(bool recording READ recording WRITE setRecording NOTIFY recordingChanged)
    Q_PROPERTY(bool recordingSlam READ recordingSlam WRITE setRecordingSlam NOTIFY recordingSlamChanged)
    Q_PROPERTY(bool downSample READ downSample WRITE setDownSample NOTIFY downSampleChanged)
    Q_PROPERTY(bool fisheyeSwitch READ fisheyeSwitch WRITE setFisheyeSwitch NOTIFY fisheyeSwitchChanged)
    Q_PROPERTY(bool afRGB READ afRGB WRITE setAfRGB NOTIFY afRGBChanged)
    Q_PROPERTY(bool rgb2 READ rgb2 WRITE setRgb2 NOTIFY rgb2Changed)

public:
    CameraDevice(std::shared_ptr<qv::Device> device, QObject *parent);
    /// Stops, and deletes the models before it lets go of the device.
    ~CameraDevice() override;

    std::shared_ptr<qv::Device> device() const override;

    QString uuid() const;
    /// The firmware's version.
    QString version() const;
    /// What the device tells of itself, by label, with its features and the calibration of its cameras.
    QJsonObject info() const;
    ImuData *imu() const;
    StereoData *stereo() const;
    RgbData *rgb() const;
    TofData *tof() const;
    SgbmData *sgbm() const;
    /// Pose computed on the device.
    SlamData *edge() const;
    /// Pose computed on the host.
    SlamData *slam() const;
    ObjectsData *objects() const;
    Tof3dData *tof3d() const;
    PlanesData *planes() const;
    /// Always null.
    PlanesData *edgePlanes() const;
    MapData *map() const;
    RgbdData *rgbd() const;
    TofIrData *tofIr() const;
    bool recording() const;
    bool recordingSlam() const;
    bool downSample() const;
    bool fisheyeSwitch() const;
    bool afRGB() const;
    bool rgb2() const;

    void setDownSample(bool available);
    void setFisheyeSwitch(bool available);
    void setAfRGB(bool available);
    void setRgb2(bool available);

    /// Ends every stream: drops the models, which die in the event loop or with this object. May run again.
    void stop();

    /// See `HidChannel::send`.
    Q_INVOKABLE QString sendHid(QString msg);
    /// See `HidChannel::glassLog`.
    Q_INVOKABLE QString getGlassLog();

public slots:
    /// Writes the current frame of the stream "stereo", "tof", "tofIr", "rgb" or "sgbm"; any other name
    /// writes nothing. Answers the absolute path of the folder, which is made in any case.
    QString saveImages(QString objectName = QString());
    /// Switches the video recordings. Answers the absolute path of their folder when they started now, and
    /// else an empty text.
    QString setRecording(bool recording);
    /// The same for the pose files.
    QString setRecordingSlam(bool recordingSlam);
    bool enableSync(bool isSync);

signals:
    void uuidChanged(QString uuid);
    void imuChanged(ImuData *imu);
    void stereoChanged(StereoData *stereo);
    void rgbChanged(RgbData *rgb);
    void tofChanged(TofData *tof);
    void sgbmChanged(SgbmData *sgbm);
    void slamChanged(SlamData *slam);
    void edgeChanged(SlamData *edge);
    void objectsChanged(ObjectsData *objects);
    void versionChanged(QString version);
    void tof3dChanged(Tof3dData *tof3d);
    void planesChanged(PlanesData *planes);
    void edgePlanesChanged(PlanesData *edgePlanes);
    void mapChanged(MapData *map);
    void recordingChanged(bool recording);
    void recordingSlamChanged(bool recordingSlam);
    void infoChanged(QJsonObject info);
    void rgbdChanged(RgbdData *rgbd);
    void downSampleChanged();
    void savePcd(QString path);
    void fisheyeSwitchChanged();
    void tofIrChanged(TofIrData *tofIr);
    void afRGBChanged();
    void rgb2Changed();

private:
    void readInformation();
    void setFeatures(const QJsonObject &features);
    void makeImageModels();
    void connectModels();
    void makeOtherModels();
    std::shared_ptr<qv::Slam> edgeComponent() const;
    QJsonObject calibration() const;
    void addStereoResolutions(QJsonObject &calibration) const;
    void setFlag(bool &flag, bool value, void (CameraDevice::*changed)());
    template <class Model>
    void drop(Model *&model, void (CameraDevice::*changed)(Model *));

    QString m_uuid;
    QString m_version;
    ImuData *m_imu = nullptr;
    StereoData *m_stereo = nullptr;
    RgbData *m_rgb = nullptr;
    TofData *m_tof = nullptr;
    SgbmData *m_sgbm = nullptr;
    SlamData *m_edge = nullptr;
    SlamData *m_slam = nullptr;
    ObjectsData *m_objects = nullptr;
    Tof3dData *m_tof3d = nullptr;
    PlanesData *m_planes = nullptr;
    PlanesData *m_edgePlanes = nullptr;
    MapData *m_map = nullptr;
    RgbdData *m_rgbd = nullptr;
    TofIrData *m_tofIr = nullptr;
    std::shared_ptr<qv::Device> m_device;
    QJsonObject m_info;
    bool m_recording = false;
    bool m_recordingSlam = false;
    bool m_rgb2 = false;
    bool m_downSample = false;
    bool m_afRGB = false;
    bool m_fisheyeSwitch = false;
};
