#include "replay/ReplayCalibration.h"

#include "device/FisheyeCalibration.h"

#include <algorithm>

namespace sim {

namespace {

/// A lens of which only the picture's size is told.
class PictureSize : public qv::CameraModel {
public:
    PictureSize(int width, int height)
        : m_width(width)
        , m_height(height)
    {
    }
    int width() override { return m_width; }
    int height() override { return m_height; }

private:
    const int m_width;
    const int m_height;
};

bool undistorted(const SensorYaml &sensor)
{
    return std::all_of(sensor.distortion.begin(), sensor.distortion.end(), [](double k) { return k == 0; });
}

bool radialTangential(const SensorYaml &sensor)
{
    static const char *const names[] = {"radial-tangential", "radtan", "plumb_bob", "none", ""};
    const auto named = [&](const char *name) { return sensor.distortionModel == name; };
    return sensor.distortion.size() <= 5 && std::any_of(std::begin(names), std::end(names), named);
}

qv::PolynomialDistortionCameraModel polynomial(const SensorYaml &sensor)
{
    qv::PolynomialDistortionCameraModel model;
    model.w = sensor.width;
    model.h = sensor.height;
    model.fx = sensor.intrinsics[0];
    model.fy = sensor.intrinsics[1];
    model.u0 = sensor.intrinsics[2];
    model.v0 = sensor.intrinsics[3];
    std::copy(sensor.distortion.begin(), sensor.distortion.end(), model.distor);
    return model;
}

qv::UnifiedCameraModel unified(const SensorYaml &sensor)
{
    const std::vector<double> &k = sensor.intrinsics;
    return {sensor.width, sensor.height, k[1], k[2], k[3], k[4], k[0]};
}

qv::EnhancedUnifiedCameraModel enhancedUnified(const SensorYaml &sensor)
{
    const std::vector<double> &k = sensor.intrinsics;
    return {sensor.width, sensor.height, k[2], k[3], k[4], k[5], k[0], k[1]};
}

} // namespace

qv::CalibrationEx calibrationFrom(const SensorYaml &sensor)
{
    qv::CalibrationEx record;
    setExtrinsics(record, sensor.bodyFromSensor);
    record.cameraModels.push_back(std::make_shared<PictureSize>(sensor.width, sensor.height));
    const std::size_t count = sensor.intrinsics.size();
    if (sensor.cameraModel == "pinhole" && count == 4 && radialTangential(sensor))
        record.pdcm.push_back(polynomial(sensor));
    else if (sensor.cameraModel == "omni" && count == 5 && undistorted(sensor))
        record.ucm.push_back(unified(sensor));
    else if (sensor.cameraModel == "eucm" && count == 6 && undistorted(sensor))
        record.seucm.push_back(enhancedUnified(sensor));
    return record;
}

} // namespace sim
