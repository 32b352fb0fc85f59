#pragma once

#include "device/qv/Records.h"
#include "world/PolynomialModel.h"
#include "world/Pose.h"

namespace sim {

/// A camera with a polynomial lens and where it sits on the device.
struct PinholeMount {
    Pose bodyFromCamera = Pose::Identity();
    qv::PolynomialDistortionCameraModel lens; ///< at the sensor's full picture size

    /// Above the middle, 72 degrees wide.
    static PinholeMount color();
    /// Beside it, 62 degrees wide.
    static PinholeMount secondColor();
    /// Between the two, 70 degrees wide.
    static PinholeMount tof();

    std::shared_ptr<CameraModel> model(cv::Size size) const;
    qv::Calibration calibration(cv::Size size) const;
};

} // namespace sim
