#include "sim/ColorTofFixture.h"

#include "device/DepthPacking.h"
#include "device/PointCloud.h"

#include <cstring>
#include <gmock/gmock.h>
#include <limits>
#include <thread>

using namespace sim;

using TofRecordsTest = ColorTofTest;

TEST_F(TofRecordsTest, aCloudLiesWhereThePixelsAre)
{
    for (const Profile profile : {Profile::Headset, Profile::Module}) {
        make(profile);
        tof->start();
        const qv::DepthImage image = freshDepth(profile == Profile::Headset ? 1 : 0);
        const auto cloud = tof->depthImageToPointCloud(image);
        ASSERT_NE(cloud, nullptr);
        const cv::Mat depth = matOf(image);
        ASSERT_EQ(cloud->points.size(), static_cast<std::size_t>(cv::countNonZero(depth)));
        const PolynomialModel lens(tof->calibration().at(0).pdcm.at(0));
        std::size_t next = 0;
        for (int y = 0; y < depth.rows; ++y) {
            for (int x = 0; x < depth.cols; ++x) {
                const double z = profile == Profile::Headset ? depth.at<float>(y, x)
                                                             : depth.at<std::int16_t>(y, x) / 1000.0;
                if (z == 0)
                    continue;
                const auto &[px, py, pz] = cloud->points[next++];
                ASSERT_NEAR(pz, z, 1e-6);
                const auto pixel = lens.project({px, py, pz});
                ASSERT_TRUE(pixel);
                ASSERT_NEAR(pixel->x(), x, 0.01);
                ASSERT_NEAR(pixel->y(), y, 0.01);
            }
        }
    }
}

TEST_F(TofRecordsTest, thereIsNoCloudOfWhatIsNoDepthPicture)
{
    make();
    const std::shared_ptr<unsigned char> data(
        new unsigned char[4 * 3 * 4](), std::default_delete<unsigned char[]>());
    qv::DepthImage image;
    image.type = 1;
    image.width = 4;
    image.height = 3;
    image.data = data;
    image.dataSize = 48;
    ASSERT_NE(tof->depthImageToPointCloud(image), nullptr);
    EXPECT_TRUE(tof->depthImageToPointCloud(image)->points.empty()) << "zero is no reading";
    const auto none = [&](auto change) {
        qv::DepthImage changed = image;
        change(changed);
        return tof->depthImageToPointCloud(changed) == nullptr;
    };
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.type = 2; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.type = -1; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.type = 9; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.data = nullptr; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.dataSize = 47; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.width = 0; }));
    EXPECT_TRUE(none([](qv::DepthImage &i) { i.height = std::numeric_limits<std::size_t>::max() / 2; }));
    const float wild[] = {
        std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), -1, 2};
    std::memcpy(data.get(), wild, sizeof wild);
    ASSERT_EQ(tof->depthImageToPointCloud(image)->points.size(), 1U);
    EXPECT_EQ(tof->depthImageToPointCloud(image)->points[0][2], 2);
}

TEST_F(TofRecordsTest, alignedColoursComeWhileBothCamerasStream)
{
    make();
    Records<qv::DepthImage> seen; // as a counter with a lock
    const int id = tof->registerColorDepthImageCallback([&](const qv::DepthColorImage &) { seen.add({}); });
    EXPECT_GE(id, 0);
    tof->start();
    freshDepth(1);
    freshDepth(1);
    EXPECT_EQ(seen.count(), 0U) << "the colour camera is off";
    color->start();
    EXPECT_TRUE(seen.waitForMore(3));
    color->stop();
    freshDepth(1);
    const std::size_t before = seen.count();
    freshDepth(1);
    EXPECT_EQ(seen.count(), before);
    EXPECT_TRUE(tof->unregisterColorDepthImageCallback(id));
    EXPECT_FALSE(tof->unregisterColorDepthImageCallback(id));
    EXPECT_FALSE(tof->unregisterColorDepthImageCallback(-1));
    EXPECT_EQ(tof->registerColorDepthImageCallback(nullptr), -1);
}

