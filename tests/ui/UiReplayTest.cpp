#include "streams/StereoData.h"
#include "ui/Page.h"

#include <QDir>
#include <QFileInfo>

// One run of the program on a recorded stereo sequence, which is kept outside the tree.

using namespace ui;

namespace {

QString recording()
{
    return QFileInfo(QStringLiteral(QV_SOURCE_DIR "/../shared/data/asl/euroc_v1_01_easy")).absoluteFilePath();
}

std::vector<QImage> recordedPictures(const QString &camera)
{
    std::vector<QImage> pictures;
    const QDir folder(recording() + QLatin1String("/mav0/") + camera + QLatin1String("/data"));
    for (const QFileInfo &file : folder.entryInfoList({QStringLiteral("*.png")}, QDir::Files, QDir::Name))
        pictures.push_back(QImage(file.filePath()).convertToFormat(QImage::Format_Grayscale8));
    return pictures;
}

QImage held(StereoData::Image camera)
{
    auto *stereo = qobject_cast<StereoData *>(model("stereo"));
    const ImageData::Frame frame = qobject_cast<FisheyeData *>(stereo->image(camera))->image()->frame();
    if (!frame.data)
        return {};
    return QImage(frame.data.get(), frame.width, frame.height, frame.width, QImage::Format_Grayscale8).copy();
}

bool isOneOf(const QImage &picture, const std::vector<QImage> &pictures)
{
    return std::find(pictures.begin(), pictures.end(), picture) != pictures.end();
}

} // namespace

QString prepare(const QString &home)
{
    Q_UNUSED(home)
    return playRecording(recording());
}

TEST(Replay, recordingPlaysPixelForPixel)
{
    ASSERT_TRUE(pageAppears());
    clickSwitch("stereoButton");
    const std::vector<QImage> left = recordedPictures(QStringLiteral("cam0"));
    const std::vector<QImage> right = recordedPictures(QStringLiteral("cam1"));
    ASSERT_GT(left.size(), 20U);
    ASSERT_EQ(left.size(), right.size());
    QImage last;
    for (int different = 0; different < 5;) {
        ASSERT_TRUE(waitFor(
            [&] { return !held(StereoData::Right).isNull() && held(StereoData::Left) != last; }, minute));
        last = held(StereoData::Left);
        ASSERT_TRUE(isOneOf(last, left));
        ASSERT_TRUE(isOneOf(held(StereoData::Right), right));
        ++different;
    }
}

TEST(Replay, itPlaysAtItsRecordedRate)
{
    QQuickItem *label = WindowDriver::byName("infoLabel", id("stereoView"));
    EXPECT_TRUE(rateReaches(label, 19, 21)) << qPrintable(label->property("text").toString());
    EXPECT_TRUE(label->property("text").toString().startsWith(QLatin1String("[STEREO]  752x480@")));
}

TEST(Replay, theScreenShowsARecordedPicture)
{
    QQuickItem *view = id("stereoView");
    QQuickItem *painter = WindowDriver::byName("painter", view);
    ASSERT_TRUE(painter);
    view->setProperty("showPoints", false);
    setDrawer(
        false); // its width leaves the view a fraction of a pixel, and the picture would be filtered by it
    ASSERT_TRUE(waitFor([painter] { return painter->width() == WindowDriver::window()->width(); }, minute));
    const QSize size(int(painter->width()), int(painter->height()));
    std::vector<QImage> expected;
    for (const QImage &picture : recordedPictures(QStringLiteral("cam0")))
        expected.push_back(picture.scaled(size, Qt::KeepAspectRatio, Qt::FastTransformation)
                               .convertToFormat(QImage::Format_RGB32));
    // The middle of the picture, where no label lies over it. Half a pixel of letterbox is rounded up.
    const QSize whole = expected.front().size();
    const QRect middle(whole.width() / 4, whole.height() / 4, whole.width() / 2, whole.height() / 2);
    const QPoint corner((size.width() - whole.width() + 1) / 2, (size.height() - whole.height() + 1) / 2);
    EXPECT_TRUE(waitFor(
        [&] {
            const QImage shown = WindowDriver::grab(painter)
                                     .copy(middle.translated(corner))
                                     .convertToFormat(QImage::Format_RGB32);
            return std::any_of(expected.begin(), expected.end(),
                [&](const QImage &picture) { return picture.copy(middle) == shown; });
        },
        minute));
    WindowDriver::picture(QStringLiteral("replay"));
}

TEST(Replay, nothingUnexpectedIsInTheLog)
{
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
