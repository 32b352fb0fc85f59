#include "streams/StereoData.h"

#include "support/AllocationCounter.h"
#include "support/FakeFisheyeCameras.h"
#include "support/Pictures.h"
#include "support/Wait.h"

#include <QThread>
#include <gtest/gtest.h>
#include <thread>

namespace {

constexpr std::size_t smallBlock = 4096;

/// Lives on the interface thread, like the painter.
class Screen : public QObject {
public:
    explicit Screen(const ImageData *image)
    {
        connect(image, &ImageData::update, this, [this] { ++updates; });
    }

    int updates = 0;
};

} // namespace

TEST(FrameRoad, theCounterSeesWhatItShould)
{
    if (!AllocationCounter::works())
        GTEST_SKIP() << "the sanitizer has its own allocator, nothing can be counted";
    const AllocationCounter counter;
    const auto picture = pictures::grey(64, 64, 1);
    const cv::Mat matrix(100, 100, CV_8UC1);
    const QImage image(200, 200, QImage::Format_Grayscale8);
    EXPECT_GE(counter.count(), 3U);
    EXPECT_GE(counter.largest(), 40000U);
}

TEST(FrameRoad, aStereoFrameIsNeitherCopiedNorGivenANewBuffer)
{
    const auto cameras = std::make_shared<FakeFisheyeCamerasEx>();
    StereoData stereo(cameras, nullptr);
    const Screen left(qobject_cast<FisheyeData *>(stereo.image(StereoData::Left))->image());
    const Screen right(qobject_cast<FisheyeData *>(stereo.image(StereoData::Right))->image());
    const auto record = pictures::fisheyes({pictures::fisheye(640, 400, 1), pictures::fisheye(640, 400, 2)});
    constexpr int frames = 10;
    std::size_t largest = 0;

    std::thread library([&] {
        cameras->deliver(record);
        const AllocationCounter counter;
        for (int i = 1; i < frames; ++i)
            cameras->deliver(record);
        largest = counter.largest();
    });
    library.join();

    ASSERT_TRUE(waitFor([&] { return left.updates == frames && right.updates == frames; }));
    const auto *shown = qobject_cast<FisheyeData *>(stereo.image(StereoData::Left))->image();
    EXPECT_EQ(shown->data().get(), record.images[0].data.get());
    EXPECT_EQ(record.images[0].data.use_count(), 2) << "the record and the frame holder";
    if (!AllocationCounter::works())
        GTEST_SKIP() << "the sanitizer has its own allocator, only the buffers were compared";
    EXPECT_LT(largest, smallBlock) << "a queued call is small, a picture has 256000 bytes";
}
