#include "device/FisheyeCalibration.h"
#include "device/RenderedFisheye.h"
#include "sim/ColorTofFixture.h"
#include "world/UnifiedModel.h"

using namespace sim;

// All sensors of a device show one world: what one finds at a pixel, the other finds at the pixel that the
// calibrations say.

namespace {

struct Sight {
    explicit Sight(const qv::Calibration &calibration, const SharedWorld &world, double t)
        : lens(calibration.pdcm.at(0))
        , pose(world.trajectory().pose(t) * poseOf(calibration))
    {
    }

    PolynomialModel lens;
    Pose pose; ///< worldFromCamera

    Eigen::Vector3d point(double x, double y, double z) const
    {
        const Eigen::Vector3d ray = lens.unproject({x, y});
        return pose * Eigen::Vector3d(ray * (z / ray.z()));
    }

    std::optional<Eigen::Vector2d> pixel(const Eigen::Vector3d &point) const
    {
        const auto found = lens.project(pose.inverse() * point);
        const cv::Size size = lens.size();
        const bool inside = found && found->x() >= 1 && found->y() >= 1 && found->x() <= size.width - 2
            && found->y() <= size.height - 2;
        return inside ? found : std::nullopt;
    }

    /// What the scene has behind the pixel nearest to a position in the picture.
    std::optional<Hit> behind(const Scene &scene, const Eigen::Vector2d &position, double t) const
    {
        const Eigen::Vector3d ray = lens.unproject({std::round(position.x()), std::round(position.y())});
        return scene.cast(pose.translation(), pose.linear() * ray, t);
    }
};

struct CrossSensorTest : ::testing::Test {
    std::shared_ptr<const SharedWorld> world = SharedWorld::get(1);
    RenderedTof tof{world, tofSetupFor({640, 480}), std::make_shared<Exposure>()};
    RenderedColor color{world, colorSetupFor({1280, 720})};

    cv::Mat depth(double t, TofSource::Wanted wanted = {})
    {
        tof.setWorkMode(0);
        EXPECT_TRUE(tof.expose(t, wanted, frames));
        return frames.depth;
    }

    TofSource::Frames frames;
};

/// Away from edges, where a pixel and its neighbour are things apart.
bool smooth(const cv::Mat &depth, int x, int y)
{
    double low = 0;
    double high = 0;
    cv::minMaxLoc(depth(cv::Rect(x - 2, y - 2, 5, 5)), &low, &high);
    return low > 0 && high - low < 0.06;
}

} // namespace

TEST_F(CrossSensorTest, aDepthPixelFindsItsSurfaceInTheColourPicture)
{
    for (const double t : {2.5, 11.0, 34.0}) {
        const cv::Mat z = depth(t);
        const Sight from(tof.calibration().at(0), *world, t);
        const Sight to(color.calibration().at(0), *world, t);
        int seen = 0;
        int same = 0;
        for (int y = 8; y < z.rows - 8; y += 6) {
            for (int x = 8; x < z.cols - 8; x += 6) {
                if (!smooth(z, x, y))
                    continue;
                const Eigen::Vector3d point = from.point(x, y, z.at<float>(y, x));
                const auto pixel = to.pixel(point);
                if (!pixel || !world->scene()->sees(to.pose.translation(), point, t, 0.03))
                    continue;
                const auto hit = to.behind(*world->scene(), *pixel, t);
                ASSERT_TRUE(hit);
                ++seen;
                // To a centimetre, and to what a pixel of rounding makes of it where the surface is seen at
                // a slant.
                const Eigen::Vector3d sight = (hit->point - to.pose.translation()).normalized();
                const double slant = std::max(0.1, std::abs(sight.dot(hit->normal)));
                const double pixelSize = hit->distance / to.lens.parameters().fx;
                same += std::abs((hit->point - point).dot(hit->normal)) < 0.01
                    && (hit->point - point).norm() < 0.01 + pixelSize / slant;
            }
        }
        EXPECT_GT(seen, 2000) << t;
        EXPECT_GE(same, seen * 995 / 1000) << t << ", of " << seen;
    }
}

