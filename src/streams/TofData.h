#pragma once

#include "device/qv/TofCamera.h"
#include "imaging/DepthProbe.h"
#include "streams/AbstractImageData.h"
#include "streams/BufferPool.h"
#include "streams/CallbackGuard.h"
#include "streams/DepthSamples.h"

#include <QJsonValue>

/// The time-of-flight depth camera: frames of metres for the painter, depth read-outs, pictures, point
/// clouds, and the settings of the sensor.
class TofData : public AbstractImageData, public DepthProbe {
    Q_OBJECT
    Q_INTERFACES(DepthProbe)
    Q_PROPERTY(ImageData *image READ image NOTIFY imageChanged)
    Q_PROPERTY(int framerate READ framerate WRITE setFramerate NOTIFY framerateChanged)
    Q_PROPERTY(double maxDistance READ maxDistance WRITE setMaxDistance NOTIFY maxDistanceChanged)
    Q_PROPERTY(double minDistance READ minDistance WRITE setMinDistance NOTIFY minDistanceChanged)
    Q_PROPERTY(double mode READ mode WRITE setMode NOTIFY modeChanged)
    Q_PROPERTY(double frequency READ frequency WRITE setFrequency NOTIFY frequencyChanged)
    Q_PROPERTY(double fps READ fps WRITE setFps NOTIFY fpsChanged)
    Q_PROPERTY(double resolution READ resolution WRITE setResolution NOTIFY resolutionChanged)
    Q_PROPERTY(bool pixelShow READ pixelShow WRITE setPixelShow NOTIFY pixelShowChanged)
    Q_PROPERTY(int depth READ depth NOTIFY depthChanged)
    Q_PROPERTY(int centerAvgPx READ centerAvgPx NOTIFY centerAvgPxChanged)
    Q_PROPERTY(int manufacturer READ manufacturer WRITE setManufacturer NOTIFY manufacturerChanged)

public:
    /// Throws `std::runtime_error` on a null camera.
    explicit TofData(std::shared_ptr<qv::TofCamera> tof, QObject *parent = nullptr);
    ~TofData() override;

    ImageData *image() const;
    int framerate() const;
    /// Metres; of pictures and videos, the painter has its own.
    double maxDistance() const;
    double minDistance() const;
    bool pixelShow() const;
    void setPixelShow(bool isShow);
    /// Under the mouse, in millimetres.
    int depth() const;
    /// Of the box, in millimetres.
    int centerAvgPx() const;
    /// Sensor family: 0 or 1, -1 before it is known.
    int manufacturer() const;
    void setManufacturer(int manufacturer);

    bool isRunning() const override;
    void setObjectX(int x) override;
    void setObjectY(int y) override;
    int objectDepth() const override;

    QImage toImage() const override;
    cv::Mat toMat() const override;

    /// See `calibrationJsonOf`.
    QJsonValue calibrationJson() const;

    /// Blocks for 100 ms while the camera settles.
    Q_INVOKABLE void control(bool enable);
    /// False while `control` is at work.
    Q_INVOKABLE bool isEnable() const;
    Q_INVOKABLE bool setDistanceMode(int distanceMode);
    /// Blocks for 500 ms while the sensor changes over.
    Q_INVOKABLE bool setLibWorkMode(int workMode);
    Q_INVOKABLE bool RefreshSonyTofSetting();
    /// Frame pixel whose depth is read while `pixelShow` is on.
    Q_INVOKABLE void setX(int x);
    Q_INVOKABLE void setY(int y);
    Q_INVOKABLE void setViewSize(int w, int h);
    /// Box that is averaged, in frame pixels, by its top left corner.
    Q_INVOKABLE void setCenterAvgX(int x);
    Q_INVOKABLE void setCenterAvgY(int y);
    Q_INVOKABLE void setCenterAvgWidth(int width);
    Q_INVOKABLE void setCenterAvgHeight(int height);
    Q_INVOKABLE void setEnableCenterAvgPx(bool enable);
    Q_INVOKABLE void setTofIrGamma(double gamma);

public slots:
    void setFramerate(int framerate);
    void setMaxDistance(double maxDistance);
    void setMinDistance(double minDistance);
    /// 0 IQMIX, 1 LABELIZE, 2 M2MIX.
    int mode() const;
    /// 0 SF, 1 DF.
    int frequency() const;
    /// 0 VGA, 1 QVGA.
    int resolution() const;
    /// Index into 5, 10, 15, 20, 25 and 30 frames a second.
    int fps() const;
    // These four reach the sensor and signal nothing.
    void setMode(int mode);
    void setFrequency(int frequency);
    void setResolution(int resolution);
    void setFps(int fps);
    /// Starts a stopped stream so that `control(false)` leaves it alone, or lets `control` have it again.
    bool startOrStop(bool isStart);
    /// The next depth frame writes its point cloud there.
    void savePcd(QString path);
    /// Answers whether the stream is running, not whether a file was written.
    bool save(QString path) override;

signals:
    void imageChanged(ImageData *image);
    void framerateChanged(int framerate);
    void maxDistanceChanged(double distance);
    void minDistanceChanged(double distance);
    void modeChanged(int mode);
    void frequencyChanged(int frequency);
    void fpsChanged(int fps);
    void resolutionChanged(int resolution);
    /// 0 after a start, 1 after a stop.
    void tofRunning(int v);
    void pixelShowChanged(bool isShow);
    void depthChanged(int depth);
    void centerAvgPxChanged(int centerAvgPx);
    void manufacturerChanged();

private:
    void registerFrames();
    void unregisterFrames();
    void settle(bool running);
    void updateWorkMode();
    PixelBox box() const;

    // On the library's thread.
    void onDepthImage(const qv::DepthImage &frame);
    static bool isDamaged(const qv::DepthImage &frame);
    void savePointCloud(const qv::DepthImage &frame);
    void takeMillimetres(const qv::DepthImage &frame);
    void takeMetres(const qv::DepthImage &frame);
    void reportDepth(int depth);
    void reportAverage(double average);

    const std::shared_ptr<qv::TofCamera> m_tof;
    ImageData *const m_image;
    int m_callbackId = -1;
    int m_framerate = 30;
    std::atomic<double> m_maxDistance{1.0};
    std::atomic<double> m_minDistance{0.1};
    std::atomic<bool> m_running{false};
    std::atomic<bool> m_isEnable{true};
    bool m_keepRunning = false;
    int m_fps = 5;
    int m_resolution = 0;
    int m_workMode = 1;
    int m_frequency = 0;
    int m_mode = 0;
    std::atomic<bool> m_pixelShow{false};
    std::atomic<int> m_x{0};
    std::atomic<int> m_y{0};
    std::atomic<int> m_depth{0};
    std::atomic<int> m_centerAvgX{0};
    std::atomic<int> m_centerAvgY{0};
    std::atomic<int> m_centerAvgWidth{50};
    std::atomic<int> m_centerAvgHeight{50};
    std::atomic<int> m_centerAvgPx{0};
    std::atomic<bool> m_enableCenterAvgPx{false};
    int m_manufacturer = -1;
    std::mutex m_pcdMutex; ///< guards the path between its request and its use
    QString m_pcdPath;
    std::atomic<bool> m_savePcdRequested{false};
    std::atomic<int> m_objectX{0};
    std::atomic<int> m_objectY{0};
    std::atomic<int> m_objectDepth{0};
    BufferPool m_buffers;
    CallbackGuard m_callbacks;
};
