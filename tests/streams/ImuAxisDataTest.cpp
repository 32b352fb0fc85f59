#include "streams/ImuAxisData.h"

#include "support/AllocationCounter.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

/// Writes down which signals leave, in order.
class Signals {
public:
    explicit Signals(const ImuAxisData &axis)
    {
        QObject::connect(&axis, &ImuAxisData::xChanged, [this](double x) { note("x", x); });
        QObject::connect(&axis, &ImuAxisData::yChanged, [this](double y) { note("y", y); });
        QObject::connect(&axis, &ImuAxisData::zChanged, [this](double z) { note("z", z); });
        QObject::connect(&axis, &ImuAxisData::vectorChanged, [this](QVector3D vector) {
            names << "vector";
            vectors << vector;
        });
    }

    QStringList names;
    QList<double> values;
    QList<QVector3D> vectors;

private:
    void note(const char *name, double value)
    {
        names << name;
        values << value;
    }
};

} // namespace

TEST(ImuAxisData, beginsAtZero)
{
    const ImuAxisData axis;
    EXPECT_EQ(axis.vector(), QVector3D(0, 0, 0));
}

TEST(ImuAxisData, setStoresAllAndSignalsTheVectorFirst)
{
    ImuAxisData axis;
    const Signals heard(axis);
    axis.set(1.5, 2.5, -3.5);
    EXPECT_EQ(heard.names, (QStringList{"vector", "x", "y", "z"}));
    EXPECT_EQ(heard.values, (QList<double>{1.5, 2.5, -3.5}));
    EXPECT_EQ(heard.vectors, QList<QVector3D>{QVector3D(1.5F, 2.5F, -3.5F)});
    EXPECT_EQ(axis.vector(), QVector3D(1.5F, 2.5F, -3.5F));
}

TEST(ImuAxisData, oneDifferentValueSignalsAllFour)
{
    for (const QVector3D &changed : {QVector3D(4, 2, 3), QVector3D(1, 4, 3), QVector3D(1, 2, 4)}) {
        ImuAxisData axis;
        axis.set(1, 2, 3);
        const Signals heard(axis);
        axis.set(double(changed.x()), double(changed.y()), double(changed.z()));
        EXPECT_EQ(heard.names, (QStringList{"vector", "x", "y", "z"}));
        EXPECT_EQ(heard.vectors, QList<QVector3D>{changed});
    }
}

TEST(ImuAxisData, theSmallestStepOfAFloatIsAChange)
{
    ImuAxisData axis;
    axis.set(1, 2, 3);
    const Signals heard(axis);
    axis.set(double(std::nextafter(1.0F, 2.0F)), 2, 3);
    axis.setVector({std::nextafter(1.0F, 2.0F), std::nextafter(2.0F, 3.0F), 3});
    EXPECT_EQ(heard.names, (QStringList{"vector", "x", "y", "z", "vector", "x", "y", "z"}));
}

TEST(ImuAxisData, whatAFloatCannotTellApartIsNoChange)
{
    ImuAxisData axis;
    axis.set(9.81, 0.1, 1e-3);
    const Signals heard(axis);
    axis.set(9.81 + 1e-9, 0.1 - 1e-10, 1e-3);
    EXPECT_TRUE(heard.names.isEmpty());
    axis.setVector(QVector3D(9.81F, 0.1F, 1e-3F));
    EXPECT_TRUE(heard.names.isEmpty());
}

TEST(ImuAxisData, valuesAreReadBackInSinglePrecision)
{
    ImuAxisData axis;
    axis.set(0.1, 0.2, 0.3);
    EXPECT_EQ(axis.x(), double(0.1F));
    EXPECT_NE(axis.x(), 0.1);
}

TEST(ImuAxisData, oneAxisSignalsBeforeTheVectorAndAlways)
{
    ImuAxisData axis;
    const Signals heard(axis);
    for (int i = 0; i < 2; ++i)
        axis.setX(0.1);
    for (int i = 0; i < 2; ++i)
        axis.setY(2);
    for (int i = 0; i < 2; ++i)
        axis.setZ(3);
    EXPECT_EQ(heard.names,
        (QStringList{
            "x", "vector", "x", "vector", "y", "vector", "y", "vector", "z", "vector", "z", "vector"}));
    EXPECT_EQ(heard.values, (QList<double>{double(0.1F), double(0.1F), 2, 2, 3, 3}));
    const QVector3D x(0.1F, 0, 0), xy(0.1F, 2, 0), all(0.1F, 2, 3);
    EXPECT_EQ(heard.vectors, (QList<QVector3D>{x, x, xy, xy, all, all}));
    EXPECT_EQ(axis.vector(), QVector3D(0.1F, 2, 3));
}

TEST(ImuAxisData, theVectorCanBeWritten)
{
    ImuAxisData axis;
    const Signals heard(axis);
    EXPECT_TRUE(axis.setProperty("vector", QVector3D(1, 2, 3)));
    EXPECT_FALSE(axis.setProperty("x", 4.0));
    EXPECT_EQ(heard.names, (QStringList{"vector", "x", "y", "z"}));
}

TEST(ImuAxisData, whatAFloatCannotHoldBecomesInfinite)
{
    ImuAxisData axis;
    volatile double big = 1e40;
    axis.setX(big);
    EXPECT_EQ(axis.x(), std::numeric_limits<double>::infinity());
}
