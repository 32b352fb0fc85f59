#include "imaging/ImagePainter.h"

#include "imaging/FakeProbe.h"
#include "imaging/Painting.h"
#include "imaging/PlainChain.h"
#include <atomic>
#include <cmath>
#include <thread>

TEST(ImagePainterPaint, firstPaintTellsTypeWidthAndHeight)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    frames::set(image, ImageData::IR, {30, 20}, frames::random(ImageData::IR, {30, 20}, 1));
    SignalLog log(item);
    painted(item, {30, 20});
    EXPECT_EQ(log.names, QStringList({"type", "sourceWidth", "sourceHeight"}));
    EXPECT_EQ(item.type(), ImagePainter::IR);
    EXPECT_EQ(item.sourceWidth(), 30);
    EXPECT_EQ(item.sourceHeight(), 20);
    log.names.clear();
    painted(item, {30, 20});
    EXPECT_TRUE(log.names.isEmpty());
}

TEST(ImagePainterPaint, writtenSourceSizeIsReplacedByTheNextPaint)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {30, 20});
    painted(item, {30, 20});
    item.setSourceWidth(77);
    painted(item, {30, 20});
    EXPECT_EQ(item.sourceWidth(), 30);
}

TEST(ImagePainterPaint, frameOfTheWindowsSizeIsDrawnAsItIs)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    item.setTopLeftPoint({3, 4});
    setWhite(image, {30, 20});
    SignalLog log(item);
    EXPECT_TRUE(isAll(painted(item, {30, 20}), white));
    EXPECT_EQ(item.imageRation(), 1.0);
    EXPECT_EQ(item.topLeftPoint(), QPointF(3, 4)) << "left alone";
    EXPECT_FALSE(log.names.contains("topLeftPoint"));
}

TEST(ImagePainterPaint, otherFramesAreFittedIntoTheMiddle)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {20, 20});
    QSignalSpy topLeft(&item, &ImagePainter::topLeftPointChanged);
    const QImage shown = painted(item, {100, 40});
    EXPECT_EQ(item.imageRation(), 2.0);
    EXPECT_EQ(item.topLeftPoint(), QPointF(30, 0));
    ASSERT_EQ(topLeft.count(), 1);
    EXPECT_EQ(topLeft[0][0].toPointF(), QPointF(30, 0));
    EXPECT_EQ(shown.pixel(29, 20), black);
    EXPECT_EQ(shown.pixel(30, 0), white);
    EXPECT_EQ(shown.pixel(69, 39), white);
    EXPECT_EQ(shown.pixel(70, 20), black);
    painted(item, {100, 40});
    EXPECT_EQ(topLeft.count(), 1);
}

TEST(ImagePainterPaint, ratioIsStoredSilentlyAndAfterTheCorner)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {20, 20});
    painted(item, {60, 60});
    const QSignalSpy ratio(&item, &ImagePainter::imageRationChanged);
    double seen = -1;
    QObject::connect(&item, &ImagePainter::topLeftPointChanged, [&] { seen = item.imageRation(); });
    painted(item, {100, 40});
    EXPECT_EQ(seen, 3.0) << "the one of the paint before";
    EXPECT_EQ(item.imageRation(), 2.0);
    EXPECT_EQ(ratio.count(), 0);
}

TEST(ImagePainterPaint, frameAsWideAsTheWindowIsCentredWithoutScaling)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    item.setTopLeftPoint({3, 4});
    setWhite(image, {30, 20});
    painted(item, {30, 40});
    EXPECT_EQ(item.topLeftPoint(), QPointF(0, 10));
    EXPECT_EQ(item.imageRation(), 1.0);
}

TEST(ImagePainterPaint, ratioIsThatOfTheWidths)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {10, 3});
    painted(item, {15, 100}); // 15 x 4: half a row is cut off
    EXPECT_EQ(item.imageRation(), 1.5);
    EXPECT_EQ(item.topLeftPoint(), QPointF(0, 48));
}

TEST(ImagePainterPaint, cornerMayLieBetweenPixels)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {20, 20});
    painted(item, {41, 20});
    EXPECT_EQ(item.topLeftPoint(), QPointF(10.5, 0));
}

