#include "imaging/PixelMap.h"

#include <QColor>
#include <QTransform>
#include <algorithm>
#include <numeric>

namespace {

/// Scales a line of numbered pixels and reads the numbers back: Qt's own rounding, whatever its version.
std::vector<int> pickedAlong(Qt::Orientation direction, int from, int to, QImage::Format format)
{
    std::vector<int> picked(static_cast<std::size_t>(to));
    if (from == to) {
        std::iota(picked.begin(), picked.end(), 0);
        return picked;
    }
    const bool across = direction == Qt::Horizontal;
    QImage line(across ? from : 1, across ? 1 : from, format);
    for (int i = 0; i < from; ++i)
        line.setPixelColor(across ? i : 0, across ? 0 : i, QColor(i >> 16, i >> 8 & 255, i & 255));
    const double scale = static_cast<double>(to) / from;
    const QImage scaled = line.transformed(
        QTransform::fromScale(across ? scale : 1, across ? 1 : scale), Qt::FastTransformation);
    for (int i = 0; i < to; ++i) {
        const QRgb number = scaled.pixel(across ? i : 0, across ? 0 : i);
        picked[static_cast<std::size_t>(i)] = std::min(static_cast<int>(number & 0xffffff), from - 1);
    }
    return picked;
}

} // namespace

void PixelMap::mirror(bool horizontal, bool vertical)
{
    if (horizontal)
        std::reverse(columns.begin(), columns.end());
    if (vertical)
        std::reverse(rows.begin(), rows.end());
}

PixelMap scaledPixelMap(const QSize &from, const QSize &to, QImage::Format format)
{
    return {pickedAlong(Qt::Horizontal, from.width(), to.width(), format),
        pickedAlong(Qt::Vertical, from.height(), to.height(), format)};
}

QSize fittedSize(const QSize &image, const QSize &window)
{
    return image.scaled(window, Qt::KeepAspectRatio).expandedTo({1, 1});
}
