#pragma once

#include "streams/AbstractImageData.h"

/// Picture and key points of one fisheye camera.
class FisheyeData : public AbstractImageData {
    Q_OBJECT

public:
    explicit FisheyeData(QObject *parent = nullptr);
    ~FisheyeData() override;

    QImage toImage() const override;
    cv::Mat toMat() const override;

    /// A frame of 8-bit grey, rows packed, shared and not copied. Called on the library's thread.
    void setImage(int width, int height, std::shared_ptr<const unsigned char> data, int dataSize);
    void setImageAndPoints(int width, int height, std::shared_ptr<const unsigned char> data, int dataSize,
        QVector<QPoint> points);
    /// Key points in frame pixels, apart from the frame that they were found in.
    void setPoints(QVector<QPoint> points);
    void setViewSize(int w, int h);

private:
    void beginFrame(int width, int height);
    void endFrame();
};
