#include "spatial/OrientationData.h"

#include "spatial/Exactly.h"

#include <cmath>

using ::testing::ElementsAre;

namespace {

class OrientationSignals {
public:
    explicit OrientationSignals(OrientationData &data)
    {
        QObject::connect(&data, &OrientationData::matrixChanged, [this] { names.emplace_back("matrix"); });
        QObject::connect(
            &data, &OrientationData::quaternionChanged, [this] { names.emplace_back("quaternion"); });
        QObject::connect(&data, &OrientationData::rollChanged, [this] { names.emplace_back("roll"); });
        QObject::connect(&data, &OrientationData::pitchChanged, [this] { names.emplace_back("pitch"); });
        QObject::connect(&data, &OrientationData::yawChanged, [this] { names.emplace_back("yaw"); });
        QObject::connect(
            &data, &OrientationData::viewVectorChanged, [this] { names.emplace_back("viewVector"); });
    }
    std::vector<std::string> names;
};

/// Rotation by `degrees` about the y axis, row by row.
QMatrix3x3 aboutY(double degrees)
{
    const auto c = float(std::cos(degrees * M_PI / 180));
    const auto s = float(std::sin(degrees * M_PI / 180));
    const float rows[]{c, 0, s, 0, 1, 0, -s, 0, c};
    return QMatrix3x3(rows);
}

QMatrix3x3 diagonal(float a, float b, float c)
{
    const float rows[]{a, 0, 0, 0, b, 0, 0, 0, c};
    return QMatrix3x3(rows);
}

} // namespace

TEST(OrientationData, firstIdentityEmitsNothing)
{
    OrientationData data;
    const OrientationSignals emitted(data);
    data.setMatrix(QMatrix3x3());
    EXPECT_TRUE(emitted.names.empty());
    EXPECT_EQ(data.viewVector(), QVector3D());
}

TEST(OrientationData, rotationAboutYIsYawAndTurnsTheView)
{
    OrientationData data;
    const OrientationSignals emitted(data);
    data.setMatrix(aboutY(90));
    EXPECT_THAT(emitted.names, ElementsAre("matrix", "quaternion", "yaw", "viewVector"));
    EXPECT_NEAR(data.yaw(), 90, 1e-3);
    EXPECT_NEAR(data.viewVector().x(), 1, 1e-5);
    EXPECT_NEAR(data.viewVector().z(), 0, 1e-5);
}

TEST(OrientationData, rollThenPitchThenYaw)
{
    OrientationData data;
    data.setMatrix(QQuaternion::fromEulerAngles(10, 20, 30).toRotationMatrix());
    const OrientationSignals emitted(data);
    data.setMatrix(QQuaternion::fromEulerAngles(11, 22, 33).toRotationMatrix());
    EXPECT_THAT(emitted.names, ElementsAre("matrix", "quaternion", "roll", "pitch", "yaw", "viewVector"));
    EXPECT_NEAR(data.pitch(), 11, 1e-3);
    EXPECT_NEAR(data.yaw(), 22, 1e-3);
    EXPECT_NEAR(data.roll(), 33, 1e-3);
}

TEST(OrientationData, zeroIsNeverFuzzilyEqualToAnything)
{
    OrientationData data;
    const OrientationSignals emitted(data);
    data.setRoll(1e-30);
    EXPECT_THAT(emitted.names, ElementsAre("roll"));
    EXPECT_EQ(data.roll(), 1e-30);
}

TEST(OrientationData, anglesSetByHandTouchNothingElse)
{
    OrientationData data;
    const OrientationSignals emitted(data);
    data.setRoll(1);
    data.setPitch(2);
    data.setYaw(3);
    data.setYaw(3.0 + 1e-13);
    data.setViewVector(QVector3D(1, 0, 0));
    EXPECT_THAT(emitted.names, ElementsAre("roll", "pitch", "yaw", "viewVector"));
    EXPECT_EQ(data.quaternion(), QQuaternion());
    EXPECT_TRUE(data.matrix().isIdentity());
}

TEST(OrientationData, aRotationByTheSameAngleAboutAnotherAxisIsAnotherOne)
{
    const float aboutX[]{1, 0, 0, 0, 0, -1, 0, 1, 0}, aboutZ[]{0, -1, 0, 1, 0, 0, 0, 0, 1};
    OrientationData data;
    data.setMatrix(QMatrix3x3(aboutX));
    const float scalar = data.quaternion().scalar();
    const OrientationSignals emitted(data);
    data.setMatrix(QMatrix3x3(aboutZ));
    EXPECT_EQ(data.quaternion().scalar(), scalar);
    EXPECT_THAT(emitted.names, ElementsAre("matrix", "quaternion", "roll", "pitch", "viewVector"));
    EXPECT_NEAR(data.roll(), 90, 1e-3);
    EXPECT_NEAR(data.pitch(), 0, 1e-3);
}

TEST(OrientationData, identityAfterAnotherRotationLooksAlongZ)
{
    OrientationData data;
    data.setMatrix(aboutY(90));
    const OrientationSignals emitted(data);
    data.setMatrix(QMatrix3x3());
    EXPECT_THAT(emitted.names, ElementsAre("matrix", "quaternion", "yaw", "viewVector"));
    EXPECT_EQ(data.viewVector(), QVector3D(0, 0, 1));
    EXPECT_EQ(data.yaw(), 0);
}

