#include "imaging/FrameImage.h"

#include "imaging/Frames.h"
#include "imaging/PlainChain.h"
#include <cmath>

namespace {

const std::vector<int> allTypes{ImageData::Gray, ImageData::Color, ImageData::YUYV, ImageData::YUV420p,
    ImageData::JPEG, ImageData::Float, ImageData::Short, ImageData::IR};

FrameLook lookAt(const QSize &window)
{
    FrameLook look;
    look.window = window;
    look.range = {0.2F, 1.2F};
    return look;
}

QSize evenSize(const QSize &size)
{
    return {size.width() / 2 * 2, size.height() / 2 * 2};
}

std::string describe(int type, const QSize &size, const FrameLook &look)
{
    std::ostringstream text;
    text << "type " << type << " size " << size.width() << "x" << size.height() << " window "
         << look.window.width() << "x" << look.window.height() << " flips " << look.horizontalFlip
         << look.verticalFlip << " range " << look.range.near << ".." << look.range.far << " colors "
         << look.colorIndex;
    return text.str();
}

std::string firstDifference(const QImage &plain, const QImage &picked)
{
    std::ostringstream text;
    for (int y = 0; y < plain.height(); ++y) {
        for (int x = 0; x < plain.width(); ++x) {
            if (!picked.valid(x, y) || plain.pixel(x, y) != picked.pixel(x, y)) {
                text << " first at " << x << "," << y << ": " << std::hex << plain.pixel(x, y) << " became "
                     << (picked.valid(x, y) ? picked.pixel(x, y) : 0);
                return text.str();
            }
        }
    }
    return {};
}

void expectPlain(FrameImage &image, const ImageData &source, const FrameLook &look)
{
    const auto frame = source.frame();
    const QImage plain = plain::picture(frame, look).convertToFormat(QImage::Format_RGB32);
    const QImage picked = image.image(frame, look).convertToFormat(QImage::Format_RGB32);
    ASSERT_FALSE(plain.isNull());
    EXPECT_TRUE(plain == picked) << describe(frame.type, {frame.width, frame.height}, look)
                                 << firstDifference(plain, picked);
}

QRgb onlyPixel(int type, const frames::Bytes &bytes, const FrameLook &look, const QSize &size = {1, 1})
{
    ImageData source;
    frames::set(source, type, size, bytes);
    FrameImage image;
    const QImage &shown = image.image(source.frame(), look);
    return shown.isNull() ? 0 : shown.pixel(0, 0);
}

template <class T>
QRgb onlyPixel(int type, T value, const FrameLook &look = lookAt({1, 1}))
{
    return onlyPixel(type, frames::bytes(std::vector<T>{value}), look);
}

bool hasPicture(
    int type, const QSize &size, const frames::Bytes &bytes, const FrameLook &look = lookAt({8, 6}))
{
    ImageData source;
    frames::set(source, type, size, bytes);
    FrameImage image;
    return !image.image(source.frame(), look).isNull();
}

} // namespace

/// The picked pixels are those of the straight chain: every type, odd sizes, every flip, windows above, below
/// and of the frame's size.
class FrameImagePlain : public ::testing::TestWithParam<int> { };

TEST_P(FrameImagePlain, samePixelsForRandomSizesAndFlips)
{
    const int type = GetParam();
    std::mt19937 random(static_cast<unsigned int>(type) + 1);
    const auto upTo = [&random](int most) {
        return 1 + static_cast<int>(random() % static_cast<unsigned int>(most));
    };
    FrameImage image;
    ImageData source;
    for (int round = 0; round < 150; ++round) {
        QSize size(upTo(150), upTo(150));
        if (type == ImageData::YUV420p)
            size = evenSize(size + QSize(2, 2));
        FrameLook look = lookAt(round % 5 == 0 ? size : QSize(upTo(400), upTo(400)));
        look.horizontalFlip = round & 1;
        look.verticalFlip = round & 2;
        look.colorIndex = round % 7;
        frames::set(source, type, size, frames::random(type, size, random()));
        // The last column of an odd row has no V, and the straight chain reads past the end for the last of
        // all.
        if (type == ImageData::YUYV && size.width() % 2 == 1)
            continue;
        expectPlain(image, source, look);
    }
}

TEST_P(FrameImagePlain, samePixelsForTheSizesOfTheDevices)
{
    const int type = GetParam();
    FrameImage image;
    ImageData source;
    for (const QSize size :
        {QSize(640, 400), QSize(640, 480), QSize(320, 240), QSize(1920, 1080), QSize(1280, 720)}) {
        frames::set(source, type, size, frames::random(type, size, 5));
        for (const QSize window : {QSize(512, 400), QSize(1024, 768), QSize(640, 401), QSize(333, 777), size})
            expectPlain(image, source, lookAt(window));
    }
}

