#include "ui/Page.h"

#include <QDir>
#include <QFile>
#include <algorithm>

// One run of the program on a settings store that somebody has damaged.

using namespace ui;

namespace {

const char *const damaged = R"(
[Settings]
currentLanguageIndex=99
cnnModelDescriptor=@Variant(\0\0\0\x7f)

[CameraView]
mode=seven

[StereoView]
horizontalFlip=@Point(1 2)
verticalFlip=@Size(3 4)
showPoints=@Rect(0 0 1 1)
gain=loud
brightness=-40000000000
autoExposure=@Invalid()

[RgbView]
horizontalFlip=@Rect(0 0 1 1)
verticalFlip=@Point(1 2)

[TofView]
horizontalFlip=@Size(3 4)
verticalFlip=@Point(1 2)
colorize=@Rect(0 0 1 1)
maxDistance=nan
minDistance=-inf
framerate=1e400

[SgbmView]
horizontalFlip=@Point(1 2)
verticalFlip=@Variant(\0\0\0\x7f)

[EyetrackingView]
horizontalFlip=@Size(3 4)
source=@Point(1 2)
ledOn=@Rect(0 0 1 1)

[SlamView]
freeView=7
displayPlanes=@Point(1 2)

[Tof3DView]
freeView=@Size(3 4)
slamSource=@Point(1 2)

[defaultSettings]
imuMode=42
stereoUVCmode=none
tofMaximaldistance=far
sgbmZoom=-1
menuAutoClose=maybe

[preferSettings1]
isAdd=1
name=@ByteArray(\xff\xfe)
imuMode=-7
tofFps=

[preferSettings2]
isAdd=yes

[something else]
key=value
not a line at all
)";

/// What a control inside a view holds, shown or not.
QVariant valueIn(const char *view, const char *control, const char *property)
{
    const QQuickItem *item = WindowDriver::byName(control, id(view));
    return item ? item->property(property) : QVariant();
}

/// The two flips of a view, horizontal first.
QVector<bool> flipsOf(const char *view)
{
    return {id(view)->property("horizontalFlip").toBool(), id(view)->property("verticalFlip").toBool()};
}

} // namespace

QString prepare(const QString &home)
{
    qputenv("QVSIM", "headset");
    QDir().mkpath(home + QLatin1String("/config/Quivra"));
    QFile store(home + QLatin1String("/config/Quivra/QVSDK-Viewer.conf"));
    if (!store.open(QIODevice::WriteOnly) || store.write(damaged) < 0)
        return QStringLiteral("the settings can't be written");
    return {};
}

TEST(DamagedSettings, programStartsInEnglish)
{
    ASSERT_TRUE(pageAppears());
    EXPECT_EQ(WindowDriver::byName("infoButton")->property("hint"), QVariant(QStringLiteral("Info")));
}

TEST(DamagedSettings, controlsKeepWhatTheStoreCanNotSay)
{
    EXPECT_EQ(id("imumodeComboBox")->property("currentIndex").toInt(), 1);
    EXPECT_EQ(id("modeComboBox")->property("currentIndex").toInt(), 4);
    EXPECT_DOUBLE_EQ(id("maxDistanceSlider")->property("value").toReal(), 1.0);
    EXPECT_EQ(id("sgbmZoomSpinBox")->property("value").toInt(), 100);
    EXPECT_EQ(WindowDriver::byId(WindowDriver::page(), "content")->property("mode").toInt(), 0);
}

TEST(DamagedSettings, exposureIsWhatItsSlidersCanSay)
{
    EXPECT_EQ(valueIn("stereoView", "autoExposure", "checked"), QVariant(true));
    EXPECT_EQ(valueIn("stereoView", "gainSlider", "value"), QVariant(10.0));
    EXPECT_EQ(valueIn("stereoView", "brightnessSlider", "value"), QVariant(1.0));
}

TEST(DamagedSettings, viewsKeepTheirDefaults)
{
    for (const char *view : {"stereoView", "rgbView", "rgb2View", "tofView", "sgbmView", "eyetrackingView"})
        EXPECT_EQ(flipsOf(view), QVector<bool>({false, false})) << view;
    EXPECT_TRUE(id("stereoView")->property("showPoints").toBool());
    EXPECT_EQ(id("eyetrackingView")->property("sourceName").toString(), QStringLiteral("left"));
    EXPECT_EQ(valueIn("slamView", "sourceCheckbox", "checked"), QVariant(true));
    EXPECT_EQ(valueIn("tof3DView", "slamSourceSwitch", "checked"), QVariant(true));
    EXPECT_EQ(valueIn("tof3DView", "freeViewCheckBox", "checked"), QVariant(false));
    EXPECT_EQ(valueIn("tofView", "colorizeCheckbox", "checked"), QVariant(true));
    EXPECT_EQ(valueIn("tofView", "tofFramerateSlider", "value"), QVariant(15.0));
    for (const char *slider : {"maxDistanceSlider", "minDistanceSlider"}) {
        const double metres = valueIn("tofView", slider, "value").toDouble();
        EXPECT_TRUE(metres >= 0.1 && metres <= 7.5) << slider << metres;
    }
}

TEST(DamagedSettings, presetsThatAreInUseAreListed)
{
    QQuickItem *box = id("allSettingsCombobox");
    EXPECT_EQ(box->property("count").toInt(), 2);
    box->setProperty("currentIndex", 1);
    EXPECT_EQ(id("fpscombox")->property("currentIndex").toInt(), 5);
    EXPECT_EQ(id("imumodeComboBox")->property("currentIndex").toInt(), 1);
    box->setProperty("currentIndex", 0);
}

TEST(DamagedSettings, streamsStart)
{
    clickSwitch("stereoButton");
    QQuickItem *view = id("stereoView");
    EXPECT_TRUE(
        waitFor([view] { return view->width() > 100 && colours(WindowDriver::grab(view)) > 50; }, minute));
    // Nothing of it was sent: the model holds what it holds from its start on.
    EXPECT_TRUE(model("stereo")->property("autoExposure").toBool());
    EXPECT_EQ(model("stereo")->property("gain").toInt(), 20);
    EXPECT_EQ(model("stereo")->property("brightness").toInt(), 5);
    clickSwitch("stereoButton");
}

TEST(DamagedSettings, onlyQtRemarksOnAValueThatItCanNotRead)
{
    QStringList warnings = unexpectedWarnings();
    warnings.erase(std::remove_if(warnings.begin(), warnings.end(),
                       [](const QString &text) { return text.startsWith(QLatin1String("QVariant::load")); }),
        warnings.end());
    EXPECT_THAT(warnings, ::testing::IsEmpty());
}
