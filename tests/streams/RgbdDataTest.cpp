#include "streams/RgbdData.h"

#include "streams/DepthColorPixels.h"
#include "support/FakeTofCamera.h"
#include "support/LogCatcher.h"
#include "support/Pictures.h"
#include "support/Timers.h"

#include <QTemporaryDir>
#include <gmock/gmock.h>

using pictures::bufferOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Pixels of seven bytes whose colours count up, with a depth that must not shine through.
std::vector<unsigned char> pixels(std::size_t count)
{
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t channel = 0; channel < 3; ++channel)
            bytes.push_back(static_cast<unsigned char>(3 * i + channel));
        bytes.insert(bytes.end(), 4, 0xEE);
    }
    return bytes;
}

qv::DepthColorImage record(std::size_t width, std::size_t height)
{
    qv::DepthColorImage image;
    image.width = width;
    image.height = height;
    image.data = bufferOf(pixels(width * height));
    return image;
}

QList<bool> values(const QSignalSpy &spy)
{
    QList<bool> list;
    for (const auto &arguments : spy)
        list << arguments.at(0).toBool();
    return list;
}

class Rgbd : public testing::Test {
protected:
    std::shared_ptr<FakeTofCamera> camera = std::make_shared<FakeTofCamera>();
    std::unique_ptr<RgbdData> rgbd = std::make_unique<RgbdData>(camera, nullptr);
};

} // namespace

TEST_F(Rgbd, beginsDisabledWithAColourImage)
{
    EXPECT_FALSE(rgbd->enable());
    EXPECT_EQ(rgbd->image()->type(), int(ImageData::Color));
    EXPECT_EQ(rgbd->property("image").value<ImageData *>(), rgbd->image());
    EXPECT_THAT(camera->calls(), IsEmpty());
}

TEST_F(Rgbd, isUsableWhileBothStreamsRun)
{
    QSignalSpy enable(rgbd.get(), &RgbdData::enableChanged);
    for (const int v : {0, 2, 1, 0, 3, 2})
        rgbd->setEnable(v);
    EXPECT_EQ(values(enable), (QList<bool>{false, true, false, true, false, true}));
}

TEST_F(Rgbd, otherCodesChangeNothingAndStillSignal)
{
    rgbd->setEnable(0);
    rgbd->setEnable(2);
    QSignalSpy enable(rgbd.get(), &RgbdData::enableChanged);
    rgbd->setEnable(4);
    rgbd->setEnable(-1);
    EXPECT_EQ(values(enable), (QList<bool>{true, true}));
}

TEST_F(Rgbd, theStopOfASecondColourCameraDisablesToo)
{
    rgbd->setEnable(0);
    rgbd->setEnable(2); // first camera
    rgbd->setEnable(2); // second camera
    rgbd->setEnable(3); // second camera
    EXPECT_FALSE(rgbd->enable());
}

TEST_F(Rgbd, controlRegistersAndUnregisters)
{
    EXPECT_TRUE(rgbd->control(true));
    EXPECT_TRUE(rgbd->control(true));
    EXPECT_EQ(camera->colorDepth.count(), 1U);
    EXPECT_TRUE(rgbd->control(false));
    EXPECT_FALSE(rgbd->control(false)) << "nothing is registered any more";
    EXPECT_THAT(camera->calls(),
        ElementsAre("registerColorDepthImageCallback", "unregisterColorDepthImageCallback(1)",
            "registerColorDepthImageCallback", "unregisterColorDepthImageCallback(2)"));
}

TEST_F(Rgbd, controlOffWithoutACallbackCallsNothing)
{
    EXPECT_FALSE(rgbd->control(false));
    EXPECT_THAT(camera->calls(), IsEmpty());
}

TEST_F(Rgbd, controlOffAnswersTheLibrary)
{
    rgbd->control(true);
    camera->colorDepth.remove(1);
    EXPECT_FALSE(rgbd->control(false));
}

