#pragma once

#include "device/qv/Vsc.h"
#include "imaging/DepthProbe.h"
#include "imaging/ImageData.h"
#include "streams/BufferPool.h"
#include "streams/CallbackGuard.h"
#include "streams/DepthSamples.h"
#include "streams/HoleFiller.h"
#include "streams/SgbmPictures.h"

#include <QObject>

class QTimer;

/// The stereo depth unit: keeps its settings, fills the holes of its depth frames, colours them, and reads
/// depth out of them.
class SgbmData : public QObject, public DepthProbe {
    Q_OBJECT
    Q_INTERFACES(DepthProbe)
    Q_PROPERTY(ImageData *image READ image NOTIFY imageChanged)
    Q_PROPERTY(int depth READ depth NOTIFY depthChanged)
    Q_PROPERTY(int frameRate READ frameRate NOTIFY frameRateChanged)
    Q_PROPERTY(int centerAvgPx READ centerAvgPx NOTIFY centerAvgPxChanged)
    Q_PROPERTY(bool pixelShow READ pixelShow WRITE setPixelShow NOTIFY pixelShowChanged)
    Q_PROPERTY(int width READ width NOTIFY widthChanged)
    Q_PROPERTY(int height READ height NOTIFY heightChanged)
    Q_PROPERTY(bool isEnable READ isEnable NOTIFY isEnableChanged)
    Q_PROPERTY(int viewWidth READ viewWidth NOTIFY viewWidthChanged)
    Q_PROPERTY(int viewHeight READ viewHeight NOTIFY viewHeightChanged)
    Q_PROPERTY(int resolution READ resolution WRITE setResolution NOTIFY resolutionChanged)
    Q_PROPERTY(int colorIndex READ colorIndex WRITE setColorIndex NOTIFY colorIndexChanged)

public:
    /// Throws `std::runtime_error` on a null unit, which has to outlive this model otherwise.
    explicit SgbmData(qv::Vsc *vsc, QObject *parent = nullptr);
    ~SgbmData() override;

    ImageData *image() const;
    /// Under the mouse, in millimetres.
    int depth() const;
    int frameRate() const;
    /// Of the box, in millimetres.
    int centerAvgPx() const;
    bool pixelShow() const;
    void setPixelShow(bool isShow);
    /// Always 640, whatever the frames are.
    int width() const;
    /// Always 400, whatever the frames are.
    int height() const;
    /// False while `control` is at work.
    bool isEnable() const;
    int viewWidth() const;
    int viewHeight() const;
    /// Index of the unit's resolution. Writing it doesn't reach the unit, `setSgbmResolution` does.
    int resolution() const;
    void setResolution(int resolution);
    /// Colour scheme: 0 for the plain colours, or the number of an OpenCV colour map.
    int colorIndex() const;
    void setColorIndex(int colorIndex);

    bool isRunning() const override;
    void setObjectX(int x) override;
    void setObjectY(int y) override;
    int objectDepth() const override;

    /// Writes the first third of the frame's bytes as grey. False while stopped or if it didn't work.
    bool save(QString path);

public slots:
    // These restart the unit with the changed settings.
    void reset();
    /// "HW", or anything else for software.
    void setSource(QString string);
    void setEnableDewarp(bool enable);
    void setZoomFactor(float zoom_factor);
    /// Metres.
    void setBaseline(float baseline);
    /// Degrees.
    void setFOV(float fov);
    void setMaxDisparity(uchar max_disparity);
    /// Millimetres, of which 16 bits are kept.
    void setMaxDistance(int maxDistance);
    void setMinDistance(int minDistance);

