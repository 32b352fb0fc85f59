#include "imaging/ImagePainter.h"

#include "imaging/FakeProbe.h"
#include "imaging/Frames.h"
#include "imaging/Painting.h"
#include "imaging/PlainChain.h"
#include "support/Wait.h"
#include <QMetaProperty>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

namespace {

constexpr QRgb black = qRgb(0, 0, 0);
constexpr QRgb white = qRgb(255, 255, 255);
constexpr QRgb green = qRgb(0, 255, 0);
constexpr QRgb yellow = qRgb(255, 255, 0);

/// A white frame of one byte a pixel.
void setWhite(ImageData &image, const QSize &size)
{
    frames::set(image, ImageData::Gray, size,
        frames::bytes(
            std::vector<unsigned char>(static_cast<std::size_t>(size.width() * size.height()), 255)));
}

bool isAll(const QImage &image, QRgb color)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != color)
                return false;
        }
    }
    return true;
}

QJsonArray skeletonArray()
{
    QJsonArray points;
    for (int i = 0; i < 18; ++i)
        points.append(QJsonObject{{"x", 20.0 + i}, {"y", 20.0}});
    return {QJsonObject{{"shape", 1}, {"keypoints", points}}};
}

/// Everything that the item tells, by name and in order.
class SignalLog {
public:
    explicit SignalLog(ImagePainter &item)
    {
        const auto log = [this](const char *name) { return [this, name] { names.append(name); }; };
        QObject::connect(&item, &ImagePainter::typeChanged, log("type"));
        QObject::connect(&item, &ImagePainter::sourceHeightChanged, log("sourceHeight"));
        QObject::connect(&item, &ImagePainter::sourceWidthChanged, log("sourceWidth"));
        QObject::connect(&item, &ImagePainter::objectsChanged, log("objects"));
        QObject::connect(&item, &ImagePainter::horizontalFlipChanged, log("horizontalFlip"));
        QObject::connect(&item, &ImagePainter::verticalFlipChanged, log("verticalFlip"));
        QObject::connect(&item, &ImagePainter::sourceChanged, log("source"));
        QObject::connect(&item, &ImagePainter::showPointsChanged, log("showPoints"));
        QObject::connect(&item, &ImagePainter::maxDistanceChanged, log("maxDistance"));
        QObject::connect(&item, &ImagePainter::minDistanceChanged, log("minDistance"));
        QObject::connect(&item, &ImagePainter::colorizeChanged, log("colorize"));
        QObject::connect(&item, &ImagePainter::topLeftPointChanged, log("topLeftPoint"));
        QObject::connect(&item, &ImagePainter::imageRationChanged, log("imageRation"));
        QObject::connect(&item, &ImagePainter::colorIndexChanged, log("colorIndex"));
        QObject::connect(&item, &ImagePainter::tofDataChanged, log("tofData"));
        QObject::connect(&item, &ImagePainter::sgbmDataChanged, log("sgbmData"));
        QObject::connect(&item, &ImagePainter::CNNRunningChanged, log("CNNRunning"));
    }

    QStringList names;
};

} // namespace

TEST(ImagePainter, startsWithItsDefaults)
{
    const ImagePainter item;
    EXPECT_EQ(item.type(), ImagePainter::Gray);
    EXPECT_EQ(item.sourceWidth(), 0);
    EXPECT_EQ(item.sourceHeight(), 0);
    EXPECT_TRUE(item.objects().isEmpty());
    EXPECT_FALSE(item.horizontalFlip());
    EXPECT_FALSE(item.verticalFlip());
    EXPECT_EQ(item.source(), nullptr);
    EXPECT_EQ(item.fps(), 0.0);
    EXPECT_TRUE(item.showPoints());
    EXPECT_EQ(item.maxDistance(), 1.2F);
    EXPECT_EQ(item.minDistance(), 0.2F);
    EXPECT_TRUE(item.colorize());
    EXPECT_EQ(item.colorIndex(), 0);
    EXPECT_EQ(item.topLeftPoint(), QPointF(0, 0));
    EXPECT_EQ(item.imageRation(), 0.0);
    EXPECT_EQ(item.tofData(), nullptr);
    EXPECT_EQ(item.sgbmData(), nullptr);
    EXPECT_FALSE(item.CNNRunning());
    EXPECT_FALSE(item.antialiasing());
    EXPECT_TRUE(item.opaquePainting());
    EXPECT_TRUE(item.mipmap());
}

