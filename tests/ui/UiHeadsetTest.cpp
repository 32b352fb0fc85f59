#include "app/Multisampling.h"
#include "ui/Page.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QJsonArray>
#include <QJsonObject>
#include <QLineEdit>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPushButton>
#include <QSurfaceFormat>
#include <QUrl>
#include <QWindow>

// One run of the program on the simulated headset. The tests stand in the order of a session.

using namespace ui;

namespace {

QString home;

/// The dialog of the toolkit itself; null while none is open.
QFileDialog *fileDialog()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (auto *dialog = qobject_cast<QFileDialog *>(window); dialog && dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

/// Picks a file in the dialog that the button beside the row's field opens.
void pickFile(QQuickItem *row, const QString &path)
{
    QQuickItem *button = nullptr;
    for (QQuickItem *item : row->property("field").value<QQuickItem *>()->parentItem()->childItems()) {
        if (item->inherits("QQuickToolButton"))
            button = item;
    }
    ASSERT_TRUE(button);
    WindowDriver::click(button);
    ASSERT_TRUE(waitFor([] { return fileDialog() != nullptr; }, minute));
    fileDialog()->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(path);
    fileDialog()->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open)->click();
    ASSERT_TRUE(waitFor([] { return fileDialog() == nullptr; }, minute));
    EXPECT_EQ(row->property("model").toUrl(), QUrl::fromLocalFile(path));
}

QJsonArray detected()
{
    return model("objects")->property("objects").toJsonArray();
}

/// Whether most of a line is of the yellow of boxes, give or take two pixels to its sides.
bool isYellowAlong(const QImage &picture, const QPointF &from, const QPointF &to)
{
    constexpr int steps = 50;
    int yellow = 0;
    for (int step = 0; step <= steps; ++step) {
        const QPoint middle = (from + (to - from) * step / steps).toPoint();
        bool found = false;
        for (int dy = -2; dy <= 2; ++dy) {
            for (int dx = -2; dx <= 2; ++dx) {
                const QPoint place = middle + QPoint(dx, dy);
                const QRgb color = picture.valid(place) ? picture.pixel(place) : 0;
                found = found || (qRed(color) > 220 && qGreen(color) > 220 && qBlue(color) < 60);
            }
        }
        yellow += found;
    }
    return yellow > 0.8 * steps;
}

/// How many things the view shows in the boxes that its painter was given; a person has none.
int boxesDrawn(QQuickItem *view)
{
    QQuickItem *painter = WindowDriver::byName("painter", view);
    const QImage picture = WindowDriver::grab(painter);
    const double ratio = painter->property("imageRation").toDouble();
    const QPointF corner = painter->property("topLeftPoint").toPointF();
    int drawn = 0;
    for (const auto &value : painter->property("objects").toJsonArray()) {
        const QJsonObject object = value.toObject();
        if (object[QLatin1String("shape")].toInt() != 0)
            continue;
        const QRectF box(corner.x() + ratio * object[QLatin1String("x")].toDouble(),
            corner.y() + ratio * object[QLatin1String("y")].toDouble(),
            ratio * object[QLatin1String("width")].toDouble(),
            ratio * object[QLatin1String("height")].toDouble());
        drawn += box.width() > 20 && box.height() > 20
            && isYellowAlong(picture, box.topLeft(), box.topRight())
            && isYellowAlong(picture, box.topRight(), box.bottomRight())
            && isYellowAlong(picture, box.bottomRight(), box.bottomLeft())
            && isYellowAlong(picture, box.bottomLeft(), box.topLeft());
    }
    return drawn;
}

} // namespace

QString prepare(const QString &temporaryHome)
{
    home = temporaryHome;
    keepFilm();
    qputenv("QVSIM", "headset");
    qputenv("QT_QPA_PLATFORMTHEME", "generic"); // file dialogs of a desktop are out of a test's reach
    return {};
}

TEST(Headset, filmPlaysBeforeTheMainPage)
{
    ASSERT_TRUE(
        waitFor([] { return WindowDriver::window() && WindowDriver::window()->isExposed(); }, minute));
    EXPECT_EQ(WindowDriver::window()->title(), QStringLiteral("QVSDK Viewer"));
    EXPECT_EQ(WindowDriver::window()->visibility(), QWindow::Maximized);
    ASSERT_TRUE(waitFor([] { return colours(WindowDriver::grab()) > 8; }, minute))
        << "the film shows nothing";
    EXPECT_FALSE(WindowDriver::page());
    WindowDriver::picture(QStringLiteral("start"));
}

