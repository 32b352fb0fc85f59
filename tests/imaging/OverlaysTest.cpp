#include "imaging/Overlays.h"

#include "imaging/FakeProbe.h"
#include "imaging/Painting.h"
#include <cmath>
#include <random>

namespace {

struct Canvas {
    explicit Canvas(const QSize &size)
        : image(size, QImage::Format_RGB32)
    {
        image.fill(Qt::gray);
        painter.begin(&image);
    }
    QRgb at(int x, int y) const { return image.pixel(x, y); }
    int count(QRgb color) const
    {
        int found = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                found += image.pixel(x, y) == color;
        }
        return found;
    }

    QImage image;
    QPainter painter;
};

FramePlace placeOf(int width, int height)
{
    FramePlace place;
    place.sourceWidth = width;
    place.sourceHeight = height;
    return place;
}

/// All joints missing but those given.
QJsonObject skeleton(const std::map<int, QPointF> &joints, int count = 18)
{
    QJsonArray points;
    for (int i = 0; i < count; ++i) {
        const auto joint = joints.find(i);
        const QPointF at = joint == joints.end() ? QPointF(-1, -1) : joint->second;
        points.append(QJsonObject{{"x", at.x()}, {"y", at.y()}});
    }
    return {{"shape", 1}, {"keypoints", points}};
}

/// The place of all that has been drawn inside.
QRect inkOf(const Canvas &canvas, const QRect &inside)
{
    QRect ink;
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            if (canvas.at(x, y) != QColor(Qt::gray).rgb())
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

QJsonObject labelled(const QString &type, double confidence)
{
    return {{"type", type}, {"confidence", confidence}};
}

} // namespace

