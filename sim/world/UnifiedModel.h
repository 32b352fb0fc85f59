#pragma once

#include "world/CameraModel.h"

namespace sim {

/// The unified (mirror) model of Mei and Rives, "Single view point omnidirectional camera calibration from
/// planar grids", 2007, without its distortion terms: it holds fields of view beyond 180 degrees.
class UnifiedModel : public CameraModel {
public:
    explicit UnifiedModel(const qv::UnifiedCameraModel &parameters);

    const qv::UnifiedCameraModel &parameters() const { return m_parameters; }

    cv::Size size() const override { return {m_parameters.w, m_parameters.h}; }
    Eigen::Vector3d unproject(const Eigen::Vector2d &pixel) const override;
    std::optional<Eigen::Vector2d> project(const Eigen::Vector3d &point) const override;
    std::shared_ptr<CameraModel> scaled(int width, int height) const override;

private:
    qv::UnifiedCameraModel m_parameters;
};

} // namespace sim
