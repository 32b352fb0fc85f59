#include "spatial/SlamFixture.h"

#include <cmath>

using ::testing::ElementsAre;

// What counts as a change of a pose stream, to the last bit or nearly, and what is told of it.

namespace {

qv::Pose surely(double confidence)
{
    qv::Pose pose;
    pose.translation = {1, 2, 3};
    pose.confidence = confidence;
    return pose;
}

} // namespace

TEST_F(Slam, aConfidenceThatIsFuzzilyEqualIsDropped)
{
    data->setConfidence(0.5);
    const QSignalSpy changed(data.get(), &SlamData::confidenceChanged);
    data->setConfidence(0.5 + 1e-14);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(data->confidence(), 0.5);
    data->setConfidence(0.5 + 1e-9);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.last().first().toDouble(), 0.5 + 1e-9);
    EXPECT_EQ(data->confidence(), 0.5 + 1e-9);
}

TEST_F(Slam, anyConfidenceDiffersFromNone)
{
    const QSignalSpy changed(data.get(), &SlamData::confidenceChanged);
    data->setConfidence(1e-13);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(data->confidence(), 1e-13);
}

TEST_F(Slam, soIsThatOfAPose)
{
    data->control(true);
    slam->deliver(surely(0.5));
    const QSignalSpy changed(data.get(), &SlamData::confidenceChanged);
    slam->deliver(surely(0.5 + 1e-14));
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(data->confidence(), 0.5);
    slam->deliver(surely(0.5 + 1e-9));
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(Slam, theLastBitOfAnyElementOfTheMatrixCounts)
{
    const QSignalSpy changed(data.get(), &SlamData::matrixChanged);
    for (int i = 0; i < 16; ++i) {
        QMatrix4x4 matrix;
        matrix.fill(1);
        data->setMatrix(matrix);
        const int before = changed.count();
        matrix.data()[i] = std::nextafterf(1, 2);
        data->setMatrix(matrix);
        EXPECT_EQ(changed.count(), before + 1) << i;
        EXPECT_EQ(data->matrix().constData()[i], std::nextafterf(1, 2)) << i;
        data->setMatrix(matrix);
        EXPECT_EQ(changed.count(), before + 1) << i;
    }
}

TEST_F(Slam, soDoesThatOfAPose)
{
    data->control(true);
    slam->deliver(surely(1));
    const QSignalSpy changed(data.get(), &SlamData::matrixChanged);
    const QSignalSpy position(data->position(), &PositionData::vectorChanged);
    qv::Pose moved = surely(1);
    moved.translation.x = static_cast<double>(std::nextafterf(1, 2));
    slam->deliver(moved);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(position.count(), 1);
    slam->deliver(moved);
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(Slam, signalsCarryWhatIsStored)
{
    data->control(true);
    const QSignalSpy matrix(data.get(), &SlamData::matrixChanged);
    const QSignalSpy confidence(data.get(), &SlamData::confidenceChanged);
    const QSignalSpy lost(data.get(), &SlamData::lostChanged);
    const QSignalSpy status(data.get(), &SlamData::statusChanged);
    const QSignalSpy prediction(data.get(), &SlamData::predictionChanged);
    slam->deliver(surely(0.25));
    slam->lost.deliver();
    data->setStatus(3);
    data->setPrediction(400);
    ASSERT_EQ(matrix.count(), 1);
    EXPECT_EQ(matrix[0][0].value<QMatrix4x4>(), data->matrix());
    EXPECT_EQ(matrix[0][0].value<QMatrix4x4>().column(3), QVector4D(1, 2, 3, 1));
    ASSERT_EQ(confidence.count(), 1);
    EXPECT_EQ(confidence[0][0].toDouble(), 0.25);
    ASSERT_EQ(lost.count(), 2);
    EXPECT_FALSE(lost[0][0].toBool());
    EXPECT_TRUE(lost[1][0].toBool());
    ASSERT_EQ(status.count(), 1);
    EXPECT_EQ(status[0][0].toInt(), 3);
    ASSERT_EQ(prediction.count(), 1);
    EXPECT_EQ(prediction[0][0].toInt(), 400);
}

TEST_F(Slam, resetAsksTheLibraryBeforeAnythingGoesToZero)
{
    data->control(true);
    slam->deliver(surely(1));
    qv::Pose further = surely(1);
    further.translation.x = 2;
    further.rotation = {0, 0, 1, 0, 1, 0, -1, 0, 0};
    slam->deliver(further);
    ASSERT_EQ(data->distance(), 1);
    slam->takeCalls();
    QObject::connect(data->position(), &PositionData::vectorChanged,
        [&](const QVector3D &position) { slam->log->add("position", position.x(), data->distance()); });
    const QSignalSpy matrix(data.get(), &SlamData::matrixChanged);
    const QSignalSpy orientation(data->orientation(), &OrientationData::matrixChanged);
    data->reset();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("reset", "position(0, 0)"));
    EXPECT_EQ(matrix.count() + orientation.count(), 0); // these stay till the next pose
}
