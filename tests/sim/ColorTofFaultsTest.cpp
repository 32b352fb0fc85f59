#include "sim/ColorTofFixture.h"

using namespace sim;

using ColorTofFaults = ColorTofTest;

namespace {

/// Sets one fault for every second record and waits for a record that passes the test.
template <class Stream, class Test>
void expectFault(
    SimDevice &device, const char *component, Stream &tap, int StreamFaults::*member, const Test &test)
{
    Faults faults;
    faults.streams[component].*member = 2;
    device.state().setFaults(faults);
    tap.clear();
    EXPECT_TRUE(waitFor([&] {
        const auto all = tap.all();
        return std::any_of(all.begin(), all.end(), test);
    }));
}

} // namespace

TEST_F(ColorTofFaults, faultsDamageEveryNthColourPicture)
{
    for (const char *codec : {"yuyv", "yuv420p", "jpeg"}) {
        config.streams["color"].codec = codec;
        make();
        ASSERT_TRUE(color->start());
        const std::size_t whole = freshColor().dataSize;
        const auto expect = [&](int StreamFaults::*member, const auto &test) {
            expectFault(*device, "color", *colors, member, test);
        };
        using Image = qv::ColorImage;
        expect(&StreamFaults::nullEvery, [](const Image &i) { return !i.data && i.width == 160; });
        expect(
            &StreamFaults::zeroEvery, [](const Image &i) { return i.data && i.width == 0 && i.height == 0; });
        expect(&StreamFaults::emptyEvery,
            [](const Image &i) { return !i.data && i.width == 0 && i.dataSize == 0; });
        expect(&StreamFaults::shortEvery,
            [&](const Image &i) { return i.width == 160 && i.dataSize < whole * 3 / 4; });
        expect(&StreamFaults::resizeEvery,
            [](const Image &i) { return i.width == 82 && i.height == 46 && rgbOf(i).cols == 82; });
        expect(&StreamFaults::unknownEvery, [](const Image &i) { return i.codec == 9; });
        color->stop();
    }
}

TEST_F(ColorTofFaults, faultsDamageEveryNthDepthPicture)
{
    make();
    ASSERT_TRUE(tof->start());
    const auto expect = [&](int StreamFaults::*member, const auto &test) {
        expectFault(*device, "tof", *depths, member, test);
    };
    using Image = qv::DepthImage;
    expect(&StreamFaults::nullEvery, [](const Image &i) { return !i.data && i.width == 160; });
    expect(&StreamFaults::zeroEvery, [](const Image &i) { return i.data && i.width == 0; });
    expect(
        &StreamFaults::emptyEvery, [](const Image &i) { return !i.data && i.width == 0 && i.dataSize == 0; });
    expect(&StreamFaults::shortEvery,
        [](const Image &i) { return i.type == 1 && i.width == 160 && i.dataSize == 160U * 120 * 2; });
    expect(&StreamFaults::shortEvery,
        [](const Image &i) { return i.type == 2 && i.width == 160 && i.dataSize == 160U * 120; });
    expect(&StreamFaults::resizeEvery,
        [](const Image &i) { return i.width == 81 && i.height == 61 && i.dataSize == 81U * 61 * 4; });
    expect(&StreamFaults::unknownEvery, [](const Image &i) { return i.type == 9; });
}

TEST_F(ColorTofFaults, faultsDamageAlignedColoursToo)
{
    make();
    struct Aligned : qv::DepthColorImage {
        std::int64_t edgeTimestampUs = 0;
    };
    Records<Aligned> seen;
    const int id = tof->registerColorDepthImageCallback([&](const qv::DepthColorImage &image) {
        Aligned copy;
        static_cast<qv::DepthColorImage &>(copy) = image;
        seen.add(copy);
    });
    color->start();
    tof->start();
    const auto expect = [&](int StreamFaults::*member, const auto &test) {
        expectFault(*device, "tof", seen, member, test);
    };
    expect(&StreamFaults::nullEvery, [](const Aligned &i) { return !i.data && i.width == 160; });
    expect(&StreamFaults::zeroEvery, [](const Aligned &i) { return i.width == 0; });
    expect(&StreamFaults::shortEvery, [](const Aligned &i) { return i.height == 60; });
    expect(&StreamFaults::resizeEvery, [](const Aligned &i) { return i.width == 81; });
    tof->unregisterColorDepthImageCallback(id);
}

TEST_F(ColorTofFaults, theSecondCameraHasFaultsOfItsOwn)
{
    config.faults.refuse = {"color2.start"};
    make();
    color->startCamera(1);
    EXPECT_FALSE(color->stopCamera(1)) << "it didn't start";
    EXPECT_TRUE(color->start());
    Faults faults;
    faults.streams["color2"].unknownEvery = 1;
    device->state().setFaults(faults);
    Records<qv::ColorImage> second;
    const int id = color->registerCallback2([&](const qv::ColorImage &image) { second.add(image); });
    color->startCamera(1);
    ASSERT_TRUE(second.waitForMore(2));
    EXPECT_EQ(second.last().codec, 9);
    EXPECT_EQ(freshColor().codec, 1);
    color->unregisterCallback2(id);
}

