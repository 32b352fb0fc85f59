#include "streams/AbstractImageData.h"

#include "support/LogCatcher.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <atomic>
#include <gmock/gmock.h>
#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>
#include <thread>

namespace {

/// An image stream whose current frame a test sets.
class Pictures : public AbstractImageData {
public:
    explicit Pictures(bool isColor = false)
        : AbstractImageData(isColor)
    {
    }

    QImage toImage() const override { return picture; }

    cv::Mat toMat() const override
    {
        ++asked;
        if (throws)
            CV_Error(cv::Error::StsBadArg, "a frame that can't be read");
        return frame.clone();
    }

    QImage picture;
    cv::Mat frame;
    bool throws = false;
    mutable int asked = 0;
};

struct Video {
    cv::Size size;
    double fps = 0;
    std::vector<cv::Mat> frames;
};

Video readVideo(const QString &path)
{
    Video video;
    cv::VideoCapture capture(path.toStdString());
    video.size = {int(capture.get(cv::CAP_PROP_FRAME_WIDTH)), int(capture.get(cv::CAP_PROP_FRAME_HEIGHT))};
    video.fps = capture.get(cv::CAP_PROP_FPS);
    for (cv::Mat frame; capture.read(frame);)
        video.frames.push_back(frame.clone());
    return video;
}

cv::Mat plain(int width, int height, double value)
{
    return {height, width, CV_8UC1, cv::Scalar(value)};
}

} // namespace

TEST(AbstractImageData, beginsEmpty)
{
    Pictures data;
    EXPECT_EQ(data.sourceWidth(), 0);
    EXPECT_EQ(data.sourceHeight(), 0);
    ASSERT_NE(data.image(), nullptr);
    EXPECT_EQ(data.image()->parent(), &data);
    EXPECT_EQ(data.image()->data(), nullptr);
    EXPECT_FALSE(data.writeFrame());
    EXPECT_EQ(data.asked, 0) << "no frame is copied for nothing";
}

TEST(AbstractImageData, sourceSizeSignalsChangesOnly)
{
    Pictures data;
    QSignalSpy width(&data, &AbstractImageData::sourceWidthChanged),
        height(&data, &AbstractImageData::sourceHeightChanged);
    for (int i = 0; i < 2; ++i) {
        data.setSourceWidth(640);
        data.setSourceHeight(400);
    }
    ASSERT_EQ(width.count(), 1);
    ASSERT_EQ(height.count(), 1);
    EXPECT_EQ(width[0][0].toInt(), 640);
    EXPECT_EQ(height[0][0].toInt(), 400);
}

TEST(AbstractImageData, recordingSignalsWithItsOwnSignalOnly)
{
    const LogCatcher log;
    Pictures data;
    QSignalSpy base(&data, &AbstractData::recordingChanged), own(&data, &AbstractImageData::recordingChanged);
    data.setRecording(true);
    EXPECT_EQ(base.count(), 0);
    ASSERT_EQ(own.count(), 1);
    EXPECT_TRUE(own[0][0].toBool());
}

TEST(AbstractImageData, thePropertyRecordingNotifiesWithTheSignalOfTheBase)
{
    const QMetaObject &meta = AbstractImageData::staticMetaObject;
    const QMetaProperty property = meta.property(meta.indexOfProperty("recording"));
    EXPECT_EQ(property.notifySignal(), QMetaMethod::fromSignal(&AbstractData::recordingChanged));
}

TEST(AbstractImageData, withoutAPathTheFlagIsSetAndNothingElse)
{
    const LogCatcher log;
    Pictures data;
    data.setSourceWidth(64);
    data.setSourceHeight(48);
    data.frame = plain(64, 48, 100);
    data.setRecording(true);
    EXPECT_EQ(log.lines(), QStringList{"debug: Invalid video path"});
    EXPECT_TRUE(data.recording());
    EXPECT_FALSE(data.writeFrame());
}

TEST(AbstractImageData, anEmptyPathLeavesARunningWriterAsItIs)
{
    const QTemporaryDir folder;
    const LogCatcher log;
    Pictures data;
    data.setSourceWidth(64);
    data.setSourceHeight(48);
    data.frame = plain(64, 48, 100);
    data.setRecordPath(folder.filePath("a.avi"));
    data.setRecording(true);
    data.setRecordPath(QString());
    data.setRecording(false);
    EXPECT_EQ(log.lines(), QStringList{"debug: Invalid video path"});
    EXPECT_FALSE(data.recording());
    EXPECT_TRUE(data.writeFrame()) << "the writer is still there";
}

