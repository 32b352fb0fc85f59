#include "streams/ImuData.h"
#include "streams/RgbData.h"
#include "streams/RgbdData.h"
#include "streams/SgbmData.h"
#include "streams/StereoData.h"
#include "streams/TofData.h"
#include "streams/TofIrData.h"
#include "support/FakeColorCamera.h"
#include "support/FakeDevice.h"
#include "support/FakeFisheyeCameras.h"
#include "support/FakeImuSensor.h"
#include "support/FakeLibrary.h"
#include "support/FakeOwner.h"
#include "support/FakeTofCamera.h"
#include "support/FakeVsc.h"
#include "support/LogCatcher.h"
#include "support/Pictures.h"

#include <QCoreApplication>
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <thread>

// Records of any content from two threads at once, while the interface thread changes settings and looks at
// the pictures. Nothing is expected but that all of it is survived, and that no foreign memory is touched:
// run under the sanitizers.

namespace {

constexpr int recordsPerThread = 500000;
constexpr int threads = 2;

class Random {
public:
    explicit Random(unsigned int seed)
        : m_generator(seed)
    {
    }

    int upTo(int most) { return int(m_generator() % (unsigned(most) + 1)); }
    bool oneIn(int chances) { return upTo(chances - 1) == 0; }

    /// Mostly small; sometimes nothing, sometimes out of all reason.
    std::size_t side()
    {
        if (oneIn(200))
            return std::size_t(m_generator()) << upTo(40);
        return std::size_t(upTo(9));
    }

    /// A block of `size` bytes of anything; null now and then. Each block is of exactly its size, so that the
    /// address sanitizer sees every read past it.
    pictures::Buffer block(std::size_t size)
    {
        if (oneIn(50))
            return nullptr;
        std::vector<unsigned char> bytes(size);
        for (unsigned char &byte : bytes)
            byte = static_cast<unsigned char>(m_generator());
        return pictures::bufferOf(bytes);
    }

    /// Width, height, data and size: right, short, long, or of nothing.
    template <class Record>
    Record picture(std::size_t bytesPerPixel)
    {
        Record record;
        record.width = side();
        record.height = side();
        const bool small = record.width < 100 && record.height < 100;
        std::size_t size = small ? record.width * record.height * bytesPerPixel : std::size_t(upTo(100));
        if (oneIn(10))
            size = std::size_t(upTo(300));
        record.data = block(size);
        record.dataSize = static_cast<unsigned int>(size);
        return record;
    }

private:
    std::mt19937 m_generator;
};

/// Runs `deliver(random)` on the library's threads, and `meanwhile(random)` here.
template <class Deliver, class Meanwhile>
void stress(Deliver deliver, Meanwhile meanwhile)
{
    std::atomic<int> running{threads};
    std::vector<std::thread> library;
    for (int thread = 0; thread < threads; ++thread) {
        library.emplace_back([&, thread] {
            Random random(static_cast<unsigned int>(thread + 1));
            for (int i = 0; i < recordsPerThread; ++i)
                deliver(random);
            --running;
        });
    }
    Random random(77);
    while (running > 0) {
        meanwhile(random);
        QCoreApplication::processEvents();
    }
    for (std::thread &thread : library)
        thread.join();
}

class StreamsStress : public testing::Test {
protected:
    LogCatcher log; // unknown frame types are told, a hundred thousand times
};

} // namespace

TEST_F(StreamsStress, imu)
{
    const auto sensor = std::make_shared<FakeImuSensor>();
    ImuData imu(sensor, nullptr);
    stress(
        [&](Random &random) {
            qv::Imu record;
            record.accel = {double(random.upTo(3)), std::nan(""), 1e300};
            record.gyro = {double(random.upTo(3)), 0, -1e300};
            sensor->deliver(record);
        },
        [&](Random &random) {
            imu.setMode(random.upTo(9));
            imu.setOffset(random.upTo(9));
            imu.accel()->vector();
        });
    sensor->deliver({});
    EXPECT_EQ(imu.accel()->vector(), QVector3D(0, 0, 0));
}

TEST_F(StreamsStress, stereo)
{
    const auto cameras = std::make_shared<FakeFisheyeCamerasEx>();
    StereoData stereo(cameras, nullptr);
    stress(
        [&](Random &random) {
            if (random.oneIn(3)) {
                FakeFisheyeCamerasEx::KeyPoints4 points;
                for (auto &descriptor : points.descriptors) {
                    descriptor.size = static_cast<unsigned int>(random.upTo(5));
                    if (!random.oneIn(5))
                        descriptor.data = std::shared_ptr<float>(
                            new float[10]{1, std::nanf(""), 1e30F, -1e30F}, std::default_delete<float[]>());
                }
                cameras->keyPoints4.deliver(points);
                return;
            }
            qv::FisheyeImages record;
            record.images.resize(std::size_t(random.upTo(6)));
            for (auto &image : record.images) {
                image.width = random.side();
                image.height = random.side();
                // These records have no size of their own: what they say is what they have.
                const bool small = image.width < 100 && image.height < 100;
                image.data = small ? random.block(image.width * image.height) : nullptr;
            }
            try {
                cameras->deliver(record);
            } catch (const std::runtime_error &) {
                EXPECT_TRUE(record.images.empty());
            }
        },
        [&](Random &random) {
            stereo.setMode(random.upTo(5));
            stereo.setGain(random.upTo(255));
            auto *camera = qobject_cast<FisheyeData *>(stereo.image(StereoData::Image(random.upTo(3))));
            camera->toImage();
            camera->toMat();
        });
    cameras->deliver(pictures::fisheyes({pictures::fisheye(4, 3, 9)}));
    EXPECT_EQ(stereo.width(), 4);
}

