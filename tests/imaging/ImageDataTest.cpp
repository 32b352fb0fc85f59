#include "imaging/ImageData.h"

#include "imaging/Frames.h"
#include "support/Methods.h"
#include "support/Properties.h"
#include "support/ViewerSize.h"
#include <QMetaEnum>
#include <atomic>
#include <thread>

namespace {

ImageData::Buffer six()
{
    return frames::buffer(std::vector<unsigned char>(6));
}

const QVector<QPoint> onePoint{{1, 2}};

} // namespace

TEST(ImageData, startsEmpty)
{
    ImageData image;
    EXPECT_EQ(image.data(), nullptr);
    EXPECT_EQ(image.width(), 0);
    EXPECT_EQ(image.height(), 0);
    EXPECT_EQ(image.dataSize(), 0);
    EXPECT_EQ(image.type(), ImageData::Gray);
    EXPECT_TRUE(image.points().isEmpty());
}

TEST(ImageData, typeBeforeTheFirstFrameIsTheOneSet)
{
    ImageData image;
    image.setType(ImageData::Float);
    EXPECT_EQ(image.type(), ImageData::Float);
    EXPECT_EQ(image.frame().type, ImageData::Float);
    EXPECT_EQ(image.frame().data, nullptr);
}

TEST(ImageData, typesHaveTheirNumbers)
{
    const std::vector<int> types{ImageData::Gray, ImageData::Color, ImageData::YUYV, ImageData::YUV420p,
        ImageData::JPEG, ImageData::Float, ImageData::Short, ImageData::IR};
    EXPECT_EQ(types, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(QMetaEnum::fromType<ImageData::Type>().keyCount(), 8);
}

TEST(ImageData, firstFrameEmitsSizesThenUpdate)
{
    ImageData image;
    QStringList order;
    QObject::connect(&image, &ImageData::widthChanged, [&](int w) { order += QString("width %1").arg(w); });
    QObject::connect(&image, &ImageData::heightChanged, [&](int h) { order += QString("height %1").arg(h); });
    QObject::connect(&image, &ImageData::pointsChanged, [&] { order += "points"; });
    QObject::connect(&image, &ImageData::update, [&] { order += "update"; });

    image.set(3, 2, six(), 6, onePoint);

    EXPECT_EQ(order, QStringList({"width 3", "height 2", "points", "update"}));
}

TEST(ImageData, sameSizeEmitsOnlyUpdate)
{
    ImageData image;
    const auto pixels = six();
    image.set(3, 2, pixels, 6);
    const QSignalSpy width(&image, &ImageData::widthChanged);
    const QSignalSpy height(&image, &ImageData::heightChanged);
    const QSignalSpy update(&image, &ImageData::update);

    image.set(3, 2, pixels, 6);

    EXPECT_EQ(width.count(), 0);
    EXPECT_EQ(height.count(), 0);
    EXPECT_EQ(update.count(), 1);
}

TEST(ImageData, keepsTheBufferItself)
{
    ImageData image;
    const auto pixels = six();
    image.set(3, 2, pixels, 6);
    EXPECT_EQ(image.data(), pixels);
    EXPECT_EQ(image.width(), 3);
    EXPECT_EQ(image.height(), 2);
    EXPECT_EQ(image.dataSize(), 6);
}

TEST(ImageData, replacedBufferIsFreed)
{
    ImageData image;
    auto pixels = six();
    const std::weak_ptr<const unsigned char> watched = pixels;
    image.set(3, 2, std::move(pixels), 6);
    EXPECT_EQ(watched.use_count(), 1);
    image.set(3, 2, six(), 6);
    EXPECT_TRUE(watched.expired());
}

TEST(ImageData, replacedBufferLivesWhileAConsumerHoldsIt)
{
    ImageData image;
    image.set(3, 2, frames::buffer(std::vector<unsigned char>(6, 7)), 6);
    const auto held = image.data();
    image.set(3, 2, six(), 6);
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(held.get()[5], 7);
}

TEST(ImageData, oldFrameIsGoneBeforeTheSizeIsAnnounced)
{
    ImageData image;
    auto pixels = six();
    const std::weak_ptr<const unsigned char> watched = pixels;
    image.set(3, 2, std::move(pixels), 6);
    bool expired = false;
    int dataSize = -1;
    QObject::connect(&image, &ImageData::widthChanged, [&] {
        expired = watched.expired();
        dataSize = image.dataSize();
    });
    image.set(1, 6, six(), 6);
    EXPECT_TRUE(expired);
    EXPECT_EQ(dataSize, 0);
}

TEST(ImageData, newFrameIsThereWhenItIsAnnounced)
{
    ImageData image;
    int dataSize = -1;
    QObject::connect(&image, &ImageData::update, [&] { dataSize = image.dataSize(); });
    image.set(3, 2, six(), 6);
    EXPECT_EQ(dataSize, 6);
}

TEST(ImageData, emptyBufferIsAccepted)
{
    ImageData image;
    image.set(3, 2, six(), 6);
    const QSignalSpy update(&image, &ImageData::update);
    image.set(0, 0, nullptr, 0);
    EXPECT_EQ(update.count(), 1);
    EXPECT_EQ(image.data(), nullptr);
    EXPECT_EQ(image.frame().data, nullptr);
    EXPECT_EQ(image.width(), 0);
}

TEST(ImageData, equalPointsEmitNothing)
{
    ImageData image;
    image.setPoints(onePoint);
    const QSignalSpy points(&image, &ImageData::pointsChanged);
    image.setPoints(onePoint);
    image.set(3, 2, six(), 6, onePoint);
    image.set(3, 2, six(), 6);
    EXPECT_EQ(points.count(), 0);
    EXPECT_EQ(image.points(), onePoint);
}

TEST(ImageData, newPointsAreAnnouncedWithoutUpdate)
{
    ImageData image;
    QSignalSpy points(&image, &ImageData::pointsChanged);
    const QSignalSpy update(&image, &ImageData::update);
    image.setPoints(onePoint);
    ASSERT_EQ(points.count(), 1);
    EXPECT_EQ(points[0][0].value<QVector<QPoint>>(), onePoint);
    EXPECT_EQ(update.count(), 0);
}

TEST(ImageData, pointsMayBeReadWhileTheyAreAnnounced)
{
    ImageData image;
    QVector<QPoint> read;
    QObject::connect(&image, &ImageData::pointsChanged, [&] { read = image.points(); });
    image.set(3, 2, six(), 6, onePoint);
    EXPECT_EQ(read, onePoint);
}

TEST(ImageData, setTypeEmitsNothingAndLeavesTheFrameItsType)
{
    ImageData image;
    image.set(3, 2, six(), 6);
    const QSignalSpy width(&image, &ImageData::widthChanged);
    const QSignalSpy update(&image, &ImageData::update);
    for (const int type : {1, 7, -3, 99})
        image.setType(type);
    EXPECT_EQ(width.count() + update.count(), 0);
    EXPECT_EQ(image.type(), 99);
    EXPECT_EQ(image.frame().type, ImageData::Gray);
}

TEST(ImageData, viewerSizeIsSilent)
{
    ImageData image;
    const QSignalSpy width(&image, &ImageData::widthChanged);
    const QSignalSpy height(&image, &ImageData::heightChanged);
    const QSignalSpy update(&image, &ImageData::update);
    image.setViewerSize(800, 600);
    EXPECT_EQ(width.count() + height.count() + update.count(), 0);
    EXPECT_EQ(image.width(), 0);
}

TEST(ImageData, zeroLeavesASideOfTheViewerAsItIs)
{
    ImageData image;
    EXPECT_EQ(viewerSizeOf(image), QSize(640, 400));
    image.setViewerSize(0, 480);
    EXPECT_EQ(viewerSizeOf(image), QSize(640, 480));
    image.setViewerSize(0, 0);
    EXPECT_EQ(viewerSizeOf(image), QSize(640, 480));
    image.setViewerSize(800, 0);
    EXPECT_EQ(viewerSizeOf(image), QSize(800, 480));
    image.setViewerSize(320, 240);
    EXPECT_EQ(viewerSizeOf(image), QSize(320, 240));
}

TEST(ImageData, offersItsProperties)
{
    EXPECT_EQ(propertiesOf<ImageData>(),
        (QStringList{"int width read-write widthChanged(int)", "int height read-write heightChanged(int)",
            "QVector<QPoint> points read-write pointsChanged(QVector<QPoint>)"}));
}

TEST(ImageData, offersItsSignalsAndSlotsInOrder)
{
    EXPECT_EQ(signalsOf<ImageData>(),
        (QStringList{"void widthChanged(int)", "void heightChanged(int)", "void update()",
            "void pointsChanged(QVector<QPoint>)"}));
    EXPECT_EQ(slotsOf<ImageData>(),
        (QStringList{"void set(int,int,std::shared_ptr<const unsigned char>,int)",
            "void set(int,int,std::shared_ptr<const unsigned char>,int,QVector<QPoint>)",
            "void setPoints(QVector<QPoint>)", "void setViewerSize(int,int)"}));
    EXPECT_EQ(callablesOf<ImageData>().size(), 4);
}

TEST(ImageData, pointsAreAProperty)
{
    ImageData image;
    const QSignalSpy points(&image, &ImageData::pointsChanged);
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(image.setProperty("points", QVariant::fromValue(onePoint)));
    EXPECT_EQ(points.count(), 1);
    EXPECT_EQ(image.property("points").value<QVector<QPoint>>(), onePoint);
    EXPECT_EQ(image.points(), onePoint);
}

TEST(ImageData, sizePropertiesEmitOnceAndLeaveTheFrameItsSize)
{
    ImageData image;
    image.set(3, 2, six(), 6);
    const QSignalSpy width(&image, &ImageData::widthChanged);
    const QSignalSpy height(&image, &ImageData::heightChanged);
    image.setProperty("width", 5000);
    image.setProperty("width", 5000);
    image.setProperty("height", 4000);
    image.setProperty("height", 4000);
    EXPECT_EQ(width.count(), 1);
    EXPECT_EQ(height.count(), 1);
    EXPECT_EQ(image.width(), 5000);
    EXPECT_EQ(image.frame().width, 3);
    EXPECT_EQ(image.frame().height, 2);
}

TEST(ImageData, framesAreNumbered)
{
    ImageData image;
    ImageData other;
    EXPECT_EQ(image.frame().number, 0U);
    const auto pixels = six();
    image.set(3, 2, pixels, 6);
    const auto first = image.frame().number;
    other.set(3, 2, pixels, 6);
    EXPECT_EQ(image.frame().number, first);
    EXPECT_GT(other.frame().number, first);
    image.set(3, 2, pixels, 6);
    EXPECT_GT(image.frame().number, other.frame().number);
}

TEST(ImageData, snapshotsAreConsistentWhileTheProducerChangesSizeAndType)
{
    ImageData image;
    std::atomic<bool> stop{false};
    std::thread producer([&] {
        for (int i = 0; !stop; ++i) {
            const int side = 1 + i % 50;
            const int bytes = i % 2 ? 4 : 1;
            image.setType(i % 2 ? ImageData::Float : ImageData::Gray);
            image.set(side, side,
                frames::buffer(std::vector<unsigned char>(static_cast<std::size_t>(side * side * bytes))),
                side * side * bytes, {{i, i}});
        }
    });
    int seen = 0;
    while (seen < 3000) {
        const auto frame = image.frame();
        if (!frame.data)
            continue;
        ++seen;
        ASSERT_EQ(frame.width, frame.height);
        ASSERT_EQ(frame.dataSize, frame.width * frame.height * (frame.type == ImageData::Float ? 4 : 1));
        ASSERT_EQ(frame.data.get()[frame.dataSize - 1], 0);
        ASSERT_LE(image.points().size(), 1);
    }
    stop = true;
    producer.join();
}
