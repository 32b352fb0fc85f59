#include "core/DeviceConfig.h"
#include "device/DeviceFactory.h"
#include "device/PointCloud.h"
#include "replay/PictureReader.h"

#include "replay/Player.h"
#include "replay/RgbdFolder.h"
#include "sim/ColorTofFixture.h"
#include "sim/Stderr.h"

#include <cstring>
#include <gmock/gmock.h>
#include <set>

using namespace sim;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

/// Which of the folder's pictures a record is.
int indexOf(std::int64_t edgeTimestampUs, std::int64_t laterNs, int count)
{
    const std::int64_t since = edgeTimestampUs * 1000 - RgbdFolder::firstTime - laterNs;
    const std::int64_t duration = count * RgbdFolder::period + RgbdFolder::depthLater;
    return static_cast<int>((since % duration + RgbdFolder::period / 2) / RgbdFolder::period);
}

std::string sharedKitchen()
{
    return shared("rgbd/7scenes_redkitchen");
}

} // namespace

TEST(RgbdDevice, hasAColourCameraAndAToFCamera)
{
    RgbdFolder folder;
    folder.addColor(2);
    folder.addDepth(2);
    const auto device = play(folder.path());
    ASSERT_NE(device, nullptr);
    ASSERT_NE(device->colorCamera(), nullptr);
    ASSERT_NE(device->tofCamera(), nullptr);
    EXPECT_EQ(device->tofCamera()->manufacturer(), 0);
    EXPECT_EQ(device->fisheyeCameras(), nullptr);
    EXPECT_EQ(device->info().at("colorAvailable"), "true");
    EXPECT_EQ(device->info().at("tofAvailable"), "true");
    EXPECT_EQ(device->info().at("rgb2Available"), "false");
}

TEST(RgbdDevice, oneListIsEnough)
{
    RgbdFolder colors;
    colors.addColor(2);
    EXPECT_NE(play(colors.path())->colorCamera(), nullptr);
    EXPECT_EQ(play(colors.path())->tofCamera(), nullptr);
    RgbdFolder depths;
    depths.addDepth(2);
    EXPECT_EQ(play(depths.path())->colorCamera(), nullptr);
    EXPECT_NE(play(depths.path())->tofCamera(), nullptr);
}

TEST(RgbdDevice, everyPicturePlaysAtItsTimeInALoop)
{
    RgbdFolder folder;
    folder.addColor(4);
    folder.addDepth(4);
    const auto device = play(folder.path());
    ColorTap colors(device->colorCamera());
    DepthTap depths(device->tofCamera());
    ASSERT_TRUE(device->colorCamera()->start());
    ASSERT_TRUE(device->tofCamera()->start());
    ASSERT_TRUE(colors.waitForMore(10));
    ASSERT_TRUE(depths.waitForMore(10));
    device->colorCamera()->stop();
    device->tofCamera()->stop();
    std::set<int> seen;
    for (const qv::ColorImage &image : colors.all()) {
        const int index = indexOf(image.edgeTimestampUs, 0, 4);
        seen.insert(index);
        ASSERT_EQ(image.width, static_cast<std::size_t>(RgbdFolder::width));
        const auto pixel = rgbOf(image).at<cv::Vec3b>(5, 7);
        EXPECT_NEAR(pixel[0], RgbdFolder::red(index), 4);
        EXPECT_NEAR(pixel[1], 60, 4);
        EXPECT_NEAR(pixel[2], 90, 4);
    }
    EXPECT_EQ(seen.size(), 4U);
    for (const qv::DepthImage &image : depths.all()) {
        ASSERT_EQ(image.type, 0);
        const cv::Mat depth = matOf(image);
        EXPECT_EQ(depth.at<std::int16_t>(3, RgbdFolder::width - 1),
            RgbdFolder::millimetres(indexOf(image.edgeTimestampUs, RgbdFolder::depthLater, 4)));
        EXPECT_EQ(depth.at<std::int16_t>(3, 0), 0) << "no reading stays none";
    }
    const auto all = depths.all();
    for (std::size_t i = 1; i < all.size(); ++i)
        EXPECT_GT(all[i].edgeTimestampUs, all[i - 1].edgeTimestampUs) << "times go on from loop to loop";
}

