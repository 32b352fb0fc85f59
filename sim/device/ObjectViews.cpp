#include "device/ObjectViews.h"

#include "world/CameraModels.h"

namespace sim {

namespace {

Pose bodyFromCamera(const qv::Calibration &record)
{
    Pose pose = Pose::Identity();
    for (int row = 0; row < 3; ++row) {
        pose.translation()[row] = record.translation[row];
        for (int column = 0; column < 3; ++column)
            pose.linear()(row, column) = record.rotation[3 * row + column];
    }
    return pose;
}

SimObjectDetector::View polynomialView(
    const qv::PolynomialDistortionCameraModel &lens, const Eigen::Vector3d &place)
{
    SimObjectDetector::View view{std::make_shared<PolynomialModel>(lens), Pose::Identity()};
    view.bodyFromCamera.translation() = place;
    return view;
}

} // namespace

SimObjectDetector::Views fisheyeViews(const std::shared_ptr<const FisheyeSource> &source)
{
    SimObjectDetector::Views views;
    for (const auto place : {SimObjectDetector::Left, SimObjectDetector::Right}) {
        views[place] = [source, place]() -> SimObjectDetector::View {
            const qv::CalibrationEx &record =
                source->calibrationsAtCurrentResolution().at(static_cast<std::size_t>(place));
            return {std::make_shared<UnifiedModel>(record.ucm.at(0)), bodyFromCamera(record)};
        };
    }
    return views;
}

SimObjectDetector::View defaultColorView()
{
    return polynomialView(
        {1920, 1080, 1400, 1400, 959.5, 539.5, {0.05, -0.06, 0, 0, 0}}, {0.0, -0.01, 0.012});
}

SimObjectDetector::View defaultTofView()
{
    return polynomialView({640, 480, 520, 520, 319.5, 239.5, {0.02, -0.03, 0, 0, 0}}, {0.015, -0.01, 0.012});
}

} // namespace sim