    /// Depth frames are shown, or else disparity frames.
    void setDepth(bool isDepth);
    void setEnableFillHoles(bool isFillHoles);
    void setEnableCenterAvgPx(bool isCenterAvgPx);
    /// Frame pixel whose depth is read; -1 for none.
    void setX(int x);
    void setY(int y);
    /// Radius in pixels, 0 for none.
    void setHoleSize(int holeSize);
    /// Millimetres, of which 16 bits are kept.
    void setHoleMin(int holeMin);
    void setHoleMax(int holeMax);
    /// Box that is averaged, in frame pixels, by its top left corner.
    void setCenterAvgWidth(int width);
    void setCenterAvgHeight(int height);
    void setCenterAvgX(int x);
    void setCenterAvgY(int y);
    /// Blocks for 100 ms while the unit settles.
    void control(bool enable);
    void setViewSize(int w, int h);
    bool setSgbmResolution(int resolution);

signals:
    void imageChanged(ImageData *image);
    void depthChanged(int depth);
    void xChanged(int x);
    void yChanged(int y);
    void holeSizeChanged(int holeSize);
    void holeMaxChanged(int holeMax);
    void holeMinChanged(int holeMin);
    void frameRateChanged(int frameRate);
    void maxDistanceChanged(int maxDistance);
    void minDistanceChanged(int minDistance);
    void centerAvgPxChanged(int centerAvgPx);
    void centerAvgWidthChanged(int centerAvgWidth);
    void centerAvgHeightChanged(int centerAvgHeight);
    void pixelShowChanged(bool isShow);
    void widthChanged(int width);
    void heightChanged(int height);
    void isEnableChanged(bool isEnable);
    void viewWidthChanged(int viewWidth);
    void viewHeightChanged(int viweHeight);
    void resolutionChanged();
    void colorIndexChanged();

private:
    template <class Change>
    void resend(Change change);
    void unregisterFrames();
    void settle(bool running);
    void reportFrameRate();
    DepthRange range(int width) const;
    PixelBox box() const;

    // On the library's thread.
    void takeFrame(const qv::SgbmImage &frame);
    void onDepthFrame(const qv::SgbmImage &frame);
    void onDisparityFrame(const qv::SgbmImage &frame);
    qv::SgbmImage withoutHoles(const qv::SgbmImage &frame);
    void readDepth(const DepthSamples<unsigned short> &samples, int width);
    std::shared_ptr<const unsigned char> coloured(const qv::SgbmImage &frame);

    ImageData *const m_image;
    qv::Vsc *const m_vsc;
    qv::SgbmConfig m_config;
    int m_callbackId = -1;
    std::atomic<int> m_depth{0};
    std::atomic<int> m_x{-1};
    std::atomic<int> m_y{-1};
    std::atomic<unsigned int> m_zeroDepthCount{0};
    std::atomic<unsigned short> m_holeMin{200};
    std::atomic<unsigned short> m_holeMax{10000};
    std::atomic<int> m_holeSize{0};
    std::atomic<bool> m_isDepth{true};
    int m_frameRate = 0;
    std::atomic<int> m_frameCount{0};
    std::atomic<bool> m_fillHoles{true};
    std::atomic<bool> m_enableCenterAvgPx{false};
    std::atomic<int> m_centerAvgPx{0};
    std::atomic<int> m_centerAvgWidth{50};
    std::atomic<int> m_centerAvgHeight{50};
    std::atomic<int> m_centerAvgX{0};
    std::atomic<int> m_centerAvgY{0};
    QTimer *m_frameTimer = nullptr;
    bool m_pixelShow = false;
    const int m_width = 640;
    const int m_height = 400;
    int m_resolution = 0;
    std::atomic<bool> m_running{false};
    bool m_isEnable = true;
    int m_viewWidth = 640;
    int m_viewHeight = 400;
    std::atomic<int> m_objectX{0};
    std::atomic<int> m_objectY{0};
    std::atomic<int> m_objectDepth{0};
    std::atomic<int> m_colorIndex{0};
    // What the frames need of the configuration, which belongs to the interface thread.
    std::atomic<unsigned short> m_maxDistance{0};
    std::atomic<unsigned short> m_minDistance{0};
    HoleFiller m_filler;
    SgbmColors m_colors;
    BufferPool m_buffers;
    CallbackGuard m_callbacks;
};