TEST(RgbdDevice, theScaleBringsDepthToMillimetres)
{
    RgbdFolder folder;
    folder.addDepth(2, 1000);
    folder.write("calibration.txt", "585 585 16 12 32 24 1000\n");
    const auto device = play(folder.path());
    DepthTap depths(device->tofCamera());
    device->tofCamera()->start();
    ASSERT_TRUE(depths.waitForMore(3));
    for (const qv::DepthImage &image : depths.all()) {
        const int reading = matOf(image).at<std::int16_t>(0, RgbdFolder::width - 1);
        EXPECT_TRUE(reading == RgbdFolder::millimetres(0) || reading == RgbdFolder::millimetres(1));
    }
    EXPECT_EQ(device->tofCamera()->calibration().at(0).pdcm.at(0).fx, 585);
}

TEST(RgbdDevice, theConfigurationChoosesTheCodec)
{
    RgbdFolder folder;
    folder.addColor(3);
    const std::pair<const char *, int> codecs[] = {{"yuyv", 0}, {"yuv420p", 1}, {"jpeg", 2}, {"", 0}};
    for (const auto &[name, number] : codecs) {
        const auto device = play(folder.path(), name);
        ColorTap colors(device->colorCamera());
        device->colorCamera()->start();
        ASSERT_TRUE(colors.waitForMore(1));
        EXPECT_EQ(colors.last().codec, number);
    }
}

TEST(RgbdDevice, alignedColoursAreThoseOfTheNearestTime)
{
    RgbdFolder folder;
    folder.addColor(4);
    folder.addDepth(4);
    const auto device = play(folder.path());
    struct Aligned {
        std::size_t width = 0;
        int red = 0;
        float metres = 0;
        std::int64_t edgeTimestampUs = 0;
    };
    Records<Aligned> seen;
    const int id =
        device->tofCamera()->registerColorDepthImageCallback([&](const qv::DepthColorImage &image) {
            const unsigned char *pixel = image.data.get() + 7 * (image.width - 1);
            Aligned copy{image.width, pixel[0], 0, 0};
            std::memcpy(&copy.metres, pixel + 3, sizeof(float));
            seen.add(copy);
        });
    device->colorCamera()->start();
    device->tofCamera()->start();
    ASSERT_TRUE(seen.waitForMore(6));
    EXPECT_TRUE(device->tofCamera()->unregisterColorDepthImageCallback(id));
    for (const Aligned &image : seen.all()) {
        EXPECT_EQ(image.width, static_cast<std::size_t>(RgbdFolder::width));
        const int index = (image.red - RgbdFolder::red(0)) / 20;
        EXPECT_EQ(image.red, RgbdFolder::red(index));
        EXPECT_NEAR(image.metres, RgbdFolder::millimetres(index) / 1000.0, 1e-5);
    }
}

TEST(RgbdDevice, settingsOfARecordingAreRefused)
{
    RgbdFolder folder;
    folder.addColor(2);
    folder.addDepth(2);
    const auto device = play(folder.path());
    const auto color = device->colorCamera();
    EXPECT_FALSE(color->setFramerate(10));
    EXPECT_FALSE(color->setExposure(0, 10, 10));
    color->setResolution(1);
    EXPECT_EQ(color->calibration().at(0).pdcm.at(0).w, RgbdFolder::width);
    color->startCamera(1);
    EXPECT_FALSE(color->stopCamera(1)) << "there is no second one";
    color->setRgbMode(1);
    color->setRgbDistance(9);
    const auto tof = device->tofCamera();
    EXPECT_FALSE(tof->setFramerate(10));
    EXPECT_FALSE(tof->setDistanceMode(1));
    EXPECT_FALSE(tof->setLibWorkMode(1));
    EXPECT_FALSE(tof->setSonyTofSetting(1, 0, 5));
    EXPECT_FALSE(tof->setTofIrGamma(2));
    EXPECT_FALSE(tof->enableIr(true));
    EXPECT_TRUE(tof->setStreamMode(0));
}

