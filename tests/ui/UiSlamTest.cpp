#include "ui/Frustum.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QtTest/QTest>
#include <array>

// SLAM on the simulated headset, by clicks: what the scene shows beside what the device sends, the map's
// file, and recorded poses beside the road through the room.

using namespace ui;

namespace {

QObject *slam()
{
    return model("slam");
}

QVector3D shownPosition()
{
    return slam()->property("position").value<QObject *>()->property("vector").value<QVector3D>();
}

/// Stops the device where it is, and waits until the interface knows.
qv::Pose hold(const PoseTap &tap)
{
    QMetaObject::invokeMethod(slam(), "pause");
    QElapsedTimer silence;
    std::size_t count = 0;
    // A pose may be under way still.
    waitFor(
        [&] {
            if (std::exchange(count, tap.count()) != tap.count() || !silence.isValid())
                silence.start();
            return silence.elapsed() > 100 && shownPosition() == vector(tap.last().translation);
        },
        minute);
    return tap.last();
}

void release()
{
    QMetaObject::invokeMethod(slam(), "resume");
}

void setBox(QQuickItem *box, bool on)
{
    if (box->property("checked").toBool() != on)
        WindowDriver::click(box);
    EXPECT_EQ(box->property("checked").toBool(), on);
}

void setPlanes(bool on)
{
    if (id("sourceCheckbox")->property("checked").toBool() == on)
        return;
    setDrawer(true);
    if (!id("sourceCheckbox")->isVisible())
        WindowDriver::click(id("slamText"));
    setBox(id("sourceCheckbox"), on);
    setDrawer(false);
}

double aspectOf(const char *selector)
{
    return cameraOf(selector)->property("aspectRatio").toDouble();
}

std::vector<QVector3D> mapPoints()
{
    QObject *cloud = model("map")->property("pointCloud").value<QObject *>();
    const QByteArray bytes = cloud->property("points").toByteArray();
    const int count = std::min<int>(cloud->property("size").toInt(), bytes.size() / 12);
    std::vector<QVector3D> points;
    for (int i = 0; i < count; ++i) {
        float xyz[3];
        memcpy(xyz, bytes.constData() + 12 * i, sizeof xyz);
        points.emplace_back(xyz[0], xyz[1], xyz[2]);
    }
    return points;
}

/// The share of the places in the picture, where nothing covers them, that are as wanted.
template <class Predicate>
double share(const QImage &image, const Projection &projection, const std::vector<QVector3D> &points,
    int reach, Predicate predicate, int *visible = nullptr)
{
    int seen = 0;
    int right = 0;
    for (const QVector3D &point : points) {
        const auto place = projection.pixel(point);
        if (!place || isCovered(*place))
            continue;
        ++seen;
        right += isNear(image, *place, reach, predicate) ? 1 : 0;
    }
    if (visible)
        *visible = seen;
    return seen == 0 ? 0 : double(right) / seen;
}

/// The picture after a click on an inset: its camera over the whole scene.
Projection inset2InMain()
{
    return {{0, -3, -5}, {}, {}, aspectOf("viewCam"), sceneArea()};
}

Projection inset3InMain()
{
    return {{0, 4, 0}, {}, {}, aspectOf("viewCam"), sceneArea()};
}

std::vector<QVector3D> alongLine(const QVector3D &from, const QVector3D &to)
{
    std::vector<QVector3D> points;
    for (float part = 0.15F; part < 0.9F; part += 0.1F)
        points.push_back(from + part * (to - from));
    return points;
}

std::vector<QVector3D> borderOf(const QJsonArray &outline)
{
    const auto corner = [&](int i) {
        const QJsonArray p = outline[i % outline.size()].toArray();
        return QVector3D(float(p[0].toDouble()), float(p[1].toDouble()), float(p[2].toDouble()));
    };
    std::vector<QVector3D> border;
    for (int i = 0; i < outline.size(); ++i)
        for (const QVector3D &p : alongLine(corner(i), corner(i + 1)))
            border.push_back(p);
    return border;
}

/// The lines of the ground, two metres wide, apart from those under the axes.
std::vector<QVector3D> onGround()
{
    std::vector<QVector3D> points;
    for (int i = 0; i <= 10; ++i) {
        const float at = -1 + 0.2F * float(i);
        if (i == 5)
            continue;
        for (const QVector3D &p : alongLine({-1, 0, at}, {1, 0, at}))
            points.push_back(p);
        for (const QVector3D &p : alongLine({at, 0, -1}, {at, 0, 1}))
            points.push_back(p);
    }
    return points;
}

void expectGroundAndAxes(const Projection &projection, bool fromAbove)
{
    const auto isRed = isLike(QColor("red"), 60);
    const auto isGreen = isLike(QColor("green"), 60);
    const auto isBlue = isLike(QColor("blue"), 60);
    // A line between two rows of pixels is half as bright in both.
    const auto isWhite = [](QRgb pixel) {
        return qMin(qRed(pixel), qBlue(pixel)) > 105 && qAbs(qRed(pixel) - qBlue(pixel)) < 20;
    };
    int visible = 0;
    EXPECT_TRUE(waitFor(
        [&] { return share(sceneImage(), projection, onGround(), 2, isWhite, &visible) > 0.95; }, minute))
        << share(sceneImage(), projection, onGround(), 2, isWhite) << " of " << visible;
    EXPECT_GT(visible, 20);
    const QImage image = sceneImage();
    EXPECT_GT(share(image, projection, alongLine({}, {1, 0, 0}), 2, isRed), 0.8);
    if (!fromAbove) { // a point from there
        EXPECT_GT(share(image, projection, alongLine({}, {0, 1, 0}), 2, isGreen), 0.8);
    }
    EXPECT_GT(share(image, projection, alongLine({}, {0, 0, 1}), 2, isBlue), 0.8);
}

int pathLength()
{
    QQmlExpression length(
        QQmlEngine::contextForObject(slamItem("scene3d")), nullptr, QStringLiteral("root.slamPath.length"));
    return length.evaluate().toInt();
}

bool moves(const PoseTap &tap, const qv::Pose &from, float metres)
{
    const auto isFar = [&](const qv::Pose &pose) {
        return vector(pose.translation).distanceToPoint(vector(from.translation)) > metres;
    };
    return waitFor([&] { return tap.count() > 0 && isFar(tap.last()); }, minute);
}

/// An empty path, so that of yellow things only the device is left.
void clearPath()
{
    WindowDriver::click(slamItem("clearButton"));
}

void onlyDevice()
{
    setBox(slamItem("mapCheckbox"), false);
    setPlanes(false);
}

QVector3D lens(const char *property)
{
    return cameraOf("viewCam")->property(property).value<QVector3D>();
}

/// The main picture from wherever its camera is now.
Projection seenByLens()
{
    const QRectF whole = sceneArea();
    return {lens("position"), lens("viewCenter"), lens("upVector"), whole.width() / whole.height(), whole};
}

/// Drags over the scene until its camera has moved by a tenth of a metre; where that comes to rest.
QVector3D drag(Qt::MouseButton button)
{
    const QVector3D before = lens("position");
    QQuickItem *area = slamItem("sceneArea");
    const QPoint from = area->mapToScene({area->width() * 0.6, area->height() * 0.6}).toPoint();
    QTest::mousePress(WindowDriver::window(), button, Qt::NoModifier, from);
    // The camera moves by the frame while the button is down.
    int step = 0;
    waitFor(
        [&] {
            step = (step + 1) % 20;
            QTest::mouseMove(WindowDriver::window(), from + QPoint(3 * step, 2 * step), 20);
            return lens("position").distanceToPoint(before) > 0.1F;
        },
        minute);
    QTest::mouseRelease(WindowDriver::window(), button, Qt::NoModifier, from);
    // It may go on by a frame.
    QVector3D last = lens("position");
    QElapsedTimer rest;
    rest.start();
    waitFor([&] {
        if (std::exchange(last, lens("position")) != last)
            rest.start();
        return rest.elapsed() > 300;
    });
    return last;
}

std::unique_ptr<PoseTap> tap;

bool isInSight(const Projection &projection, const qv::Pose &pose)
{
    const QRectF place = frustumIn(projection, pose).adjusted(-6, -6, 6, 6);
    if (!sceneArea().contains(place))
        return false;
    constexpr int steps = 8;
    for (int i = 0; i < (steps + 1) * (steps + 1); ++i) {
        if (isCovered(place.topLeft()
                + QPointF(place.width() * (i % (steps + 1)), place.height() * (i / (steps + 1))) / steps))
            return false;
    }
    return true;
}

/// Where nothing covers the device, whichever camera has the whole scene.
qv::Pose holdInSight()
{
    qv::Pose pose = hold(*tap);
    for (int i = 0; i < 60; ++i) {
        if (isInSight(inset2InMain(), pose) && isInSight(inset3InMain(), pose)
            && isInSight(behind(pose, sceneArea()), pose))
            return pose;
        release();
        EXPECT_TRUE(moves(*tap, pose, 0.15F));
        pose = hold(*tap);
    }
    ADD_FAILURE() << "the device is always covered";
    return pose;
}

/// What the compiler says of it, empty if it takes it.
std::string compileMessages(QOpenGLFunctions &gl, GLuint program, GLenum kind, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "not readable";
    const QByteArray text = file.readAll();
    const char *source = text.constData();
    const GLuint shader = gl.glCreateShader(kind);
    gl.glShaderSource(shader, 1, &source, nullptr);
    gl.glCompileShader(shader);
    GLint compiled = 0;
    gl.glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    std::array<char, 4000> messages{};
    if (!compiled)
        gl.glGetShaderInfoLog(shader, GLsizei(messages.size()), nullptr, messages.data());
    gl.glAttachShader(program, shader);
    gl.glDeleteShader(shader);
    return compiled ? "" : std::string("refused: ") + messages.data();
}

} // namespace

