#include "device/StereoMatcher.h"
#include "sim/VscFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sim;

TEST_F(VscTest, headsetAndModuleHaveIt)
{
    for (const Profile profile : {Profile::Headset, Profile::Module}) {
        config.profile = profile;
        const auto owner = makeDevice(config);
        ASSERT_NE(owner->vsc(), nullptr);
        EXPECT_EQ(owner->vsc(), owner->vsc());
        EXPECT_EQ(owner->info().at("sgbmAvailable"), "true");
        EXPECT_EQ(owner->info().at("downsampleAvailable"), "true");
    }
    for (const Profile profile : {Profile::Quad, Profile::Plain, Profile::ImuOnly}) {
        config.profile = profile;
        const auto owner = makeDevice(config);
        EXPECT_EQ(owner->vsc(), nullptr);
        EXPECT_EQ(owner->info().at("sgbmAvailable"), "false");
    }
}

TEST_F(VscTest, aDisparityFrameAndADepthFrameAtATime)
{
    config.streams.clear();
    make();
    ASSERT_TRUE(vsc->start());
    const auto pair = freshPair();
    ASSERT_EQ(pair.size(), 2U);
    EXPECT_EQ(pair[0].type, Disparity);
    EXPECT_EQ(pair[1].type, Depth);
    for (const qv::SgbmImage &frame : pair) {
        EXPECT_EQ(frame.width, 640U);
        EXPECT_EQ(frame.height, 400U);
        EXPECT_GT(frame.confidence, 0.1);
        EXPECT_LT(frame.confidence, 1.0);
        EXPECT_GE(frame.hostTimestamp, static_cast<double>(frame.edgeTimestampUs) * 1e-6);
    }
    EXPECT_EQ(pair[0].dataSize, 640U * 400U);
    EXPECT_EQ(pair[1].dataSize, 640U * 400U * 2);
    EXPECT_TRUE(vsc->stop());
    EXPECT_FALSE(vsc->stop()) << "it doesn't run any more";
}

TEST_F(VscTest, depthUnderAPixelIsTheRoomsToAMillimetre)
{
    make();
    ASSERT_TRUE(vsc->start());
    const qv::SgbmImage frame = freshPair().at(1);
    const double t = static_cast<double>(frame.edgeTimestampUs) * 1e-6;
    const auto world = SharedWorld::get(1);
    const Pose left = world->trajectory().pose(t) * FisheyeRig::stereo(640, 400).mounts[0].bodyFromCamera;
    // A pinhole of 96 degrees, by hand.
    const double focal = 80 / std::tan(48 * M_PI / 180);
    int found = 0;
    int wrong = 0;
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 160; ++x) {
            const int millimetres = matOf(frame).at<unsigned short>(y, x);
            if (millimetres == 0)
                continue;
            const Eigen::Vector3d ray((x - 79.5) / focal, (y - 49.5) / focal, 1);
            const auto hit = world->scene()->cast(left.translation(), left.linear() * ray, t);
            ASSERT_TRUE(hit);
            ++found;
            wrong += std::abs(millimetres - 1000 * hit->distance / ray.norm()) > 1.0;
        }
    }
    EXPECT_GT(found, 3000);
    EXPECT_LE(wrong, found / 200) << "but for rays that graze an edge";
}

TEST_F(VscTest, disparityAndDepthBelongTogether)
{
    make();
    qv::SgbmConfig settings;
    settings.baseline = 0.12F;
    settings.fov = 70;
    ASSERT_TRUE(vsc->start(settings));
    const auto pair = freshPair();
    const double scale = 0.12 * 80 / std::tan(35 * M_PI / 180);
    const cv::Mat disparity = matOf(pair[0]);
    const cv::Mat depth = matOf(pair[1]);
    ASSERT_EQ(disparity.type(), CV_8UC1);
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 160; ++x) {
            const int millimetres = depth.at<unsigned short>(y, x);
            const int pixels = disparity.at<unsigned char>(y, x);
            if (millimetres == 0)
                ASSERT_EQ(pixels, 0);
            else
                ASSERT_NEAR(pixels, 1000 * scale / millimetres, 0.55);
        }
    }
}

TEST_F(VscTest, theFineModeHasTwoBytesADisparity)
{
    make();
    qv::SgbmConfig settings;
    settings.mode = 3;
    ASSERT_TRUE(vsc->start(settings));
    EXPECT_EQ(freshPair().at(0).dataSize, 160U * 100U * 2);
}