TEST(ImagePainter, typesHaveTheNumbersOfTheFrameHolder)
{
    const auto ours = QMetaEnum::fromType<ImagePainter::ImageType>();
    const auto theirs = QMetaEnum::fromType<ImageData::Type>();
    ASSERT_EQ(ours.keyCount(), 8);
    for (int i = 0; i < ours.keyCount(); ++i) {
        EXPECT_STREQ(ours.key(i), theirs.key(i));
        EXPECT_EQ(ours.value(i), theirs.value(i));
    }
}

TEST(ImagePainter, imageTypeIsAMetaTypeByBothNames)
{
    const ImagePainter item;
    EXPECT_NE(QMetaType::type("ImageType"), QMetaType::UnknownType);
    EXPECT_NE(QMetaType::type("ImagePainter::ImageType"), QMetaType::UnknownType);
}

TEST(ImagePainter, propertiesHaveTheirNotifiers)
{
    const auto &meta = ImagePainter::staticMetaObject;
    const std::vector<std::pair<const char *, bool>> writable{{"source", true}, {"sourceWidth", true},
        {"sourceHeight", true}, {"horizontalFlip", true}, {"verticalFlip", true}, {"type", false},
        {"objects", true}, {"fps", false}, {"showPoints", true}, {"maxDistance", true}, {"minDistance", true},
        {"colorize", true}, {"topLeftPoint", true}, {"imageRation", false}, {"colorIndex", true},
        {"tofData", true}, {"sgbmData", true}, {"CNNRunning", true}};
    for (const auto &[name, write] : writable) {
        const QMetaProperty property = meta.property(meta.indexOfProperty(name));
        EXPECT_TRUE(property.isValid()) << name;
        EXPECT_EQ(property.isWritable(), write) << name;
        EXPECT_EQ(property.notifySignal().name(), QByteArray(name) + "Changed");
    }
}

TEST(ImagePainter, settersEmitOnceForANewValue)
{
    ImagePainter item;
    QObject other;
    const std::vector<std::pair<const char *, QVariant>> values{{"sourceWidth", 5}, {"sourceHeight", 6},
        {"horizontalFlip", true}, {"verticalFlip", true}, {"objects", QJsonArray{1, 2}},
        {"showPoints", false}, {"maxDistance", 3.0F}, {"colorize", false}, {"topLeftPoint", QPointF(1, 2)},
        {"colorIndex", 2}, {"tofData", QVariant::fromValue(&other)},
        {"sgbmData", QVariant::fromValue(&other)}, {"CNNRunning", true},
        {"source", QVariant::fromValue(&other)}};
    SignalLog log(item);
    for (const auto &[name, value] : values) {
        log.names.clear();
        EXPECT_TRUE(item.setProperty(name, value)) << name;
        EXPECT_TRUE(item.setProperty(name, value)) << name;
        EXPECT_EQ(log.names, QStringList(name));
        EXPECT_EQ(item.property(name), value) << name;
    }
    log.names.clear();
    item.setType(ImagePainter::IR);
    item.setType(ImagePainter::IR);
    EXPECT_EQ(log.names, QStringList("type"));
}

TEST(ImagePainter, signalsCarryTheNewValue)
{
    ImagePainter item;
    QSignalSpy width(&item, &ImagePainter::sourceWidthChanged);
    QSignalSpy type(&item, &ImagePainter::typeChanged);
    QSignalSpy objects(&item, &ImagePainter::objectsChanged);
    QSignalSpy far(&item, &ImagePainter::maxDistanceChanged);
    item.setSourceWidth(7);
    item.setType(ImagePainter::JPEG);
    item.setObjects({3});
    item.setMaxDistance(2.5F);
    EXPECT_EQ(width[0][0].toInt(), 7);
    EXPECT_EQ(type[0][0].value<ImagePainter::ImageType>(), ImagePainter::JPEG);
    EXPECT_EQ(objects[0][0].value<QJsonArray>(), QJsonArray({3}));
    EXPECT_EQ(far[0][0].toFloat(), 2.5F);
}

