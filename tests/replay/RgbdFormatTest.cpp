#include "replay/PictureList.h"
#include "replay/RgbdRecording.h"

#include "replay/RgbdFolder.h"
#include "sim/Stderr.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sim;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(Table, fieldsWithoutCommasAreSplitAtBlanks)
{
    EXPECT_THAT(Table::parse("1.5  rgb/1.5.png\r\n").rows[0].fields, ElementsAre("1.5", "rgb/1.5.png"));
    EXPECT_THAT(Table::parse("1.5, a b.png").rows[0].fields, ElementsAre("1.5", "a b.png"));
}

TEST(RgbdRecording, isToldByItsLists)
{
    RgbdFolder folder;
    EXPECT_FALSE(RgbdRecording::isOne(folder.path()));
    folder.addDepth(1);
    EXPECT_TRUE(RgbdRecording::isOne(folder.path()));
    EXPECT_FALSE(RgbdRecording::isOne(folder.path() / "nowhere"));
}

TEST(RgbdRecording, readsBothListsWithTheirTimes)
{
    RgbdFolder folder;
    folder.addColor(3);
    folder.addDepth(2);
    const RgbdRecording recording = RgbdRecording::open(folder.path());
    ASSERT_EQ(recording.color.size(), 3U);
    ASSERT_EQ(recording.depth.size(), 2U);
    EXPECT_EQ(recording.color[2].time, RgbdFolder::time(2));
    EXPECT_EQ(recording.depth[1].time, RgbdFolder::time(1) + RgbdFolder::depthLater);
    EXPECT_TRUE(std::filesystem::exists(recording.color[2].file));
    EXPECT_TRUE(std::filesystem::exists(recording.depth[1].file));
}

TEST(RgbdRecording, withoutACalibrationTheUsualOneHolds)
{
    RgbdFolder folder;
    folder.addDepth(1);
    const RgbdRecording recording = RgbdRecording::open(folder.path());
    EXPECT_EQ(recording.depthScale, 5000);
    EXPECT_EQ(recording.lens.fx, 525);
    EXPECT_EQ(recording.lens.u0, 319.5);
    EXPECT_EQ(recording.lens.w, 640);
}

TEST(RgbdRecording, theCalibrationTellsLensAndScale)
{
    RgbdFolder folder;
    folder.addDepth(1);
    folder.write("calibration.txt", "# fx fy cx cy width height depth_scale\n585 586 15.5 11.5 32 24 1000\n");
    const RgbdRecording recording = RgbdRecording::open(folder.path());
    EXPECT_EQ(recording.depthScale, 1000);
    EXPECT_EQ(recording.lens.fx, 585);
    EXPECT_EQ(recording.lens.fy, 586);
    EXPECT_EQ(recording.lens.u0, 15.5);
    EXPECT_EQ(recording.lens.v0, 11.5);
    EXPECT_EQ(recording.lens.w, 32);
    EXPECT_EQ(recording.lens.h, 24);
}

TEST(RgbdRecording, aCommentOfTheDepthListMayTellTheScale)
{
    RgbdFolder folder;
    folder.write("depth.txt", "# depth maps\n# depth_scale 1000 (raw / 1000 = metres)\n1.0 depth/1.png\n");
    EXPECT_EQ(RgbdRecording::open(folder.path()).depthScale, 1000);
}

TEST(RgbdRecording, aCalibrationThatCanNotBeUsedIsToldAndLeftAside)
{
    RgbdFolder folder;
    folder.addDepth(1);
    for (const char *text : {"", "585 585 320", "0 585 320 240 640 480", "585 585 320 240 640 99999"}) {
        folder.write("calibration.txt", text);
        Stderr output;
        EXPECT_EQ(RgbdRecording::open(folder.path()).lens.fx, 525) << text;
        EXPECT_THAT(output.lines(), ElementsAre(HasSubstr("calibration.txt is left aside")));
    }
}

TEST(RgbdRecording, badRowsAreToldOnceAndRepeatedAndDisorderedTimesPutRight)
{
    RgbdFolder folder;
    folder.write(
        "rgb.txt", "\xef\xbb\xbf# color\r\nabc rgb/a.png\r\n3.0 c.png\r\n1.0 a.png\r\n3.0 d.png\r\n");
    Stderr output;
    const RgbdRecording recording = RgbdRecording::open(folder.path());
    ASSERT_EQ(recording.color.size(), 2U);
    EXPECT_EQ(recording.color[0].file.filename(), "a.png");
    EXPECT_EQ(recording.color[1].file.filename(), "c.png");
    ASSERT_EQ(output.lines().size(), 1U);
    EXPECT_THAT(output.lines()[0], HasSubstr("1 row can't be read"));
    EXPECT_THAT(output.lines()[0], HasSubstr("1 row left out for repeating a timestamp"));
    EXPECT_THAT(output.lines()[0], HasSubstr("1 row put in order of time"));
}

TEST(RgbdRecording, nothingToPlayIsAnError)
{
    RgbdFolder folder;
    folder.write("rgb.txt", "# nothing\n");
    EXPECT_THROW(RgbdRecording::open(folder.path()), std::runtime_error);
    EXPECT_THROW(RgbdRecording::open(folder.path() / "nowhere"), std::runtime_error);
}

TEST(PictureList, aPauseMakesNothingBelongTogether)
{
    constexpr std::int64_t tenth = 100'000'000;
    std::vector<PictureRow> pictures;
    for (const std::int64_t tenths : {0, 1, 2, 1000, 1001, 1002})
        pictures.push_back({tenths * tenth, {}});
    EXPECT_EQ(togetherLimit(pictures), tenth / 2);
    pictures.resize(1);
    EXPECT_EQ(togetherLimit(pictures), 25'000'000);
}

TEST(RgbdRecording, theTimelineHoldsTheTimesOfBothCameras)
{
    RgbdFolder folder;
    folder.addColor(3);
    folder.addDepth(3);
    const RgbdRecording recording = RgbdRecording::open(folder.path());
    const Timeline timeline = recording.timeline(7);
    EXPECT_EQ(timeline.origin(), 7);
    EXPECT_NEAR(timeline.playTime(recording.color[2].time), 0.08, 1e-9);
    EXPECT_NEAR(timeline.playTime(recording.depth[0].time), 0.004, 1e-9);
    EXPECT_NEAR(timeline.duration(), 0.084 + 0.04, 1e-9) << "from the last picture one period to the first";
}