INSTANTIATE_TEST_SUITE_P(allTypes, FrameImagePlain, ::testing::ValuesIn(allTypes));

TEST(FrameImage, wideFramesAndWindowsKeepThePixelChoice)
{
    FrameImage image;
    ImageData source;
    for (const int type : {ImageData::Gray, ImageData::Color, ImageData::IR}) {
        for (const QSize size : {QSize(5000, 3), QSize(3, 5000), QSize(4097, 2)}) {
            frames::set(source, type, size, frames::random(type, size, 9));
            for (const QSize window : {QSize(3001, 2999), QSize(100, 100), QSize(4500, 4500)})
                expectPlain(image, source, lookAt(window));
        }
    }
}

TEST(FrameImage, yuyvHasTheColoursOfTheLibraryForEveryTriple)
{
    const FrameLook look = lookAt({512, 256});
    FrameImage image;
    ImageData source;
    std::vector<unsigned char> pixels(512 * 256 * 2);
    for (int v = 0; v < 256; ++v) {
        for (int u = 0; u < 256; ++u) {
            for (int y = 0; y < 512; ++y) {
                pixels[static_cast<std::size_t>(u * 512 + y) * 2] = static_cast<unsigned char>(y);
                pixels[static_cast<std::size_t>(u * 512 + y) * 2 + 1] =
                    static_cast<unsigned char>(y % 2 ? v : u);
            }
        }
        frames::set(source, ImageData::YUYV, {512, 256}, frames::bytes(pixels));
        expectPlain(image, source, look);
    }
}

TEST(FrameImage, greyByteIsGrey)
{
    EXPECT_EQ(onlyPixel<unsigned char>(ImageData::Gray, 0), qRgb(0, 0, 0));
    EXPECT_EQ(onlyPixel<unsigned char>(ImageData::Gray, 200), qRgb(200, 200, 200));
}

TEST(FrameImage, colorBytesAreRedGreenBlue)
{
    EXPECT_EQ(
        onlyPixel(ImageData::Color, frames::bytes(std::vector<unsigned char>{10, 20, 30}), lookAt({1, 1})),
        qRgb(10, 20, 30));
}

TEST(FrameImage, infraredShowsTheLowByteAlone)
{
    EXPECT_EQ(onlyPixel<unsigned short>(ImageData::IR, 0x0142), qRgb(0x42, 0x42, 0x42));
    EXPECT_EQ(onlyPixel<unsigned short>(ImageData::IR, 255), qRgb(255, 255, 255));
    EXPECT_EQ(onlyPixel<unsigned short>(ImageData::IR, 256), qRgb(0, 0, 0));
}

/// Against the formula in floating point; the library's fixed point may differ by one.
TEST(FrameImage, yuvFollowsBt601)
{
    const auto expected = [](int y, int u, int v) {
        const double luma = 1.164 * std::max(0, y - 16);
        return std::array<double, 3>{
            luma + 1.596 * (v - 128), luma - 0.391 * (u - 128) - 0.813 * (v - 128), luma + 2.018 * (u - 128)};
    };
    for (const auto &[y, u, v] : std::vector<std::array<unsigned char, 3>>{{16, 128, 128}, {235, 128, 128},
             {81, 90, 240}, {145, 54, 34}, {41, 240, 110}, {0, 0, 0}, {255, 255, 255}}) {
        const auto yuyv = frames::bytes(std::vector<unsigned char>{y, u, y, v});
        const auto i420 = frames::bytes(std::vector<unsigned char>{y, y, y, y, u, v});
        const QRgb fromYuyv = onlyPixel(ImageData::YUYV, yuyv, lookAt({2, 1}), {2, 1});
        const QRgb fromI420 = onlyPixel(ImageData::YUV420p, i420, lookAt({2, 2}), {2, 2});
        const auto rgb = expected(y, u, v);
        EXPECT_NEAR(qRed(fromYuyv), qBound(0.0, rgb[0], 255.0), 1.5);
        EXPECT_NEAR(qGreen(fromYuyv), qBound(0.0, rgb[1], 255.0), 1.5);
        EXPECT_NEAR(qBlue(fromYuyv), qBound(0.0, rgb[2], 255.0), 1.5);
        EXPECT_EQ(fromI420, fromYuyv);
    }
}

