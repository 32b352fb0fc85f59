#pragma once

#include "world/CameraModel.h"

namespace sim {

/// Pinhole with the radial and tangential distortion k1, k2, p1, p2, k3 of Brown, "Close-range camera
/// calibration", 1971. The inverse is found by Newton's method.
class PolynomialModel : public CameraModel {
public:
    explicit PolynomialModel(const qv::PolynomialDistortionCameraModel &parameters);

    const qv::PolynomialDistortionCameraModel &parameters() const { return m_parameters; }

    cv::Size size() const override { return {m_parameters.w, m_parameters.h}; }
    Eigen::Vector3d unproject(const Eigen::Vector2d &pixel) const override;
    std::optional<Eigen::Vector2d> project(const Eigen::Vector3d &point) const override;
    std::shared_ptr<CameraModel> scaled(int width, int height) const override;

private:
    Eigen::Vector2d distort(const Eigen::Vector2d &ideal, Eigen::Matrix2d *jacobian = nullptr) const;

    qv::PolynomialDistortionCameraModel m_parameters;
    double m_radiusLimit2 = 0; ///< squared tangent beyond which the polynomial folds back
};

} // namespace sim
