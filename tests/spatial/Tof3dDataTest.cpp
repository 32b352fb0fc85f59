#include "spatial/Tof3dData.h"

#include "support/FakeColorCamera.h"
#include "support/FakeSlam.h"
#include "support/FakeTofCamera.h"
#include "support/LogCatcher.h"

using ::testing::ElementsAre;

TEST(Tof3dData, nullTofCameraThrows)
{
    try {
        const Tof3dData data(nullptr, nullptr, nullptr, nullptr, nullptr);
        FAIL();
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "Invalid TofCamera");
    }
}

TEST(Tof3dData, defaultsAndMissingComponents)
{
    const LogCatcher log;
    auto tof = std::make_shared<FakeTofCamera>();
    const Tof3dData data(tof, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(log.lines(), (QStringList{"debug: No SLAM available", "debug: No Edge available"}));
    EXPECT_FALSE(data.rgbAvailable());
    EXPECT_FALSE(data.colorize());
    EXPECT_EQ(data.source(), Tof3dData::Source::SLAM);
    EXPECT_EQ(data.distance(), 4.5);
    ASSERT_TRUE(data.pointCloud());
    EXPECT_EQ(data.pointCloud()->size(), 0);
}

TEST(Tof3dData, eachMissingSlamIsLoggedByItself)
{
    const auto tof = std::make_shared<FakeTofCamera>();
    const auto slam = std::make_shared<FakeSlam>();
    const LogCatcher log;
    const Tof3dData withoutEdge(tof, nullptr, slam, nullptr, nullptr);
    EXPECT_EQ(log.lines(), (QStringList{"debug: No Edge available"}));
    const Tof3dData withoutSlam(tof, nullptr, nullptr, slam, nullptr);
    EXPECT_EQ(log.lines(), (QStringList{"debug: No Edge available", "debug: No SLAM available"}));
}

TEST(Tof3dData, colourCameraMakesRgbAvailable)
{
    const Tof3dData data(
        std::make_shared<FakeTofCamera>(), std::make_shared<FakeColorCamera>(), nullptr, nullptr, nullptr);
    EXPECT_TRUE(data.rgbAvailable());
}

TEST(Tof3dData, controlLogsAndDoesNothingElse)
{
    auto tof = std::make_shared<FakeTofCamera>();
    Tof3dData data(tof, nullptr, std::make_shared<FakeSlam>(), std::make_shared<FakeSlam>(), nullptr);
    tof->takeCalls();
    const LogCatcher log;
    data.control(true);
    data.control(false);
    EXPECT_EQ(log.lines(),
        (QStringList{"debug: Tof3dData::control start....................",
            "debug: Tof3dData::control stop...................."}));
    EXPECT_TRUE(tof->calls().empty());
}

TEST(Tof3dData, distanceSignalsAlwaysAndTheOthersOnAChange)
{
    Tof3dData data(std::make_shared<FakeTofCamera>(), nullptr, nullptr, nullptr, nullptr);
    const QSignalSpy distance(&data, &Tof3dData::distanceChanged);
    const QSignalSpy colorize(&data, &Tof3dData::colorizeChanged);
    const QSignalSpy source(&data, &Tof3dData::sourceChanged);
    const QSignalSpy rgb(&data, &Tof3dData::rgbAvailableChanged);
    data.setDistance(4.5);
    data.setDistance(4.5);
    data.setColorize(true);
    data.setColorize(true);
    data.setSource(Tof3dData::Source::EDGE);
    data.setSource(Tof3dData::Source::EDGE);
    ASSERT_EQ(distance.count(), 2);
    EXPECT_EQ(distance.first().first().toDouble(), 4.5);
    ASSERT_EQ(colorize.count(), 1);
    EXPECT_TRUE(colorize.first().first().toBool());
    EXPECT_EQ(source.count(), 1);
    EXPECT_EQ(source.first().first().value<Tof3dData::Source>(), Tof3dData::Source::EDGE);
    data.setRgbAvailable(true);
    data.setRgbAvailable(true);
    ASSERT_EQ(rgb.count(), 1);
    EXPECT_TRUE(rgb.first().first().toBool());
}

TEST(Tof3dData, destructionUnregistersMinusOneOnEachComponent)
{
    auto tof = std::make_shared<FakeTofCamera>();
    auto rgb = std::make_shared<FakeColorCamera>();
    auto slam = std::make_shared<FakeSlam>();
    auto edge = std::make_shared<FakeSlam>();
    {
        const Tof3dData data(tof, rgb, slam, edge, nullptr);
    }
    EXPECT_THAT(tof->calls(), ElementsAre("unregisterCallback(-1)"));
    EXPECT_THAT(rgb->calls(), ElementsAre("unregisterCallback(-1)"));
    EXPECT_THAT(slam->calls(), ElementsAre("unregisterCallback(-1)"));
    EXPECT_THAT(edge->calls(), ElementsAre("unregisterCallback(-1)"));
}

TEST(Tof3dData, aDefaultMadeOneHasNoCloudAndDiesInPeace)
{
    Tof3dData data;
    const QSignalSpy distance(&data, &Tof3dData::distanceChanged);
    data.control(true);
    data.control(false);
    data.setDistance(1.5);
    data.setSource(Tof3dData::Source::EDGE);
    data.setColorize(true);
    data.setRgbAvailable(true);
    EXPECT_EQ(distance.count(), 1);
    EXPECT_EQ(data.distance(), 1.5);
    EXPECT_EQ(data.source(), Tof3dData::Source::EDGE);
    EXPECT_TRUE(data.colorize());
    EXPECT_TRUE(data.rgbAvailable());
    EXPECT_EQ(data.pointCloud(), nullptr);
    const LogCatcher log;
    delete new Tof3dData;
    EXPECT_EQ(log.lines(), QStringList());
}
