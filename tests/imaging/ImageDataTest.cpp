#include "imaging/ImageData.h"

TEST(ImageData, sameSizeEmitsOnlyUpdate)
{
    ImageData image;
    const std::shared_ptr<const unsigned char> pixels(
        new unsigned char[6](), std::default_delete<unsigned char[]>());
    image.set(3, 2, pixels, 6);
    const QSignalSpy width(&image, &ImageData::widthChanged);
    const QSignalSpy height(&image, &ImageData::heightChanged);
    const QSignalSpy update(&image, &ImageData::update);

    image.set(3, 2, pixels, 6);

    EXPECT_EQ(width.count(), 0);
    EXPECT_EQ(height.count(), 0);
    EXPECT_EQ(update.count(), 1);
}
