#include "streams/RgbData.h"
#include "streams/RgbdData.h"
#include "streams/SgbmData.h"
#include "streams/TofData.h"
#include "streams/TofIrData.h"
#include "support/FakeColorCamera.h"
#include "support/FakeTofCamera.h"
#include "support/FakeVsc.h"
#include "support/ViewerSize.h"

#include <gtest/gtest.h>

namespace {

const QSize untouched(640, 400);

/// The size of the view reaches the image of `model`, the last one as a whole.
template <class Model>
void expectViewSizes(Model &model)
{
    ASSERT_EQ(viewerSizeOf(*model.image()), untouched);
    model.setViewSize(800, 600);
    EXPECT_EQ(viewerSizeOf(*model.image()), QSize(800, 600));
    model.setViewSize(321, 123);
    EXPECT_EQ(viewerSizeOf(*model.image()), QSize(321, 123));
}

} // namespace

TEST(ViewSize, eachColourCameraHasItsOwn)
{
    RgbData rgb(std::make_shared<FakeColorCamera>(), nullptr);
    expectViewSizes(rgb);
    EXPECT_EQ(viewerSizeOf(*rgb.image2()), untouched);
    rgb.setView2Size(500, 300);
    EXPECT_EQ(viewerSizeOf(*rgb.image2()), QSize(500, 300));
    EXPECT_EQ(viewerSizeOf(*rgb.image()), QSize(321, 123));
}

TEST(ViewSize, secondColourViewWithoutAPictureIsHarmless)
{
    RgbData rgb(std::make_shared<FakeColorCamera>(), nullptr);
    ImageData *const own = rgb.image2();
    ImageData other;
    rgb.setImage2(&other);
    rgb.setView2Size(500, 300);
    EXPECT_EQ(viewerSizeOf(other), QSize(500, 300));
    EXPECT_EQ(viewerSizeOf(*own), untouched);
    rgb.setImage2(nullptr);
    rgb.setView2Size(1, 1);
    EXPECT_EQ(viewerSizeOf(other), QSize(500, 300));
}

TEST(ViewSize, alignedColour)
{
    RgbdData rgbd(std::make_shared<FakeTofCamera>(), nullptr);
    expectViewSizes(rgbd);
}

TEST(ViewSize, depth)
{
    TofData tof(std::make_shared<FakeTofCamera>(), nullptr);
    expectViewSizes(tof);
}

TEST(ViewSize, infrared)
{
    TofIrData infrared(std::make_shared<FakeTofCamera>(), nullptr);
    expectViewSizes(infrared);
}

TEST(ViewSize, stereoDepth)
{
    FakeVsc vsc;
    SgbmData sgbm(&vsc, nullptr);
    expectViewSizes(sgbm);
    EXPECT_EQ(sgbm.viewWidth(), 107) << "a third";
    EXPECT_EQ(sgbm.viewHeight(), 61) << "a half";
}