TEST(Headset, deviceAppearsInTheSelector)
{
    ASSERT_TRUE(waitFor([] { return WindowDriver::page() != nullptr; }, minute));
    QQuickItem *selector = WindowDriver::byName("uuidSelector");
    ASSERT_TRUE(selector);
    EXPECT_EQ(selector->property("count").toInt(), 1);
    EXPECT_FALSE(camera()->property("uuid").toString().isEmpty());
    WindowDriver::picture(QStringLiteral("panel"));
}

TEST(Headset, stereoSwitchPutsLivePicturesOnTheScreen)
{
    QQuickItem *button = id("stereoButton");
    ASSERT_TRUE(button);
    ASSERT_TRUE(button->isEnabled());
    clickSwitch("stereoButton");
    ASSERT_TRUE(button->property("checked").toBool());

    QQuickItem *view = id("stereoView");
    ASSERT_TRUE(waitFor([view] { return view->width() > 100 && view->isVisible(); }, minute));
    ASSERT_TRUE(waitFor([view] { return colours(WindowDriver::grab(view)) > 50; }, minute)) << "no picture";
    const QImage first = WindowDriver::grab(view);
    ASSERT_TRUE(waitFor([&] { return WindowDriver::grab(view) != first; }, minute))
        << "the picture stands still";
    EXPECT_EQ(model("stereo")->property("count").toInt(), 2);
}

TEST(Headset, keyPointsAreDrawnInGreenAndCanBeHidden)
{
    QQuickItem *view = id("stereoView");
    const auto green = [view] {
        const QImage picture = WindowDriver::grab(view);
        int count = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                count += picture.pixel(x, y) == qRgb(0, 255, 0);
        return count;
    };
    ASSERT_TRUE(waitFor([&] { return green() > 20; }, minute));
    view->setProperty("showPoints", false);
    EXPECT_TRUE(waitFor([&] { return green() == 0; }, minute));
    view->setProperty("showPoints", true);
    EXPECT_TRUE(waitFor([&] { return green() > 20; }, minute));
}

TEST(Headset, gridButtonShowsBothCameras)
{
    QQuickItem *view = id("stereoView");
    QQuickItem *grid = WindowDriver::byName("gridButton", view);
    ASSERT_TRUE(grid);
    WindowDriver::click(grid);
    // The two halves show two pictures: neither is blank, and they differ, being taken from two places.
    ASSERT_TRUE(waitFor(
        [view] {
            const QImage both = WindowDriver::grab(view);
            const int half = both.width() / 2;
            const QImage left = both.copy(0, both.height() / 4, half, both.height() / 2);
            const QImage right = both.copy(half, both.height() / 4, half, both.height() / 2);
            return colours(left) > 50 && colours(right) > 50 && left != right;
        },
        minute));
    WindowDriver::picture(QStringLiteral("stereo-grid"));
    WindowDriver::click(grid);
}

TEST(Headset, everyFrameIsCounted)
{
    QQuickItem *label = WindowDriver::byName("infoLabel", id("stereoView"));
    ASSERT_TRUE(label);
    // Fifty frame sets a second: a second of the timer holds fifty, or one less or more at its edges.
    EXPECT_TRUE(rateReaches(label, 49, 51)) << qPrintable(label->property("text").toString());
    EXPECT_TRUE(label->property("text").toString().startsWith(QLatin1String("[STEREO]  640x400@")));
    WindowDriver::picture(QStringLiteral("stereo"));
}

TEST(Headset, drawerGivesItsRoomToTheViews)
{
    setDrawer(true);
    QQuickItem *view = id("stereoView");
    const qreal before = view->width();
    WindowDriver::click(WindowDriver::byName("menuButton"));
    EXPECT_TRUE(waitFor([&] { return view->width() > before + 200; }, minute));
    WindowDriver::picture(QStringLiteral("drawer-closed"));
    WindowDriver::click(WindowDriver::byName("menuButton"));
    EXPECT_TRUE(waitFor([&] { return qAbs(view->width() - before) < 1; }, minute));
}

