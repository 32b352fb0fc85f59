#include "spatial/PositionData.h"

using ::testing::ElementsAre;

namespace {

/// Records the names of the signals in the order in which they leave.
class Signals {
public:
    explicit Signals(PositionData &data)
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
    const Signals emitted(data);
    data.set(0, 0, 1.5);
    EXPECT_THAT(emitted.names, ElementsAre("vector", "x", "y", "z"));
    EXPECT_EQ(data.z(), 1.5);
}

TEST(PositionData, sameVectorEmitsNothing)
{
    PositionData data;
    data.set(1, 2, 3);
    const Signals emitted(data);
    data.set(1, 2, 3);
    data.setVector(QVector3D(1, 2, 3));
    EXPECT_TRUE(emitted.names.empty());
}

TEST(PositionData, narrowsToFloatBeforeItCompares)
{
    PositionData data;
    data.set(0.1, 0, 0);
    const Signals emitted(data);
    data.set(0.1 + 1e-12, 0, 0);
    EXPECT_TRUE(emitted.names.empty());
    EXPECT_EQ(data.x(), double(0.1F));
}

TEST(PositionData, setXDropsWhatIsFuzzilyEqualAndSetTakesIt)
{
    PositionData data;
    data.set(0.5000001, 0, 0);
    ASSERT_NE(data.x(), 0.5);
    const Signals emitted(data);
    data.setX(0.5);
    EXPECT_TRUE(emitted.names.empty());
    data.set(0.5, 0, 0);
    EXPECT_THAT(emitted.names, ElementsAre("vector", "x", "y", "z"));
    EXPECT_EQ(data.x(), 0.5);
}

TEST(PositionData, eachComponentHasItsSetter)
{
    PositionData data;
    const Signals emitted(data);
    data.setX(1);
    data.setY(2);
    data.setZ(3);
    EXPECT_EQ(data.vector(), QVector3D(1, 2, 3));
    EXPECT_EQ(emitted.names.size(), 12U);
}