// With the trace 7 the quaternion's scalar is sqrt(7 + 1) / 2, and the view is as long as its square.
TEST(OrientationData, whatIsNoRotationIsTakenAllTheSame)
{
    OrientationData data;
    const OrientationSignals emitted(data);
    data.setMatrix(diagonal(5, 1, 1));
    EXPECT_THAT(emitted.names, ElementsAre("matrix", "quaternion", "viewVector"));
    EXPECT_EQ(data.matrix()(0, 0), 5.0F);
    EXPECT_NEAR(data.quaternion().scalar(), 1.41421, 1e-5);
    EXPECT_EQ(data.quaternion().vector(), QVector3D());
    EXPECT_NEAR(data.viewVector().z(), 2, 1e-5);
    EXPECT_EQ(data.viewVector().x(), 0);
}

TEST(OrientationData, sameQuaternionFromAnotherMatrixComputesNothing)
{
    OrientationData data;
    data.setMatrix(diagonal(5, 1, 1));
    data.setRoll(7);
    data.setViewVector(QVector3D(1, 2, 3));
    const OrientationSignals emitted(data);
    data.setMatrix(diagonal(1, 5, 1));
    EXPECT_THAT(emitted.names, ElementsAre("matrix"));
    EXPECT_EQ(data.roll(), 7);
    EXPECT_EQ(data.viewVector(), QVector3D(1, 2, 3));
}

TEST(OrientationData, aNotANumberAlwaysCountsAsAChange)
{
    OrientationData data;
    QMatrix3x3 broken;
    broken(1, 1) = std::nanf("");
    data.setMatrix(broken);
    const OrientationSignals emitted(data);
    data.setMatrix(broken);
    ASSERT_FALSE(emitted.names.empty());
    EXPECT_EQ(emitted.names.front(), "matrix");
}

TEST(OrientationData, theLastBitOfAnyElementOfTheMatrixCounts)
{
    for (int i = 0; i < 9; ++i) {
        float rows[]{5, 1, 2, 3, 4, 6, 7, 8, 9};
        OrientationData data;
        data.setMatrix(QMatrix3x3(rows));
        const OrientationSignals emitted(data);
        rows[i] = std::nextafterf(rows[i], 10);
        data.setMatrix(QMatrix3x3(rows));
        ASSERT_FALSE(emitted.names.empty()) << i;
        EXPECT_EQ(emitted.names.front(), "matrix");
        EXPECT_EQ(data.matrix()(i / 3, i % 3), rows[i]);
    }
}

TEST(OrientationData, aRotationThatIsOnlyFuzzilyTheSameIsAnotherOne)
{
    const QQuaternion before = QQuaternion::fromRotationMatrix(aboutY(30));
    const QQuaternion after = QQuaternion::fromRotationMatrix(aboutY(30.0001));
    ASSERT_TRUE(qFuzzyCompare(before, after));
    ASSERT_FALSE(exactly::equal(before, after));
    OrientationData data;
    data.setMatrix(aboutY(30));
    const OrientationSignals emitted(data);
    data.setMatrix(aboutY(30.0001));
    EXPECT_THAT(emitted.names, ElementsAre("matrix", "quaternion", "yaw", "viewVector"));
    EXPECT_TRUE(exactly::equal(data.quaternion(), after));
}

TEST(OrientationData, theLastBitOfTheViewCounts)
{
    for (int axis = 0; axis < 3; ++axis) {
        OrientationData data;
        QVector3D view(1, 1, 1);
        data.setViewVector(view);
        const OrientationSignals emitted(data);
        view[axis] = std::nextafterf(1, 2);
        data.setViewVector(view);
        data.setViewVector(view);
        EXPECT_THAT(emitted.names, ElementsAre("viewVector")) << axis;
        EXPECT_TRUE(exactly::equal(data.viewVector(), view)) << axis;
    }
}

TEST(OrientationData, signalsCarryWhatIsStored)
{
    OrientationData data;
    int told = 0;
    QObject::connect(&data, &OrientationData::matrixChanged, [&](const QMatrix3x3 &matrix) {
        ++told;
        EXPECT_TRUE(exactly::equal(matrix, aboutY(90)));
        EXPECT_TRUE(exactly::equal(matrix, data.matrix()));
    });
    QObject::connect(&data, &OrientationData::quaternionChanged, [&](const QQuaternion &quaternion) {
        ++told;
        EXPECT_NEAR(quaternion.y(), std::sqrt(0.5), 1e-6);
        EXPECT_TRUE(exactly::equal(quaternion, data.quaternion()));
    });
    QObject::connect(&data, &OrientationData::viewVectorChanged, [&](const QVector3D &view) {
        ++told;
        EXPECT_NEAR(view.x(), 1, 1e-6);
        EXPECT_TRUE(exactly::equal(view, data.viewVector()));
    });
    data.setMatrix(aboutY(90));
    EXPECT_EQ(told, 3);
    const QSignalSpy roll(&data, &OrientationData::rollChanged);
    const QSignalSpy pitch(&data, &OrientationData::pitchChanged);
    const QSignalSpy yaw(&data, &OrientationData::yawChanged);
    data.setRoll(1.5);
    data.setPitch(2.5);
    data.setYaw(3.5);
    ASSERT_EQ(roll.count(), 1);
    EXPECT_EQ(roll[0][0].toDouble(), 1.5);
    ASSERT_EQ(pitch.count(), 1);
    EXPECT_EQ(pitch[0][0].toDouble(), 2.5);
    ASSERT_EQ(yaw.count(), 1);
    EXPECT_EQ(yaw[0][0].toDouble(), 3.5);
}

TEST(OrientationData, viewCenterIsThePlainSum)
{
    OrientationData data;
    data.setMatrix(aboutY(90));
    EXPECT_EQ(data.viewCenter(QVector3D(1, 2, 3), QVector3D(0, 0, 1)), QVector3D(1, 2, 4));
}