TEST(Overlays, keypointColoursAreTheRainbow)
{
    const std::vector<std::array<int, 3>> expected{{0, 0, 255}, {0, 85, 255}, {0, 170, 255}, {0, 255, 255},
        {0, 255, 170}, {0, 255, 85}, {0, 255, 0}, {85, 255, 0}, {170, 255, 0}, {255, 255, 0}, {255, 170, 0},
        {255, 85, 0}, {255, 0, 0}, {255, 0, 85}, {255, 0, 170}, {255, 0, 255}, {170, 0, 255}, {85, 0, 255}};
    ASSERT_EQ(keypointColors.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(keypointColors[i].rgba(), qRgba(expected[i][0], expected[i][1], expected[i][2], 255)) << i;
}

TEST(Overlays, limbsJoinTheJointsInOrder)
{
    const std::vector<std::pair<int, int>> expected{{1, 2}, {1, 5}, {2, 3}, {3, 4}, {5, 6}, {6, 7}, {1, 8},
        {8, 9}, {9, 10}, {1, 11}, {11, 12}, {12, 13}, {1, 0}, {0, 14}, {14, 16}, {0, 15}, {15, 17}};
    EXPECT_EQ(std::vector(limbPairs.begin(), limbPairs.end()), expected);
}

TEST(Overlays, labelTellsTypeAndConfidence)
{
    EXPECT_EQ(objectLabel(labelled("cup", 0.876), nullptr), "cup confidence: 0.88");
    EXPECT_EQ(objectLabel(labelled("person", 1), nullptr), "person confidence: 1");
    EXPECT_EQ(objectLabel(labelled("", 0.00012345), nullptr), " confidence: 0.00012");
    EXPECT_EQ(objectLabel({}, nullptr), " confidence: 0");
}

TEST(Overlays, labelEndsWithTheDepthOfTheProbe)
{
    FakeProbe probe;
    EXPECT_EQ(objectLabel(labelled("cup", 0.5), &probe), "cup confidence: 0.5 depth: 1234");
    probe.depth = -7;
    EXPECT_EQ(objectLabel(labelled("cup", 0.5), &probe), "cup confidence: 0.5 depth: -7");
}

TEST(Overlays, labelKeepsPercentSignsOfTheType)
{
    EXPECT_EQ(objectLabel(labelled("%1 %2", 0.5), nullptr), "%1 %2 confidence: 0.5");
}

TEST(Overlays, keyPointIsTwoFramePixelsWide)
{
    Canvas canvas({100, 100});
    FramePlace place = placeOf(50, 50);
    place.ratio = 2;
    drawKeyPoints(canvas.painter, {{10, 20}}, place);
    // Centre (20, 40) on the screen, 2 frame pixels are 4 screen pixels.
    EXPECT_EQ(canvas.count(green), 16);
    EXPECT_EQ(canvas.at(18, 38), green);
    EXPECT_EQ(canvas.at(21, 41), green);
    EXPECT_NE(canvas.at(22, 42), green);
}

TEST(Overlays, keyPointsFollowFlipsAndPlace)
{
    Canvas canvas({100, 100});
    FramePlace place = placeOf(50, 40);
    place.horizontalFlip = true;
    place.verticalFlip = true;
    place.topLeft = {10, 20};
    drawKeyPoints(canvas.painter, {{10, 5}}, place);
    EXPECT_EQ(canvas.count(green), 4);
    EXPECT_EQ(canvas.at(10 + 40, 20 + 35), green);
    EXPECT_EQ(canvas.at(10 + 39, 20 + 34), green);
}

TEST(Overlays, manyKeyPointsAreDrawnLikeOneAfterTheOther)
{
    std::mt19937 random(1);
    FramePlace place = placeOf(640, 400);
    place.ratio = 0.8;
    place.topLeft = {0, 40};
    QVector<QPoint> points;
    Canvas together({512, 400});
    Canvas single({512, 400});
    for (int i = 0; i < 300; ++i) {
        points.append({static_cast<int>(random() % 660) - 10, static_cast<int>(random() % 420) - 10});
        drawKeyPoints(single.painter, {points.last()}, place);
    }
    drawKeyPoints(together.painter, points, place);
    EXPECT_TRUE(together.image == single.image);
}

TEST(Overlays, boxIsAYellowFrameAroundItsLabel)
{
    Canvas canvas({200, 200});
    drawObjects(canvas.painter, {boxObject(20, 30, 150, 100)}, placeOf(200, 200), nullptr);
    EXPECT_EQ(canvas.at(20, 30), yellow);
    EXPECT_EQ(canvas.at(170, 130), yellow);
    EXPECT_EQ(canvas.at(95, 30), yellow);
    EXPECT_EQ(canvas.at(20, 80), yellow);
    EXPECT_EQ(canvas.at(25, 35), QColor(Qt::gray).rgb()) << "the box is not filled";
    EXPECT_GT(canvas.count(yellow), 2 * (150 + 100)) << "a label stands in it";
}

TEST(Overlays, boxFollowsFlips)
{
    Canvas canvas({200, 200});
    FramePlace place = placeOf(200, 180);
    place.horizontalFlip = true;
    place.verticalFlip = true;
    drawObjects(canvas.painter, {boxObject(10, 20, 60, 50)}, place, nullptr);
    // Left edge at 200 - 10 - 60, top edge at 180 - 20 - 50.
    EXPECT_EQ(canvas.at(130, 110), yellow);
    EXPECT_EQ(canvas.at(190, 160), yellow);
    EXPECT_NE(canvas.at(10, 20), yellow);
}

TEST(Overlays, boxAndLabelLookTheSameAtAnyRatio)
{
    Canvas plain({400, 300});
    drawObjects(plain.painter, {boxObject(40, 20, 300, 200)}, placeOf(400, 300), nullptr);
    Canvas halved({400, 300});
    FramePlace place = placeOf(800, 600);
    place.ratio = 0.5;
    drawObjects(halved.painter, {boxObject(80, 40, 600, 400)}, place, nullptr);
    for (const Canvas *canvas : {&plain, &halved}) {
        EXPECT_EQ(canvas->at(40, 20), yellow);
        EXPECT_EQ(canvas->at(340, 220), yellow);
        EXPECT_NE(canvas->at(41, 21), yellow) << "the pen stays one screen pixel wide";
    }
    const double ink = static_cast<double>(halved.count(yellow)) / plain.count(yellow);
    EXPECT_NEAR(ink, 1, 0.2) << "the text keeps its size on the screen";
}

TEST(Overlays, labelHasTheSameSizeOnTheScreenAtAnyRatio)
{
    const auto labelAt = [](double ratio) {
        Canvas canvas({400, 300});
        FramePlace place = placeOf(int(400 / ratio), int(300 / ratio));
        place.ratio = ratio;
        drawObjects(
            canvas.painter, {boxObject(40 / ratio, 20 / ratio, 300 / ratio, 200 / ratio)}, place, nullptr);
        return inkOf(canvas, {45, 25, 290, 190});
    };
    const QRect plain = labelAt(1);
    ASSERT_GT(plain.width(), 40);
    ASSERT_GT(plain.height(), 5);
    EXPECT_NEAR(plain.center().x(), 190, 3);
    EXPECT_NEAR(plain.center().y(), 120, 6);
    for (const double ratio : {0.5, 2.0}) {
        const QRect label = labelAt(ratio);
        EXPECT_NEAR(label.width(), plain.width(), 0.1 * plain.width()) << ratio;
        EXPECT_NEAR(label.height(), plain.height(), 3) << ratio;
    }
}

TEST(Overlays, labelWrapsInANarrowBox)
{
    const auto heightIn = [](int width) {
        Canvas canvas({400, 300});
        drawObjects(canvas.painter, {boxObject(10, 10, width, 250)}, placeOf(400, 300), nullptr);
        return inkOf(canvas, {12, 12, width - 4, 246}).height();
    };
    ASSERT_GT(heightIn(380), 5);
    EXPECT_GT(heightIn(90), 2 * heightIn(380));
}

TEST(Overlays, sampledPixelIsHalfOfPositionPlusSize)
{
    Canvas canvas({200, 200});
    FakeProbe probe;
    FramePlace place = placeOf(200, 200);
    place.horizontalFlip = true;
    place.verticalFlip = true;
    drawObjects(canvas.painter, {boxObject(11, 22, 40, 71)}, place, &probe);
    EXPECT_EQ(probe.asked, QStringList({"x 25", "y 46"}))
        << "of the values as they came, not of the flipped ones";
}

TEST(Overlays, everyBoxIsSampled)
{
    Canvas canvas({200, 200});
    FakeProbe probe;
    drawObjects(canvas.painter, {boxObject(0, 0, 10, 10), skeleton({}), boxObject(-9, -4, 2, 1)},
        placeOf(200, 200), &probe);
    EXPECT_EQ(probe.asked, QStringList({"x 5", "y 5", "x -3", "y -1"}));
}

TEST(Overlays, otherShapesLeaveNoMark)
{
    for (const int shape : {2, -1, 100}) {
        Canvas canvas({100, 100});
        QJsonObject object = boxObject(10, 10, 50, 50);
        object["keypoints"] = skeleton({{0, {50, 50}}, {1, {20, 20}}})["keypoints"];
        object["shape"] = shape;
        drawObjects(canvas.painter, {object}, placeOf(100, 100), nullptr);
        EXPECT_EQ(canvas.count(QColor(Qt::gray).rgb()), 100 * 100) << shape;
    }
}

TEST(Overlays, shapeIsABoxByDefault)
{
    Canvas canvas({100, 100});
    QJsonObject object = boxObject(10, 10, 50, 50);
    object.remove("shape");
    drawObjects(canvas.painter, {object}, placeOf(100, 100), nullptr);
    EXPECT_EQ(canvas.at(10, 10), yellow);
}

TEST(Overlays, skeletonsOfOtherThanEighteenJointsLeaveNoMark)
{
    for (const int count : {0, 17, 19}) {
        Canvas canvas({100, 100});
        drawObjects(
            canvas.painter, {skeleton({{0, {50, 50}}, {1, {20, 20}}}, count)}, placeOf(100, 100), nullptr);
        EXPECT_EQ(canvas.count(QColor(Qt::gray).rgb()), 100 * 100) << count;
    }
}

TEST(Overlays, jointIsADotOfItsColourWithABlackRim)
{
    Canvas canvas({100, 100});
    drawObjects(canvas.painter, {skeleton({{10, {50, 40}}})}, placeOf(100, 100), nullptr);
    EXPECT_EQ(canvas.at(50, 40), keypointColors[10].rgb());
    EXPECT_EQ(canvas.at(52, 42), keypointColors[10].rgb());
    EXPECT_EQ(canvas.at(54, 40), black);
    EXPECT_EQ(canvas.at(50, 36), black);
    EXPECT_EQ(canvas.at(57, 40), QColor(Qt::gray).rgb());
}

TEST(Overlays, missingJointsDrawNeitherDotNorLimb)
{
    Canvas canvas({100, 100});
    // Joint 0 joins 1, 14 and 15, none of which is there.
    drawObjects(canvas.painter, {skeleton({{0, {50, 50}}})}, placeOf(100, 100), nullptr);
    EXPECT_EQ(canvas.at(50, 50), keypointColors[0].rgb());
    for (const int other : {1, 14, 15})
        EXPECT_EQ(canvas.count(keypointColors[static_cast<std::size_t>(other)].rgb()), 0) << other;
    EXPECT_EQ(canvas.at(0, 0), QColor(Qt::gray).rgb()) << "nothing is drawn at (-1, -1)";
}

TEST(Overlays, jointWithOneCoordinateOfAMissingOneIsDrawn)
{
    Canvas canvas({100, 100});
    drawObjects(canvas.painter, {skeleton({{3, {-1, 50}}, {9, {50, -1}}})}, placeOf(100, 100), nullptr);
    EXPECT_EQ(canvas.at(0, 50), keypointColors[3].rgb());
    EXPECT_EQ(canvas.at(50, 0), keypointColors[9].rgb());
}

TEST(Overlays, limbIsAnEllipseBetweenItsJointsInTheColourOfTheSecond)
{
    Canvas canvas({100, 100});
    drawObjects(canvas.painter, {skeleton({{1, {20, 50}}, {2, {80, 50}}})}, placeOf(100, 100), nullptr);
    EXPECT_EQ(canvas.at(50, 50), keypointColors[2].rgb());
    EXPECT_EQ(canvas.at(50, 52), keypointColors[2].rgb());
    EXPECT_EQ(canvas.at(50, 54), black);
    EXPECT_EQ(canvas.at(50, 57), QColor(Qt::gray).rgb());
    EXPECT_EQ(canvas.at(30, 50), keypointColors[2].rgb());
    EXPECT_EQ(canvas.at(22, 50), keypointColors[2].rgb()) << "over the dot of its first joint";
}

TEST(Overlays, limbTurnsWithItsJoints)
{
    Canvas canvas({100, 100});
    drawObjects(canvas.painter, {skeleton({{1, {50, 20}}, {2, {50, 80}}})}, placeOf(100, 100), nullptr);
    EXPECT_EQ(canvas.at(50, 35), keypointColors[2].rgb());
    EXPECT_EQ(canvas.at(57, 50), QColor(Qt::gray).rgb());
}

TEST(Overlays, limbTurnsByWholeDegrees)
{
    // atan2(34, 1000) is 1.947 degrees.
    Canvas limb({1100, 120});
    drawObjects(limb.painter, {skeleton({{1, {1050, 77}}, {2, {50, 43}}})}, placeOf(1100, 120), nullptr);
    Canvas turned({1100, 120});
    turned.painter.setBrush(keypointColors[2]);
    turned.painter.translate(550, 60);
    turned.painter.rotate(1);
    turned.painter.drawEllipse(QPointF(0, 0), std::hypot(1000, 34) / 2, 4);
    // Between the joints, whose dots lie at the ends.
    const QRect between(100, 0, 900, 120);
    EXPECT_TRUE(limb.image.copy(between) == turned.image.copy(between));
}

TEST(Overlays, skeletonFollowsFlips)
{
    Canvas canvas({100, 100});
    FramePlace place = placeOf(100, 90);
    place.horizontalFlip = true;
    place.verticalFlip = true;
    drawObjects(canvas.painter, {skeleton({{1, {10, 20}}, {2, {40, 50}}})}, place, nullptr);
    // Joints at (90, 70) and (60, 40), the limb's middle at (75, 55).
    EXPECT_EQ(canvas.at(75, 55), keypointColors[2].rgb());
    EXPECT_EQ(canvas.at(68, 48), keypointColors[2].rgb());
    EXPECT_EQ(canvas.at(10, 20), QColor(Qt::gray).rgb());
    Canvas dots({100, 100});
    drawObjects(dots.painter, {skeleton({{4, {10, 20}}})}, place, nullptr);
    EXPECT_EQ(dots.at(90, 70), keypointColors[4].rgb());
}

TEST(Overlays, jointsScaleWithTheFrame)
{
    Canvas canvas({100, 100});
    FramePlace place = placeOf(50, 50);
    place.ratio = 2;
    place.topLeft = {4, 6};
    drawObjects(canvas.painter, {skeleton({{4, {20, 10}}})}, place, nullptr);
    EXPECT_EQ(canvas.at(44, 26), keypointColors[4].rgb());
    EXPECT_EQ(canvas.at(49, 26), keypointColors[4].rgb());
    EXPECT_EQ(canvas.at(52, 26), black);
}

TEST(Overlays, wildValuesDoNoHarm)
{
    const std::vector<double> wild{0, -1, 1e9, -1e9, 1e18, 1e300, -1e300, 1.7e308};
    std::mt19937 random(7);
    const auto pick = [&] { return wild[random() % wild.size()]; };
    Canvas canvas({64, 48});
    FakeProbe probe;
    for (int round = 0; round < 60; ++round) {
        std::map<int, QPointF> joints;
        for (int i = 0; i < 18; ++i)
            joints[i] = {pick(), pick()};
        FramePlace place = placeOf(64, 48);
        place.horizontalFlip = round & 1;
        drawObjects(canvas.painter,
            {boxObject(pick(), pick(), pick(), pick()), skeleton(joints), 7, QJsonArray{}}, place, &probe);
    }
    EXPECT_FALSE(probe.asked.isEmpty());
    drawObjects(canvas.painter, {boxObject(1e300, 1e300, 0, 0)}, placeOf(64, 48), &probe);
    EXPECT_EQ(probe.asked.last(), "y 2147483647");
}
