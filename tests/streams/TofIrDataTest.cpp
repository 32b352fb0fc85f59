#include "streams/TofIrData.h"

#include "streams/TofPictures.h"
#include "support/FakeDevice.h"
#include "support/FakeOwner.h"
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

qv::DepthImage infrared(std::size_t width, std::size_t height, const std::vector<unsigned short> &samples)
{
    qv::DepthImage image;
    image.type = 2;
    image.width = width;
    image.height = height;
    image.data = bufferOf(samples);
    image.dataSize = static_cast<unsigned int>(samples.size() * 2);
    return image;
}

class TofIr : public testing::Test {
protected:
    TofIr()
    {
        device->tofComponent = camera;
        owner.held = device;
        ir = std::make_unique<TofIrData>(camera, &owner);
    }

    void TearDown() override { ir.reset(); }

    LogCatcher log;
    FakeOwner owner;
    std::shared_ptr<FakeDevice> device = std::make_shared<FakeDevice>();
    std::shared_ptr<FakeTofCamera> camera = std::make_shared<FakeTofCamera>();
    std::unique_ptr<TofIrData> ir;
};

} // namespace

TEST_F(TofIr, beginsIdle)
{
    EXPECT_EQ(ir->image()->type(), int(ImageData::IR));
    EXPECT_EQ(ir->property("image").value<ImageData *>(), ir->image());
    EXPECT_THAT(camera->calls(), IsEmpty());
}

TEST_F(TofIr, manufacturerIsAlwaysZero)
{
    QSignalSpy changed(ir.get(), &TofIrData::manufacturerChanged);
    ir->setManufacturer(1);
    ir->setProperty("manufacturer", 2);
    EXPECT_EQ(ir->manufacturer(), 0);
    EXPECT_EQ(changed.count(), 0);
}

TEST_F(TofIr, controlTurnsInfraredOnAndRegistersWithoutAStart)
{
    ir->control(true);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("manufacturer", "enableIr(true)", "registerCallback"));
    EXPECT_EQ(log.lines(), QStringList{"debug: Enable IR successfully"});
    ir->control(true);
    EXPECT_THAT(camera->takeCalls(),
        ElementsAre("manufacturer", "enableIr(true)", "unregisterCallback(1)", "registerCallback"));
    ir->control(false);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("unregisterCallback(2)", "unregisterCallback(-1)"));
    ir->control(false);
    EXPECT_THAT(camera->takeCalls(), ElementsAre("unregisterCallback(-1)"));
}

