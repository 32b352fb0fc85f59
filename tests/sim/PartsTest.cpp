#include "core/BufferPool.h"
#include "core/FaultInjector.h"
#include "core/Log.h"
#include "core/Noise.h"
#include "device/DeviceLog.h"
#include "device/Exposure.h"
#include "device/PcdWriter.h"
#include "device/SensorNoise.h"
#include "device/qv/Library.h"
#include "sim/Stderr.h"

#include <cmath>
#include <cstring>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sim;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

std::string contentOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace

TEST(Noise, isAFunctionOfSeedAndIndex)
{
    const Noise a(1);
    const Noise again(1);
    const Noise b(2);
    EXPECT_EQ(a.gaussian(17), again.gaussian(17));
    EXPECT_NE(a.gaussian(17), a.gaussian(18));
    EXPECT_NE(a.gaussian(17), b.gaussian(17));
}

TEST(Noise, gaussianHasMeanZeroAndDeviationOne)
{
    const Noise noise(3);
    constexpr int count = 100000;
    double sum = 0;
    double squares = 0;
    for (int i = 0; i < count; ++i) {
        const double value = noise.gaussian(static_cast<std::uint64_t>(i));
        ASSERT_TRUE(std::isfinite(value));
        sum += value;
        squares += value * value;
    }
    EXPECT_NEAR(sum / count, 0, 0.02);
    EXPECT_NEAR(squares / count, 1, 0.03);
}

TEST(BufferPool, givesABufferAgainOnlyWhenNobodyHoldsIt)
{
    BufferPool pool;
    auto first = pool.take(100);
    const unsigned char *address = first.get();
    const auto second = pool.take(100);
    EXPECT_NE(second.get(), address);
    first.reset();
    EXPECT_EQ(pool.take(100).get(), address);
}

TEST(BufferPool, buffersOutliveThePool)
{
    auto pool = std::make_unique<BufferPool>();
    const auto buffer = pool->take(1000);
    pool.reset();
    std::memset(buffer.get(), 1, 1000);
    EXPECT_EQ(buffer.get()[999], 1);
}

TEST(FaultInjector, hitsEveryNthRecord)
{
    StreamFaults faults;
    faults.nullEvery = 3;
    faults.dropEvery = 6;
    FaultInjector injector;
    std::vector<Defect> defects;
    for (int i = 0; i < 6; ++i)
        defects.push_back(injector.next(faults, 0));
    EXPECT_THAT(defects,
        ElementsAre(Defect::None, Defect::None, Defect::NullData, Defect::None, Defect::None, Defect::Drop));
}

TEST(FaultInjector, stallsForAsLongAsTold)
{
    StreamFaults faults;
    faults.stallAfter = 2;
    FaultInjector injector;
    EXPECT_EQ(injector.next(faults, 1.9), Defect::None);
    EXPECT_EQ(injector.next(faults, 2), Defect::Drop);
    EXPECT_EQ(injector.next(faults, 1e6), Defect::Drop) << "for good";
    faults.stallFor = 3;
    EXPECT_EQ(injector.next(faults, 4.9), Defect::Drop);
    EXPECT_EQ(injector.next(faults, 5), Defect::None);
}

TEST(FaultInjector, delaysEveryNthRecord)
{
    StreamFaults faults;
    faults.lateEvery = 2;
    faults.lateMs = 40;
    FaultInjector injector;
    injector.next(faults, 0);
    EXPECT_EQ(injector.delay(faults), 0);
    injector.next(faults, 0);
    EXPECT_DOUBLE_EQ(injector.delay(faults), 0.04);
}

TEST(DeviceLog, comesInPiecesAndThenNothing)
{
    DeviceLog log;
    log.add("a line that takes more than one piece to read, as most of them do");
    std::string text;
    int pieces = 0;
    for (std::string piece = log.take(59); !piece.empty(); piece = log.take(59)) {
        EXPECT_LE(piece.size(), 59U);
        EXPECT_GE(piece.size(), 2U);
        text += piece;
        ++pieces;
    }
    EXPECT_EQ(pieces, 2);
    EXPECT_NE(
        text.find("a line that takes more than one piece to read, as most of them do"), std::string::npos);
    EXPECT_EQ(log.take(59), "");
}

TEST(DeviceLog, keepsLinesWholeWhereTheyFit)
{
    constexpr std::size_t stamp = 13;
    DeviceLog log;
    log.add("one");
    log.add(std::string(59 - 2 * stamp - 4, 'b'));
    log.add("three");
    const std::string first = log.take(59);
    EXPECT_EQ(first.size(), 59U) << "two lines fill the piece, the second's end left out";
    EXPECT_EQ(first.substr(stamp, 4), "one\n");
    EXPECT_EQ(first.back(), 'b');
    EXPECT_EQ(log.take(59).substr(stamp), "three");
    EXPECT_EQ(log.take(59), "");
}

TEST(DeviceLog, neverLeavesASingleCharacter)
{
    for (std::size_t length = 1; length < 200; ++length) {
        DeviceLog log;
        log.add(std::string(length, 'x'));
        std::size_t taken = 0;
        for (std::string piece = log.take(59); !piece.empty(); piece = log.take(59)) {
            ASSERT_GE(piece.size(), 2U) << length;
            taken += piece.size();
        }
        ASSERT_EQ(taken, length + 13);
    }
}

