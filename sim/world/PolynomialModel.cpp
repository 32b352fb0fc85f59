#include "world/PolynomialModel.h"

#include <Eigen/LU>
#include <cmath>

namespace sim {
namespace {

constexpr double widestTangent = 8; ///< nearly 83 degrees off the axis; a pinhole ends well before

double foldingRadius2(const double *k)
{
    const double step = 0.005;
    for (double r = step; r < widestTangent; r += step) {
        const double r2 = r * r;
        if (1 + r2 * (3 * k[0] + r2 * (5 * k[1] + r2 * 7 * k[4])) <= 0)
            return (r - step) * (r - step);
    }
    return widestTangent * widestTangent;
}

} // namespace

PolynomialModel::PolynomialModel(const qv::PolynomialDistortionCameraModel &parameters)
    : m_parameters(parameters)
    , m_radiusLimit2(foldingRadius2(parameters.distor))
{
}

Eigen::Vector2d PolynomialModel::distort(const Eigen::Vector2d &ideal, Eigen::Matrix2d *jacobian) const
{
    const auto &[k1, k2, p1, p2, k3] = m_parameters.distor;
    const double x = ideal.x();
    const double y = ideal.y();
    const double r2 = x * x + y * y;
    const double radial = 1 + r2 * (k1 + r2 * (k2 + r2 * k3));
    if (jacobian) {
        const double slope = 2 * (k1 + r2 * (2 * k2 + r2 * 3 * k3)); // d radial / d x is slope * x
        const double mixed = slope * x * y + 2 * p1 * x + 2 * p2 * y;
        *jacobian << radial + slope * x * x + 2 * p1 * y + 6 * p2 * x, mixed, mixed,
            radial + slope * y * y + 6 * p1 * y + 2 * p2 * x;
    }
    return {x * radial + 2 * p1 * x * y + p2 * (r2 + 2 * x * x),
        y * radial + p1 * (r2 + 2 * y * y) + 2 * p2 * x * y};
}

Eigen::Vector3d PolynomialModel::unproject(const Eigen::Vector2d &pixel) const
{
    const Eigen::Vector2d wanted(
        (pixel.x() - m_parameters.u0) / m_parameters.fx, (pixel.y() - m_parameters.v0) / m_parameters.fy);
    Eigen::Vector2d ideal = wanted;
    for (int i = 0; i < 20; ++i) {
        Eigen::Matrix2d jacobian;
        const Eigen::Vector2d error = distort(ideal, &jacobian) - wanted;
        if (error.squaredNorm() < 1e-26)
            break;
        if (!(std::abs(jacobian.determinant()) > 1e-9))
            return Eigen::Vector3d::Zero();
        ideal -= jacobian.inverse() * error;
    }
    const bool found =
        (distort(ideal) - wanted).squaredNorm() < 1e-20 && ideal.squaredNorm() <= m_radiusLimit2;
    return found ? ideal.homogeneous().normalized().eval() : Eigen::Vector3d::Zero();
}

std::optional<Eigen::Vector2d> PolynomialModel::project(const Eigen::Vector3d &point) const
{
    if (!(point.z() > 0))
        return std::nullopt;
    const Eigen::Vector2d ideal = point.hnormalized();
    if (!(ideal.squaredNorm() <= m_radiusLimit2))
        return std::nullopt;
    const Eigen::Vector2d bent = distort(ideal);
    return Eigen::Vector2d(
        m_parameters.fx * bent.x() + m_parameters.u0, m_parameters.fy * bent.y() + m_parameters.v0);
}

std::shared_ptr<CameraModel> PolynomialModel::scaled(int width, int height) const
{
    const double factor = double(width) / m_parameters.w;
    qv::PolynomialDistortionCameraModel out = m_parameters;
    out.w = width;
    out.h = height;
    out.fx *= factor;
    out.fy *= factor;
    out.u0 = (m_parameters.u0 + 0.5) * factor - 0.5;
    out.v0 = (m_parameters.v0 + 0.5 - m_parameters.h / 2.0) * factor + height / 2.0 - 0.5;
    return std::make_shared<PolynomialModel>(out);
}

} // namespace sim
