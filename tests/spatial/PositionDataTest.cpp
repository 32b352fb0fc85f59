#include "spatial/PositionData.h"

#include "spatial/Exactly.h"

using ::testing::ElementsAre;

namespace {

/// Records the names of the signals in the order in which they leave.
class PositionSignals {
public:
    explicit PositionSignals(PositionData &data)
    {
        QObject::connect(&data, &PositionData::vectorChanged, [this] { names.emplace_back("vector"); });
        QObject::connect(&data, &PositionData::xChanged, [this] { names.emplace_back("x"); });
        QObject::connect(&data, &PositionData::yChanged, [this] { names.emplace_back("y"); });
        QObject::connect(&data, &PositionData::zChanged, [this] { names.emplace_back("z"); });
    }
    std::vector<std::string> names;
};

} // namespace

TEST(PositionData, startsAtTheOrigin)
{
    EXPECT_EQ(PositionData().vector(), QVector3D());
}

TEST(PositionData, anyChangeEmitsAllFourInOrder)
{
    PositionData data;
    const PositionSignals emitted(data);
    data.set(0, 0, 1.5);
    EXPECT_THAT(emitted.names, ElementsAre("vector", "x", "y", "z"));
    EXPECT_EQ(data.z(), 1.5);
}

TEST(PositionData, sameVectorEmitsNothing)
{
    PositionData data;
    data.set(1, 2, 3);
    const PositionSignals emitted(data);
    data.set(1, 2, 3);
    data.setVector(QVector3D(1, 2, 3));
    EXPECT_TRUE(emitted.names.empty());
}

TEST(PositionData, narrowsToFloatBeforeItCompares)
{
    PositionData data;
    data.set(0.1, 0, 0);
    const PositionSignals emitted(data);
    data.set(0.1 + 1e-12, 0, 0);
    EXPECT_TRUE(emitted.names.empty());
    EXPECT_EQ(data.x(), double(0.1F));
}

TEST(PositionData, setXDropsWhatIsFuzzilyEqualAndSetTakesIt)
{
    PositionData data;
    data.set(0.5000001, 0, 0);
    ASSERT_NE(data.x(), 0.5);
    const PositionSignals emitted(data);
    data.setX(0.5);
    EXPECT_TRUE(emitted.names.empty());
    data.set(0.5, 0, 0);
    EXPECT_THAT(emitted.names, ElementsAre("vector", "x", "y", "z"));
    EXPECT_EQ(data.x(), 0.5);
}

TEST(PositionData, eachComponentHasItsSetter)
{
    PositionData data;
    const PositionSignals emitted(data);
    data.setX(1);
    EXPECT_EQ(data.vector(), QVector3D(1, 0, 0));
    data.setY(2);
    EXPECT_EQ(data.vector(), QVector3D(1, 2, 0));
    data.setZ(3);
    EXPECT_EQ(data.vector(), QVector3D(1, 2, 3));
    EXPECT_EQ(data.x(), 1);
    EXPECT_EQ(data.y(), 2);
    EXPECT_EQ(data.z(), 3);
    EXPECT_THAT(emitted.names,
        ElementsAre("vector", "x", "y", "z", "vector", "x", "y", "z", "vector", "x", "y", "z"));
}

TEST(PositionData, eachSetterOfAComponentDropsWhatIsFuzzilyEqual)
{
    PositionData data;
    data.set(0.5000001, 0.5000001, 0.5000001);
    const QVector3D before = data.vector();
    ASSERT_NE(data.y(), 0.5);
    const PositionSignals emitted(data);
    data.setX(0.5);
    data.setY(0.5);
    data.setZ(0.5);
    EXPECT_TRUE(emitted.names.empty());
    EXPECT_TRUE(exactly::equal(data.vector(), before));
    data.setZ(0.50001); // further off than a part in a hundred thousand
    EXPECT_THAT(emitted.names, ElementsAre("vector", "x", "y", "z"));
}

TEST(PositionData, zeroIsNeverFuzzilyEqualToAnything)
{
    PositionData data;
    const PositionSignals emitted(data);
    data.setY(1e-30);
    EXPECT_THAT(emitted.names, ElementsAre("vector", "x", "y", "z"));
}

TEST(PositionData, signalsCarryWhatIsStored)
{
    PositionData data;
    const QSignalSpy vector(&data, &PositionData::vectorChanged);
    const QSignalSpy x(&data, &PositionData::xChanged);
    const QSignalSpy y(&data, &PositionData::yChanged);
    const QSignalSpy z(&data, &PositionData::zChanged);
    QVector3D stored;
    QObject::connect(&data, &PositionData::vectorChanged, [&] { stored = data.vector(); });
    data.set(1, 0.1, 3);
    EXPECT_EQ(stored, QVector3D(1, 0.1F, 3));
    ASSERT_EQ(x.count(), 1);
    EXPECT_EQ(x.first().first().toDouble(), 1);
    ASSERT_EQ(z.count(), 1);
    EXPECT_EQ(z.first().first().toDouble(), 3);
    ASSERT_EQ(vector.count(), 1);
    EXPECT_EQ(vector.first().first().value<QVector3D>(), QVector3D(1, 0.1F, 3));
    ASSERT_EQ(y.count(), 1);
    EXPECT_EQ(y.first().first().toDouble(), double(0.1F));
}