TEST_F(VscTest, eachKindCanBeSwitchedOff)
{
    make();
    qv::SgbmConfig settings;
    settings.enableDisparity = 0;
    ASSERT_TRUE(vsc->start(settings));
    ASSERT_TRUE(tap->waitForMore(4));
    for (const qv::SgbmImage &frame : tap->all())
        EXPECT_EQ(frame.type, Depth);
    vsc->stop();
    tap->clear();
    settings.enableDisparity = 1;
    settings.enableDepth = 0;
    ASSERT_TRUE(vsc->start(settings));
    ASSERT_TRUE(tap->waitForMore(4));
    for (const qv::SgbmImage &frame : tap->all())
        EXPECT_EQ(frame.type, Disparity);
}

TEST_F(VscTest, aPlainStartKeepsTheSettingsOfTheLast)
{
    make();
    qv::SgbmConfig settings;
    settings.enableDisparity = 0;
    settings.minDistance = 2500;
    ASSERT_TRUE(vsc->start(settings));
    vsc->stop();
    tap->clear();
    ASSERT_TRUE(vsc->start());
    const qv::SgbmImage frame = fresh();
    EXPECT_EQ(frame.type, Depth);
    cv::Mat tooNear;
    cv::inRange(matOf(frame), 1, 2499, tooNear);
    EXPECT_EQ(cv::countNonZero(tooNear), 0);
}

TEST_F(VscTest, settingsReachARunningStream)
{
    make();
    ASSERT_TRUE(vsc->start());
    ASSERT_TRUE(tap->waitForMore(2));
    qv::SgbmConfig settings;
    settings.enableDepth = 0;
    ASSERT_TRUE(vsc->start(settings));
    fresh();
    const qv::SgbmImage next = fresh();
    EXPECT_EQ(next.type, Disparity);
    EXPECT_TRUE(vsc->stop());
}

TEST_F(VscTest, dewarpingAndZoomChangeThePicture)
{
    make();
    const auto spread = [&](const qv::SgbmConfig &settings) {
        vsc->stop();
        EXPECT_TRUE(vsc->start(settings));
        const qv::SgbmImage frame = freshPair().at(1);
        const double t = static_cast<double>(frame.edgeTimestampUs) * 1e-6;
        StereoMatcher matcher(SharedWorld::get(1), FisheyeRig::stereo(640, 400));
        cv::Mat z;
        cv::Mat expected;
        const double zoom = static_cast<double>(settings.dewarpZoomFactor);
        matcher.match(t, {{160, 100}, settings.enableDewarp != 0, zoom, false}, z);
        cv::Mat(z * 1000).convertTo(expected, CV_16U);
        return cv::norm(matOf(frame), expected, cv::NORM_INF);
    };
    qv::SgbmConfig settings;
    settings.maxDistance = 60000;
    settings.minDistance = 1;
    EXPECT_LE(spread(settings), 1);
    settings.dewarpZoomFactor = 2;
    EXPECT_LE(spread(settings), 1);
    settings.dewarpZoomFactor = 1;
    settings.enableDewarp = 0;
    EXPECT_LE(spread(settings), 1);
}

TEST_F(VscTest, thereAreTwoResolutions)
{
    make();
    EXPECT_EQ(vsc->resolution(), 0);
    ASSERT_TRUE(vsc->start());
    EXPECT_EQ(fresh().width, 160U);
    EXPECT_TRUE(vsc->setResolution(1));
    EXPECT_EQ(vsc->resolution(), 1);
    EXPECT_TRUE(waitFor([&] { return fresh().width == 1280 && tap->last().height == 720; }));
    for (const int unknown : {-1, 2, 7})
        EXPECT_FALSE(vsc->setResolution(unknown));
    EXPECT_EQ(vsc->resolution(), 1);
    EXPECT_TRUE(vsc->setResolution(0));
    EXPECT_TRUE(waitFor([&] { return fresh().width == 160; }));
}