TEST(ImagePainter, minimumIsAnnouncedAsMaximum)
{
    ImagePainter item;
    QSignalSpy far(&item, &ImagePainter::maxDistanceChanged);
    const QSignalSpy near(&item, &ImagePainter::minDistanceChanged);
    item.setMinDistance(0.5F);
    ASSERT_EQ(far.count(), 1);
    EXPECT_EQ(far[0][0].toFloat(), 0.5F);
    EXPECT_EQ(near.count(), 0);
    EXPECT_EQ(item.minDistance(), 0.5F);
    EXPECT_EQ(item.maxDistance(), 1.2F);
}

TEST(ImagePainter, distancesAreComparedFuzzily)
{
    ImagePainter item;
    const QSignalSpy far(&item, &ImagePainter::maxDistanceChanged);
    item.setMaxDistance(1.200005F);
    item.setMinDistance(0.200001F);
    EXPECT_EQ(far.count(), 0);
    EXPECT_EQ(item.maxDistance(), 1.2F);
    EXPECT_EQ(item.minDistance(), 0.2F);
    item.setMaxDistance(1.20003F);
    item.setMinDistance(0.20001F);
    EXPECT_EQ(far.count(), 2);
    EXPECT_EQ(item.maxDistance(), 1.20003F);
}

TEST(ImagePainter, withoutSourceItIsBlackAndSilent)
{
    ImagePainter item;
    SignalLog log(item);
    item.setCNNRunning(true);
    item.setObjects(skeletonArray());
    log.names.clear();
    EXPECT_TRUE(isAll(painted(item, {60, 40}), black));
    QObject other;
    item.setSource(&other);
    EXPECT_TRUE(isAll(painted(item, {60, 40}), black));
    EXPECT_EQ(log.names, QStringList("source"));
}

TEST(ImagePainter, sourceThatDiesLeavesABlackItem)
{
    ImagePainter item;
    {
        ImageData image;
        setWhite(image, {60, 40});
        item.setSource(&image);
        EXPECT_TRUE(isAll(painted(item, {60, 40}), white));
    }
    EXPECT_EQ(item.source(), nullptr);
    EXPECT_TRUE(isAll(painted(item, {60, 40}), black));
}

TEST(ImagePainter, countsFramesOfItsSourceAlone)
{
    ImagePainter item;
    auto *timer = item.findChild<QTimer *>();
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->interval(), 1000);
    EXPECT_FALSE(timer->isSingleShot());
    EXPECT_TRUE(timer->isActive());
    ImageData image;
    ImageData other;
    item.setSource(&other);
    item.setSource(&image);
    for (int i = 0; i < 5; ++i)
        setWhite(image, {4, 4});
    setWhite(other, {4, 4});
    QSignalSpy fps(&item, &ImagePainter::fpsChanged);
    timer->setInterval(0);
    EXPECT_TRUE(waitFor([&] { return fps.count() >= 3; }));
    EXPECT_EQ(fps[0][0].toDouble(), 5.0);
    EXPECT_EQ(fps[1][0].toDouble(), 0.0);
    EXPECT_EQ(fps[2][0].toDouble(), 0.0) << "told each time, also when it is the same";
    EXPECT_EQ(item.fps(), 0.0);
}

TEST(ImagePainter, countsFramesThatAreNotPainted)
{
    ImagePainter item;
    item.updateAll();
    item.updateAll();
    QSignalSpy fps(&item, &ImagePainter::fpsChanged);
    item.findChild<QTimer *>()->setInterval(0);
    EXPECT_TRUE(waitFor([&] { return fps.count() >= 1; }));
    EXPECT_EQ(fps[0][0].toDouble(), 2.0);
}

TEST(ImagePainter, rateIsMeasuredOverASecond)
{
    ImagePainter item;
    item.updateAll();
    QElapsedTimer clock;
    clock.start();
    QSignalSpy fps(&item, &ImagePainter::fpsChanged);
    EXPECT_TRUE(waitFor([&] { return fps.count() >= 1; }));
    EXPECT_GE(clock.elapsed(), 900);
    EXPECT_EQ(item.fps(), 1.0);
}

