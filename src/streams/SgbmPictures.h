#pragma once

#include "device/qv/Records.h"
#include "imaging/DepthColors.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

/// Paints depth in millimetres, through a table of what each of the 65536 samples looks like. The table is
/// made anew only when the look changes. Thread-safe.
class SgbmColors {
public:
    /// In place of an OpenCV colour map: from blue near to red far, and black for what is outside.
    static constexpr std::nullopt_t plainColors = std::nullopt;

    /// 16-bit samples at any address, as packed R, G, B. `colorMap` is `plainColors` or the number of an
    /// OpenCV colour map, whose levels saturate at the ends of the range. Throws `cv::Exception` for a map
    /// that OpenCV doesn't know.
    void depthToPixels(const unsigned char *samples, std::size_t count, const DepthRange &range,
        std::optional<int> colorMap, unsigned char *rgb);

private:
    struct Table;
    std::shared_ptr<const Table> table(const DepthRange &range, std::optional<int> colorMap);

    std::mutex m_mutex;
    std::shared_ptr<const Table> m_table;
};

/// A disparity frame as an R, G, B matrix: 16-bit samples in mode 3, 8-bit samples in any other. Empty for a
/// frame that is shorter than its size says.
cv::Mat disparityPicture(const qv::SgbmImage &frame, int mode);