TEST_F(VscTest, theMatcherOnTheHostIsHalfAsFast)
{
    make();
    qv::SgbmConfig settings;
    settings.enableDisparity = 0;
    settings.source = 1;
    ASSERT_TRUE(vsc->start(settings));
    ASSERT_TRUE(tap->waitForMore(3));
    const auto all = tap->all();
    for (std::size_t i = 1; i < all.size(); ++i)
        EXPECT_GE(all[i].edgeTimestampUs - all[i - 1].edgeTimestampUs, 99'900);
    // It finds more on plain surfaces.
    StereoMatcher matcher(SharedWorld::get(1), FisheyeRig::stereo(640, 400));
    const double t = static_cast<double>(all[0].edgeTimestampUs) * 1e-6;
    cv::Mat thorough;
    cv::Mat quick;
    matcher.match(t, {{160, 100}, true, 1, true}, thorough);
    matcher.match(t, {{160, 100}, true, 1, false}, quick);
    const cv::Mat more = (thorough > 0) & (quick <= 0) & (matOf(all[0]) > 0);
    EXPECT_GT(cv::countNonZero(more), 0);
}

TEST_F(VscTest, withSyncItsTimesAreOnTheCommonGrid)
{
    make();
    ASSERT_TRUE(device->enableSync(true));
    ASSERT_TRUE(vsc->start());
    const auto remainder = fresh().edgeTimestampUs % 50'000;
    EXPECT_TRUE(remainder <= 1 || remainder >= 49'999) << remainder;
}

TEST_F(VscTest, aCallbackMayStartItAnew)
{
    make();
    std::atomic<int> restarts{0};
    const int id = vsc->registerCallback([&](const qv::SgbmImage &) {
        if (restarts < 5) {
            vsc->stop();
            EXPECT_TRUE(vsc->start(qv::SgbmConfig()));
            ++restarts;
        }
    });
    ASSERT_TRUE(vsc->start());
    EXPECT_TRUE(waitFor([&] { return restarts == 5; }));
    EXPECT_EQ(freshPair().size(), 2U);
    vsc->unregisterCallback(id);
}

TEST_F(VscTest, strangeSettingsAreHarmless)
{
    make();
    qv::SgbmConfig settings;
    settings.dewarpZoomFactor = std::nanf("");
    settings.baseline = -1e30F;
    settings.fov = 1e30F;
    settings.enableDewarp = -7;
    settings.mode = 60000;
    settings.source = -1;
    ASSERT_TRUE(vsc->start(settings));
    const auto pair = freshPair();
    EXPECT_EQ(cv::countNonZero(matOf(pair.at(1))), 0);
    settings = {};
    settings.dewarpZoomFactor = 1e30F;
    ASSERT_TRUE(vsc->start(settings));
    EXPECT_EQ(freshPair().size(), 2U);
}

TEST_F(VscTest, nothingWorksOnceTheDeviceHasGone)
{
    make();
    ASSERT_TRUE(vsc->start());
    ASSERT_TRUE(tap->waitForMore(2));
    device->unplug();
    EXPECT_FALSE(vsc->stop());
    EXPECT_FALSE(vsc->start());
    EXPECT_FALSE(vsc->start(qv::SgbmConfig()));
    EXPECT_FALSE(vsc->setResolution(1));
    EXPECT_EQ(vsc->resolution(), 0);
}

TEST_F(VscTest, faultsDamageEveryNthRecord)
{
    make();
    ASSERT_TRUE(vsc->start());
    const auto first = [&](auto member, auto test) {
        Faults faults;
        faults.streams["vsc"].*member = 2;
        device->state().setFaults(faults);
        tap->clear();
        EXPECT_TRUE(waitFor([&] {
            const auto all = tap->all();
            return std::any_of(all.begin(), all.end(), test);
        }));
    };
    first(&StreamFaults::nullEvery, [](const qv::SgbmImage &f) { return !f.data && f.dataSize > 0; });
    first(&StreamFaults::zeroEvery, [](const qv::SgbmImage &f) { return f.width == 0 && f.height == 0; });
    first(&StreamFaults::emptyEvery, [](const qv::SgbmImage &f) { return !f.data && f.dataSize == 0; });
    first(&StreamFaults::shortEvery,
        [](const qv::SgbmImage &f) { return f.width == 160 && f.dataSize == 160 * 100 && f.type == Depth; });
    first(&StreamFaults::resizeEvery,
        [](const qv::SgbmImage &f) { return f.width == 81 && f.height == 51 && f.dataSize == 81 * 51; });
    first(&StreamFaults::unknownEvery, [](const qv::SgbmImage &f) { return f.type > 1; });
}

TEST_F(VscTest, refusedOperationsChangeNothing)
{
    config.faults.refuse = {"vsc.start", "vsc.setResolution"};
    make();
    EXPECT_FALSE(vsc->start());
    EXPECT_FALSE(vsc->start(qv::SgbmConfig()));
    EXPECT_FALSE(vsc->setResolution(1));
    EXPECT_EQ(vsc->resolution(), 0);
    EXPECT_FALSE(vsc->stop());
}
