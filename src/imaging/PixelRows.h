#pragma once

#include "imaging/DepthColors.h"
#include "imaging/ImageData.h"
#include <QRgb>
#include <vector>

/// Readers of single pixels, one a frame type. Each turns the pixels of one frame row that stand in
/// `columns` into screen colours, so that what isn't shown is never converted. They read nothing outside
/// `width` x `height` pixels of their format.

/// 8 bits a pixel.
struct GreyRow {
    const unsigned char *data;
    int width;

    void operator()(int row, const int *columns, int count, QRgb *out) const;
};

/// R, G, B.
struct ColorRow {
    const unsigned char *data;
    int width;

    void operator()(int row, const int *columns, int count, QRgb *out) const;
};

/// 16-bit samples of which the low byte is the grey.
struct InfraredRow {
    const unsigned char *data;
    int width;

    void operator()(int row, const int *columns, int count, QRgb *out) const;
};

/// Y, U, Y, V in pairs of pixels.
struct YuyvRow {
    const unsigned char *data;
    int width;
    int height;

    void operator()(int row, const int *columns, int count, QRgb *out) const;
};

/// Planes Y, U and V, the last two at half the size; width and height are even.
struct I420Row {
    const unsigned char *data;
    int width;
    int height;

    void operator()(int row, const int *columns, int count, QRgb *out) const;
};

/// What depth looks like, and the memory to work it out in.
struct DepthColoring {
    DepthRange range;
    DepthPalette palette;
    std::vector<unsigned short> samples;
    std::vector<float> metres;
    std::vector<float> clipped;
    std::vector<unsigned char> levels;

    /// Makes room for rows of `count` pixels.
    void reserve(int count);
    /// Colours the first `count` of `metres`.
    void color(int count, QRgb *out);
};

/// 32-bit float, metres.
struct FloatRow {
    const unsigned char *data;
    int width;
    DepthColoring *coloring;

    void operator()(int row, const int *columns, int count, QRgb *out) const;
};

/// 16-bit unsigned, full scale of a signed sample being 4 m.
struct ShortRow {
    const unsigned char *data;
    int width;
    DepthColoring *coloring;

    void operator()(int row, const int *columns, int count, QRgb *out) const;
};
