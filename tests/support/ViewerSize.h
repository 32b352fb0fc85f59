#pragma once

#include "imaging/ImageData.h"

#include <QSize>

/// The size of its view that a frame holder keeps and that nothing in the program reads back. An explicit
/// instantiation may name private members, so the class needs no opening for its tests.
namespace viewer_size {

struct Width {
    friend int ImageData::*member(Width);
};
struct Height {
    friend int ImageData::*member(Height);
};

template <class Tag, int ImageData::*Member>
struct Reach {
    friend int ImageData::*member(Tag) { return Member; }
};
template struct Reach<Width, &ImageData::m_viewerWidth>;
template struct Reach<Height, &ImageData::m_viewerHeight>;

} // namespace viewer_size

inline QSize viewerSizeOf(const ImageData &image)
{
    return {image.*member(viewer_size::Width()), image.*member(viewer_size::Height())};
}