/// The whole paint against the straight chain of calls, on the targets that Qt Quick paints on.
TEST(ImagePainterPaint, paintsThePixelsOfTheStraightChain)
{
    std::mt19937 random(3);
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    for (int round = 0; round < 160; ++round) {
        const int type = round % 8;
        const QSize size(
            2 * (1 + static_cast<int>(random() % 60)), 2 * (1 + static_cast<int>(random() % 60)));
        const QSize itemSize = round % 5 == 0
            ? size
            : QSize(1 + static_cast<int>(random() % 200), 1 + static_cast<int>(random() % 200));
        frames::set(image, type, size, frames::random(type, size, random()));
        item.setHorizontalFlip(random() & 1);
        item.setVerticalFlip(random() & 1);
        item.setColorIndex(round % 3);
        FrameLook look;
        look.horizontalFlip = item.horizontalFlip();
        look.verticalFlip = item.verticalFlip();
        look.colorIndex = item.colorIndex();
        look.range = {item.minDistance(), item.maxDistance()};
        for (const auto format : {QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB32}) {
            QImage plainTarget(itemSize, format);
            QImage target(itemSize, format);
            plainTarget.fill(Qt::magenta);
            target.fill(Qt::magenta);
            {
                QPainter painter(&plainTarget);
                plain::paint(painter, itemSize, image.frame(), look);
            }
            {
                QPainter painter(&target);
                item.setSize(itemSize);
                item.paint(&painter);
            }
            ASSERT_TRUE(plainTarget == target) << "round " << round;
        }
    }
}

TEST(ImagePainterPaint, onAScreenWithAPixelRatioThePictureFillsTheItemSharply)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    std::vector<unsigned char> pixels(80 * 40, 0);
    for (std::size_t i = 0; i < pixels.size(); i += 2)
        pixels[i] = 255;
    frames::set(image, ImageData::Gray, {80, 40}, frames::bytes(pixels));
    const QImage shown = painted(item, {50, 20}, 2); // 100 x 40 device pixels
    EXPECT_EQ(item.topLeftPoint(), QPointF(5, 0));
    EXPECT_EQ(item.imageRation(), 0.5);
    EXPECT_EQ(shown.pixel(9, 0), black);
    EXPECT_EQ(shown.pixel(10, 0), white);
    EXPECT_EQ(shown.pixel(11, 0), black);
    EXPECT_EQ(shown.pixel(88, 39), white);
    EXPECT_EQ(shown.pixel(90, 39), black);
    painted(item, {40, 20}, 2);
    EXPECT_EQ(item.imageRation(), 0.5) << "of frame pixels, also when the frame fits exactly";
}

TEST(ImagePainterPaint, keyPointsAreDrawnOverTheFrame)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {40, 40});
    image.setPoints({{10, 20}});
    const QImage shown = painted(item, {100, 80});
    // Ratio 2, corner (10, 0).
    EXPECT_EQ(shown.pixel(30, 40), green);
    EXPECT_EQ(shown.pixel(40, 40), white);
    item.setShowPoints(false);
    EXPECT_EQ(painted(item, {100, 80}).pixel(30, 40), white);
}

TEST(ImagePainterPaint, keyPointsFollowTheFlips)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {40, 30});
    image.setPoints({{10, 20}});
    item.setHorizontalFlip(true);
    EXPECT_EQ(painted(item, {40, 30}).pixel(30, 20), green);
    item.setVerticalFlip(true);
    EXPECT_EQ(painted(item, {40, 30}).pixel(30, 10), green);
    item.setHorizontalFlip(false);
    EXPECT_EQ(painted(item, {40, 30}).pixel(10, 10), green);
}

TEST(ImagePainterPaint, bothFlipsRatioAndCornerGoTogether)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    std::vector<unsigned char> pixels(40 * 30, 255);
    for (std::size_t y = 0; y < 15; ++y)
        std::fill_n(pixels.begin() + static_cast<std::ptrdiff_t>(y * 40), 20, 0);
    frames::set(image, ImageData::Gray, {40, 30}, frames::bytes(pixels));
    image.setPoints({{10, 20}});
    item.setObjects({boxObject(4, 5, 12, 10)});
    item.setCNNRunning(true);
    item.setHorizontalFlip(true);
    item.setVerticalFlip(true);
    const QImage shown = painted(item, {100, 60});
    // Shown as 80 x 60, from (10, 0) on.
    EXPECT_EQ(item.imageRation(), 2.0);
    EXPECT_EQ(item.topLeftPoint(), QPointF(10, 0));
    EXPECT_EQ(shown.pixel(5, 5), black) << "beside the frame";
    EXPECT_EQ(shown.pixel(15, 5), white);
    EXPECT_EQ(shown.pixel(85, 57), black) << "the dark corner has gone from the first to the last";
    // Point at (40 - 10, 30 - 20), twice as large, behind the corner.
    EXPECT_EQ(shown.pixel(70, 20), green);
    // Box from (40 - 4 - 12, 30 - 5 - 10) on, 12 x 10.
    EXPECT_EQ(shown.pixel(58, 30), yellow);
    EXPECT_EQ(shown.pixel(82, 50), yellow);
}

