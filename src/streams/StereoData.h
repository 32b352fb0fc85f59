#pragma once

#include "device/qv/FisheyeCamerasEx.h"
#include "streams/CallbackGuard.h"
#include "streams/FisheyeData.h"

#include <QJsonValue>
#include <QObject>
#include <atomic>
#include <map>
#include <memory>
#include <vector>

class QTimer;

/// The fisheye cameras of a device, two or four: pictures and tracked key points, exposure, and the UVC mode.
/// Recording and saving belong to the single `FisheyeData`.
class StereoData : public QObject {
    Q_OBJECT
    Q_PROPERTY(int gain READ gain WRITE setGain NOTIFY gainChanged)
    Q_PROPERTY(int brightness READ brightness WRITE setBrightness NOTIFY brightnessChanged)
    Q_PROPERTY(bool autoExposure READ autoExposure WRITE setAutoExposure NOTIFY autoExposureChanged)
    Q_PROPERTY(int mode READ mode WRITE setMode NOTIFY modeChanged)
    Q_PROPERTY(int count READ count WRITE setCount NOTIFY countChanged)
    Q_PROPERTY(int dataFrameRate READ dataFrameRate NOTIFY dataFrameRateChanged)
    Q_PROPERTY(int width READ width NOTIFY widthChanged)
    Q_PROPERTY(int height READ height NOTIFY heightChanged)

public:
    /// One numbering for a stereo pair and for four cameras.
    enum Image : int { Left = 0, Right = 1, UpLeft = 0, UpRight = 1, BottomLeft = 2, BottomRight = 3 };
    Q_ENUM(Image)

    /// A model without cameras, as a QML document makes it: every operation is harmless.
    explicit StereoData(QObject *parent = nullptr);
    /// Throws `std::runtime_error` on null cameras. Leaves the stream stopped, with all callbacks registered.
    explicit StereoData(std::shared_ptr<qv::FisheyeCameras> fisheyeCameras, QObject *parent = nullptr);
    ~StereoData() override;

    int gain() const;
    /// Exposure time in milliseconds.
    int brightness() const;
    bool autoExposure() const;
    int mode() const;
    /// Images in the last frame set.
    int count() const;
    /// Frame sets since the last second began: the rate of a full second only while its signal is out.
    int dataFrameRate() const;
    int width() const;
    int height() const;

    /// Null for a key outside 0 to 3.
    Q_INVOKABLE QObject *image(Image img) const;

    /// False where there is no camera of that index.
    bool setImageRecordPath(int index, QString path);
    bool setImageRecording(int index, bool recording);
    /// False also where the picture couldn't be saved.
    bool saveImage(int index, QString path);

    /// See `calibrationJsonOf`.
    QJsonValue calibrationJson() const;
    /// Empty where the cameras have no extended interface.
    std::vector<qv::CalibrationEx> calibrationsAtCalibrationResolution() const;
    std::vector<qv::CalibrationEx> calibrationsAtCurrentResolution() const;

public slots:
    void setGain(int gain);
    void setBrightness(int brightness);
    void setAutoExposure(bool autoExposure);
    void setFeFrameRate(float frameRate);
    /// 0 no stream, which also clears the pictures, 1 video, 2 demo, 5 demo with points, 3 debug, 4 debug
    /// with points.
    void setMode(int mode);
    void setCount(int count);
    /// Overwrites the count of the running second.
    void setFrameRate(int frameRate);
    /// 2 is VGA, 3 is 720P; false when refused.
    bool setResolution(int resolutionMode);
    void control(bool enable);
    /// Lets others have the pictures while this stream is off: the callback alone, nothing is started.
    void registerFisheyeCameras(bool enable);
    void setViewSize(int w, int h);

signals:
    void gainChanged(int gain);
    void brightnessChanged(int brightness);
    void autoExposureChanged(bool autoExposure);
    void modeChanged(int mode);
    int countChanged(int count);
    void dataFrameRateChanged(int frameRate);
    void widthChanged(int width);
    void heightChanged(int height);
    void resetSgbm();

private:
    void makeImages();
    void startTimer();
    std::shared_ptr<qv::FisheyeCamerasEx> camerasEx() const;
    FisheyeData *fisheye(int index) const;
    void sendExposure();
    void sendUvcMode(int mode);
    void registerImages();
    void unregisterImages();
    void registerKeyPoints(qv::FisheyeCamerasEx &cameras);
    void unregisterKeyPoints();
    void clearPictures();
    void reportFrameRate();

    // On the library's threads.
    void takeImages(const qv::FisheyeImages &images);
    template <std::size_t N>
    void takeKeyPoints(const qv::FisheyeKeyPoints<N, 32> &keyPoints);

    const std::shared_ptr<qv::FisheyeCameras> m_fisheyeCameras;
    int m_imagesCallbackId = -1;
    int m_keyPoints2CallbackId = -1;
    int m_keyPoints4CallbackId = -1;
    std::map<int, FisheyeData *> m_images;
    int m_gain = 20;
    int m_brightness = 5;
    bool m_autoExposure = true;
    int m_mode = 4;
    std::atomic<int> m_count{0};
    std::atomic<int> m_frameCount{0};
    std::atomic<int> m_width{640};
    std::atomic<int> m_height{400};
    QTimer *m_timer = nullptr;
    std::atomic<bool> m_running{false};
    CallbackGuard m_callbacks;
};
