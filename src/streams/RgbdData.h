#pragma once

#include "device/qv/TofCamera.h"
#include "streams/AbstractImageData.h"
#include "streams/BufferPool.h"
#include "streams/CallbackGuard.h"

#include <functional>

/// The colour picture that the ToF camera aligns to its depth. Usable only while both the colour stream and
/// the ToF stream run; starts neither.
class RgbdData : public AbstractImageData {
    Q_OBJECT
    Q_PROPERTY(ImageData *image READ image NOTIFY imageChanged)
    Q_PROPERTY(bool enable READ enable NOTIFY enableChanged)

public:
    explicit RgbdData(std::shared_ptr<qv::TofCamera> tofCamera, QObject *parent = nullptr);
    ~RgbdData() override;

    ImageData *image() const;
    /// Both streams that this one needs are running.
    bool enable() const;

    /// None: this stream is neither saved nor recorded.
    QImage toImage() const override;
    cv::Mat toMat() const override;

public slots:
    /// What the library answers: to the registration, or to its end.
    bool control(bool isStart);
    /// Takes a running signal of the ToF stream (0 started, 1 stopped) or of the colour stream (2, 3).
    void setEnable(int v);
    void setViewSize(int w, int h);
    void reset();

signals:
    void imageChanged(ImageData *image);
    void enableChanged(bool isEnable);
    void TofControl(bool isStart);
    void RgbControl(bool isStart);

private:
    void takeFrame(const qv::DepthColorImage &frame);

    const std::shared_ptr<qv::TofCamera> m_tofCamera;
    CallbackGuard m_callbacks;
    int m_callbackId = -1;
    std::function<void(const qv::DepthColorImage &)> m_frameCallback;
    ImageData *const m_image;
    bool m_enable = false;
    bool m_tofRunning = false;
    bool m_rgbRunning = false;
    BufferPool m_buffers;
};
