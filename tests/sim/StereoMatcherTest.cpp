#include "device/StereoMatcher.h"

#include <cstring>
#include <gtest/gtest.h>

using namespace sim;

namespace {

constexpr double moments[] = {2.5, 9.0, 21.3};

struct StereoMatcherTest : ::testing::Test {
    const std::shared_ptr<const SharedWorld> world = SharedWorld::get(1);
    const FisheyeRig rig = FisheyeRig::stereo(640, 400);
    StereoMatcher matcher{world, rig};
    StereoMatcher::Setup setup{{320, 200}, true, 1, false};
    cv::Mat z;

    Pose camera(std::size_t index, double t) const
    {
        return world->trajectory().pose(t) * rig.mounts[index].bodyFromCamera;
    }

    std::optional<Hit> truth(int x, int y, double t, double *depth = nullptr) const
    {
        const Pose left = camera(0, t);
        const Eigen::Vector3d ray = matcher.lens(setup)->unproject(Eigen::Vector2d(x, y));
        const auto hit = world->scene()->cast(left.translation(), left.linear() * ray, t);
        if (hit && depth)
            *depth = hit->distance * ray.z();
        return hit;
    }

    /// Every depth that has been found is that of the ray's first hit, to a millimetre.
    void expectTruth()
    {
        for (const double t : moments) {
            matcher.match(t, setup, z);
            ASSERT_EQ(z.size(), setup.size);
            int found = 0;
            int wrong = 0;
            for (int y = 1; y < z.rows; y += 3) {
                for (int x = 1; x < z.cols; x += 3) {
                    if (z.at<float>(y, x) <= 0)
                        continue;
                    double depth = 0;
                    ASSERT_TRUE(truth(x, y, t, &depth));
                    ++found;
                    wrong += std::abs(static_cast<double>(z.at<float>(y, x)) - depth) > 0.001;
                }
            }
            EXPECT_GT(found, 2000) << t;
            EXPECT_LE(wrong, found / 500) << "but for rays that graze an edge, at " << t;
        }
    }

    double holesOn(const std::string &part, double &pixels)
    {
        cv::Mat depth;
        cv::Mat ids;
        Renderer renderer(world->scene(), matcher.lens(setup));
        double holes = 0;
        for (double t = 1; t < 40; t += 3) {
            matcher.match(t, setup, z);
            renderer.depth(camera(0, t), t, depth, &ids);
            // The left rim has no partner in the right picture.
            for (int y = 0; y < z.rows; ++y) {
                for (int x = z.cols / 8; x < z.cols; ++x) {
                    const int id = ids.at<short>(y, x);
                    if (id < 0 || id >= static_cast<int>(world->scene()->surfaces().size())
                        || world->scene()->surfaces()[static_cast<std::size_t>(id)].part != part)
                        continue;
                    ++pixels;
                    holes += z.at<float>(y, x) <= 0;
                }
            }
        }
        return holes / pixels;
    }

    double holesOn(const std::string &part)
    {
        double pixels = 0;
        const double share = holesOn(part, pixels);
        EXPECT_GT(pixels, 1000) << part;
        return share;
    }
};

} // namespace

TEST_F(StereoMatcherTest, theFocalLengthIsThatOfAPinholeSoWide)
{
    EXPECT_NEAR(StereoMatcher::focalLength(640, 90), 320, 1e-9);
    EXPECT_NEAR(StereoMatcher::focalLength(640, 96), 288.1293, 1e-3) << "320 / tan(48 degrees)";
    for (const double none : {0.0, -5.0, 180.0, 300.0, std::nan("")})
        EXPECT_EQ(StereoMatcher::focalLength(640, none), 0);
}

TEST_F(StereoMatcherTest, depthIsThatOfTheRaysFirstHit)
{
    expectTruth();
}

TEST_F(StereoMatcherTest, depthIsThatOfTheRaysFirstHitWhenZoomed)
{
    setup.zoom = 2.5;
    expectTruth();
}

TEST_F(StereoMatcherTest, depthIsThatOfTheRaysFirstHitThroughTheFisheyeLens)
{
    setup.dewarp = false;
    expectTruth();
}