TEST(AbstractImageData, aStartBeforeTheFirstFrameLogsAndMakesAWriterAllTheSame)
{
    const QTemporaryDir folder;
    const LogCatcher log;
    Pictures data;
    data.setRecordPath(folder.filePath("a.avi"));
    data.setRecording(true);
    EXPECT_EQ(log.lines(), QStringList{"debug: Invalid image size 0 0"});
    EXPECT_FALSE(data.writeFrame()) << "no frame yet";
    data.frame = plain(64, 48, 100);
    EXPECT_TRUE(data.writeFrame()) << "a writer that didn't open takes frames without effect";
    data.setRecording(false);
    EXPECT_FALSE(data.writeFrame());
}

TEST(AbstractImageData, oneMissingSideIsAnInvalidSizeToo)
{
    const QTemporaryDir folder;
    for (const QSize size : {QSize(64, 0), QSize(0, 48)}) {
        const LogCatcher log;
        Pictures data;
        data.setSourceWidth(size.width());
        data.setSourceHeight(size.height());
        data.setRecordPath(folder.filePath("a.avi"));
        data.setRecording(true);
        EXPECT_EQ(log.lines(),
            QStringList{QString("debug: Invalid image size %1 %2").arg(size.width()).arg(size.height())});
    }
}

TEST(AbstractImageData, startingTwiceMakesOneWriter)
{
    const QTemporaryDir folder;
    Pictures data;
    data.setSourceWidth(64);
    data.setSourceHeight(48);
    data.setRecordPath(folder.filePath("a.avi"));
    data.setRecording(true);
    data.frame = plain(64, 48, 100);
    data.writeFrame();
    data.setRecording(true);
    data.writeFrame();
    data.setRecording(false);
    EXPECT_EQ(readVideo(data.recordPath()).frames.size(), 2U);
}

TEST(AbstractImageData, writesGreyVideoThatReadsBack)
{
    const QTemporaryDir folder;
    Pictures data(false);
    data.setSourceWidth(64);
    data.setSourceHeight(48);
    data.setRecordPath(folder.filePath("grey.avi"));
    data.setRecording(true);
    for (int i = 0; i < 10; ++i) {
        data.frame = plain(64, 48, 20 * i + 20);
        ASSERT_TRUE(data.writeFrame());
    }
    data.setRecording(false);

    const Video video = readVideo(data.recordPath());
    EXPECT_EQ(video.size, cv::Size(64, 48));
    EXPECT_EQ(video.fps, 100) << "the rate where nobody set one";
    ASSERT_EQ(video.frames.size(), 10U);
    for (int i = 0; i < 10; ++i)
        EXPECT_NEAR(cv::mean(video.frames[std::size_t(i)])[0], 20 * i + 20, 4) << "frame " << i;
}

TEST(AbstractImageData, writesColourVideoAtTheRateOfItsStart)
{
    const QTemporaryDir folder;
    Pictures data(true);
    data.setSourceWidth(64);
    data.setSourceHeight(48);
    data.setRecordFrameRate(120);
    data.setRecordPath(folder.filePath("colour.avi"));
    data.setRecording(true);
    data.setRecordFrameRate(15);
    data.frame = cv::Mat(48, 64, CV_8UC3, cv::Scalar(200, 120, 40));
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(data.writeFrame());
    data.setRecording(false);

    const Video video = readVideo(data.recordPath());
    EXPECT_EQ(video.fps, 120);
    ASSERT_EQ(video.frames.size(), 5U);
    const cv::Scalar mean = cv::mean(video.frames[4]);
    EXPECT_NEAR(mean[0], 200, 10);
    EXPECT_NEAR(mean[1], 120, 10);
    EXPECT_NEAR(mean[2], 40, 10);
}

TEST(AbstractImageData, aFrameOfAnotherSizeDoesNoHarm)
{
    const QTemporaryDir folder;
    Pictures data;
    data.setSourceWidth(64);
    data.setSourceHeight(48);
    data.setRecordPath(folder.filePath("a.avi"));
    data.setRecording(true);
    data.frame = plain(64, 48, 100);
    data.writeFrame();
    data.frame = plain(128, 96, 100);
    data.writeFrame();
    data.frame = cv::Mat(48, 64, CV_16UC1, cv::Scalar(100));
    data.writeFrame();
    data.setRecording(false);
    EXPECT_EQ(readVideo(data.recordPath()).frames.size(), 1U);
}

