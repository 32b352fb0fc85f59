#include <QImageReader>
#include <gtest/gtest.h>

TEST(StartFilm, hasAHundredAndFiftyFramesOfFortyMilliseconds)
{
    QImageReader film(QStringLiteral(QV_SOURCE_DIR "/images/start.gif"));
    EXPECT_EQ(film.size(), QSize(1920, 1080));
    int frames = 0;
    while (!film.read().isNull()) {
        ++frames;
        ASSERT_EQ(film.nextImageDelay(), 40) << frames;
    }
    EXPECT_EQ(frames, 150);
}