TEST(FrameImage, i420TakesOneColourForFourPixels)
{
    // 4 x 4: a bright plane, and chroma samples that differ from quarter to quarter.
    std::vector<unsigned char> pixels(16, 128);
    pixels.insert(pixels.end(), {0, 255, 128, 128, 128, 128, 0, 255});
    ImageData source;
    frames::set(source, ImageData::YUV420p, {4, 4}, frames::bytes(pixels));
    FrameImage image;
    const QImage &shown = image.image(source.frame(), lookAt({4, 4}));
    EXPECT_EQ(shown.pixel(0, 0), shown.pixel(1, 1));
    EXPECT_EQ(qBlue(shown.pixel(0, 0)), 0);
    EXPECT_EQ(qBlue(shown.pixel(3, 1)), 255);
    EXPECT_EQ(qRed(shown.pixel(1, 2)), 0);
    EXPECT_EQ(qRed(shown.pixel(2, 3)), 255);
}

TEST(FrameImage, depthRangeRunsFromRedToBlue)
{
    EXPECT_EQ(onlyPixel(ImageData::Float, 0.2F), qRgb(255, 12, 0)); // near end: level 0
    EXPECT_EQ(onlyPixel(ImageData::Float, 1.2F), qRgb(0, 0, 255)); // far end: level 255
    EXPECT_EQ(onlyPixel(ImageData::Float, 0.15F), qRgb(255, 12, 0)); // nearer than the range
    EXPECT_EQ(onlyPixel(ImageData::Float, 7.0F), qRgb(0, 0, 255)); // beyond it
    EXPECT_EQ(onlyPixel(ImageData::Float, INFINITY), qRgb(0, 0, 255));
    // 0.6 m: (0.6 - 0.2) * 255 = 102; row 102 is (u[18], 255, 0)
    EXPECT_EQ(onlyPixel(ImageData::Float, 0.6F), qRgb(76, 255, 0));
}

TEST(FrameImage, unmeasuredDepthTakesTheFirstRow)
{
    for (const float metres : {0.1F, 0.05F, 0.0F, -1.0F, NAN, -INFINITY})
        EXPECT_EQ(onlyPixel(ImageData::Float, metres), qRgb(255, 12, 0)) << metres;
}

TEST(FrameImage, unmeasuredDepthIsBlackInTheColourMaps)
{
    FrameLook look = lookAt({1, 1});
    for (const int colorIndex : {1, 2, 3, 5, 6, 17}) {
        look.colorIndex = colorIndex;
        EXPECT_EQ(onlyPixel(ImageData::Float, 0.1F, look), qRgb(0, 0, 0)) << colorIndex;
        EXPECT_EQ(onlyPixel(ImageData::Float, NAN, look), qRgb(0, 0, 0)) << colorIndex;
    }
}

TEST(FrameImage, colourMapsRunFromFarToNear)
{
    FrameLook look = lookAt({1, 1});
    look.colorIndex = 3; // WINTER: from (0, 0, 255) at level 0 to (0, 255, 128) at level 255
    EXPECT_EQ(onlyPixel(ImageData::Float, 1.2F, look), qRgb(0, 0, 255));
    EXPECT_EQ(onlyPixel(ImageData::Float, 0.2F, look), qRgb(0, 255, 128));
    look.colorIndex = 1; // BONE ends in white
    EXPECT_EQ(onlyPixel(ImageData::Float, 0.2F, look), qRgb(255, 255, 255));
}

TEST(FrameImage, shortDepthIsFourMetresAtThirtyTwoThousand)
{
    FrameLook look = lookAt({1, 1});
    look.range = {0, 8};
    // 16384 * 4 / 32767 = 2.00006 m; 2.00006 / 8 * 255 = 63.75 rounds to 64: (u[56], 255, 0)
    EXPECT_EQ(onlyPixel<unsigned short>(ImageData::Short, 16384, look), qRgb(238, 255, 0));
    // 65535 is read as unsigned: 8.000122 m.
    EXPECT_EQ(onlyPixel<unsigned short>(ImageData::Short, 65535, look), qRgb(0, 0, 255));
    EXPECT_EQ(onlyPixel<unsigned short>(ImageData::Short, 819, look), qRgb(255, 12, 0)); // 0.09998 m
}

