#include "world/CameraModels.h"

#include <gtest/gtest.h>

using namespace sim;
using Eigen::Vector2d;
using Eigen::Vector3d;

namespace {

const qv::UnifiedCameraModel fisheye{640, 400, 300, 301, 318.2, 203.4, 1.1};
const qv::PolynomialDistortionCameraModel pinhole{
    960, 540, 700, 702, 481.3, 268.1, {0.08, -0.12, 0.0005, -0.0003, 0.03}};

void expectInverse(const CameraModel &model)
{
    const cv::Size size = model.size();
    for (double y = 0; y < size.height; y += 7.3) {
        for (double x = 0; x < size.width; x += 9.1) {
            const Vector3d ray = model.unproject({x, y});
            ASSERT_NEAR(ray.norm(), 1, 1e-9) << x << " " << y;
            const auto pixel = model.project(ray * 3.7);
            ASSERT_TRUE(pixel) << x << " " << y;
            ASSERT_LT((*pixel - Vector2d(x, y)).norm(), 1e-6) << x << " " << y;
        }
    }
}

} // namespace

TEST(WorldCameraModels, projectUndoesUnproject)
{
    expectInverse(UnifiedModel(fisheye));
    expectInverse(UnifiedModel({640, 400, 180, 180, 319.5, 199.5, 0.6}));
    expectInverse(PolynomialModel(pinhole));
    expectInverse(PolynomialModel({640, 480, 520, 520, 319.5, 239.5, {-0.28, 0.07, 0.0002, 0, 0}}));
}

TEST(WorldCameraModels, unifiedProjectsAsTheFormulaSays)
{
    // (1, -2, 2): norm 3, depth 2 + 1.1 * 3 = 5.3.
    const auto pixel = UnifiedModel(fisheye).project({1, -2, 2});
    ASSERT_TRUE(pixel);
    EXPECT_NEAR(pixel->x(), 300 * 1 / 5.3 + 318.2, 1e-9);
    EXPECT_NEAR(pixel->y(), 301 * -2 / 5.3 + 203.4, 1e-9);
}

TEST(WorldCameraModels, polynomialProjectsAsTheFormulaSays)
{
    // x = 0.5, y = 0, r2 = 0.25: radial 1 + 0.02 - 0.0075 + 0.00046875, tangential x: 3 p2 x^2, y: p1 x^2.
    const auto pixel = PolynomialModel(pinhole).project({1, 0, 2});
    ASSERT_TRUE(pixel);
    EXPECT_NEAR(pixel->x(), 700 * (0.5 * 1.01296875 - 0.0003 * 0.75) + 481.3, 1e-9);
    EXPECT_NEAR(pixel->y(), 702 * (0.0005 * 0.25) + 268.1, 1e-9);
}

TEST(WorldCameraModels, unifiedSeesBeyondARightAngle)
{
    EXPECT_TRUE(UnifiedModel(fisheye).project({1, 0, -0.3}));
    EXPECT_FALSE(UnifiedModel(fisheye).project({0.1, 0, -1}));
    EXPECT_FALSE(UnifiedModel(fisheye).project({0, 0, 0}));
}

TEST(WorldCameraModels, polynomialSeesNothingBehindOrPastItsFold)
{
    const PolynomialModel barrel({640, 480, 300, 300, 319.5, 239.5, {-0.3, 0, 0, 0, 0}});
    EXPECT_FALSE(barrel.project({0, 0, -1}));
    EXPECT_FALSE(barrel.project({0, 0, 0}));
    // r (1 - 0.3 r^2) is largest at r = 1.054.
    EXPECT_TRUE(barrel.project({1.0, 0, 1}));
    EXPECT_FALSE(barrel.project({1.2, 0, 1}));
    EXPECT_TRUE(barrel.unproject({319.5 + 300, 239.5}).isZero());
}

TEST(WorldCameraModels, scaledKeepsTheFieldOfViewAcross)
{
    const UnifiedModel model(fisheye);
    for (const cv::Size size :
        {cv::Size(1280, 800), cv::Size(320, 200), cv::Size(640, 480), cv::Size(333, 211)}) {
        const auto other = model.scaled(size.width, size.height);
        EXPECT_EQ(other->size(), size);
        const double middle = 200 - 0.5;
        const Vector3d left = model.unproject({-0.5, middle});
        EXPECT_TRUE(other->unproject({-0.5, size.height / 2.0 - 0.5}).isApprox(left, 1e-9));
        const Vector3d right = model.unproject({639.5, middle});
        EXPECT_TRUE(other->unproject({size.width - 0.5, size.height / 2.0 - 0.5}).isApprox(right, 1e-9));
    }
    const auto half = PolynomialModel(pinhole).scaled(480, 270);
    EXPECT_TRUE(
        half->unproject({99.5, 49.5}).isApprox(PolynomialModel(pinhole).unproject({199.5, 99.5}), 1e-9));
}
