#pragma once

#include <QImage>
#include <QSize>
#include <vector>

/// Which pixel of a frame each pixel of its shown picture comes from. With the fast transformation columns
/// and rows are chosen independently, so one list each says it all.
struct PixelMap {
    std::vector<int> columns;
    std::vector<int> rows;

    /// Mirrors the shown picture.
    void mirror(bool horizontal, bool vertical);
};

/// The choice that `QImage::scaled` makes with `Qt::FastTransformation` when an image of this format and size
/// `from` becomes one of size `to`. Both sizes at least 1 x 1; a format of at least 8 bits a channel. Grey
/// images are scaled as `Format_RGB888` is.
PixelMap scaledPixelMap(const QSize &from, const QSize &to, QImage::Format format);

/// The size that `QImage::scaled` gives with `Qt::KeepAspectRatio`.
QSize fittedSize(const QSize &image, const QSize &window);