TEST_F(Rgbd, aRefusedRegistrationIsFalse)
{
    const LogCatcher log;
    camera->colorDepth.refuses = true;
    EXPECT_FALSE(rgbd->control(true));
    EXPECT_FALSE(rgbd->control(false));
    EXPECT_THAT(camera->calls(), ElementsAre("registerColorDepthImageCallback"));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(Rgbd, aFrameKeepsTheColoursOfEachPixel)
{
    rgbd->control(true);
    for (const auto &[width, height] :
        {std::pair{5, 3}, std::pair{1, 1}, std::pair{64, 2}, std::pair{1, 7}}) {
        camera->colorDepth.deliver(record(std::size_t(width), std::size_t(height)));
        const ImageData::Frame frame = rgbd->image()->frame();
        ASSERT_EQ(frame.width, width);
        ASSERT_EQ(frame.height, height);
        ASSERT_EQ(frame.dataSize, width * height * 3);
        ASSERT_EQ(frame.type, int(ImageData::Color));
        for (int i = 0; i < frame.dataSize; ++i)
            ASSERT_EQ(frame.data.get()[i], static_cast<unsigned char>(i));
    }
}

TEST_F(Rgbd, aFrameNeitherCountsNorSizesNorRecords)
{
    rgbd->control(true);
    camera->colorDepth.deliver(record(5, 3));
    fireTimers(*rgbd);
    EXPECT_EQ(rgbd->dataFrameRate(), 0.0);
    EXPECT_EQ(rgbd->sourceWidth(), 0);
    EXPECT_EQ(rgbd->sourceHeight(), 0);
    EXPECT_EQ(rgbd->AbstractImageData::image()->data(), nullptr);
}

TEST_F(Rgbd, emptyRecordsLeaveTheLastPicture)
{
    rgbd->control(true);
    camera->colorDepth.deliver(record(5, 3));
    const auto before = rgbd->image()->data();
    QSignalSpy update(rgbd->image(), &ImageData::update);
    camera->colorDepth.deliver(record(0, 3));
    camera->colorDepth.deliver(record(5, 0));
    auto null = record(5, 3);
    null.data = nullptr;
    camera->colorDepth.deliver(null);
    auto huge = record(5, 3);
    huge.width = huge.height = std::size_t(1) << 33;
    camera->colorDepth.deliver(huge);
    EXPECT_EQ(update.count(), 0);
    EXPECT_EQ(rgbd->image()->data(), before);
}

TEST_F(Rgbd, aPictureThatSomebodyHoldsIsNotOverwritten)
{
    rgbd->control(true);
    camera->colorDepth.deliver(record(5, 3));
    const auto held = rgbd->image()->data();
    auto other = record(5, 3);
    other.data = bufferOf(std::vector<unsigned char>(5 * 3 * 7, 9));
    for (int i = 0; i < 6; ++i)
        camera->colorDepth.deliver(other);
    for (int i = 0; i < 45; ++i)
        ASSERT_EQ(held.get()[i], static_cast<unsigned char>(i));
    EXPECT_EQ(rgbd->image()->data().get()[44], 9);
}

TEST_F(Rgbd, thereIsNothingToSaveOrRecord)
{
    const QTemporaryDir folder;
    rgbd->control(true);
    camera->colorDepth.deliver(record(5, 3));
    EXPECT_TRUE(rgbd->toImage().isNull());
    EXPECT_TRUE(rgbd->toMat().empty());
    EXPECT_FALSE(rgbd->save(folder.filePath("a.png")));
}

TEST_F(Rgbd, resetAndViewSizeAreHarmless)
{
    rgbd->reset();
    rgbd->setViewSize(3, 4);
    EXPECT_THAT(camera->calls(), IsEmpty());
    RgbdData without(nullptr, nullptr);
    EXPECT_FALSE(without.control(true));
    EXPECT_FALSE(without.control(false));
}

TEST_F(Rgbd, destructionUnregistersWhatIsRegistered)
{
    rgbd->control(true);
    const auto callback = camera->colorDepth.held().at(0);
    camera->takeCalls();
    rgbd.reset();
    EXPECT_THAT(camera->takeCalls(), ElementsAre("unregisterColorDepthImageCallback(1)"));
    callback(record(5, 3));
    rgbd = std::make_unique<RgbdData>(camera, nullptr);
    rgbd.reset();
    EXPECT_THAT(camera->takeCalls(), IsEmpty());
}

TEST(DepthColorPixels, writesNothingPastTheLastColour)
{
    const auto source = pixels(10);
    std::vector<unsigned char> colors(10 * 3 + 8, 0xAA);
    unpackColor(source.data(), 10, colors.data());
    for (std::size_t i = 0; i < colors.size(); ++i)
        EXPECT_EQ(colors[i], i < 30 ? static_cast<unsigned char>(i) : 0xAA);
    unpackColor(nullptr, 0, nullptr);
}