TEST(AbstractImageData, anEmptyMatrixIsNoFrame)
{
    const QTemporaryDir folder;
    Pictures data;
    data.setSourceWidth(64);
    data.setSourceHeight(48);
    data.setRecordPath(folder.filePath("a.avi"));
    data.setRecording(true);
    EXPECT_FALSE(data.writeFrame());
    data.frame = cv::Mat(0, 64, CV_8UC1);
    EXPECT_FALSE(data.writeFrame());
}

TEST(AbstractImageData, whatOpenCvThrowsStaysInside)
{
    const QTemporaryDir folder;
    Pictures data;
    data.setSourceWidth(64);
    data.setSourceHeight(48);
    data.setRecordPath(folder.filePath("a.avi"));
    data.setRecording(true);
    data.throws = true;
    bool written = true;
    EXPECT_NO_THROW(written = data.writeFrame());
    EXPECT_FALSE(written);
}

TEST(AbstractImageData, aPathThatCannotBeWrittenOnlyPrints)
{
    const QTemporaryDir folder;
    const LogCatcher log;
    Pictures data;
    data.setSourceWidth(64);
    data.setSourceHeight(48);
    data.frame = plain(64, 48, 100);
    data.setRecordPath(folder.filePath("none/a.avi"));
    EXPECT_NO_THROW(data.setRecording(true));
    EXPECT_TRUE(data.writeFrame());
    EXPECT_NO_THROW(data.setRecording(false));
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_FALSE(QFile::exists(data.recordPath()));
}

TEST(AbstractImageData, destructionFinishesTheVideo)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.avi");
    {
        Pictures data;
        data.setSourceWidth(64);
        data.setSourceHeight(48);
        data.setRecordPath(path);
        data.setRecording(true);
        data.frame = plain(64, 48, 100);
        data.writeFrame();
    }
    EXPECT_EQ(readVideo(path).frames.size(), 1U);
}

TEST(AbstractImageData, aStopWhileFramesComeLeavesAWholeVideo)
{
    const QTemporaryDir folder;
    Pictures data;
    data.setSourceWidth(64);
    data.setSourceHeight(48);
    data.frame = plain(64, 48, 100);
    data.setRecordPath(folder.filePath("a.avi"));
    std::atomic<bool> done{false};
    std::atomic<int> written{0};
    std::thread library([&] {
        while (!done)
            written += data.writeFrame();
    });
    data.setRecording(true);
    while (written < 20)
        QThread::yieldCurrentThread();
    data.setRecording(false);
    const int total = written;
    done = true;
    library.join();
    // A frame that was let in as the recording stopped may be counted after we looked.
    EXPECT_LE(written - total, 1);
    EXPECT_EQ(int(readVideo(data.recordPath()).frames.size()), int(written));
}

TEST(AbstractImageData, saveWritesTheImageInTheFormatOfTheName)
{
    const QTemporaryDir folder;
    Pictures data;
    data.picture = QImage(7, 5, QImage::Format_Grayscale8);
    data.picture.fill(77);
    const QString path = folder.filePath("a.png");
    EXPECT_TRUE(data.save(path));
    const QImage read(path);
    EXPECT_EQ(read.size(), QSize(7, 5));
    EXPECT_EQ(qGray(read.pixel(6, 4)), 77);
}

TEST(AbstractImageData, saveCompressesAtTheDefaultQuality)
{
    const QTemporaryDir folder;
    Pictures data;
    data.picture = QImage(64, 48, QImage::Format_Grayscale8);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x)
            data.picture.scanLine(y)[x] = static_cast<unsigned char>(x * 37 + y * 11);
    }
    ASSERT_TRUE(data.save(folder.filePath("a.jpg")));
    ASSERT_TRUE(data.picture.save(folder.filePath("default.jpg")));
    EXPECT_EQ(QImage(folder.filePath("a.jpg")), QImage(folder.filePath("default.jpg")));
}

TEST(AbstractImageData, saveAnswersWhetherItWorked)
{
    const QTemporaryDir folder;
    Pictures data;
    EXPECT_FALSE(data.save(folder.filePath("null.png"))) << "there is no image";
    data.picture = QImage(7, 5, QImage::Format_Grayscale8);
    EXPECT_FALSE(data.save(folder.filePath("none/a.png")));
    EXPECT_FALSE(data.save(folder.filePath("noending")));
}