TEST(ImagePainterPaint, nullBufferSkipsTheFrameButNotTheObjects)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {20, 20});
    image.setPoints({{5, 5}});
    painted(item, {100, 40});
    image.set(20, 20, nullptr, 0);
    item.setObjects({boxObject(10, 10, 30, 20)});
    item.setCNNRunning(true);
    SignalLog log(item);
    const QImage shown = painted(item, {100, 80});
    EXPECT_EQ(shown.pixel(10, 10), yellow) << "at ratio 1 and (0, 0)";
    EXPECT_EQ(shown.pixel(40, 30), yellow);
    EXPECT_EQ(shown.pixel(50, 40), black);
    EXPECT_EQ(shown.pixel(5, 5), black) << "no key points";
    EXPECT_EQ(item.imageRation(), 2.0) << "keeps its old value";
    EXPECT_TRUE(log.names.isEmpty());
}

TEST(ImagePainterPaint, frameWithoutPictureIsBlackWithOverlays)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {20, 20});
    painted(item, {100, 40});
    frames::set(image, ImageData::JPEG, {20, 20}, frames::bytes(frames::noise(100, 1)));
    image.setPoints({{5, 5}});
    item.setObjects({boxObject(10, 10, 30, 20)});
    item.setCNNRunning(true);
    const QImage shown = painted(item, {100, 40});
    EXPECT_EQ(item.imageRation(), 1.0);
    EXPECT_EQ(item.type(), ImagePainter::JPEG);
    EXPECT_EQ(shown.pixel(5, 5), green);
    EXPECT_EQ(shown.pixel(10, 10), yellow);
    EXPECT_EQ(shown.pixel(50, 20), black);
    EXPECT_EQ(item.topLeftPoint(), QPointF(30, 0)) << "of the last scaled image";
}

TEST(ImagePainterPaint, unknownFrameTypesAndSizesDoNoHarm)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    const auto bytes = frames::random(ImageData::Float, {20, 20}, 1);
    for (const int type : {-1, 8, 42, 0, 2, 3, 4, 5, 6, 7}) {
        for (const QSize size :
            {QSize(0, 0), QSize(20, 0), QSize(-3, 4), QSize(30000, 30000), QSize(21, 21)}) {
            frames::set(image, type, size, bytes);
            painted(item, {33, 22});
            EXPECT_EQ(item.sourceWidth(), size.width());
            EXPECT_EQ(static_cast<int>(item.type()), type);
            EXPECT_TRUE(std::isfinite(item.imageRation()));
        }
    }
}

TEST(ImagePainterPaint, jpegThatSaysNoSizeIsStillShown)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    frames::set(image, ImageData::JPEG, {0, 0}, frames::bytes(frames::jpeg({16, 12}, 1)));
    image.setPoints({{5, 5}});
    EXPECT_FALSE(isAll(painted(item, {33, 22}), black));
    EXPECT_EQ(item.imageRation(), 1.0);
}

TEST(ImagePainterPaint, frameMayChangeSizeInMidStream)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    for (const QSize size : {QSize(20, 10), QSize(3, 300), QSize(400, 2), QSize(20, 10)}) {
        setWhite(image, size);
        painted(item, {50, 50});
        EXPECT_EQ(item.sourceWidth(), size.width());
        EXPECT_EQ(item.sourceHeight(), size.height());
    }
    EXPECT_EQ(item.topLeftPoint(), QPointF(0, 12.5));
}

TEST(ImagePainterPaint, equalEndsOfTheRangeDoNoHarm)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    frames::set(image, ImageData::Float, {20, 20}, frames::random(ImageData::Float, {20, 20}, 1));
    item.setMaxDistance(0.2F);
    // OpenCV saturates what isn't a number to 0: row 0 of the table for every pixel.
    EXPECT_TRUE(isAll(painted(item, {20, 20}), qRgb(255, 12, 0)));
}