QString prepare(const QString &home)
{
    qputenv("QVSIM", "headset");
    qputenv("TMPDIR", home.toLocal8Bit()); // where maps are kept
    return {};
}

TEST(Slam, theSwitchBringsSceneAndReadings)
{
    ASSERT_TRUE(pageAppears());
    tap = std::make_unique<PoseTap>(hostSource());
    clickSwitch("slamButton");
    setDrawer(false);
    ASSERT_TRUE(waitFor([] { return id("slamView")->width() > 300 && pathLength() > 100; }, minute));
    EXPECT_TRUE(rateReaches(slamItem("fpsLabel"), 190, 210));
    ASSERT_TRUE(waitFor([] { return colours(sceneImage()) > 8; }, minute));
    EXPECT_EQ(cameraOf("viewCam")->objectName(), QStringLiteral("camera"));
    const QVector3D at = vector(hold(*tap).translation);
    EXPECT_EQ(slamItem("xLabel")->property("text").toString(), QString::number(double(at.x()), 'f', 3));
    EXPECT_EQ(slamItem("yLabel")->property("text").toString(), QString::number(double(at.y()), 'f', 3));
    EXPECT_EQ(slamItem("zLabel")->property("text").toString(), QString::number(double(at.z()), 'f', 3));
    release();
}

