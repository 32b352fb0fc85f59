#include "device/FisheyeCalibration.h"

#include <Eigen/Dense>
#include <cmath>

namespace sim {

void setExtrinsics(qv::Calibration &record, const Pose &bodyFromCamera)
{
    for (int row = 0; row < 3; ++row) {
        record.translation[row] = bodyFromCamera.translation()[row];
        for (int column = 0; column < 3; ++column)
            record.rotation[3 * row + column] = bodyFromCamera.linear()(row, column);
    }
}

qv::PolynomialDistortionCameraModel nearestPolynomial(const qv::UnifiedCameraModel &lens, double maxAngle)
{
    // r / f = t + k1 t^3 + k2 t^5 + k3 t^7 with t = tan(angle), linear in the three.
    constexpr int samples = 200;
    Eigen::MatrixXd powers(samples, 3);
    Eigen::VectorXd rest(samples);
    for (int i = 0; i < samples; ++i) {
        const double angle = maxAngle * (i + 1) / samples;
        const double t = std::tan(angle);
        powers.row(i) << std::pow(t, 3), std::pow(t, 5), std::pow(t, 7);
        rest[i] = (1 + lens.xi) * std::sin(angle) / (std::cos(angle) + lens.xi) - t;
    }
    const Eigen::Vector3d k = powers.colPivHouseholderQr().solve(rest);
    qv::PolynomialDistortionCameraModel model;
    model.w = lens.w;
    model.h = lens.h;
    model.fx = lens.fx / (1 + lens.xi);
    model.fy = lens.fy / (1 + lens.xi);
    model.u0 = lens.u0;
    model.v0 = lens.v0;
    model.distor[0] = k[0];
    model.distor[1] = k[1];
    model.distor[4] = k[2];
    return model;
}

qv::EnhancedUnifiedCameraModel enhanced(const qv::UnifiedCameraModel &lens)
{
    qv::EnhancedUnifiedCameraModel model;
    model.w = lens.w;
    model.h = lens.h;
    model.fx = lens.fx / (1 + lens.xi);
    model.fy = lens.fy / (1 + lens.xi);
    model.u0 = lens.u0;
    model.v0 = lens.v0;
    model.alpha = lens.xi / (1 + lens.xi);
    model.beta = 1;
    return model;
}

std::vector<qv::CalibrationEx> calibrate(const FisheyeRig &rig, int width, int height)
{
    std::vector<qv::CalibrationEx> records;
    for (const FisheyeRig::Mount &mount : rig.mounts) {
        const auto scaled = UnifiedModel(mount.lens).scaled(width, height);
        const qv::UnifiedCameraModel lens = static_cast<const UnifiedModel &>(*scaled).parameters();
        qv::CalibrationEx record;
        setExtrinsics(record, mount.bodyFromCamera);
        record.ucm = {lens};
        record.pdcm = {nearestPolynomial(lens)};
        record.seucm = {enhanced(lens)};
        record.cameraModels = {scaled};
        records.push_back(std::move(record));
    }
    return records;
}

} // namespace sim
