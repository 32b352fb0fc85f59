#include "streams/RgbData.h"
#include "streams/TofData.h"
#include "support/FakeColorCamera.h"
#include "support/FakeTofCamera.h"
#include "support/LogCatcher.h"
#include "support/Pictures.h"
#include "support/Wait.h"

#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <gtest/gtest.h>
#include <opencv2/videoio.hpp>
#include <thread>

// Videos are begun and ended while two threads of the library deliver frames. Each video has to be whole: no
// frame after its end, none of another size, none that is half of one frame and half of another.

namespace {

constexpr std::size_t width = 64;
constexpr std::size_t height = 48;
constexpr int videos = 25;
constexpr int leastFrames = 5;

/// Two threads that deliver until the end of the object's life.
template <class Deliver>
class Deliverers {
public:
    explicit Deliverers(Deliver deliver)
    {
        for (int thread = 0; thread < threads; ++thread) {
            m_threads.emplace_back([this, deliver, thread] {
                for (int i = 0; !m_stop; ++i) {
                    ++m_begun;
                    deliver(thread, i);
                    ++m_done;
                }
            });
        }
    }

    ~Deliverers()
    {
        m_stop = true;
        for (std::thread &thread : m_threads)
            thread.join();
    }

    Deliverers(const Deliverers &) = delete;
    Deliverers &operator=(const Deliverers &) = delete;

    int begun() const { return m_begun; }
    int done() const { return m_done; }
    /// `count` more frames have begun after now and are done.
    bool deliversMore(int count) const
    {
        const int enough = done() + threads + count;
        return waitFor([&] { return done() >= enough; });
    }

private:
    static constexpr int threads = 2;
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_begun{0};
    std::atomic<int> m_done{0};
    std::vector<std::thread> m_threads;
};

/// The frames of a video; a failure for each that isn't of one colour all over.
int framesOf(const QString &path)
{
    cv::VideoCapture video(path.toStdString());
    int frames = 0;
    for (cv::Mat frame; video.read(frame); ++frames) {
        EXPECT_EQ(frame.cols, int(width));
        EXPECT_EQ(frame.rows, int(height));
        cv::Scalar mean;
        cv::Scalar deviation;
        cv::meanStdDev(frame, mean, deviation);
        for (int channel = 0; channel < 3; ++channel)
            EXPECT_LT(deviation[channel], 6) << "frame " << frames << " of " << path.toStdString();
    }
    return frames;
}

/// Records one video after the other from `model`, with `meanwhile(i)` done during each.
template <class Model, class Deliver, class Meanwhile>
void recordWhileDelivering(Model &model, Deliver deliver, Meanwhile meanwhile)
{
    const QTemporaryDir folder;
    std::vector<int> most;
    std::vector<QString> paths;
    {
        const Deliverers<Deliver> library(deliver);
        ASSERT_TRUE(library.deliversMore(1));
        for (int i = 0; i < videos; ++i) {
            paths.push_back(folder.filePath(QStringLiteral("%1.avi").arg(i)));
            model.setRecordPath(paths.back());
            const int before = library.done();
            model.setRecording(true);
            EXPECT_TRUE(model.recording());
            meanwhile(i);
            ASSERT_TRUE(library.deliversMore(leastFrames));
            model.setRecording(false);
            most.push_back(library.begun() - before);
        }
        ASSERT_TRUE(library.deliversMore(leastFrames));
    }
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const int frames = framesOf(paths[i]);
        EXPECT_GE(frames, leastFrames) << "video " << i;
        EXPECT_LE(frames, most[i]) << "video " << i;
    }
}

/// A picture of one grey all over.
qv::ColorImage yuyv(unsigned char luma)
{
    std::vector<unsigned char> bytes(width * height * 2, 128);
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        bytes[i] = luma;
    qv::ColorImage frame;
    frame.codec = 0;
    frame.width = width;
    frame.height = height;
    frame.data = pictures::bufferOf(bytes);
    frame.dataSize = static_cast<unsigned int>(bytes.size());
    return frame;
}

/// One depth all over, in the samples of `type`.
template <class Sample>
qv::DepthImage flat(int type, Sample depth)
{
    const std::vector<Sample> samples(width * height, depth);
    qv::DepthImage frame;
    frame.type = type;
    frame.width = width;
    frame.height = height;
    frame.data = pictures::bufferOf(samples);
    frame.dataSize = static_cast<unsigned int>(samples.size() * sizeof(Sample));
    return frame;
}

} // namespace

TEST(RecordingStress, rgbOfTwoCameras)
{
    const LogCatcher log;
    const auto camera = std::make_shared<FakeColorCamera>();
    RgbData rgb(camera, nullptr);
    rgb.control(true, 0);
    rgb.control(true, 1);
    const std::vector<qv::ColorImage> greys = {yuyv(40), yuyv(120), yuyv(220)};
    const auto second = yuyv(80);
    const QTemporaryDir pictures;
    recordWhileDelivering(
        rgb,
        [&](int thread, int i) {
            if (thread == 0)
                camera->deliver(greys[std::size_t(i / 10) % greys.size()]);
            else
                camera->callbacks2.deliver(second);
        },
        [&](int i) {
            rgb.setFramerate(10 + i);
            EXPECT_TRUE(rgb.save(pictures.filePath("rgb.png")));
            const QImage picture(pictures.filePath("rgb.png"));
            EXPECT_EQ(picture.pixel(0, 0), picture.pixel(width - 1, height - 1));
        });
}

TEST(RecordingStress, tofOfBothKinds)
{
    const LogCatcher log;
    const auto camera = std::make_shared<FakeTofCamera>();
    TofData tof(camera, nullptr);
    tof.control(true);
    tof.setMinDistance(0.0);
    tof.setMaxDistance(4.0);
    const std::vector<qv::DepthImage> millimetres = {
        flat<std::int16_t>(0, 1000), flat<std::int16_t>(0, 2000)};
    const auto metres = flat(1, 3.0F);
    const QTemporaryDir pictures;
    recordWhileDelivering(
        tof,
        [&](int thread, int i) {
            camera->deliver(thread == 0 ? millimetres[std::size_t(i / 10) % 2] : metres);
        },
        [&](int i) {
            tof.setFramerate(5 + i);
            tof.setMaxDistance(4.0 + i % 3);
            EXPECT_TRUE(tof.save(pictures.filePath("tof.png")));
            const QImage picture(pictures.filePath("tof.png"));
            EXPECT_EQ(picture.pixel(0, 0), picture.pixel(width - 1, height - 1));
        });
}