TEST_F(StereoMatcherTest, withoutDewarpingThePictureIsThatOfTheLeftCamera)
{
    setup.dewarp = false;
    const auto lens = matcher.lens(setup);
    const Eigen::Vector3d edge = lens->unproject({0, 99.5});
    EXPECT_GT(std::atan2(-edge.x(), edge.z()), 60 * M_PI / 180) << "wider than any 96 degrees";
    setup.dewarp = true;
    const Eigen::Vector3d flat = matcher.lens(setup)->unproject({-0.5, 99.5});
    EXPECT_NEAR(std::atan2(-flat.x(), flat.z()), 48 * M_PI / 180, 1e-6);
}

TEST_F(StereoMatcherTest, whatTheRightCameraDoesNotSeeIsAHole)
{
    setup.thorough = true;
    int hidden = 0;
    int hiddenFound = 0;
    int shown = 0;
    int shownFound = 0;
    for (double t = 1; t < 31; t += 5) {
        matcher.match(t, setup, z);
        const Eigen::Vector3d right = camera(1, t).translation();
        for (int y = 2; y < z.rows; y += 2) {
            for (int x = 2; x < z.cols; x += 2) {
                const auto hit = truth(x, y, t);
                ASSERT_TRUE(hit);
                const Eigen::Vector3d there = camera(1, t).inverse() * hit->point;
                const auto pixel = matcher.lens(setup)->project(there);
                // Neither the rim of the picture nor surfaces in one another's corner.
                if (!pixel || pixel->x() < 2)
                    continue;
                if (world->scene()->sees(right, hit->point, t, 0.005)) {
                    ++shown;
                    shownFound += z.at<float>(y, x) > 0;
                } else if (!world->scene()->sees(right, hit->point, t, 0.3)) {
                    ++hidden;
                    hiddenFound += z.at<float>(y, x) > 0;
                }
            }
        }
    }
    EXPECT_GT(hidden, 100);
    EXPECT_LT(hiddenFound, hidden / 10) << hidden;
    EXPECT_GT(shownFound, shown * 8 / 10) << shown;
}

TEST_F(StereoMatcherTest, theLeftRimHasNoPartnerInTheRightPicture)
{
    matcher.match(3, setup, z);
    EXPECT_EQ(cv::countNonZero(z.col(0)), 0);
    EXPECT_GT(cv::countNonZero(z.colRange(z.cols / 2, z.cols)), 0);
}

TEST_F(StereoMatcherTest, plainSurfacesHaveHolesAndColouredOnesFew)
{
    const double wall = holesOn("wall");
    EXPECT_GT(wall, 0.2);
    EXPECT_LT(wall, 0.95) << "pictures hang on it and it isn't dead plain";
    EXPECT_LT(holesOn("carpet"), wall / 2);
    EXPECT_LT(holesOn("radiator"), wall / 2);
    setup.thorough = true;
    EXPECT_LT(holesOn("wall"), 0.8 * wall);
}

TEST_F(StereoMatcherTest, zoomMagnifiesThePicture)
{
    cv::Mat near;
    setup.zoom = 2;
    setup.thorough = true;
    matcher.match(5, setup, near);
    setup.zoom = 1;
    matcher.match(5, setup, z);
    // Half way from the middle, ray by ray; the middle is at 159.5.
    int compared = 0;
    int equal = 0;
    for (int x = 1; x < 160; ++x) {
        const int wide = 80 + x / 2;
        const float a = near.at<float>(99, x | 1);
        const float b = z.at<float>(99, wide);
        if (a <= 0 || b <= 0)
            continue;
        ++compared;
        equal += std::abs(a / b - 1) < 0.03F;
    }
    EXPECT_GT(compared, 40);
    EXPECT_GT(equal, compared * 9 / 10);
}

TEST_F(StereoMatcherTest, sameSeedAndTimeGiveTheSameBytes)
{
    StereoMatcher other(SharedWorld::get(1), rig);
    cv::Mat again;
    matcher.match(1.5, setup, z);
    matcher.match(7.25, setup, z);
    other.match(7.25, setup, again);
    ASSERT_TRUE(z.isContinuous() && again.isContinuous());
    EXPECT_EQ(std::memcmp(z.data, again.data, z.total() * z.elemSize()), 0);
    StereoMatcher elsewhere(SharedWorld::get(2), rig);
    elsewhere.match(7.25, setup, again);
    EXPECT_GT(cv::norm(z, again, cv::NORM_L1), 100);
}