TEST(ImagePainter, framesFromAnotherThreadAreCountedOnItsOwn)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    std::thread([&] {
        for (int i = 0; i < 7; ++i)
            setWhite(image, {4, 4});
    }).join();
    QSignalSpy fps(&item, &ImagePainter::fpsChanged);
    // The queued frames come before the timer that is started after them.
    QCoreApplication::sendPostedEvents(&item);
    item.findChild<QTimer *>()->setInterval(0);
    EXPECT_TRUE(waitFor([&] { return fps.count() >= 1; }));
    EXPECT_EQ(fps[0][0].toDouble(), 7.0);
}

TEST(ImagePainter, firstPaintTellsTypeWidthAndHeight)
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

TEST(ImagePainter, writtenSourceSizeIsReplacedByTheNextPaint)
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

TEST(ImagePainter, frameOfTheWindowsSizeIsDrawnAsItIs)
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

TEST(ImagePainter, otherFramesAreFittedIntoTheMiddle)
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

TEST(ImagePainter, ratioIsStoredSilentlyAndAfterTheCorner)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {20, 20});
    painted(item, {20, 20});
    const QSignalSpy ratio(&item, &ImagePainter::imageRationChanged);
    double seen = -1;
    QObject::connect(&item, &ImagePainter::topLeftPointChanged, [&] { seen = item.imageRation(); });
    painted(item, {100, 40});
    EXPECT_EQ(seen, 1.0) << "the one of the paint before";
    EXPECT_EQ(item.imageRation(), 2.0);
    EXPECT_EQ(ratio.count(), 0);
}

TEST(ImagePainter, cornerMayLieBetweenPixels)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {20, 20});
    painted(item, {41, 20});
    EXPECT_EQ(item.topLeftPoint(), QPointF(10.5, 0));
}

/// The whole paint against the straight chain of calls, on the targets that Qt Quick paints on.
TEST(ImagePainter, paintsThePixelsOfTheStraightChain)
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

TEST(ImagePainter, onAScreenWithAPixelRatioThePictureFillsTheItemSharply)
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

TEST(ImagePainter, keyPointsAreDrawnOverTheFrame)
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

TEST(ImagePainter, keyPointsFollowTheFlips)
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

TEST(ImagePainter, nullBufferSkipsTheFrameButNotTheObjects)
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

TEST(ImagePainter, frameWithoutPictureIsBlackWithOverlays)
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

TEST(ImagePainter, unknownFrameTypesAndSizesDoNoHarm)
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

TEST(ImagePainter, jpegThatSaysNoSizeIsStillShown)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    frames::set(image, ImageData::JPEG, {0, 0}, frames::bytes(frames::jpeg({16, 12}, 1)));
    image.setPoints({{5, 5}});
    EXPECT_FALSE(isAll(painted(item, {33, 22}), black));
    EXPECT_EQ(item.imageRation(), 1.0);
}

TEST(ImagePainter, frameMayChangeSizeInMidStream)
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

TEST(ImagePainter, equalEndsOfTheRangeDoNoHarm)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    frames::set(image, ImageData::Float, {20, 20}, frames::random(ImageData::Float, {20, 20}, 1));
    item.setMaxDistance(0.2F);
    // OpenCV saturates what isn't a number to 0: row 0 of the table for every pixel.
    EXPECT_TRUE(isAll(painted(item, {20, 20}), qRgb(255, 12, 0)));
}

TEST(ImagePainter, unknownColourMapLeavesTheItemBlack)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    frames::set(image, ImageData::Float, {20, 20}, frames::random(ImageData::Float, {20, 20}, 1));
    item.setColorIndex(1000);
    EXPECT_TRUE(isAll(painted(item, {20, 20}), black));
    EXPECT_EQ(item.imageRation(), 1.0);
}

TEST(ImagePainter, colorizeChangesNoPixel)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    frames::set(image, ImageData::Float, {20, 20}, frames::random(ImageData::Float, {20, 20}, 1));
    const QImage before = painted(item, {40, 40});
    item.setColorize(false);
    EXPECT_TRUE(painted(item, {40, 40}) == before);
}

TEST(ImagePainter, objectsAreDrawnOnlyWhileTheNetworkRuns)
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
TEST(ImagePainter, framesMayArriveWhileItPaints)
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