TEST(Slam, theDeviceStandsWhereItsPoseSays)
{
    onlyDevice();
    qv::Pose last = tap->last();
    for (int place = 0; place < 3; ++place) {
        ASSERT_TRUE(moves(*tap, last, 0.15F));
        last = hold(*tap);
        clearPath();
        EXPECT_EQ(pathLength(), 0);
        EXPECT_TRUE(showsFrustum(behind(last, sceneArea()), last));
        release();
    }
}

TEST(Slam, anInsetsCameraTakesTheWholeSceneByAClick)
{
    const qv::Pose pose = holdInSight();
    clearPath();
    WindowDriver::click(slamItem("insetArea2"));
    EXPECT_EQ(cameraOf("viewCam")->objectName(), QStringLiteral("camera2"));
    EXPECT_EQ(cameraOf("viewCam2")->objectName(), QStringLiteral("camera"));
    EXPECT_TRUE(showsFrustum(inset2InMain(), pose));
    expectGroundAndAxes(inset2InMain(), false);
    WindowDriver::picture(QStringLiteral("slam-inset2"));
    // What followed the device is small now.
    const QRectF small = insetArea("ratio2");
    const QPointF middle = frustumIn(behind(pose, small), pose).bottomRight();
    EXPECT_TRUE(waitFor([&] { return isNear(sceneImage(), middle, 4, isYellow); }, minute));
    WindowDriver::click(slamItem("insetArea2"));
    EXPECT_EQ(cameraOf("viewCam")->objectName(), QStringLiteral("camera"));

    WindowDriver::click(slamItem("insetArea3"));
    EXPECT_EQ(cameraOf("viewCam")->objectName(), QStringLiteral("camera3"));
    EXPECT_TRUE(showsFrustum(inset3InMain(), pose));
    expectGroundAndAxes(inset3InMain(), true);
    WindowDriver::picture(QStringLiteral("slam-inset3"));
    WindowDriver::click(slamItem("insetArea3"));
    EXPECT_EQ(cameraOf("viewCam")->objectName(), QStringLiteral("camera"));
    EXPECT_TRUE(showsFrustum(behind(pose, sceneArea()), pose));
    release();
}

