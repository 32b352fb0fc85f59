#pragma once

#include "device/qv/Records.h"

/// The library's point cloud is opaque to the viewer; the fake's is told apart by a number.
class qv::PointCloud {
public:
    int tag = 0;
};
