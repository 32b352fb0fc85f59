#pragma once

#include "imaging/ImageData.h"
#include "imaging/PixelMap.h"
#include "imaging/PixelRows.h"
#include <QImage>
#include <optional>

/// How a frame is to be shown.
struct FrameLook {
    QSize window; ///< pixels to fit it into, keeping its shape
    bool horizontalFlip = false;
    bool verticalFlip = false;
    DepthRange range;
    int colorIndex = 0; ///< colour scheme of depth, see `depthPalette`

    bool operator==(const FrameLook &other) const;
};

/// Turns frames into the pictures that are drawn, pixel for pixel what converting the whole frame,
/// `QImage::scaled` with `Qt::KeepAspectRatio` and `Qt::FastTransformation`, and `QImage::mirrored` make of
/// it. Only the pixels that are shown are converted, and nothing is done twice for the same frame. For one
/// thread at a time.
class FrameImage {
public:
    /// The picture of a frame with a buffer; a frame of the window's size isn't scaled. Null if the frame has
    /// no picture: it doesn't decode, its type is unknown, or its buffer is shorter than its size says. Valid
    /// until the next call.
    const QImage &image(const ImageData::Frame &frame, const FrameLook &look);

private:
    void make(const ImageData::Frame &frame, const FrameLook &look);
    void decode(const ImageData::Frame &frame);
    void convert(const ImageData::Frame &frame, const FrameLook &look);
    template <class Row>
    void pick(const ImageData::Frame &frame, const FrameLook &look, QImage::Format format, Row row);
    void pickDepth(const ImageData::Frame &frame, const FrameLook &look);
    void updateMap(const QSize &from, const FrameLook &look, QImage::Format format);
    void updatePalette(int colorIndex);

    QImage m_image;
    quint64 m_number = 0; ///< of the frame in `m_image`
    FrameLook m_look;

    QImage m_decoded;
    quint64 m_decodedNumber = 0; ///< of the frame in `m_decoded`

    PixelMap m_map;
    struct {
        QSize from;
        QSize to;
        QImage::Format format = QImage::Format_Invalid;
        bool horizontalFlip = false;
        bool verticalFlip = false;
    } m_mapped; ///< what `m_map` is for
    std::vector<int> m_allColumns;
    std::vector<QRgb> m_line;

    DepthColoring m_coloring;
    std::optional<int> m_colorIndex; ///< of the palette in `m_coloring`
};
