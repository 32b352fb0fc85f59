#pragma once

#include "device/qv/ColorCamera.h"
#include "streams/AbstractImageData.h"
#include "streams/CallbackGuard.h"

#include <QJsonValue>

/// The colour camera of a device, and the second one where there is one. Frames are handed on as they come,
/// encoded; only a snapshot or a recording converts them.
class RgbData : public AbstractImageData {
    Q_OBJECT
    Q_PROPERTY(ImageData *image READ image NOTIFY imageChanged)
    Q_PROPERTY(ImageData *image2 READ image2 WRITE setImage2 NOTIFY image2Changed)
    Q_PROPERTY(int framerate READ framerate WRITE setFramerate NOTIFY framerateChanged)
    Q_PROPERTY(int mode READ mode WRITE setMode NOTIFY modeChanged)
    Q_PROPERTY(int resolution READ resolution WRITE setResolution NOTIFY resolutionChanged)
    Q_PROPERTY(bool isEnable READ isEnable NOTIFY isEnableChanged)
    Q_PROPERTY(bool isEnable2 READ isEnable2 WRITE setIsEnable2 NOTIFY isEnable2Changed)

public:
    /// Throws `std::runtime_error` on a null camera. Registers and starts nothing.
    explicit RgbData(std::shared_ptr<qv::ColorCamera> colorCamera, QObject *parent = nullptr);
    ~RgbData() override;

    /// Frames of the first camera.
    ImageData *image() const;
    /// Frames of the second camera.
    ImageData *image2() const;
    void setImage2(ImageData *image2);
    int framerate() const;
    int mode() const;
    int resolution() const;
    /// The first camera's switch may be used.
    bool isEnable() const;
    /// The second camera's switch may be used.
    bool isEnable2() const;
    void setIsEnable2(bool isEnable2);
    /// The first camera is streaming.
    Q_INVOKABLE bool isRunning() const;

    QImage toImage() const override;
    cv::Mat toMat() const override;

    /// See `calibrationJsonOf`.
    QJsonValue calibrationJson() const;

public slots:
    void setFramerate(int framerate);
    /// 0 preview, 1 capture, 2 video; announced, and sent nowhere.
    void setMode(int mode);
    /// 0 1920x1080, 1 1280x720, 2 640x480, 3 320x240, 4 2560x1920. Others are announced and not sent.
    void setResolution(int resolution);
    /// Saves a frame of the first camera; answers whether that camera is running, not whether a file was
    /// written.
    bool save(QString path) override;
    /// Starts a stopped stream so that `control(false)` leaves it alone, or lets `control` have it again.
    bool startOrStop(bool isStart);
    /// Blocks for 100 ms while the camera settles.
    void control(bool enable, int camIndex = 0);
    void setViewSize(int w, int h);
    void setView2Size(int w, int h);
    /// 0 automatic focus, 1 manual focus.
    void setRGBMode(int mode);
    /// Focal distance, 1 to 255.
    void setRGBDistance(int distance);

signals:
    void imageChanged(ImageData *image);
    void image2Changed();
    void framerateChanged(int framerate);
    void modeChanged(int mode);
    void resolutionChanged(int resolution);
    void isEnableChanged(bool isEnable);
    void isEnable2Changed();
    /// 2 after the start of either camera, 3 after the stop of either.
    void rgbRunning(int v);

private:
    void registerFirst();
    void unregisterFirst();
    void unregisterSecond();
    void controlFirst(bool enable);
    void controlSecond(bool enable);

    // On the library's threads.
    void takeFrame(const qv::ColorImage &frame);
    void takeSecondFrame(const qv::ColorImage &frame);
    void show(ImageData *image, const qv::ColorImage &frame);

    const std::shared_ptr<qv::ColorCamera> m_colorCamera;
    ImageData *const m_image;
    std::atomic<ImageData *> m_image2;
    int m_callbackId = -1;
    int m_callback2Id = -1;
    int m_framerate = 30;
    int m_mode = 0;
    int m_resolution = 0;
    bool m_running = false;
    bool m_running2 = false;
    bool m_isEnable = true;
    bool m_isEnable2 = true;
    bool m_heldOpen = false;
    CallbackGuard m_callbacks;
};