TEST(Slam, bothInsetsShowTheSceneFromTheirPlaces)
{
    const qv::Pose pose = hold(*tap);
    clearPath();
    const Projection small[] = {{{0, -3, -5}, {}, {}, aspectOf("viewCam2"), insetArea("ratio2")},
        {{0, 4, 0}, {}, {}, aspectOf("viewCam3"), insetArea("ratio3")}};
    for (const Projection &inset : small) {
        const auto seen = [&](const QVector3D &point, const char *color) {
            const auto place = inset.pixel(point);
            return place && isNear(sceneImage(), *place, 2, isLike(QColor(color), 80));
        };
        EXPECT_TRUE(waitFor([&] { return seen({0.7F, 0, 0}, "red"); }, minute));
        EXPECT_TRUE(waitFor([&] { return seen({0, 0, 0.7F}, "blue"); }, minute));
        const QPointF device = inset.unbounded(vector(pose.translation)).value();
        EXPECT_TRUE(waitFor([&] { return isNear(sceneImage(), device, 6, isYellow); }, minute));
    }
    release();
}

TEST(Slam, thePathIsDrawnUntilItIsCleared)
{
    WindowDriver::click(slamItem("insetArea2"));
    clearPath();
    const qv::Pose start = tap->last();
    tap->clear();
    ASSERT_TRUE(moves(*tap, start, 0.5F));
    const qv::Pose pose = hold(*tap);
    // Each fiftieth pose has the path drawn: the last ones may be missing.
    std::vector<QVector3D> road;
    const std::vector<qv::Pose> poses = tap->all();
    for (std::size_t i = 20; i + 50 < poses.size(); i += 10)
        road.push_back(vector(poses[i].translation));
    int visible = 0;
    EXPECT_TRUE(waitFor(
        [&] { return share(sceneImage(), inset2InMain(), road, 2, isYellow, &visible) > 0.95; }, minute));
    EXPECT_GT(visible, 10);
    WindowDriver::picture(QStringLiteral("slam-path"));
    clearPath();
    EXPECT_TRUE(showsFrustum(inset2InMain(), pose));
    release();
    EXPECT_TRUE(waitFor([] { return pathLength() > 100; }, minute));
    WindowDriver::click(slamItem("insetArea2"));
}

TEST(Slam, mapPointsAreOrangeWhereTheMapHasThem)
{
    setBox(slamItem("mapCheckbox"), true);
    ASSERT_TRUE(waitFor([] { return model("map")->property("pointCount").toInt() > 1000; }, minute));
    const qv::Pose pose = hold(*tap);
    clearPath();
    const Projection projection = behind(pose, sceneArea());
    int visible = 0;
    double found = 0;
    EXPECT_TRUE(waitFor(
        [&] {
            found = share(sceneImage(), projection, mapPoints(), 2, isOrange, &visible);
            return found > 0.95;
        },
        minute))
        << found;
    EXPECT_GT(visible, 100);
    EXPECT_TRUE(slamItem("pointsLabel")->property("text").toString().toInt() > 1000);
    WindowDriver::picture(QStringLiteral("slam-map"));
    setBox(slamItem("mapCheckbox"), false);
    EXPECT_TRUE(waitFor([&] { return extent(sceneImage(), isOrange).isEmpty(); }, minute));
    setBox(slamItem("mapCheckbox"), true);
    release();
}

TEST(Slam, planesAreDrawnInTheirColours)
{
    setBox(slamItem("mapCheckbox"), false);
    setPlanes(true);
    ASSERT_TRUE(
        waitFor([] { return model("planes")->property("tofPlanes").toJsonArray().size() >= 2; }, minute));
    const qv::Pose pose = hold(*tap);
    const Projection projection = behind(pose, sceneArea());
    const auto drawn = [&](int &visible) {
        const QImage image = sceneImage();
        double right = 0;
        visible = 0;
        for (const QJsonValue &value : model("planes")->property("tofPlanes").toJsonArray()) {
            const auto isIts = isLike(QColor(value[QStringLiteral("color")].toString()), 45);
            int points = 0;
            const double part = share(
                image, projection, borderOf(value[QStringLiteral("points")].toArray()), 3, isIts, &points);
            right += part * points;
            visible += points;
        }
        return visible > 10 ? right / visible : 0;
    };
    int visible = 0;
    // What lies before a border tints it.
    EXPECT_TRUE(waitFor([&] { return drawn(visible) > 0.5; }, minute)) << drawn(visible) << " of " << visible;
    WindowDriver::picture(QStringLiteral("slam-planes"));
    setPlanes(false);
    clearPath();
    const Projection ahead = behind(pose, sceneArea());
    EXPECT_TRUE(showsFrustum(ahead, pose));
    release();
}

