#pragma once

#include "device/qv/Records.h"

#include <Eigen/Core>
#include <memory>
#include <opencv2/core.hpp>
#include <optional>

namespace sim {

/// The lens and picture size of one camera. Pixel centres are at integer coordinates; the camera's frame is x
/// right, y down, z forward. Immutable: any thread may ask.
class CameraModel : public qv::CameraModel {
public:
    int width() override { return size().width; }
    int height() override { return size().height; }

    virtual cv::Size size() const = 0;
    /// The unit ray of a pixel, in the camera's frame; zero where the lens has no ray.
    virtual Eigen::Vector3d unproject(const Eigen::Vector2d &pixel) const = 0;
    /// The pixel of a point in the camera's frame; nothing where the lens can't see it. Not clipped to the
    /// picture.
    virtual std::optional<Eigen::Vector2d> project(const Eigen::Vector3d &point) const = 0;
    /// The same lens at another picture size, as a sensor crops or bins: the field of view in x stays.
    virtual std::shared_ptr<CameraModel> scaled(int width, int height) const = 0;
};

} // namespace sim
