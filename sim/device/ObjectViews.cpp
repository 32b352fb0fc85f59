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

std::function<SimObjectDetector::View()> polynomialView(std::shared_ptr<qv::Camera> camera)
{
    return [camera = std::move(camera)]() -> SimObjectDetector::View {
        const qv::Calibration &record = camera->calibration().at(0);
        return {std::make_shared<PolynomialModel>(record.pdcm.at(0)), bodyFromCamera(record)};
    };
}

} // namespace sim