TEST_F(TofIr, theOtherSensorFamilyNeedsNoCommand)
{
    camera->manufacturerResult = 1;
    ir->control(true);
    EXPECT_THAT(camera->calls(), ElementsAre("manufacturer", "registerCallback"));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(TofIr, aFailedCommandLeavesTheViewEmpty)
{
    camera->enableIrResult = false;
    ir->control(true);
    EXPECT_THAT(camera->calls(), ElementsAre("manufacturer", "enableIr(true)"));
    EXPECT_EQ(log.lines(), QStringList{"debug: Enable IR failed"});
}

TEST_F(TofIr, withoutADeviceTheCommandFailsInSilence)
{
    owner.held = nullptr;
    ir->control(true);
    TofIrData alone(camera, nullptr);
    alone.control(true);
    EXPECT_THAT(camera->calls(), ElementsAre("manufacturer", "manufacturer"));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(TofIr, aDeviceWithoutTheComponentFails)
{
    device->tofComponent = nullptr;
    ir->control(true);
    EXPECT_THAT(camera->calls(), ElementsAre("manufacturer"));
    EXPECT_EQ(log.lines(), QStringList{"debug: Enable IR failed"});
}

TEST_F(TofIr, framesAreCopiedCountedAndSized)
{
    ir->control(true);
    const auto record = infrared(3, 2, {1, 2, 3, 4, 5, 65535});
    camera->deliver(record);
    const ImageData::Frame frame = ir->image()->frame();
    EXPECT_NE(frame.data, record.data);
    EXPECT_EQ(std::memcmp(frame.data.get(), record.data.get(), 12), 0);
    EXPECT_EQ(frame.width, 3);
    EXPECT_EQ(frame.height, 2);
    EXPECT_EQ(frame.dataSize, 12);
    EXPECT_EQ(frame.type, int(ImageData::IR));
    EXPECT_EQ(ir->sourceWidth(), 3);
    EXPECT_EQ(ir->sourceHeight(), 2);
    fireTimers(*ir);
    EXPECT_EQ(ir->dataFrameRate(), 1.0);
}

TEST_F(TofIr, otherAndDamagedFramesAreDropped)
{
    ir->control(true);
    QSignalSpy update(ir->image(), &ImageData::update);
    for (const int type : {0, 1, 3, -1}) {
        auto other = infrared(3, 2, {1, 2, 3, 4, 5, 6});
        other.type = type;
        camera->deliver(other);
    }
    auto cut = infrared(3, 2, {1, 2, 3, 4, 5, 6});
    cut.dataSize = 11;
    camera->deliver(cut);
    auto null = infrared(3, 2, {1, 2, 3, 4, 5, 6});
    null.data = nullptr;
    camera->deliver(null);
    camera->deliver(infrared(0, 2, {1}));
    EXPECT_EQ(update.count(), 0);
    EXPECT_EQ(log.lines(), QStringList{"debug: Enable IR successfully"});
    fireTimers(*ir);
    EXPECT_EQ(ir->dataFrameRate(), 0.0);
}

TEST_F(TofIr, moreBytesThanThePictureHasAreLeftOut)
{
    ir->control(true);
    camera->deliver(infrared(2, 1, {10, 20, 30, 40, 50}));
    const ImageData::Frame frame = ir->image()->frame();
    EXPECT_EQ(frame.dataSize, 4);
    EXPECT_EQ(std::memcmp(frame.data.get(), std::vector<unsigned short>{10, 20}.data(), 4), 0);
}

TEST_F(TofIr, theSavedImageIsTheGreyOfTheColours)
{
    const QTemporaryDir folder;
    ir->control(true);
    const std::vector<unsigned short> samples{0, 9, 10, 20, 1247, 2493, 2494, 2495, 30000, 65535, 100, 1};
    camera->deliver(infrared(4, 3, samples));
    const QImage image = ir->toImage();
    ASSERT_EQ(image.size(), QSize(4, 3));
    EXPECT_EQ(image.format(), QImage::Format_RGBA8888);
    EXPECT_EQ(image.pixel(0, 0), 0xFF000000U) << "nothing is black";
    EXPECT_EQ(image.pixel(2, 1), 0xFF6A6A6AU) << "full scale is (64 + 0 + 255) / 3 = 106";
    EXPECT_EQ(image.pixel(1, 2), 0xFF6A6A6AU);
    for (int i = 0; i < 12; ++i) {
        const int row = int(std::min(samples[std::size_t(i)] * 255 / 2494, 255));
        const auto &color = irColorTable[std::size_t(row)];
        const auto grey = static_cast<unsigned int>((color[0] + color[1] + color[2]) / 3);
        EXPECT_EQ(image.pixel(i % 4, i / 4), 0xFF000000U | grey << 16 | grey << 8 | grey)
            << samples[std::size_t(i)];
    }
    EXPECT_TRUE(ir->save(folder.filePath("tofIr.png")));
    EXPECT_EQ(QImage(folder.filePath("tofIr.png")).pixel(2, 1), 0xFF6A6A6AU);
    EXPECT_FALSE(ir->save(folder.filePath("none/tofIr.png")));
}

TEST(TofIrColors, followTheDepthColoursButForTheEnds)
{
    for (std::size_t row = 1; row < 255; ++row)
        EXPECT_EQ(irColorTable[row], depthColorTable[row]);
    EXPECT_THAT(irColorTable[0], ElementsAre(0, 0, 0));
    EXPECT_THAT(irColorTable[255], ElementsAre(64, 0, 255));
}

TEST_F(TofIr, beforeTheFirstFrameThereIsNothingToSave)
{
    const QTemporaryDir folder;
    EXPECT_TRUE(ir->toImage().isNull());
    EXPECT_TRUE(ir->toMat().empty());
    EXPECT_FALSE(ir->save(folder.filePath("a.png")));
}

TEST_F(TofIr, destructionUnregistersTwice)
{
    ir->control(true);
    const auto callback = camera->callbacks.held().at(0);
    camera->takeCalls();
    ir.reset();
    EXPECT_THAT(camera->takeCalls(), ElementsAre("unregisterCallback(1)", "unregisterCallback(-1)"));
    callback(infrared(1, 1, {1}));
    ir = std::make_unique<TofIrData>(camera, nullptr);
    ir.reset();
    EXPECT_THAT(camera->takeCalls(), ElementsAre("unregisterCallback(-1)"));
}