TEST(Headset, aClickOutsideClosesTheDrawerOnlyWithAutoClose)
{
    setDrawer(true);
    QObject *drawer = WindowDriver::byId(WindowDriver::page(), "drawer");
    QObject *autoClose = WindowDriver::byId(WindowDriver::page(), "menuAutoCloseCheckbox");
    QQuickItem *view = id("stereoView");
    autoClose->setProperty("checked", false);
    WindowDriver::click(view, QPointF(view->width() / 2, view->height() / 2));
    // It stays visible while it closes, but isn't open any more.
    EXPECT_TRUE(drawer->property("opened").toBool());
    autoClose->setProperty("checked", true);
    WindowDriver::click(view, QPointF(view->width() / 2, view->height() / 2));
    EXPECT_TRUE(waitFor([drawer] { return !drawer->property("visible").toBool(); }, minute));
}

TEST(Headset, stereoSwitchStopsTheStream)
{
    clickSwitch("stereoButton");
    EXPECT_FALSE(id("stereoButton")->property("checked").toBool());
    EXPECT_TRUE(waitFor([] { return id("stereoView")->width() == 0; }, minute));
}

TEST(Headset, objectsAreBoxedOnceAModelIsPickedForTheDetectorThatIsEnabledAlready)
{
    const QString path = home + QStringLiteral("/model.blob");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write("weights"), 7);
    file.close();
    clickSwitch("rgbButton");
    QQuickItem *view = id("rgbView");
    ASSERT_TRUE(waitFor([=] { return view->width() > 100 && view->isVisible(); }, minute));
    WindowDriver::click(id("generalText"));
    QQuickItem *enable = id("enableCNNCheckbox");
    ASSERT_TRUE(waitFor([=] { return enable->isVisible(); }, minute));
    WindowDriver::click(enable);
    ASSERT_TRUE(enable->property("checked").toBool());
    EXPECT_TRUE(model("objects")->property("enabled").toBool());

    ASSERT_NO_FATAL_FAILURE(pickFile(id("cnnModel"), path));
    EXPECT_EQ(model("objects")->property("model").toString(), path);
    ASSERT_TRUE(waitFor([] { return !detected().isEmpty(); }, minute)) << "nothing is found";
    EXPECT_TRUE(waitFor([=] { return boxesDrawn(view) > 0; }, minute));
    WindowDriver::picture(QStringLiteral("objects"));
}

TEST(Headset, noBoxesAreDrawnOnceTheDetectorIsDisabled)
{
    QQuickItem *view = id("rgbView");
    QQuickItem *enable = id("enableCNNCheckbox");
    WindowDriver::click(enable);
    ASSERT_FALSE(enable->property("checked").toBool());
    EXPECT_FALSE(model("objects")->property("enabled").toBool());
    // The last ones stay with the model, if there were any.
    const QJsonArray chair{QJsonObject{{"shape", 0}, {"type", "chair"}, {"x", 300}, {"y", 300},
        {"width", 600}, {"height", 400}, {"confidence", 0.5}, {"keypoints", QJsonArray()}}};
    QMetaObject::invokeMethod(model("objects"), "setObjects", Q_ARG(QJsonArray, chair));
    ASSERT_EQ(WindowDriver::byName("painter", view)->property("objects").toJsonArray(), chair);
    EXPECT_EQ(boxesDrawn(view), 0);
    clickSwitch("rgbButton");
    EXPECT_TRUE(waitFor([=] { return view->width() == 0; }, minute));
}

TEST(Headset, scenesTakeOneSampleWhereNoGraphicsCardDraws)
{
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    ASSERT_TRUE(context.create());
    ASSERT_TRUE(context.makeCurrent(&surface));
    const auto *name = reinterpret_cast<const char *>(context.functions()->glGetString(GL_RENDERER));
    const QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    EXPECT_EQ(format.samples(), isSoftwareRenderer(name) ? 0 : -1) << name;
    EXPECT_EQ(format.swapInterval(), 2);
}

TEST(Headset, nothingUnexpectedIsInTheLog)
{
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
