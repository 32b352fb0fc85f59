#include "imaging/ImagePainter.h"

#include "imaging/FakeProbe.h"
#include "imaging/Frames.h"
#include "support/Wait.h"
#include <QPainter>
#include <QQuickItemGrabResult>
#include <QQuickWindow>
#include <functional>

namespace {

/// Counts how often the scene has it painted.
class CountingPainter : public ImagePainter {
public:
    void paint(QPainter *painter) override
    {
        ++paints;
        ImagePainter::paint(painter);
    }

    int paints = 0;
};

/// A window that paints in memory.
class ImagePainterWindow : public ::testing::Test {
protected:
    static void SetUpTestSuite() { QQuickWindow::setSceneGraphBackend(QSGRendererInterface::Software); }

    void SetUp() override
    {
        image.setType(ImageData::Gray);
        image.set(20, 10, frames::buffer(frames::noise(200, 1)), 200);
        item.setSource(&image);
        item.setSize({40, 20});
        item.setParentItem(window.contentItem());
        window.resize(100, 50);
        window.show();
        ASSERT_TRUE(waitFor([this] { return item.paints > 0; }));
        settle();
    }

    /// Until a later frame of the window has passed without the item.
    void settle()
    {
        for (int last = -1; last != item.paints;) {
            last = item.paints;
            nextFrame();
        }
    }
    void nextFrame()
    {
        bool swapped = false;
        const auto connection =
            QObject::connect(&window, &QQuickWindow::afterRendering, [&] { swapped = true; });
        window.update();
        EXPECT_TRUE(waitFor([&] { return swapped; }));
        QObject::disconnect(connection);
    }
    bool repaintsAfter(const std::function<void()> &change)
    {
        settle();
        const int before = item.paints;
        change();
        nextFrame();
        return item.paints > before;
    }

    ImageData image;
    QQuickWindow window;
    CountingPainter item;
};

} // namespace

TEST_F(ImagePainterWindow, repaintsForWhatIsSeenAtOnce)
{
    EXPECT_FALSE(repaintsAfter([] {}));
    EXPECT_TRUE(repaintsAfter([this] { item.updateAll(); }));
    EXPECT_TRUE(repaintsAfter([this] { image.set(20, 10, frames::buffer(frames::noise(200, 2)), 200); }));
    EXPECT_TRUE(repaintsAfter([this] { item.setSourceWidth(5); }));
    EXPECT_TRUE(repaintsAfter([this] { item.setSourceHeight(5); }));
    EXPECT_TRUE(repaintsAfter([this] { item.setType(ImagePainter::IR); }));
    EXPECT_TRUE(repaintsAfter([this] { item.setHorizontalFlip(true); }));
    EXPECT_TRUE(repaintsAfter([this] { item.setVerticalFlip(true); }));
    EXPECT_TRUE(repaintsAfter([this] { item.setObjects({1}); }));
    EXPECT_TRUE(repaintsAfter([this] { item.setShowPoints(false); }));
    EXPECT_TRUE(repaintsAfter([this] { item.setMaxDistance(3); }));
    EXPECT_TRUE(repaintsAfter([this] { item.setMinDistance(1); }));
    EXPECT_TRUE(repaintsAfter([this] { item.setColorize(false); }));
}

TEST_F(ImagePainterWindow, paintsAFrameOfAnotherSizeOrTypeTwice)
{
    const auto paintsOf = [this](int type, int width, int height) {
        settle();
        const int before = item.paints;
        frames::set(image, type, {width, height}, frames::random(type, {width, height}, 4));
        settle();
        return item.paints - before;
    };
    EXPECT_EQ(paintsOf(ImageData::Gray, 20, 10), 1) << "of the size that it had";
    EXPECT_EQ(paintsOf(ImageData::Gray, 24, 10), 2);
    EXPECT_EQ(paintsOf(ImageData::Gray, 24, 12), 2);
    EXPECT_EQ(paintsOf(ImageData::Color, 24, 12), 2);
    EXPECT_EQ(paintsOf(ImageData::Color, 24, 12), 1);
}

TEST_F(ImagePainterWindow, doesNotRepaintForTheRest)
{
    FakeProbe probe;
    EXPECT_FALSE(repaintsAfter([this] { item.setColorIndex(2); }));
    EXPECT_FALSE(repaintsAfter([this] { item.setCNNRunning(true); }));
    EXPECT_FALSE(repaintsAfter([&] { item.setTofData(&probe); }));
    EXPECT_FALSE(repaintsAfter([&] { item.setSgbmData(&probe); }));
    EXPECT_FALSE(repaintsAfter([this] { item.setTopLeftPoint({7, 7}); }));
    EXPECT_FALSE(repaintsAfter([this] { item.setShowPoints(true); })) << "the same value";
    EXPECT_FALSE(repaintsAfter([this] { image.setPoints({{1, 1}}); }));
}

TEST_F(ImagePainterWindow, doesNotPaintWhileItIsHidden)
{
    item.setVisible(false);
    nextFrame();
    EXPECT_FALSE(repaintsAfter([this] { item.updateAll(); }));
    EXPECT_TRUE(repaintsAfter([this] { item.setVisible(true); }));
}

TEST_F(ImagePainterWindow, followsItsSourceAloneAndNoLonger)
{
    ImageData other;
    item.setSource(&other);
    EXPECT_FALSE(repaintsAfter([this] { image.set(20, 10, frames::buffer(frames::noise(200, 2)), 200); }));
    EXPECT_TRUE(repaintsAfter([&] { other.set(20, 10, frames::buffer(frames::noise(200, 2)), 200); }));
}

TEST_F(ImagePainterWindow, showsThePixelsOfTheFrame)
{
    const auto pixels = frames::noise(40 * 20, 5);
    image.set(40, 20, frames::buffer(pixels), 40 * 20);
    const auto grab = item.grabToImage();
    ASSERT_TRUE(grab);
    ASSERT_TRUE(waitFor([&] { return !grab->image().isNull(); }));
    const QImage grabbed = grab->image();
    ASSERT_EQ(grabbed.size(), QSize(40, 20));
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 40; ++x)
            ASSERT_EQ(qRed(grabbed.pixel(x, y)), pixels[static_cast<std::size_t>(y * 40 + x)])
                << x << "," << y;
    }
}
