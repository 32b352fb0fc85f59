#include "imaging/ImageData.h"
#include "streams/FisheyeData.h"
#include "streams/StereoData.h"
#include "ui/Page.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QtTest/QTest>
#include <algorithm>
#include <array>
#include <opencv2/videoio.hpp>

// One run of the program at the bench: commands, presets, captures and recordings, in a folder
// with blanks and letters of other languages.

using namespace ui;

namespace {

QString folder;
QString configuration;

void describeDevice(const QByteArray &faults, bool present = true)
{
    QFile file(configuration + QLatin1String(".new"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(
        "{\"devices\": [{ \"profile\": \"headset\", \"present\": " + QByteArray(present ? "true" : "false")
        + ", \"streams\": { \"fisheye\": { \"rate\": 5 } }, \"faults\": {" + faults + "} }]}");
    file.close();
    QFile::remove(configuration);
    ASSERT_TRUE(QFile::rename(file.fileName(), configuration));
}

void type(const QString &text)
{
    for (const QChar letter : text)
        QTest::keyClick(WindowDriver::window(), letter.toLatin1());
    QCoreApplication::processEvents();
}

QQuickItem *hid(const char *name)
{
    return WindowDriver::byName(name, WindowDriver::ofDocument("HidView").value(0));
}

QString received()
{
    return hid("editReceive")->property("text").toString();
}

/// Types a command over the last one and presses Return; answers the line that came.
QString exchange(const QString &command)
{
    WindowDriver::click(hid("clearButton"));
    WindowDriver::click(hid("editSend"));
    WindowDriver::key(Qt::Key_A, Qt::ControlModifier);
    type(command);
    WindowDriver::key(Qt::Key_Return);
    return received();
}

QString hexadecimal(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex(' ')) + QLatin1Char(' ');
}

/// A fault takes effect when the file has been read again.
bool answersBecome(const QString &command, const std::function<bool(const QString &)> &wanted)
{
    return waitFor(
        [&] { return wanted(camera()->property("uuid").isValid() ? exchange(command) : QString()); }, minute);
}

QStringList presetNames()
{
    QStringList names;
    QQuickItem *box = id("allSettingsCombobox");
    for (int i = 0; i < box->property("count").toInt(); ++i) {
        QString name;
        QMetaObject::invokeMethod(box, "textAt", Q_RETURN_ARG(QString, name), Q_ARG(int, i));
        names << name;
    }
    return names;
}

void choosePreset(int index)
{
    QQuickItem *box = id("allSettingsCombobox");
    chooseEntry(box, WindowDriver::byName("arrowBox", box), index);
}

bool autoClose()
{
    return id("menuAutoCloseCheckbox")->property("checked").toBool();
}

FisheyeData *fisheye(int index)
{
    auto *stereo = qobject_cast<StereoData *>(model("stereo"));
    return qobject_cast<FisheyeData *>(stereo->image(static_cast<StereoData::Image>(index)));
}

QString saveStereo()
{
    WindowDriver::click(WindowDriver::byName("imgBtn", id("stereoView")));
    return id("stereoView")->property("path").toString();
}

} // namespace

QString prepare(const QString &home)
{
    configuration = home + QLatin1String("/devices.json");
    folder = home + QString::fromUtf8("/bench of 实验室");
    QDir().mkpath(folder);
    describeDevice("");
    qputenv("QVSIM_CONFIG", configuration.toLocal8Bit());
    QDir::setCurrent(folder);
    return {};
}

TEST(Bench, aTypedCommandBringsTheReply)
{
    ASSERT_TRUE(pageAppears());
    setDrawer(true);
    WindowDriver::click(id("hidText"));
    ASSERT_TRUE(waitFor([] { return hid("editSend")->isVisible(); }, minute));
    QByteArray reply = QByteArray::fromHex("02fe5501") + camera()->property("version").toByteArray();
    reply.append(QByteArray(63 - reply.size(), '\0'));
    EXPECT_EQ(exchange(QStringLiteral("02 fe 55 01")), hexadecimal(reply));
    EXPECT_EQ(exchange(QStringLiteral("02fe5501")), hexadecimal(reply));
    WindowDriver::picture(QStringLiteral("hid"));
}

TEST(Bench, anUnknownCommandIsEchoedAndABadOneLeavesAnEmptyLine)
{
    const QString echo = hexadecimal(QByteArray("\xab\x0c") + QByteArray(61, '\0'));
    EXPECT_EQ(exchange(QStringLiteral("abc")), echo);
    WindowDriver::key(Qt::Key_A, Qt::ControlModifier);
    type(QStringLiteral("zz"));
    WindowDriver::key(Qt::Key_Return);
    EXPECT_EQ(received(), echo + QLatin1Char('\n'));
    WindowDriver::click(hid("sendButton"));
    EXPECT_EQ(received(), echo + QLatin1String("\n\n"));
}

TEST(Bench, repeatSendGoesOnUntilItIsUnchecked)
{
    exchange(QStringLiteral("01"));
    WindowDriver::click(hid("repeatSend"));
    EXPECT_TRUE(waitFor([] { return received().count(QLatin1Char('\n')) >= 2; }, minute));
    WindowDriver::click(hid("repeatSend"));
    EXPECT_FALSE(hid("intervalRow")->isVisible());
    // Nothing comes in the time in which several answers came before.
    const QString after = received();
    QTest::qWait(1500);
    EXPECT_EQ(received(), after);
}

TEST(Bench, glassLogShowsTheDevicesWords)
{
    WindowDriver::click(hid("clearButton"));
    WindowDriver::click(hid("glassLogButton"));
    // The words come in pieces, none of which breaks a line that fits.
    EXPECT_TRUE(waitFor(
        [] { return received().contains(QLatin1String("] power on, profile settings loaded")); }, minute))
        << qPrintable(received());
    WindowDriver::click(hid("glassLogButton"));
    WindowDriver::click(hid("clearButton"));
    EXPECT_EQ(received(), QString());
}

TEST(Bench, aRefusingDeviceLeavesAnEmptyLine)
{
    describeDevice("\"refuse\": [\"hid\"]");
    EXPECT_TRUE(answersBecome(QStringLiteral("05"), [](const QString &reply) { return reply.isEmpty(); }));
    // Below nothing an empty line can't be seen.
    WindowDriver::click(hid("editReceive"));
    type(QStringLiteral("x"));
    WindowDriver::click(hid("sendButton"));
    WindowDriver::click(hid("sendButton"));
    EXPECT_EQ(received(), QStringLiteral("x\n\n"));
}

TEST(Bench, aSlowDeviceIsWaitedFor)
{
    describeDevice("\"hidDelayMs\": 1500");
    EXPECT_TRUE(answersBecome(QStringLiteral("06"), [](const QString &reply) { return !reply.isEmpty(); }));
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(exchange(QStringLiteral("07")), hexadecimal(QByteArray("\x07") + QByteArray(62, '\0')));
    EXPECT_GE(clock.elapsed(), 1500);
    describeDevice("");
    WindowDriver::click(id("hidText"));
}

TEST(Bench, aPresetIsSavedUnderItsTypedName)
{
    setDrawer(true);
    WindowDriver::click(id("generalText"));
    WindowDriver::click(id("menuAutoCloseCheckbox"));
    ASSERT_FALSE(autoClose());
    WindowDriver::click(WindowDriver::byName("allSettingsText"));
    WindowDriver::key(Qt::Key_A, Qt::ControlModifier);
    type(QStringLiteral("bench"));
    WindowDriver::click(WindowDriver::byName("savePresetButton"));
    EXPECT_EQ(presetNames(), QStringList({QStringLiteral("Default"), QStringLiteral("bench")}));
    EXPECT_TRUE(waitFor(
        [] {
            const QSettings store;
            return store.value(QStringLiteral("preferSettings1/name")) == QVariant(QStringLiteral("bench"))
                && store.value(QStringLiteral("preferSettings1/isAdd")).toInt() == 1
                && store.value(QStringLiteral("preferSettings1/menuAutoClose")).toString().isEmpty();
        },
        minute));
    WindowDriver::picture(QStringLiteral("presets"));
}

TEST(Bench, presetsAreLoadedAndDeleted)
{
    choosePreset(0);
    EXPECT_TRUE(autoClose());
    choosePreset(1);
    EXPECT_FALSE(autoClose());
    WindowDriver::click(WindowDriver::byName("deletePresetButton"));
    EXPECT_EQ(presetNames(), QStringList(QStringLiteral("Default")));
    EXPECT_TRUE(autoClose()) << "the entry before the last is loaded";
}

TEST(Bench, savedPicturesAreFramesPixelForPixel)
{
    clickSwitch("stereoButton");
    QQuickItem *view = id("stereoView");
    ASSERT_TRUE(waitFor([view] { return view->width() > 100 && fisheye(1)->image()->data(); }, minute));
    setDrawer(false);
    QObject listener;
    std::array<std::vector<ImageData::Frame>, 2> frames;
    for (int index : {0, 1}) {
        ImageData *image = fisheye(index)->image();
        QObject::connect(
            image, &ImageData::update, &listener,
            [&frames, image, index] { frames[index].push_back(image->frame()); }, Qt::QueuedConnection);
    }
    const auto isAmong = [](const QImage &picture, const std::vector<ImageData::Frame> &shown) {
        return std::any_of(shown.begin(), shown.end(), [&picture](const ImageData::Frame &frame) {
            return picture
                == QImage(
                    frame.data.get(), frame.width, frame.height, frame.width, QImage::Format_Grayscale8);
        });
    };
    // A frame that was replaced while the files were written escaped the lists: one of a few captures has
    // none.
    EXPECT_TRUE(waitFor(
        [&] {
            const QString path = saveStereo();
            EXPECT_TRUE(path.startsWith(folder + QLatin1String("/capture/"))) << qPrintable(path);
            const QImage left(path + QLatin1String("/left.png"));
            const QImage right(path + QLatin1String("/right.png"));
            EXPECT_EQ(left.size(), QSize(640, 400));
            EXPECT_NE(left, right);
            QTest::qWait(250);
            return isAmong(left, frames[0]) && isAmong(right, frames[1]);
        },
        minute));
    QObject *note = view->property("imgPopup").value<QObject *>();
    EXPECT_TRUE(note->property("visible").toBool());
    WindowDriver::picture(QStringLiteral("capture"));
}

TEST(Bench, whereTheFolderCanNotBeMadePicturesTakesIt)
{
    QDir(folder).mkdir(QStringLiteral("blocked"));
    QDir::setCurrent(folder + QLatin1String("/blocked"));
    QFile obstacle(QStringLiteral("capture"));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    const QString path = saveStereo();
    EXPECT_TRUE(path.startsWith(
        QStandardPaths::writableLocation(QStandardPaths::PicturesLocation) + QLatin1String("/qvsdk-viewer/")))
        << qPrintable(path);
    EXPECT_FALSE(QImage(path + QLatin1String("/left.png")).isNull());
    QDir::setCurrent(folder);
}

TEST(Bench, aRecordingOutlivesTheDevice)
{
    // Nothing visible offers it; the hidden button works all the same.
    WindowDriver::byName("saveVideoButton")->setProperty("checked", true);
    const QString path = WindowDriver::byName("mainWindow")->property("path").toString();
    ASSERT_TRUE(path.startsWith(folder)) << qPrintable(path);
    QTest::qWait(4000);
    describeDevice("", false);
    ASSERT_TRUE(waitFor([] { return !WindowDriver::page(); }, minute));
    for (const char *name : {"/left.avi", "/right.avi"}) {
        const std::string file = (path + QLatin1String(name)).toStdString();
        ASSERT_TRUE(waitFor([&file] { return cv::VideoCapture(file).isOpened(); }, minute)) << file;
        cv::VideoCapture video(file);
        EXPECT_EQ(video.get(cv::CAP_PROP_FRAME_WIDTH), 640);
        EXPECT_EQ(video.get(cv::CAP_PROP_FRAME_HEIGHT), 400);
        int frames = 0;
        for (cv::Mat frame; video.read(frame);)
            ++frames;
        EXPECT_GE(frames, 8) << file;
    }
}

TEST(Bench, nothingUnexpectedIsInTheLog)
{
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
