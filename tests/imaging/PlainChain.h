#pragma once

#include "imaging/DepthColors.h"
#include "imaging/FrameImage.h"
#include <QPainter>
#include <opencv2/imgproc.hpp>

/// The straight way from a frame to the screen: whole library calls on the whole frame. What the painter
/// shows must be the same, pixel for pixel, and not slower.
namespace plain {

inline QImage wrapped(const ImageData::Frame &frame, int bytesPerPixel, QImage::Format format)
{
    return QImage(frame.data.get(), frame.width, frame.height, frame.width * bytesPerPixel, format);
}

inline cv::Mat matrix(const ImageData::Frame &frame, int rows, int type)
{
    return cv::Mat(rows, frame.width, type, const_cast<unsigned char *>(frame.data.get()));
}

inline QImage converted(const ImageData::Frame &frame, int rows, int type, int code)
{
    QImage image(frame.width, frame.height, QImage::Format_RGB888);
    cv::Mat out(
        image.height(), image.width(), CV_8UC3, image.bits(), static_cast<std::size_t>(image.bytesPerLine()));
    cv::cvtColor(matrix(frame, rows, type), out, code);
    return image;
}

inline QImage depth(const ImageData::Frame &frame, const FrameLook &look)
{
    const double max = look.range.far;
    const double min = look.range.near;
    cv::Mat out = cv::Mat::zeros(frame.height, frame.width, CV_8UC3);
    cv::Mat depth;
    if (frame.type == ImageData::Float)
        depth = matrix(frame, frame.height, CV_32FC1).clone();
    else
        matrix(frame, frame.height, CV_16UC1).convertTo(depth, CV_32F, 4.0 / 32767);
    cv::Mat mask;
    cv::threshold(depth, mask, 0.1, 1.0, cv::THRESH_BINARY);
    mask.convertTo(mask, CV_8U, 255);
    cv::Mat clipped;
    cv::threshold(depth, clipped, max, max, cv::THRESH_TRUNC);
    cv::Mat gray;
    clipped.convertTo(gray, CV_8U, 255 / (max - min), -255 * min / (max - min));
    cv::threshold(gray, gray, 0, 255, cv::THRESH_TOZERO);
    if (look.colorIndex == 0) {
        cv::Mat bgr;
        cv::cvtColor(gray, bgr, cv::COLOR_GRAY2BGR);
        bgr.copyTo(out, mask);
        cv::LUT(out, depthColorLut(), out);
    } else {
        gray = cv::Scalar(255) - gray;
        cv::Mat colored;
        cv::applyColorMap(gray, colored, look.colorIndex);
        cv::cvtColor(colored, colored, cv::COLOR_BGR2RGB);
        colored.copyTo(out, mask);
    }
    QImage image(const_cast<const unsigned char *>(out.data), out.cols, out.rows, static_cast<int>(out.step),
        QImage::Format_RGB888);
    image.bits(); // detaches from the matrix
    return image;
}

inline QImage infrared(const ImageData::Frame &frame)
{
    QImage image(frame.width, frame.height, QImage::Format_RGBA8888);
    const auto *sample = reinterpret_cast<const unsigned short *>(frame.data.get());
    for (int y = 0; y < frame.height; ++y) {
        auto *pixel = image.scanLine(y);
        for (int x = 0; x < frame.width; ++x, pixel += 4) {
            pixel[0] = pixel[1] = pixel[2] = static_cast<unsigned char>(*sample++ & 0xFF);
            pixel[3] = 0xFF;
        }
    }
    return image;
}

inline QImage image(const ImageData::Frame &frame, const FrameLook &look)
{
    switch (frame.type) {
    case ImageData::Gray:
        return wrapped(frame, 1, QImage::Format_Grayscale8);
    case ImageData::Color:
        return wrapped(frame, 3, QImage::Format_RGB888);
    case ImageData::YUYV:
        return converted(frame, frame.height, CV_8UC2, cv::COLOR_YUV2RGB_YUY2);
    case ImageData::YUV420p:
        return converted(frame, frame.height * 3 / 2, CV_8UC1, cv::COLOR_YUV2RGB_IYUV);
    case ImageData::JPEG: {
        QImage picture;
        picture.loadFromData(frame.data.get(), frame.dataSize, "JPG");
        return picture;
    }
    case ImageData::IR:
        return infrared(frame);
    default:
        return depth(frame, look);
    }
}

inline QImage picture(const ImageData::Frame &frame, const FrameLook &look)
{
    const QImage whole = image(frame, look);
    const QImage shown = look.window == QSize(frame.width, frame.height)
        ? whole
        : whole.scaled(look.window, Qt::KeepAspectRatio, Qt::FastTransformation);
    return shown.mirrored(look.horizontalFlip, look.verticalFlip);
}

inline void paint(QPainter &painter, const QSizeF &item, const ImageData::Frame &frame, FrameLook look)
{
    painter.setBrush(Qt::black);
    painter.setPen(Qt::black);
    painter.drawRect(QRectF(QPointF(0, 0), item));
    look.window = painter.window().size();
    const QImage shown = picture(frame, look);
    painter.drawImage(
        QPointF((item.width() - shown.width()) * 0.5, (item.height() - shown.height()) * 0.5), shown);
}

} // namespace plain