TEST(FrameImage, emptyDepthRangeGivesDefinedColours)
{
    FrameLook look = lookAt({20, 20});
    ImageData source;
    frames::set(source, ImageData::Float, {20, 20}, frames::random(ImageData::Float, {20, 20}, 3));
    for (const float end : {0.0F, 1.0F, -1.0F}) {
        look.range = {end, end};
        for (const int colorIndex : {0, 2}) {
            look.colorIndex = colorIndex;
            FrameImage image;
            expectPlain(image, source, look);
        }
    }
}

TEST(FrameImage, depthRangeMayBeUpsideDown)
{
    FrameLook look = lookAt({31, 17});
    look.range = {1.2F, 0.2F};
    ImageData source;
    frames::set(source, ImageData::Float, {40, 30}, frames::random(ImageData::Float, {40, 30}, 4));
    FrameImage image;
    expectPlain(image, source, look);
    look.range = {0.5F, 0.05F};
    expectPlain(image, source, look);
}

TEST(FrameImage, shortBuffersHaveNoPicture)
{
    for (const int type : allTypes) {
        if (type == ImageData::JPEG || type == ImageData::Color)
            continue;
        auto bytes = frames::random(type, {8, 6}, 1);
        EXPECT_TRUE(hasPicture(type, {8, 6}, bytes)) << type;
        EXPECT_FALSE(hasPicture(type, {8, 8}, bytes)) << type;
        EXPECT_FALSE(hasPicture(type, {32000, 32000}, bytes)) << type;
        bytes.size -= 1;
        EXPECT_FALSE(hasPicture(type, {8, 6}, bytes)) << type;
        bytes.size = 0;
        EXPECT_FALSE(hasPicture(type, {8, 6}, bytes)) << type;
    }
}

TEST(FrameImage, sizeOfColourFramesIsNotAsked)
{
    auto bytes = frames::random(ImageData::Color, {8, 6}, 1);
    bytes.size = 8 * 6 * 2;
    EXPECT_TRUE(hasPicture(ImageData::Color, {8, 6}, bytes));
}

TEST(FrameImage, impossibleSizesHaveNoPicture)
{
    const auto bytes = frames::random(ImageData::Float, {8, 6}, 1);
    for (const int type : allTypes) {
        for (const QSize size :
            {QSize(0, 6), QSize(8, 0), QSize(-8, -6), QSize(2147483647, 1), QSize(1, 2147483647)})
            EXPECT_FALSE(hasPicture(type, size, bytes)) << type << " " << size.width();
    }
}

TEST(FrameImage, unknownTypesHaveNoPicture)
{
    const auto bytes = frames::random(ImageData::Float, {8, 6}, 1);
    for (const int type : {-1, 8, 1000})
        EXPECT_FALSE(hasPicture(type, {8, 6}, bytes)) << type;
}

TEST(FrameImage, i420OfOddSizeHasNoPicture)
{
    const auto bytes = frames::random(ImageData::Float, {9, 9}, 1);
    EXPECT_FALSE(hasPicture(ImageData::YUV420p, {9, 6}, bytes));
    EXPECT_FALSE(hasPicture(ImageData::YUV420p, {8, 5}, bytes));
}

TEST(FrameImage, yuyvOfOddWidthStaysInsideItsBuffer)
{
    ImageData source;
    frames::set(source, ImageData::YUYV, {5, 3}, frames::random(ImageData::YUYV, {5, 3}, 2));
    const auto frame = source.frame();
    FrameImage image;
    const QImage shown = image.image(frame, lookAt({5, 3}));
    // Padded, so that the straight chain has something to read behind the last pixel.
    std::vector<unsigned char> padded(frame.data.get(), frame.data.get() + frame.dataSize);
    padded.insert(padded.end(), {padded.back(), padded.back()});
    const cv::Mat yuyv(3, 5, CV_8UC2, padded.data());
    cv::Mat rgb(4, 5, CV_8UC3);
    cv::cvtColor(yuyv, rgb.rowRange(0, 3), cv::COLOR_YUV2RGB_YUY2);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            const auto &pixel = rgb.at<cv::Vec3b>(y, x);
            EXPECT_EQ(shown.pixel(x, y), qRgb(pixel[0], pixel[1], pixel[2])) << x << "," << y;
        }
    }
}

TEST(FrameImage, unknownColourMapHasNoPictureAndTheNextOneHas)
{
    FrameLook look = lookAt({8, 6});
    ImageData source;
    frames::set(source, ImageData::Float, {8, 6}, frames::random(ImageData::Float, {8, 6}, 1));
    FrameImage image;
    for (const int colorIndex : {1000, -1}) {
        look.colorIndex = colorIndex;
        EXPECT_TRUE(image.image(source.frame(), look).isNull());
    }
    look.colorIndex = 2;
    expectPlain(image, source, look);
}