TEST_F(TofRecordsTest, anAlignedPixelIsThreeColoursAndAFloat)
{
    make();
    struct Aligned {
        std::size_t width;
        std::size_t height;
        std::vector<unsigned char> bytes;
        std::int64_t edgeTimestampUs;
    };
    // Aligned colours follow the depth of the same exposure on the same thread.
    std::mutex mutex;
    qv::DepthImage depth;
    std::vector<std::pair<qv::DepthImage, qv::DepthColorImage>> pairs;
    const int depthId = tof->registerCallback([&](const qv::DepthImage &image) {
        const std::lock_guard lock(mutex);
        if (image.type == 1)
            depth = image;
    });
    const int id = tof->registerColorDepthImageCallback([&](const qv::DepthColorImage &image) {
        const std::lock_guard lock(mutex);
        pairs.emplace_back(depth, image);
    });
    color->start();
    tof->start();
    ASSERT_TRUE(waitFor([&] {
        const std::lock_guard lock(mutex);
        return pairs.size() > 2;
    }));
    tof->unregisterCallback(depthId);
    EXPECT_TRUE(tof->unregisterColorDepthImageCallback(id));
    const auto &[plain, aligned] = pairs.back();
    ASSERT_EQ(aligned.width, 160U);
    ASSERT_EQ(aligned.height, 120U);
    cv::Mat rgb(120, 160, CV_8UC3);
    for (std::size_t i = 0; i < 160 * 120; ++i) {
        float metres = 0;
        std::memcpy(&metres, aligned.data.get() + 7 * i + 3, 4);
        ASSERT_EQ(metres, reinterpret_cast<const float *>(plain.data.get())[i]);
        std::copy_n(aligned.data.get() + 7 * i, 3, rgb.data + 3 * i);
    }
    // Red comes first: the same view, rendered apart from the device.
    const double t = static_cast<double>(plain.edgeTimestampUs) * 1e-6;
    const qv::Calibration calibration = tof->calibration().at(0);
    const auto world = SharedWorld::get(1);
    cv::Mat expected;
    Renderer(world->scene(), std::make_shared<PolynomialModel>(calibration.pdcm.at(0)))
        .color(world->trajectory().pose(t) * poseOf(calibration), t, expected);
    const double factor = Exposure::aim / std::max(1.0, [&] {
        const cv::Scalar m = cv::mean(expected);
        return 0.299 * m[0] + 0.587 * m[1] + 0.114 * m[2];
    }());
    expected.convertTo(expected, -1, factor);
    EXPECT_LT(cv::norm(rgb, expected, cv::NORM_L1) / (160 * 120 * 3), 8);
    cv::Mat swapped;
    cv::cvtColor(rgb, swapped, cv::COLOR_RGB2BGR);
    EXPECT_LT(cv::norm(rgb, expected, cv::NORM_L1), cv::norm(swapped, expected, cv::NORM_L1));
}

TEST_F(TofRecordsTest, noAlignedCallbackRunsAfterItsEnd)
{
    make();
    std::atomic<bool> gone{false};
    std::atomic<bool> late{false};
    std::atomic<int> calls{0};
    const int id = tof->registerColorDepthImageCallback([&](const qv::DepthColorImage &) {
        ++calls;
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        late = late || gone;
    });
    color->start();
    tof->start();
    ASSERT_TRUE(waitFor([&] { return calls > 2; }));
    EXPECT_TRUE(tof->unregisterColorDepthImageCallback(id));
    gone = true;
    ASSERT_TRUE(depths->waitForMore(6));
    EXPECT_FALSE(late);
}

TEST(DepthPacking, millimetresAreRoundedAndBounded)
{
    const cv::Mat metres = (cv::Mat_<float>(1, 5) << 0, 1.2344F, 1.2346F, 32.767F, 40);
    cv::Mat millimetres;
    toMillimetres(metres, millimetres);
    EXPECT_EQ(millimetres.at<std::int16_t>(0), 0);
    EXPECT_EQ(millimetres.at<std::int16_t>(1), 1234);
    EXPECT_EQ(millimetres.at<std::int16_t>(2), 1235);
    EXPECT_EQ(millimetres.at<std::int16_t>(3), 32767);
    EXPECT_EQ(millimetres.at<std::int16_t>(4), 0);
    EXPECT_EQ(shareOfReadings(metres), 0.8);
    EXPECT_EQ(shareOfReadings({}), 0);
}
