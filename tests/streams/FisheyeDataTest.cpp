#include "streams/FisheyeData.h"

#include "support/LogCatcher.h"
#include "support/Pictures.h"
#include "support/Timers.h"

#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <opencv2/videoio.hpp>

using pictures::bufferOf;
using pictures::grey;

namespace {

/// A picture whose every pixel tells its place.
std::vector<unsigned char> ramp(int width, int height)
{
    std::vector<unsigned char> pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            pixels.push_back(static_cast<unsigned char>(x * 7 + y * 31));
    }
    return pixels;
}

} // namespace

TEST(FisheyeData, handsTheBufferOnWithoutACopy)
{
    FisheyeData data;
    const auto buffer = grey(64, 40, 9);
    QSignalSpy update(data.image(), &ImageData::update);
    data.setImage(64, 40, buffer, 64 * 40);
    const ImageData::Frame frame = data.image()->frame();
    EXPECT_EQ(frame.data, buffer);
    EXPECT_EQ(frame.width, 64);
    EXPECT_EQ(frame.height, 40);
    EXPECT_EQ(frame.dataSize, 64 * 40);
    EXPECT_EQ(frame.type, int(ImageData::Gray));
    EXPECT_EQ(update.count(), 1);
    EXPECT_EQ(data.sourceWidth(), 64);
    EXPECT_EQ(data.sourceHeight(), 40);
}

TEST(FisheyeData, countsEachFrame)
{
    FisheyeData data;
    for (int i = 0; i < 3; ++i)
        data.setImage(4, 4, grey(4, 4, 1), 16);
    data.setImageAndPoints(4, 4, grey(4, 4, 1), 16, {});
    fireTimers(data);
    EXPECT_EQ(data.dataFrameRate(), 4.0);
}

TEST(FisheyeData, theSizeIsKnownBeforeTheFrame)
{
    FisheyeData data;
    QStringList order;
    QObject::connect(&data, &AbstractImageData::sourceWidthChanged, [&] { order << "sourceWidth"; });
    QObject::connect(&data, &AbstractImageData::sourceHeightChanged, [&] { order << "sourceHeight"; });
    QObject::connect(data.image(), &ImageData::widthChanged, [&] { order << "width"; });
    QObject::connect(data.image(), &ImageData::heightChanged, [&] { order << "height"; });
    QObject::connect(data.image(), &ImageData::update, [&] { order << "update"; });
    data.setImage(4, 4, grey(4, 4, 1), 16);
    EXPECT_EQ(order, (QStringList{"sourceWidth", "sourceHeight", "width", "height", "update"}));
}

TEST(FisheyeData, pointsTravelWithAFrameOrAlone)
{
    FisheyeData data;
    data.setImageAndPoints(4, 4, grey(4, 4, 1), 16, {{1, 2}, {3, 3}});
    EXPECT_EQ(data.image()->points(), (QVector<QPoint>{{1, 2}, {3, 3}}));
    QSignalSpy update(data.image(), &ImageData::update), points(data.image(), &ImageData::pointsChanged);
    data.setPoints({{0, 1}});
    EXPECT_EQ(data.image()->points(), (QVector<QPoint>{{0, 1}}));
    EXPECT_EQ(points.count(), 1);
    EXPECT_EQ(update.count(), 0);
    data.setImage(4, 4, grey(4, 4, 1), 16);
    EXPECT_EQ(data.image()->points(), (QVector<QPoint>{{0, 1}})) << "a frame alone leaves them";
}

TEST(FisheyeData, beforeTheFirstFrameThereIsNoPicture)
{
    const QTemporaryDir folder;
    const FisheyeData data;
    EXPECT_TRUE(data.toImage().isNull());
    EXPECT_TRUE(data.toMat().empty());
    EXPECT_FALSE(const_cast<FisheyeData &>(data).save(folder.filePath("a.png")));
}

TEST(FisheyeData, toImageKeepsEveryPixelOfOddWidths)
{
    // Rows that are no multiple of four bytes.
    for (const int width : {1, 2, 3, 5, 63, 64, 65}) {
        FisheyeData data;
        const auto pixels = ramp(width, 6);
        data.setImage(width, 6, bufferOf(pixels), width * 6);
        const QImage image = data.toImage();
        ASSERT_EQ(image.size(), QSize(width, 6));
        ASSERT_EQ(image.format(), QImage::Format_Grayscale8);
        for (int y = 0; y < 6; ++y) {
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(image.constScanLine(y)[x], pixels[std::size_t(y * width + x)]) << x << ' ' << y;
        }
    }
}