TEST_F(ColorTofFaults, droppedLateAndStalledRecords)
{
    config.faults.streams["color"].dropEvery = 2;
    config.faults.streams["tof"].lateEvery = 1;
    config.faults.streams["tof"].lateMs = 30;
    make();
    color->start();
    tof->start();
    ASSERT_TRUE(colors->waitForMore(4));
    const auto all = colors->all();
    EXPECT_GE(all[1].edgeTimestampUs - all[0].edgeTimestampUs, 99'900) << "every second of 20 a second";
    const qv::DepthImage late = freshDepth(1);
    EXPECT_GE(late.hostTimestamp - static_cast<double>(late.edgeTimestampUs) * 1e-6, 0.029);
    Faults stalled;
    stalled.streams["tof"].stallAfter = 0;
    device->state().setFaults(stalled);
    const auto from = Clock::microseconds(Clock::now());
    ASSERT_TRUE(colors->waitForMore(6));
    EXPECT_TRUE(depths->noneDueAfter(from));
    EXPECT_TRUE(tof->stop()) << "it ran all the time";
}

TEST_F(ColorTofFaults, refusedSettingsChangeNothing)
{
    config.faults.refuse = {"setResolution", "color.setFramerate", "setExposure", "setRgbMode",
        "setRgbDistance", "setStreamMode", "setLibWorkMode", "enableIr", "setSonyTofSetting", "setTofIrGamma",
        "tof.setFramerate"};
    make();
    color->setResolution(2);
    EXPECT_EQ(color->calibration().at(0).pdcm.at(0).w, 160);
    EXPECT_FALSE(color->setFramerate(10));
    EXPECT_FALSE(color->setExposure(1, 10, 10));
    EXPECT_FALSE(tof->setExposure(1, 10, 10));
    EXPECT_FALSE(tof->setFramerate(10));
    EXPECT_FALSE(tof->setStreamMode(0));
    EXPECT_FALSE(tof->setLibWorkMode(1));
    EXPECT_FALSE(tof->enableIr(true));
    EXPECT_FALSE(tof->setSonyTofSetting(1, 1, 5));
    EXPECT_EQ(tof->calibration().at(0).pdcm.at(0).w, 160);
    EXPECT_FALSE(tof->setTofIrGamma(1));
    color->start();
    const double sharp = sharpness(greyOf(freshColor()));
    color->setRgbDistance(5);
    color->setRgbMode(1);
    EXPECT_GT(sharpness(greyOf(freshColor())), sharp / 2);
    config.faults.refuse = {"setDistanceMode"};
    make(Profile::Module);
    EXPECT_FALSE(tof->setDistanceMode(1));
}

TEST_F(ColorTofFaults, withoutItsHardwareEverythingFails)
{
    make();
    ASSERT_TRUE(color->start());
    color->startCamera(1);
    ASSERT_TRUE(tof->start());
    freshColor();
    freshDepth(1);
    const qv::DepthImage held = depths->last();
    device->unplug();
    EXPECT_FALSE(color->start());
    color->startCamera(1);
    EXPECT_FALSE(color->stop());
    EXPECT_FALSE(color->stopCamera(1));
    EXPECT_FALSE(color->setFramerate(10));
    color->setResolution(1);
    EXPECT_EQ(color->calibration().at(0).pdcm.at(0).w, 160);
    EXPECT_FALSE(color->setExposure(0, 10, 10));
    color->setRgbMode(1);
    color->setRgbDistance(7);
    EXPECT_FALSE(tof->start());
    EXPECT_FALSE(tof->stop());
    EXPECT_FALSE(tof->setSonyTofSetting(1, 0, 5));
    EXPECT_FALSE(tof->enableIr(true));
    EXPECT_EQ(tof->manufacturer(), 1);
    EXPECT_NE(held.data, nullptr);
    EXPECT_FALSE(color->calibration().empty());
}

TEST_F(ColorTofFaults, whatDoesNotRunCannotBeStopped)
{
    make();
    EXPECT_FALSE(color->stop());
    EXPECT_FALSE(color->stopCamera(1));
    EXPECT_FALSE(tof->stop());
    ASSERT_TRUE(color->start());
    ASSERT_TRUE(tof->start());
    EXPECT_TRUE(color->stop());
    EXPECT_TRUE(tof->stop());
    EXPECT_FALSE(color->stop()) << "a second time";
    EXPECT_FALSE(tof->stop()) << "a second time";
}

TEST_F(ColorTofFaults, aCallbackThatThrowsStopsNoStream)
{
    make();
    const auto throws = [](const auto &) { throw std::runtime_error("vector::_M_range_check"); };
    const int colorId = color->registerCallback(throws);
    const int depthId = tof->registerCallback(throws);
    const int alignedId = tof->registerColorDepthImageCallback(throws);
    color->start();
    tof->start();
    EXPECT_TRUE(colors->waitForMore(3));
    EXPECT_TRUE(depths->waitForMore(6));
    color->unregisterCallback(colorId);
    tof->unregisterCallback(depthId);
    EXPECT_TRUE(tof->unregisterColorDepthImageCallback(alignedId));
}

TEST_F(ColorTofFaults, aComponentMayOutliveItsDevice)
{
    make();
    ASSERT_TRUE(color->start());
    ASSERT_TRUE(tof->start());
    freshColor();
    device.reset();
    EXPECT_FALSE(color->start());
    EXPECT_FALSE(tof->start());
    color->setResolution(0);
    color->startCamera(1);
    EXPECT_FALSE(color->stopCamera(1));
}