TEST(FrameImage, brokenJpegHasNoPictureAndTheNextOneHas)
{
    ImageData source;
    FrameImage image;
    const auto file = frames::bytes(frames::jpeg({16, 12}, 1));
    const std::vector<frames::Bytes> broken{
        {file.data, 0}, {file.data, 20}, frames::bytes(frames::noise(500, 1)), {file.data, -5}};
    for (const auto &bytes : broken) {
        frames::set(source, ImageData::JPEG, {16, 12}, file);
        expectPlain(image, source, lookAt({8, 6}));
        frames::set(source, ImageData::JPEG, {16, 12}, bytes);
        EXPECT_TRUE(image.image(source.frame(), lookAt({8, 6})).isNull()) << bytes.size;
    }
    frames::set(source, ImageData::JPEG, {16, 12}, file);
    expectPlain(image, source, lookAt({8, 6}));
}

TEST(FrameImage, jpegKeepsItsOwnSize)
{
    ImageData source;
    FrameImage image;
    for (const auto format : {QImage::Format_RGB888, QImage::Format_Grayscale8}) {
        frames::set(source, ImageData::JPEG, {640, 480}, frames::bytes(frames::jpeg({32, 12}, 1, format)));
        expectPlain(image, source, lookAt({640, 480}));
        EXPECT_EQ(image.image(source.frame(), lookAt({640, 480})).size(), QSize(32, 12));
        expectPlain(image, source, lookAt({64, 48}));
        EXPECT_EQ(image.image(source.frame(), lookAt({64, 48})).size(), QSize(64, 24));
    }
}

TEST(FrameImage, frameIsConvertedOnce)
{
    auto *pixels = new unsigned char[4]{10, 20, 30, 40};
    const ImageData::Buffer buffer(pixels, std::default_delete<unsigned char[]>());
    ImageData source;
    source.set(2, 2, buffer, 4);
    FrameImage image;
    EXPECT_EQ(qRed(image.image(source.frame(), lookAt({2, 2})).pixel(0, 0)), 10);
    pixels[0] = 99;
    EXPECT_EQ(qRed(image.image(source.frame(), lookAt({2, 2})).pixel(0, 0)), 10);
}

TEST(FrameImage, sameBufferHandedOverAgainIsANewFrame)
{
    auto *pixels = new unsigned char[4]{10, 20, 30, 40};
    const ImageData::Buffer buffer(pixels, std::default_delete<unsigned char[]>());
    ImageData source;
    source.set(2, 2, buffer, 4);
    FrameImage image;
    image.image(source.frame(), lookAt({2, 2}));
    pixels[0] = 99;
    source.set(2, 2, buffer, 4);
    EXPECT_EQ(qRed(image.image(source.frame(), lookAt({2, 2})).pixel(0, 0)), 99);
}

TEST(FrameImage, jpegIsDecodedOnceForAllSizes)
{
    const auto file = frames::jpeg({32, 24}, 1);
    auto *pixels = new unsigned char[file.size()];
    std::copy(file.begin(), file.end(), pixels);
    ImageData source;
    source.setType(ImageData::JPEG);
    source.set(32, 24, {pixels, std::default_delete<unsigned char[]>()}, static_cast<int>(file.size()));
    const QImage expected = plain::picture(source.frame(), lookAt({64, 48}));
    FrameImage image;
    image.image(source.frame(), lookAt({16, 12}));
    std::fill_n(pixels, file.size(), static_cast<unsigned char>(0));
    EXPECT_TRUE(image.image(source.frame(), lookAt({64, 48})) == expected);
}

TEST(FrameImage, everyPartOfTheLookChangesThePicture)
{
    ImageData source;
    frames::set(source, ImageData::Float, {20, 10}, frames::random(ImageData::Float, {20, 10}, 3));
    FrameImage image;
    FrameLook look = lookAt({20, 10});
    const auto next = [&] { return image.image(source.frame(), look).copy(); };
    QImage last = next();
    const auto expectNew = [&] {
        const QImage now = next();
        EXPECT_FALSE(now == last);
        expectPlain(image, source, look);
        last = now;
    };
    look.horizontalFlip = true;
    expectNew();
    look.verticalFlip = true;
    expectNew();
    look.range.far = 2;
    expectNew();
    look.range.near = 0.5;
    expectNew();
    look.colorIndex = 2;
    expectNew();
    look.window = {15, 8};
    expectNew();
}