TEST(FisheyeData, toMatKeepsEveryPixelOfOddWidths)
{
    FisheyeData data;
    const auto pixels = ramp(65, 6);
    data.setImage(65, 6, bufferOf(pixels), 65 * 6);
    const cv::Mat matrix = data.toMat();
    ASSERT_EQ(matrix.type(), CV_8UC1);
    ASSERT_EQ(matrix.size(), cv::Size(65, 6));
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 65; ++x)
            ASSERT_EQ(matrix.at<unsigned char>(y, x), pixels[std::size_t(y * 65 + x)]);
    }
}

TEST(FisheyeData, copiesOutliveTheFrame)
{
    FisheyeData data;
    const std::shared_ptr<unsigned char> buffer(
        new unsigned char[64], std::default_delete<unsigned char[]>());
    std::fill_n(buffer.get(), 64, static_cast<unsigned char>(50));
    data.setImage(8, 8, buffer, 64);
    const QImage image = data.toImage();
    const cv::Mat matrix = data.toMat();
    std::fill_n(buffer.get(), 64, static_cast<unsigned char>(60));
    EXPECT_EQ(image.constScanLine(3)[3], 50);
    EXPECT_EQ(matrix.at<unsigned char>(3, 3), 50);
}

TEST(FisheyeData, aFrameShorterThanItsSizeIsNeverRead)
{
    FisheyeData data;
    data.setImage(8, 8, grey(8, 4, 50), 32);
    EXPECT_TRUE(data.toImage().isNull());
    EXPECT_TRUE(data.toMat().empty());
}

TEST(FisheyeData, emptyFramesDoNoHarm)
{
    FisheyeData data;
    QSignalSpy update(data.image(), &ImageData::update);
    data.setImage(8, 8, nullptr, 64);
    EXPECT_TRUE(data.toImage().isNull());
    EXPECT_TRUE(data.toMat().empty());
    for (const QSize size : {QSize(0, 0), QSize(0, 8), QSize(8, 0), QSize(-3, 8), QSize(8, -3)}) {
        data.setImage(size.width(), size.height(), grey(1, 1, 1), size.width() * size.height());
        EXPECT_TRUE(data.toImage().isNull());
        EXPECT_NO_THROW(EXPECT_TRUE(data.toMat().empty()));
    }
    EXPECT_EQ(update.count(), 6);
}

TEST(FisheyeData, savesWhatItShows)
{
    const QTemporaryDir folder;
    FisheyeData data;
    data.setImage(65, 6, bufferOf(ramp(65, 6)), 65 * 6);
    const QString path = folder.filePath("left.png");
    ASSERT_TRUE(data.save(path));
    const QImage read = QImage(path).convertToFormat(QImage::Format_Grayscale8);
    EXPECT_EQ(read, data.toImage());
}

TEST(FisheyeData, recordsItsFramesAtAHundredASecond)
{
    const QTemporaryDir folder;
    FisheyeData data;
    data.setImage(64, 48, grey(64, 48, 30), 64 * 48);
    data.setRecordPath(folder.filePath("left.avi"));
    data.setRecording(true);
    for (const int value : {40, 120})
        data.setImage(64, 48, grey(64, 48, static_cast<unsigned char>(value)), 64 * 48);
    data.setImageAndPoints(64, 48, grey(64, 48, 200), 64 * 48, {{1, 2}});
    data.setImageAndPoints(0, 0, nullptr, 0, {});
    data.setRecording(false);
    data.setImage(64, 48, grey(64, 48, 250), 64 * 48);

    cv::VideoCapture video(data.recordPath().toStdString());
    EXPECT_EQ(video.get(cv::CAP_PROP_FPS), 100);
    std::vector<double> means;
    for (cv::Mat frame; video.read(frame);)
        means.push_back(cv::mean(frame)[0]);
    EXPECT_THAT(means,
        testing::ElementsAre(
            testing::DoubleNear(40, 4), testing::DoubleNear(120, 4), testing::DoubleNear(200, 4)));
}

TEST(FisheyeData, aWriterThatALostPathLeavesGetsNoFrames)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("left.avi");
    const LogCatcher log;
    {
        FisheyeData data;
        data.setImage(64, 48, grey(64, 48, 30), 64 * 48);
        data.setRecordPath(path);
        data.setRecording(true);
        data.setImage(64, 48, grey(64, 48, 40), 64 * 48);
        data.setRecordPath(QString());
        data.setRecording(false);
        data.setImage(64, 48, grey(64, 48, 50), 64 * 48);
    }
    cv::VideoCapture video(path.toStdString());
    int frames = 0;
    for (cv::Mat frame; video.read(frame);)
        ++frames;
    EXPECT_EQ(frames, 1);
}
