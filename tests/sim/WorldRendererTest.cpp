#include "world/CameraModels.h"
#include "world/Renderer.h"
#include "world/Trajectory.h"

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <random>

using namespace sim;

namespace {

std::shared_ptr<const Scene> room()
{
    static const auto shared = std::make_shared<Scene>(1);
    return shared;
}

std::shared_ptr<CameraModel> fisheyeModel(int width = 640, int height = 400)
{
    return UnifiedModel({640, 400, 300, 300, 319.5, 199.5, 1.0}).scaled(width, height);
}

std::shared_ptr<CameraModel> pinholeModel(int width = 640, int height = 480)
{
    return PolynomialModel({640, 480, 520, 520, 319.5, 239.5, {0.08, -0.12, 0.0005, -0.0003, 0.03}})
        .scaled(width, height);
}

/// Casts random pixels one by one and counts where the picture says otherwise.
void expectAsCast(const std::shared_ptr<CameraModel> &model, const Pose &pose, double t, int pixels)
{
    Renderer renderer(room(), model);
    cv::Mat depth;
    cv::Mat ids;
    renderer.depth(pose, t, depth, &ids);
    ASSERT_EQ(depth.size(), model->size());
    std::mt19937 random(5);
    int wrong = 0;
    for (int i = 0; i < pixels; ++i) {
        const int x = static_cast<int>(random() % static_cast<unsigned>(depth.cols));
        const int y = static_cast<int>(random() % static_cast<unsigned>(depth.rows));
        const Eigen::Vector3d ray = model->unproject({x, y});
        const auto hit = room()->cast(pose.translation(), pose.linear() * ray, t);
        const double expected = hit ? hit->distance * ray.z() : 0;
        const int id = hit ? hit->surface : -1;
        wrong += std::abs(depth.at<float>(y, x) - expected) > 0.01 || ids.at<short>(y, x) != id;
    }
    EXPECT_LE(wrong, pixels / 1000) << "at " << t;
}

Pose randomPose(unsigned seed)
{
    std::mt19937 random(seed);
    auto unit = [&random] { return static_cast<double>(random() >> 8) / double(1 << 23) - 1; };
    Pose pose = Pose::Identity();
    pose.linear() = Eigen::Quaterniond(unit(), unit(), unit(), unit()).normalized().toRotationMatrix();
    pose.translation() = Eigen::Vector3d(3.2 * unit(), 0.9 * unit(), 2.8 * unit());
    return pose;
}

} // namespace

TEST(WorldRenderer, picturesEqualTheCastOfEachPixel)
{
    const Trajectory trajectory;
    for (const double t : {0.0, 13.0, 41.5, 77.0}) {
        expectAsCast(fisheyeModel(), trajectory.pose(t), t, 4000);
        expectAsCast(pinholeModel(), trajectory.pose(t), t, 4000);
    }
}

TEST(WorldRenderer, picturesEqualTheCastFromAnywhere)
{
    for (unsigned seed = 1; seed < 9; ++seed)
        expectAsCast(seed % 2 ? fisheyeModel() : pinholeModel(), randomPose(seed), 3.0 * seed, 3000);
}

TEST(WorldRenderer, personIsDrawnWhereTheyAre)
{
    const double t = 5;
    const Scene::PersonState person = room()->person(t);
    Pose pose = Pose::Identity();
    const Eigen::Vector3d toward = person.bounds.center().normalized();
    pose.linear() =
        Eigen::AngleAxisd(std::atan2(toward.x(), toward.z()), Eigen::Vector3d::UnitY()).toRotationMatrix();
    const auto model = fisheyeModel();
    expectAsCast(model, pose, t, 6000);
    Renderer renderer(room(), model);
    cv::Mat depth;
    cv::Mat ids;
    renderer.depth(pose, t, depth, &ids);
    EXPECT_GT(cv::countNonZero(ids >= room()->firstPersonId()), 1000);
    const auto nose = model->project(pose.inverse() * person.keyPoints[1]);
    ASSERT_TRUE(nose);
    EXPECT_GE(ids.at<short>(static_cast<int>(nose->y() + 0.5), static_cast<int>(nose->x() + 0.5)),
        room()->firstPersonId());
}

TEST(WorldRenderer, oddSizesAndRaylessPixelsWork)
{
    const Trajectory trajectory;
    for (const cv::Size size :
        {cv::Size(1, 1), cv::Size(7, 5), cv::Size(65, 63), cv::Size(333, 211), cv::Size(8, 129)}) {
        expectAsCast(fisheyeModel(size.width, size.height), trajectory.pose(9), 9, 500);
        Renderer renderer(room(), pinholeModel(size.width, size.height));
        cv::Mat grey;
        cv::Mat rgb;
        renderer.grey(trajectory.pose(9), 9, grey);
        renderer.color(trajectory.pose(9), 9, rgb);
        EXPECT_EQ(grey.size(), size);
        EXPECT_EQ(rgb.size(), size);
    }
    // Beyond r = 1 / sqrt(xi^2 - 1) this lens has no ray: the corners stay black.
    const auto narrow =
        std::make_shared<UnifiedModel>(qv::UnifiedCameraModel{200, 200, 80, 80, 99.5, 99.5, 1.5});
    ASSERT_TRUE(narrow->unproject({0, 0}).isZero());
    expectAsCast(narrow, trajectory.pose(3), 3, 2000);
    Renderer renderer(room(), narrow);
    cv::Mat grey;
    cv::Mat depth;
    cv::Mat ids;
    renderer.grey(trajectory.pose(3), 3, grey);
    renderer.depth(trajectory.pose(3), 3, depth, &ids);
    EXPECT_EQ(grey.at<unsigned char>(0, 0), 0);
    EXPECT_EQ(depth.at<float>(0, 0), 0);
    EXPECT_EQ(ids.at<short>(0, 0), -1);
    EXPECT_GT(grey.at<unsigned char>(100, 100), 0);
}