TEST(DeviceLog, forgetsItsOldestLinesWhenFull)
{
    DeviceLog log;
    for (int i = 0; i < 1000; ++i)
        log.add("line " + std::to_string(i));
    const std::string text = log.take(100000);
    EXPECT_LE(text.size(), 4096U);
    EXPECT_EQ(text[0], '[') << "begins with a whole line";
    EXPECT_NE(text.find("line 998\n"), std::string::npos);
    EXPECT_EQ(text.substr(text.size() - 8), "line 999");
    EXPECT_EQ(text.find("line 1\n"), std::string::npos);
}

TEST(Exposure, automaticBringsAnySceneToItsAim)
{
    const Exposure exposure;
    EXPECT_NEAR(exposure.effect(55).factor, 2, 1e-9);
    EXPECT_NEAR(exposure.effect(220).factor, 0.5, 1e-9);
    EXPECT_LE(exposure.effect(0).factor, 16);
}

TEST(Exposure, manualFollowsGainAndTime)
{
    Exposure exposure;
    EXPECT_TRUE(exposure.set(false, 20, 5));
    EXPECT_DOUBLE_EQ(exposure.effect(77).factor, 1);
    const double noise = exposure.effect(77).noise;
    EXPECT_TRUE(exposure.set(false, 5, 5));
    EXPECT_DOUBLE_EQ(exposure.effect(77).factor, 0.25);
    EXPECT_LT(exposure.effect(77).noise, noise);
}

TEST(Exposure, refusesWhatNoSensorCan)
{
    Exposure exposure;
    EXPECT_FALSE(exposure.set(false, 0, 5));
    EXPECT_FALSE(exposure.set(false, 5, 0));
    EXPECT_FALSE(exposure.set(false, 5, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_TRUE(exposure.automatic()) << "what is refused changes nothing";
}

TEST(SensorNoise, hasTheDeviationAskedForAndComesFromTheMoment)
{
    SensorNoise noise(1);
    const cv::Mat clean(200, 300, CV_8UC1, cv::Scalar(100));
    cv::Mat first = clean.clone();
    cv::Mat again = clean.clone();
    cv::Mat other = clean.clone();
    noise.add(first, 3, 5);
    noise.add(again, 3, 5);
    noise.add(other, 3, 6);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(first, mean, deviation);
    EXPECT_NEAR(mean[0], 100, 0.2);
    EXPECT_NEAR(deviation[0], 3, 0.3);
    EXPECT_EQ(cv::norm(first, again, cv::NORM_INF), 0);
    EXPECT_GT(cv::norm(first, other, cv::NORM_INF), 0);
}

TEST(Log, isQuietAtFirstAndThenFollowsTheLevel)
{
    Stderr output;
    log(LogLevel::Critical, "unheard");
    EXPECT_THAT(output.lines(), IsEmpty());
    qv::setLogLevel(qv::LogLevel{3});
    log(LogLevel::Info, "unheard");
    log(LogLevel::Warning, "heard");
    qv::setLogLevel(qv::LogLevel{6});
    log(LogLevel::Critical, "unheard");
    EXPECT_THAT(output.lines(), ElementsAre("qvsdk warning: heard"));
}

TEST(Library, takesAnyLogLevel)
{
    qv::setLogLevel(qv::LogLevel{-7});
    EXPECT_EQ(logThreshold(), LogLevel::Trace);
    qv::setLogLevel(qv::LogLevel{1000});
    EXPECT_EQ(logThreshold(), LogLevel::Off);
}

TEST(PcdWriter, binaryHoldsTheFloats)
{
    auto cloud = std::make_shared<qv::PointCloud>();
    cloud->points = {{1, 2, 3}, {-4.5F, 0, 1e-3F}};
    ASSERT_TRUE(qv::savePointCloudToPcd("cloud.pcd", cloud, 8, true));
    const std::string content = contentOf("cloud.pcd");
    const std::size_t data = content.find("DATA binary\n") + 12;
    ASSERT_EQ(content.size(), data + 24);
    EXPECT_EQ(std::memcmp(content.data() + data, cloud->points.data(), 24), 0);
    EXPECT_NE(content.find("POINTS 2\n"), std::string::npos);
}

TEST(PcdWriter, textHasTheDigitsAskedFor)
{
    auto cloud = std::make_shared<qv::PointCloud>();
    cloud->points = {{1.23456789F, 2, 3}};
    ASSERT_TRUE(qv::savePointCloudToPcd("text.pcd", cloud, 3, false));
    EXPECT_NE(contentOf("text.pcd").find("DATA ascii\n1.23 2 3\n"), std::string::npos);
}

TEST(PcdWriter, refusesWhatCanNotBeWritten)
{
    EXPECT_FALSE(qv::savePointCloudToPcd("x.pcd", nullptr, 8, true));
    EXPECT_FALSE(
        qv::savePointCloudToPcd("no/such/folder/x.pcd", std::make_shared<qv::PointCloud>(), 8, true));
}