TEST(Slam, resetBeginsANewFrameHere)
{
    setBox(slamItem("mapCheckbox"), false);
    qv::Pose origin;
    ASSERT_TRUE(waitFor([] { return vector(tap->last().translation).length() > 0.1F; }, minute));
    tap->clear();
    WindowDriver::click(slamItem("resetButton"));
    const auto begins = [] {
        const std::vector<qv::Pose> poses = tap->all();
        return std::any_of(poses.begin(), poses.end(),
            [](const qv::Pose &pose) { return vector(pose.translation).isNull(); });
    };
    ASSERT_TRUE(waitFor(begins, minute));
    const qv::Pose pose = hold(*tap);
    EXPECT_LT(pathLength(), int(tap->count()) + 1);
    clearPath();
    WindowDriver::click(slamItem("insetArea2"));
    EXPECT_TRUE(showsFrustum(inset2InMain(), pose));
    WindowDriver::click(slamItem("insetArea2"));
    release();
    // The map begins anew as well.
    EXPECT_TRUE(waitFor([] { return model("map")->property("pointCount").toInt() > 0; }, minute));
}

TEST(Slam, theFreeCameraGoesWhereItIsDraggedAndBack)
{
    const qv::Pose pose = hold(*tap);
    clearPath();
    setBox(slamItem("freeViewCheckBox"), true);
    EXPECT_TRUE(showsFrustum(behind(pose, sceneArea()), pose));
    const QVector3D centre = lens("viewCenter");
    const QVector3D start = lens("position");
    // The right button leads it around what it looks at, the left one takes that along.
    const QVector3D turned = drag(Qt::RightButton);
    EXPECT_GT(turned.distanceToPoint(start), 0.1F);
    EXPECT_LT(lens("viewCenter").distanceToPoint(centre), 0.001F);
    EXPECT_TRUE(showsFrustum(seenByLens(), pose));
    const QVector3D dragged = drag(Qt::LeftButton);
    EXPECT_GT(dragged.distanceToPoint(turned), 0.1F);
    EXPECT_LT((lens("viewCenter") - centre).distanceToPoint(dragged - turned), 0.001F);
    EXPECT_TRUE(showsFrustum(seenByLens(), pose));
    release();
    ASSERT_TRUE(moves(*tap, pose, 0.1F));
    EXPECT_EQ(lens("position"), dragged); // it stays where it was put
    setBox(slamItem("freeViewCheckBox"), false);
    const qv::Pose later = hold(*tap);
    clearPath();
    EXPECT_TRUE(showsFrustum(behind(later, sceneArea()), later));
    release();
}

// Desktop graphics never load these.
TEST(Slam, shadersForEmbeddedGraphicsBuildPrograms)
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGLES);
    format.setVersion(2, 0);
    QOpenGLContext context;
    context.setFormat(format);
    if (!context.create() || !context.isOpenGLES())
        GTEST_SKIP() << "no OpenGL ES here";
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    ASSERT_TRUE(context.makeCurrent(&surface));
    QOpenGLFunctions &gl = *context.functions();
    for (const char *name : {"line", "pointcloud", "pointcloudcolor"}) {
        SCOPED_TRACE(name);
        const QString path = QStringLiteral(":/shaders/%1_es.").arg(QLatin1String(name));
        const GLuint program = gl.glCreateProgram();
        EXPECT_EQ(compileMessages(gl, program, GL_VERTEX_SHADER, path + QStringLiteral("vert")), "");
        EXPECT_EQ(compileMessages(gl, program, GL_FRAGMENT_SHADER, path + QStringLiteral("frag")), "");
        gl.glLinkProgram(program);
        GLint linked = 0;
        gl.glGetProgramiv(program, GL_LINK_STATUS, &linked);
        EXPECT_TRUE(linked);
        gl.glDeleteProgram(program);
    }
    context.doneCurrent();
}

TEST(Slam, theSwitchStopsItAndNothingUnexpectedIsInTheLog)
{
    clickSwitch("slamButton");
    EXPECT_TRUE(waitFor([] { return id("slamView")->width() == 0 || !id("slamView")->isVisible(); }, minute));
    tap.reset();
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