TEST(WorldRenderer, sameTimeGivesTheSameBytes)
{
    const Pose pose = Trajectory().pose(21);
    cv::Mat pictures[2][3];
    for (auto &set : pictures) {
        const auto own = std::make_shared<Scene>(1);
        Renderer renderer(own, fisheyeModel());
        renderer.grey(Trajectory().pose(4), 4, set[0]);
        renderer.grey(pose, 21, set[0]);
        renderer.color(pose, 21, set[1]);
        renderer.depth(pose, 21, set[2]);
    }
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(cv::norm(pictures[0][i], pictures[1][i], cv::NORM_INF), 0);
}

TEST(WorldRenderer, greyIsTheGreyOfColor)
{
    Renderer renderer(room(), fisheyeModel());
    cv::Mat grey;
    cv::Mat rgb;
    const Pose pose = Trajectory().pose(17);
    renderer.grey(pose, 17, grey);
    renderer.color(pose, 17, rgb);
    ASSERT_EQ(grey.type(), CV_8UC1);
    ASSERT_EQ(rgb.type(), CV_8UC3);
    cv::Mat expected;
    cv::cvtColor(rgb, expected, cv::COLOR_RGB2GRAY);
    EXPECT_LE(cv::norm(grey, expected, cv::NORM_INF), 3);
}

TEST(WorldRenderer, gainScalesAndSaturates)
{
    Renderer renderer(room(), fisheyeModel());
    cv::Mat plain;
    cv::Mat dim;
    cv::Mat bright;
    const Pose pose = Trajectory().pose(2);
    renderer.grey(pose, 2, plain);
    renderer.grey(pose, 2, dim, 0.5);
    renderer.grey(pose, 2, bright, 4);
    EXPECT_NEAR(cv::mean(dim)[0], cv::mean(plain)[0] / 2, 1);
    EXPECT_GT(cv::countNonZero(bright == 255), bright.rows * bright.cols / 4);
    for (int x = 0; x < plain.cols; ++x)
        EXPECT_EQ(bright.at<unsigned char>(200, x), std::min(255, 4 * plain.at<unsigned char>(200, x)));
}

TEST(WorldRenderer, picturesAreWellExposedAndTextured)
{
    Renderer renderer(room(), fisheyeModel());
    const Trajectory trajectory;
    for (double t = 0; t < 90; t += 7.5) {
        cv::Mat grey;
        renderer.grey(trajectory.pose(t), t, grey);
        cv::Scalar mean;
        cv::Scalar deviation;
        cv::meanStdDev(grey, mean, deviation);
        EXPECT_GT(mean[0], 60) << t;
        EXPECT_LT(mean[0], 200) << t;
        EXPECT_GT(deviation[0], 20) << t;
    }
}

TEST(WorldRenderer, pictureMovesWithTheCamera)
{
    // A point of a texture keeps its brightness between two views: compare through the geometry.
    const auto model = pinholeModel();
    Renderer renderer(room(), model);
    const Trajectory trajectory;
    const double t = 30;
    const Pose first = trajectory.pose(t);
    const Pose second = trajectory.pose(t + 0.4);
    cv::Mat a;
    cv::Mat b;
    cv::Mat z;
    renderer.grey(first, t, a);
    renderer.depth(first, t, z);
    renderer.grey(second, t, b);
    int compared = 0;
    int equal = 0;
    for (int y = 8; y < a.rows; y += 8) {
        for (int x = 8; x < a.cols; x += 8) {
            const Eigen::Vector3d ray = model->unproject({x, y});
            const Eigen::Vector3d point = first * Eigen::Vector3d(ray * (z.at<float>(y, x) / ray.z()));
            const auto pixel = model->project(second.inverse() * point);
            if (!pixel || pixel->x() < 0 || pixel->y() < 0 || pixel->x() > b.cols - 1
                || pixel->y() > b.rows - 1)
                continue;
            ++compared;
            equal += std::abs(a.at<unsigned char>(y, x)
                         - b.at<unsigned char>(int(pixel->y() + 0.5), int(pixel->x() + 0.5)))
                < 12;
        }
    }
    ASSERT_GT(compared, 2000);
    EXPECT_GT(equal, compared * 85 / 100);
}
