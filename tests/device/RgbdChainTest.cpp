#include "device/FullDevice.h"

#include "device/CameraDevice.h"
#include "streams/RgbData.h"
#include "streams/RgbdData.h"
#include "streams/TofData.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

// The aligned colour stream of a whole device follows the switches of the colour and depth streams, by the
// connections that the device makes.

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class RgbdChain : public testing::Test {
protected:
    bool enabled() const { return camera.rgbd()->enable(); }

    /// What `enableChanged` has told since the last call.
    std::vector<bool> told()
    {
        std::vector<bool> values;
        for (const QVariantList &arguments : changes)
            values.push_back(arguments.at(0).toBool());
        changes.clear();
        return values;
    }

    FullDevice full;
    CameraDevice camera{full.device, nullptr};
    QSignalSpy changes{camera.rgbd(), &RgbdData::enableChanged};
};

} // namespace

TEST_F(RgbdChain, needsBothStreams)
{
    camera.rgb()->control(true);
    EXPECT_FALSE(enabled());
    camera.tof()->control(true);
    EXPECT_TRUE(enabled());
    camera.rgb()->control(false);
    EXPECT_FALSE(enabled());
    camera.rgb()->control(true);
    EXPECT_TRUE(enabled());
    camera.tof()->control(false);
    EXPECT_FALSE(enabled());
    EXPECT_THAT(told(), ElementsAre(false, true, false, true, false));
}

TEST_F(RgbdChain, stopOfTheSecondColourCameraCountsForBoth)
{
    camera.tof()->control(true);
    camera.rgb()->control(true, 0);
    camera.rgb()->control(true, 1);
    EXPECT_TRUE(enabled());
    told();
    camera.rgb()->control(false, 1);
    EXPECT_FALSE(enabled());
    EXPECT_TRUE(camera.rgb()->isRunning()) << "the first camera goes on";
    EXPECT_THAT(told(), ElementsAre(false));
    camera.rgb()->control(true, 1);
    EXPECT_TRUE(enabled());
    EXPECT_THAT(told(), ElementsAre(true));
}

TEST_F(RgbdChain, secondColourCameraAloneIsEnough)
{
    camera.tof()->control(true);
    camera.rgb()->control(true, 1);
    EXPECT_TRUE(enabled());
    EXPECT_FALSE(camera.rgb()->isRunning());
    camera.rgb()->control(false, 0);
    EXPECT_FALSE(enabled()) << "the stop of a camera that never ran";
}

TEST_F(RgbdChain, heldStreamsReportNothing)
{
    camera.tof()->control(true);
    EXPECT_THAT(told(), ElementsAre(false));
    EXPECT_TRUE(camera.rgb()->startOrStop(true));
    camera.rgb()->control(false);
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_FALSE(enabled());
}