TEST_F(StreamsStress, rgb)
{
    const auto camera = std::make_shared<FakeColorCamera>();
    RgbData rgb(camera, nullptr);
    rgb.control(true, 0);
    rgb.control(true, 1);
    stress(
        [&](Random &random) {
            auto record = random.picture<qv::ColorImage>(2);
            record.codec = random.upTo(4) - 1;
            if (random.oneIn(2))
                camera->deliver(record);
            else
                camera->callbacks2.deliver(record);
        },
        [&](Random &random) {
            rgb.setFramerate(random.upTo(60));
            rgb.toImage();
            rgb.toMat();
            rgb.setViewSize(random.upTo(9), random.upTo(9));
        });
    qv::ColorImage last;
    last.width = 7;
    camera->deliver(last);
    EXPECT_EQ(rgb.sourceWidth(), 7);
}

TEST_F(StreamsStress, rgbd)
{
    const auto camera = std::make_shared<FakeTofCamera>();
    RgbdData rgbd(camera, nullptr);
    rgbd.control(true);
    stress(
        [&](Random &random) {
            qv::DepthColorImage record;
            record.width = random.side();
            record.height = random.side();
            const bool small = record.width < 100 && record.height < 100;
            record.data = small ? random.block(record.width * record.height * 7) : nullptr;
            camera->colorDepth.deliver(record);
        },
        [&](Random &random) {
            rgbd.setEnable(random.upTo(4));
            rgbd.image()->frame();
        });
    EXPECT_EQ(rgbd.image()->type(), int(ImageData::Color));
}

TEST_F(StreamsStress, tofAndInfrared)
{
    fake::library().reset();
    const auto camera = std::make_shared<FakeTofCamera>();
    camera->manufacturerResult = 1;
    TofData tof(camera, nullptr);
    TofIrData infrared(camera, nullptr);
    tof.control(true);
    infrared.control(true);
    tof.setPixelShow(true);
    tof.setEnableCenterAvgPx(true);
    stress(
        [&](Random &random) {
            auto record = random.picture<qv::DepthImage>(random.oneIn(2) ? 2 : 4);
            // An unknown type writes a line each time: seldom.
            record.type = random.oneIn(1000) ? 3 : random.upTo(2);
            camera->deliver(record);
        },
        [&](Random &random) {
            tof.setX(random.upTo(12) - 1);
            tof.setY(random.upTo(12) - 1);
            tof.setObjectX(random.upTo(12) - 1);
            tof.setObjectY(random.upTo(12) - 1);
            tof.setCenterAvgX(random.upTo(12) - 2);
            tof.setCenterAvgY(random.upTo(12) - 2);
            tof.setMinDistance(random.upTo(3));
            tof.setMaxDistance(random.upTo(3));
            if (random.oneIn(20))
                tof.savePcd("cloud.pcd");
            tof.toImage();
            infrared.toImage();
        });
    EXPECT_NE(tof.image()->width(), 0);
    EXPECT_NE(infrared.image()->width(), 0);
}

TEST_F(StreamsStress, sgbm)
{
    const auto vsc = std::make_shared<FakeVsc>();
    SgbmData sgbm(vsc.get(), nullptr);
    sgbm.control(true);
    sgbm.setEnableCenterAvgPx(true);
    // A range that a picture of any width reaches, so that its colours needn't be worked out for each frame.
    sgbm.setMinDistance(5);
    sgbm.setMaxDistance(30);
    stress(
        [&](Random &random) {
            auto record = random.picture<qv::SgbmImage>(random.oneIn(4) ? 1 : 2);
            record.type = random.upTo(2);
            vsc->deliver(record);
        },
        [&](Random &random) {
            sgbm.setX(random.upTo(12) - 2);
            sgbm.setY(random.upTo(12) - 2);
            sgbm.setObjectX(random.upTo(12) - 2);
            sgbm.setCenterAvgX(random.upTo(12) - 2);
            sgbm.setHoleSize(random.upTo(6));
            sgbm.setHoleMin(random.upTo(30000));
            sgbm.setDepth(!random.oneIn(3));
            sgbm.setEnableFillHoles(!random.oneIn(3));
            // Another look makes another table: seldom.
            if (random.oneIn(20000))
                sgbm.setColorIndex(random.upTo(30) - 1);
            if (random.oneIn(1000))
                sgbm.save("sbgm.png");
        });
    EXPECT_TRUE(sgbm.isRunning());
}
