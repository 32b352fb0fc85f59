#pragma once

#include "device/qv/TofCamera.h"
#include "streams/AbstractImageData.h"
#include "streams/BufferPool.h"
#include "streams/CallbackGuard.h"

/// The infrared frames of the ToF camera. Rides on the stream that `TofData` has started.
class TofIrData : public AbstractImageData {
    Q_OBJECT
    Q_PROPERTY(ImageData *image READ image NOTIFY imageChanged)
    Q_PROPERTY(int manufacturer READ manufacturer WRITE setManufacturer NOTIFY manufacturerChanged)

public:
    explicit TofIrData(std::shared_ptr<qv::TofCamera> tof, QObject *parent = nullptr);
    ~TofIrData() override;

    ImageData *image() const;
    /// Always 0: the sensor family is the business of `TofData`.
    int manufacturer() const;
    void setManufacturer(int manufacturer);

    QImage toImage() const override;
    /// None: this stream isn't recorded.
    cv::Mat toMat() const override;

public slots:
    /// Turns the infrared output on where the sensor family needs that, and takes its frames from then on.
    void control(bool enable);
    void setViewSize(int w, int h);
    bool save(QString path) override;

signals:
    void manufacturerChanged();
    void imageChanged(ImageData *image);

private:
    bool enableInfrared();
    void unregister();
    void takeFrame(const qv::DepthImage &frame);

    const std::shared_ptr<qv::TofCamera> m_tof;
    int m_callbackId = -1;
    ImageData *const m_image;
    BufferPool m_buffers;
    CallbackGuard m_callbacks;
};
