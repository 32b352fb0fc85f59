#include "world/UnifiedModel.h"

#include <cmath>

namespace sim {

UnifiedModel::UnifiedModel(const qv::UnifiedCameraModel &parameters)
    : m_parameters(parameters)
{
}

Eigen::Vector3d UnifiedModel::unproject(const Eigen::Vector2d &pixel) const
{
    const double xi = m_parameters.xi;
    const double x = (pixel.x() - m_parameters.u0) / m_parameters.fx;
    const double y = (pixel.y() - m_parameters.v0) / m_parameters.fy;
    const double r2 = x * x + y * y;
    const double discriminant = 1 + (1 - xi * xi) * r2;
    if (!(discriminant >= 0))
        return Eigen::Vector3d::Zero();
    const double eta = (xi + std::sqrt(discriminant)) / (r2 + 1);
    return {eta * x, eta * y, eta - xi};
}

std::optional<Eigen::Vector2d> UnifiedModel::project(const Eigen::Vector3d &point) const
{
    const double xi = m_parameters.xi;
    const double norm = point.norm();
    // Beyond this cone two rays would share a pixel, or the denominator leaves its sign.
    const double limit = xi > 1 ? 1 / xi : xi;
    if (!(norm > 0) || point.z() <= -limit * norm)
        return std::nullopt;
    const double depth = point.z() + xi * norm;
    if (!(depth > 0))
        return std::nullopt;
    return Eigen::Vector2d(m_parameters.fx * point.x() / depth + m_parameters.u0,
        m_parameters.fy * point.y() / depth + m_parameters.v0);
}

std::shared_ptr<CameraModel> UnifiedModel::scaled(int width, int height) const
{
    const double factor = double(width) / m_parameters.w;
    qv::UnifiedCameraModel out = m_parameters;
    out.w = width;
    out.h = height;
    out.fx *= factor;
    out.fy *= factor;
    out.u0 = (m_parameters.u0 + 0.5) * factor - 0.5;
    out.v0 = (m_parameters.v0 + 0.5 - m_parameters.h / 2.0) * factor + height / 2.0 - 0.5;
    return std::make_shared<UnifiedModel>(out);
}

} // namespace sim
