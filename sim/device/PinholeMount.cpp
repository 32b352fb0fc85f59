#include "device/PinholeMount.h"

#include "device/FisheyeCalibration.h"

namespace sim {

PinholeMount PinholeMount::color()
{
    return {mounted(0.012, -0.021, 0.016, 0.4, -0.3, 0.2),
        {2560, 1920, 1762.0, 1763.1, 1283.7, 955.2, {0.061, -0.094, 0.0004, -0.0003, 0.021}}};
}

PinholeMount PinholeMount::secondColor()
{
    return {mounted(-0.018, -0.021, 0.015, -0.5, 0.2, -0.3),
        {2560, 1920, 2130.0, 2131.2, 1275.9, 963.4, {0.048, -0.071, -0.0002, 0.0004, 0.012}}};
}

PinholeMount PinholeMount::tof()
{
    return {mounted(0, -0.018, 0.018, 0.2, -0.4, 0.1),
        {640, 480, 457.0, 457.3, 321.3, 238.1, {-0.052, 0.031, 0.0003, 0.0002, -0.004}}};
}

std::shared_ptr<CameraModel> PinholeMount::model(cv::Size size) const
{
    return PolynomialModel(lens).scaled(size.width, size.height);
}

qv::Calibration PinholeMount::calibration(cv::Size size) const
{
    const std::shared_ptr<CameraModel> scaled = model(size);
    qv::Calibration record;
    setExtrinsics(record, bodyFromCamera);
    record.pdcm = {static_cast<const PolynomialModel &>(*scaled).parameters()};
    record.cameraModels = {scaled};
    return record;
}

} // namespace sim