TEST(RgbdDevice, theUsualLensFitsThePictures)
{
    RgbdFolder folder;
    folder.addDepth(1);
    const auto lens = play(folder.path())->tofCamera()->calibration().at(0).pdcm.at(0);
    EXPECT_EQ(lens.w, RgbdFolder::width);
    EXPECT_EQ(lens.h, RgbdFolder::height);
    EXPECT_NEAR(lens.fx, 525.0 * RgbdFolder::width / 640, 1e-9);
    EXPECT_NEAR(lens.u0, (RgbdFolder::width - 1) / 2.0, 1e-9);
}

TEST(RgbdDevice, missingAndBrokenPicturesAreToldOnceAndLeftOut)
{
    RgbdFolder folder;
    folder.addColor(4);
    folder.addDepth(4);
    const auto color = RgbdFolder::seconds(RgbdFolder::time(1));
    const auto depth = RgbdFolder::seconds(RgbdFolder::time(2) + RgbdFolder::depthLater);
    const auto shallow = RgbdFolder::seconds(RgbdFolder::time(3) + RgbdFolder::depthLater);
    std::filesystem::remove(folder.path() / "rgb" / (color + ".png"));
    folder.write("depth/" + depth + ".png", "\x89PNG\r\n\x1a\nhalf of one");
    cv::imwrite(
        (folder.path() / "depth" / (shallow + ".png")).string(), cv::Mat(24, 32, CV_8UC1, cv::Scalar(9)));
    Stderr output;
    const auto device = play(folder.path());
    ColorTap colors(device->colorCamera());
    DepthTap depths(device->tofCamera());
    device->colorCamera()->start();
    device->tofCamera()->start();
    ASSERT_TRUE(colors.waitForMore(8));
    ASSERT_TRUE(depths.waitForMore(6));
    for (const qv::ColorImage &image : colors.all())
        EXPECT_NE(indexOf(image.edgeTimestampUs, 0, 4), 1);
    for (const qv::DepthImage &image : depths.all())
        EXPECT_LT(indexOf(image.edgeTimestampUs, RgbdFolder::depthLater, 4), 2);
    const auto lines = output.lines();
    EXPECT_EQ(lines.size(), 3U) << "each once";
    EXPECT_THAT(lines, testing::Contains(HasSubstr("is missing")));
    EXPECT_THAT(lines, testing::Contains(HasSubstr("is broken")));
    EXPECT_THAT(lines, testing::Contains(HasSubstr("is no depth picture of 16 bits")));
}

TEST(RgbdDevice, aFolderWithNothingToPlayIsNoDevice)
{
    RgbdFolder folder;
    folder.write("rgb.txt", "# empty\n");
    Stderr output;
    EXPECT_EQ(play(folder.path()), nullptr);
    EXPECT_THAT(output.lines(), ElementsAre(HasSubstr("there are no pictures (rgb.txt, depth.txt)")));
}

TEST(RgbdDevice, aRealRecordingPlays)
{
    if (!std::filesystem::exists(sharedKitchen()))
        GTEST_SKIP() << "the recording is not here";
    Stderr output;
    const auto device = play(sharedKitchen());
    ColorTap colors(device->colorCamera());
    DepthTap depths(device->tofCamera());
    device->colorCamera()->start();
    device->tofCamera()->start();
    ASSERT_TRUE(colors.waitForMore(3));
    ASSERT_TRUE(depths.waitForMore(3));
    EXPECT_EQ(colors.last().width, 640U);
    const qv::DepthImage image = depths.last();
    EXPECT_EQ(image.height, 480U);
    EXPECT_GT(image.confidence, 0.5);
    const cv::Mat depth = matOf(image);
    double farthest = 0;
    cv::minMaxLoc(depth, nullptr, &farthest);
    EXPECT_GT(cv::mean(depth, depth > 0)[0], 500) << "a kitchen, in millimetres";
    EXPECT_LT(cv::mean(depth, depth > 0)[0], 4000);
    const auto cloud = device->tofCamera()->depthImageToPointCloud(image);
    ASSERT_NE(cloud, nullptr);
    EXPECT_EQ(cloud->points.size(), static_cast<std::size_t>(cv::countNonZero(depth)));
    EXPECT_THAT(output.lines(), IsEmpty());
}
