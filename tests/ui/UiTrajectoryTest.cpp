#include "ui/Space.h"

#include <QFile>
#include <QFileInfo>

// SLAM on a recorded trajectory, which is kept outside the tree.

using namespace ui;

namespace {

QString recording()
{
    return QFileInfo(QStringLiteral(QV_SOURCE_DIR "/../shared/data/trajectories/tum_fr1_xyz_gt.txt"))
        .absoluteFilePath();
}

} // namespace

QString prepare(const QString &home)
{
    if (!QFileInfo::exists(recording()))
        return QStringLiteral("the recorded trajectory is not here");
    const QString place = home + QStringLiteral("/groundtruth.txt");
    QFile::copy(recording(), place);
    qputenv("QVSIM_REPLAY", place.toLocal8Bit());
    return {};
}

TEST(Trajectory, theRecordedRoadIsDrawn)
{
    ASSERT_TRUE(pageAppears());
    PoseTap tap(hostSource());
    clickSwitch("slamButton");
    setDrawer(false);
    ASSERT_TRUE(waitFor([] { return id("slamView")->width() > 300; }, minute));
    EXPECT_TRUE(rateReaches(slamItem("fpsLabel"), 85, 115));
    // The scene from outside.
    WindowDriver::click(slamItem("insetArea2"));
    ASSERT_TRUE(waitFor([&] { return tap.count() > 2000; }, minute));
    QMetaObject::invokeMethod(model("slam"), "pause");
    WindowDriver::picture(QStringLiteral("slam-trajectory"));
    const double aspect = cameraOf("viewCam")->property("aspectRatio").toDouble();
    const Projection projection({0, -3, -5}, {}, {}, aspect, sceneArea());
    const std::vector<qv::Pose> poses = tap.all();
    int visible = 0;
    EXPECT_TRUE(waitFor(
        [&] {
            visible = 0;
            int drawn = 0;
            const QImage image = sceneImage();
            for (std::size_t i = 0; i + 50 < poses.size(); i += 20) {
                const auto place = projection.pixel(vector(poses[i].translation));
                if (!place || isCovered(*place))
                    continue;
                ++visible;
                drawn += isNear(image, *place, 2, isYellow) ? 1 : 0;
            }
            return drawn > visible * 9 / 10 && visible > 50;
        },
        minute))
        << visible;
    WindowDriver::click(slamItem("insetArea2"));
    EXPECT_TRUE(waitFor([] { return colours(sceneImage()) > 8; }, minute));
    WindowDriver::picture(QStringLiteral("slam-trajectory-behind"));
}
