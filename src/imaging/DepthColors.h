#pragma once

#include <QRgb>
#include <array>
#include <opencv2/core.hpp>

/// 256 rows of three bytes.
using ColorTable = std::array<std::array<unsigned char, 3>, 256>;

/// The colours of depth, near to far: the hue wheel in degrees from red through yellow, green and cyan to
/// blue. Bytes in the order R, G, B.
extern const ColorTable depthColorTable;

/// A one-row, three-channel view on `depthColorTable`, as `cv::LUT` takes it. Not to be written to.
cv::Mat depthColorLut();

/// Distances in metres that take the first and the last colour.
struct DepthRange {
    double near = 0;
    double far = 0;

    bool operator==(const DepthRange &other) const { return near == other.near && far == other.far; }
};

/// Depths up to this one, in metres, count as not measured.
constexpr float noDepth = 0.1F;

/// Grey levels of `count` depths in metres, none beyond `far`: near to far as 0 to 255, saturating.
/// An empty range has an infinite scale; the levels are then what OpenCV's saturating conversion gives.
void depthLevels(const float *metres, int count, const DepthRange &range, unsigned char *levels);

/// Colours to look up by grey level.
struct DepthPalette {
    std::array<QRgb, 256> levels{};
    QRgb unmeasured = qRgb(0, 0, 0);
};

/// Index 0 is `depthColorTable`; any other is the number of an OpenCV colour map, run backwards.
/// Throws `cv::Exception` for a number that OpenCV doesn't know.
DepthPalette depthPalette(int colorIndex);