TEST(ImagePainterPaint, unknownColourMapLeavesTheItemBlack)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    frames::set(image, ImageData::Float, {20, 20}, frames::random(ImageData::Float, {20, 20}, 1));
    item.setColorIndex(1000);
    EXPECT_TRUE(isAll(painted(item, {20, 20}), black));
    EXPECT_EQ(item.imageRation(), 1.0);
}

TEST(ImagePainterPaint, colorizeChangesNoPixel)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    frames::set(image, ImageData::Float, {20, 20}, frames::random(ImageData::Float, {20, 20}, 1));
    const QImage before = painted(item, {40, 40});
    item.setColorize(false);
    EXPECT_TRUE(painted(item, {40, 40}) == before);
}

TEST(ImagePainterPaint, objectsAreDrawnOnlyWhileTheNetworkRuns)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {60, 40});
    const QImage bare = painted(item, {60, 40});
    item.setObjects(skeletonArray());
    EXPECT_TRUE(painted(item, {60, 40}) == bare);
    item.setCNNRunning(true);
    EXPECT_FALSE(painted(item, {60, 40}) == bare);
    item.setObjects({});
    EXPECT_TRUE(painted(item, {60, 40}) == bare);
}

class ImagePainterDepth : public ::testing::Test {
protected:
    ImagePainterDepth()
    {
        setWhite(image, {300, 200});
        item.setSource(&image);
        item.setObjects({boxObject(10, 20, 250, 150)});
        item.setCNNRunning(true);
    }
    QImage shown() { return painted(item, {300, 200}); }

    ImagePainter item;
    ImageData image;
    FakeProbe tof;
    FakeProbe sgbm;
};

TEST_F(ImagePainterDepth, comesFromTheTofStream)
{
    const QImage without = shown();
    item.setTofData(&tof);
    item.setSgbmData(&sgbm);
    EXPECT_FALSE(shown() == without);
    EXPECT_EQ(tof.asked, QStringList({"x 130", "y 85"}));
    EXPECT_TRUE(sgbm.asked.isEmpty());
}

TEST_F(ImagePainterDepth, isMissingWhileTheTofStreamStandsStill)
{
    const QImage without = shown();
    tof.running = false;
    item.setTofData(&tof);
    item.setSgbmData(&sgbm);
    EXPECT_TRUE(shown() == without);
    EXPECT_TRUE(tof.asked.isEmpty());
    EXPECT_TRUE(sgbm.asked.isEmpty());
}

TEST_F(ImagePainterDepth, comesFromTheStereoDepthWithoutATofStream)
{
    const QImage without = shown();
    item.setSgbmData(&sgbm);
    EXPECT_FALSE(shown() == without);
    EXPECT_EQ(sgbm.asked, QStringList({"x 130", "y 85"}));
    sgbm.running = false;
    EXPECT_TRUE(shown() == without);
}

TEST_F(ImagePainterDepth, isMissingForObjectsThatAreNoDepthStream)
{
    const QImage without = shown();
    QObject other;
    item.setTofData(&other);
    item.setSgbmData(&sgbm);
    EXPECT_TRUE(shown() == without);
}

TEST_F(ImagePainterDepth, streamThatDiesIsForgotten)
{
    auto dying = std::make_unique<FakeProbe>();
    item.setTofData(dying.get());
    item.setSgbmData(&sgbm);
    dying.reset();
    EXPECT_EQ(item.tofData(), nullptr);
    shown();
    EXPECT_EQ(sgbm.asked.size(), 2);
}

/// As it is in the window: frames come on a library's thread while the item is painted on another one.
TEST(ImagePainterPaint, framesMayArriveWhileItPaints)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    item.setCNNRunning(true);
    item.setObjects(skeletonArray());
    std::atomic<bool> stop{false};
    std::thread producer([&] {
        for (unsigned int i = 0; !stop; ++i) {
            const int type = static_cast<int>(i % 8);
            const QSize size(2 * (1 + static_cast<int>(i % 37)), 2 * (1 + static_cast<int>(i % 23)));
            frames::set(image, type, size, frames::random(type, size, i));
            if (i % 10 == 0)
                image.set(size.width(), size.height(), nullptr, 0);
        }
    });
    std::thread points([&] {
        for (int i = 0; !stop; ++i)
            image.setPoints(QVector<QPoint>(i % 20, QPoint(i % 50, 3)));
    });
    for (int i = 0; i < 400; ++i) {
        painted(item, {64, 48});
        QCoreApplication::processEvents();
    }
    stop = true;
    producer.join();
    points.join();
    SUCCEED() << "what is checked is that no checker of memory or threads objects";
}
