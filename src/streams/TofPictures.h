#pragma once

#include "imaging/DepthColors.h"
#include "imaging/ImageData.h"

#include <QImage>
#include <cstddef>

/// Millimetres, 16-bit signed at any address, as metres.
void millimetresToMetres(const unsigned char *millimetres, std::size_t count, float *metres);

/// A `Float` frame in the default colours between `near` and `far` metres, blue first as the video writer
/// takes it. What lies nearer than 0.1 m or beyond 9.5 m counts as not measured. Empty for a frame that is
/// shorter than its size says.
cv::Mat depthPicture(const ImageData::Frame &frame, double near, double far);

/// The colours of infrared: those of depth, but black for nothing and violet for full scale.
extern const ColorTable irColorTable;

/// An `IR` frame as opaque grey, with the brightness of the colours of `irColorTable`. Null for a frame that
/// is shorter than its size says.
QImage infraredPicture(const ImageData::Frame &frame);
