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
horizontalFlip=perhaps
gain=loud
brightness=-40000000000
autoExposure=@Invalid()

[RgbView]
verticalFlip=@Point(1 2)

[TofView]
maxDistance=nan
minDistance=-inf
framerate=1e400

[SlamView]
freeView=7

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
