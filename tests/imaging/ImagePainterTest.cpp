#include "imaging/ImagePainter.h"

#include "imaging/Painting.h"
#include "support/Methods.h"
#include "support/Properties.h"
#include "support/Timers.h"
#include "support/Wait.h"
#include <QTimer>
#include <thread>

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

TEST(ImagePainter, offersItsPropertiesInOrder)
{
    EXPECT_EQ(propertiesOf<ImagePainter>(),
        (QStringList{"QObject* source read-write sourceChanged(QObject*)",
            "int sourceWidth read-write sourceWidthChanged(int)",
            "int sourceHeight read-write sourceHeightChanged(int)",
            "bool horizontalFlip read-write horizontalFlipChanged(bool)",
            "bool verticalFlip read-write verticalFlipChanged(bool)",
            "ImageType type read typeChanged(ImageType)",
            "QJsonArray objects read-write objectsChanged(QJsonArray)", "double fps read fpsChanged(double)",
            "bool showPoints read-write showPointsChanged(bool)",
            "float maxDistance read-write maxDistanceChanged(float)",
            "float minDistance read-write minDistanceChanged(float)",
            "bool colorize read-write colorizeChanged(bool)",
            "QPointF topLeftPoint read-write topLeftPointChanged(QPointF)",
            "double imageRation read imageRationChanged(double)",
            "int colorIndex read-write colorIndexChanged()", "QObject* tofData read-write tofDataChanged()",
            "QObject* sgbmData read-write sgbmDataChanged()",
            "bool CNNRunning read-write CNNRunningChanged()"}));
}

TEST(ImagePainter, offersItsSignalsAndSlotsInOrder)
{
    EXPECT_EQ(signalsOf<ImagePainter>(),
        (QStringList{"void typeChanged(ImageType)", "void sourceHeightChanged(int)",
            "void sourceWidthChanged(int)", "void objectsChanged(QJsonArray)",
            "void horizontalFlipChanged(bool)", "void verticalFlipChanged(bool)",
            "void sourceChanged(QObject*)", "void fpsChanged(double)", "void showPointsChanged(bool)",
            "void maxDistanceChanged(float)", "void minDistanceChanged(float)", "void colorizeChanged(bool)",
            "void topLeftPointChanged(QPointF)", "void imageRationChanged(double)",
            "void colorIndexChanged()", "void tofDataChanged()", "void sgbmDataChanged()",
            "void CNNRunningChanged()"}));
    EXPECT_EQ(slotsOf<ImagePainter>(),
        (QStringList{"void updateAll()", "void setSourceHeight(int)", "void setSourceWidth(int)",
            "void setType(ImageType)", "void setObjects(QJsonArray)", "void setHorizontalFlip(bool)",
            "void setVerticalFlip(bool)", "void setSource(QObject*)", "void setShowPoints(bool)",
            "void setMaxDistance(float)", "void setMinDistance(float)", "void setColorize(bool)",
            "void setTopLeftPoint(QPointF)"}));
    EXPECT_EQ(callablesOf<ImagePainter>().size(), slotsOf<ImagePainter>().size());
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
    std::vector<double> read;
    QObject::connect(&item, &ImagePainter::fpsChanged, [&] { read.push_back(item.fps()); });
    timer->setInterval(0);
    EXPECT_TRUE(waitFor([&] { return fps.count() >= 3; }));
    EXPECT_EQ(fps[0][0].toDouble(), 5.0);
    EXPECT_EQ(read[0], 5.0) << "a binding reads the new rate";
    EXPECT_EQ(fps[1][0].toDouble(), 0.0);
    EXPECT_EQ(fps[2][0].toDouble(), 0.0) << "told each time, also when it is the same";
    EXPECT_EQ(item.fps(), 0.0);
}

TEST(ImagePainter, countsFramesThatAreNotPainted)
{
    ImagePainter item;
    item.updateAll();
    item.setVisible(false);
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

TEST(ImagePainter, framesFromItsOwnThreadAreCountedAtOnce)
{
    ImagePainter item;
    ImageData image;
    item.setSource(&image);
    setWhite(image, {4, 4});
    ASSERT_EQ(fireTimers(item), 1);
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
    ASSERT_EQ(fireTimers(item), 1);
    EXPECT_EQ(item.fps(), 0.0) << "they wait for the item's thread";
    QSignalSpy fps(&item, &ImagePainter::fpsChanged);
    // The queued frames come before the timer that is started after them.
    QCoreApplication::sendPostedEvents(&item);
    item.findChild<QTimer *>()->setInterval(0);
    EXPECT_TRUE(waitFor([&] { return fps.count() >= 1; }));
    EXPECT_EQ(fps[0][0].toDouble(), 7.0);
}