TEST_F(CrossSensorTest, theColourPictureShowsThereWhatAlignedColoursShow)
{
    const double t = 11;
    const cv::Mat z = depth(t, {false, true});
    const cv::Mat aligned = frames.color;
    qv::ColorImage record;
    ASSERT_TRUE(color.picture(t, record));
    const cv::Mat picture = rgbOf(record);
    const Sight from(tof.calibration().at(0), *world, t);
    const Sight to(color.calibration().at(0), *world, t);
    const auto correlation = [&](double shift) {
        std::vector<float> a;
        std::vector<float> b;
        for (int y = 8; y < z.rows - 8; y += 2) {
            for (int x = 8; x < z.cols - 8; x += 2) {
                const Eigen::Vector3d point = from.point(x, y, z.at<float>(y, x));
                const auto pixel = z.at<float>(y, x) > 0 ? to.pixel(point) : std::nullopt;
                if (!pixel || !smooth(z, x, y) || pixel->x() + shift > picture.cols - 2)
                    continue;
                const cv::Point at(static_cast<int>(std::lround(pixel->x() + shift)),
                    static_cast<int>(std::lround(pixel->y())));
                for (int c = 0; c < 3; ++c) {
                    a.push_back(aligned.at<cv::Vec3b>(y, x)[c]);
                    b.push_back(picture.at<cv::Vec3b>(at)[c]);
                }
            }
        }
        cv::Mat result;
        cv::matchTemplate(cv::Mat(a, false), cv::Mat(b, false), result, cv::TM_CCOEFF_NORMED);
        return result.at<float>(0);
    };
    const float here = correlation(0);
    EXPECT_GT(here, 0.97);
    EXPECT_GT(here, correlation(4)) << "pixels beside it the two pictures agree less";
}

TEST_F(CrossSensorTest, keyPointsLieAtTheDepthThatTheTofCameraReads)
{
    RenderedFisheye fisheye(world, FisheyeRig::stereo(640, 400), 50, 1);
    for (const double t : {2.5, 11.0, 34.0}) {
        const cv::Mat z = depth(t);
        const Sight tofSight(tof.calibration().at(0), *world, t);
        const UnifiedModel lens(fisheye.calibration().at(0).ucm.at(0));
        const Pose fisheyePose = world->trajectory().pose(t) * poseOf(fisheye.calibration().at(0));
        const auto points = fisheye.keyPoints(t, 250).at(0);
        const auto ids = world->features().visible(lens, fisheyePose, t, 250);
        ASSERT_EQ(points.size(), 2 * ids.size());
        int compared = 0;
        int right = 0;
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const Eigen::Vector3d point =
                world->features().all()[static_cast<std::size_t>(ids[i].first)].position;
            const auto inFisheye = lens.project(fisheyePose.inverse() * point);
            ASSERT_TRUE(inFisheye);
            EXPECT_NEAR(inFisheye->x(), points[2 * i], 0.51);
            EXPECT_NEAR(inFisheye->y(), points[2 * i + 1], 0.51);
            const auto pixel = tofSight.pixel(point);
            if (!pixel || !world->scene()->sees(tofSight.pose.translation(), point, t, 0.01))
                continue;
            const int x = static_cast<int>(std::lround(pixel->x()));
            const int y = static_cast<int>(std::lround(pixel->y()));
            if (x < 3 || y < 3 || x > z.cols - 4 || y > z.rows - 4 || !smooth(z, x, y))
                continue;
            ++compared;
            // The pixel's centre is up to half a pixel beside the point.
            double low = 0;
            double high = 0;
            cv::minMaxLoc(z(cv::Rect(x - 1, y - 1, 3, 3)), &low, &high);
            const double truth = (tofSight.pose.inverse() * point).z();
            right += truth > low - 0.01 && truth < high + 0.01;
        }
        EXPECT_GT(compared, 15) << t;
        EXPECT_EQ(right, compared) << t;
    }
}

TEST_F(CrossSensorTest, bothColourCamerasSeeTheSameThings)
{
    RenderedColor::Setup setup = colorSetupFor({1280, 720});
    setup.mount = PinholeMount::secondColor();
    RenderedColor second(world, setup);
    const double t = 11;
    qv::ColorImage record;
    ASSERT_TRUE(color.picture(t, record));
    const cv::Mat first = greyOf(record);
    ASSERT_TRUE(second.picture(t, record));
    const cv::Mat other = greyOf(record);
    const Sight from(color.calibration().at(0), *world, t);
    const Sight to(second.calibration().at(0), *world, t);
    std::vector<float> a;
    std::vector<float> b;
    for (int y = 10; y < first.rows - 10; y += 9) {
        for (int x = 10; x < first.cols - 10; x += 9) {
            const auto hit = from.behind(*world->scene(), {x, y}, t);
            const auto pixel = hit ? to.pixel(hit->point) : std::nullopt;
            if (!pixel || !world->scene()->sees(to.pose.translation(), hit->point, t))
                continue;
            a.push_back(first.at<unsigned char>(y, x));
            b.push_back(other.at<unsigned char>(
                static_cast<int>(std::lround(pixel->y())), static_cast<int>(std::lround(pixel->x()))));
        }
    }
    ASSERT_GT(a.size(), 3000U);
    cv::Mat result;
    cv::matchTemplate(cv::Mat(a, false), cv::Mat(b, false), result, cv::TM_CCOEFF_NORMED);
    EXPECT_GT(result.at<float>(0), 0.95);
}
