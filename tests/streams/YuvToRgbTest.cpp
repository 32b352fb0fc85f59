#include "streams/YuvToRgb.h"

#include <cstring>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

/// Bytes that end where the next page can't be touched, so that a read or write past them ends the program,
/// also in a library that no sanitizer looks into.
class FencedBytes {
public:
    explicit FencedBytes(std::size_t size)
        : m_page(std::size_t(sysconf(_SC_PAGESIZE)))
        , m_mapped((size + m_page - 1) / m_page * m_page + m_page)
        , m_block(static_cast<unsigned char *>(
              mmap(nullptr, m_mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
        , m_bytes(m_block + m_mapped - m_page - size)
    {
        mprotect(m_block + m_mapped - m_page, m_page, PROT_NONE);
        std::memset(m_bytes, 128, size);
    }

    ~FencedBytes() { munmap(m_block, m_mapped); }
    FencedBytes(const FencedBytes &) = delete;
    FencedBytes &operator=(const FencedBytes &) = delete;

    unsigned char *data() const { return m_bytes; }

private:
    std::size_t m_page;
    std::size_t m_mapped;
    unsigned char *m_block;
    unsigned char *m_bytes;
};

int sizeOf(int type, int width, int height)
{
    const int chromaWidth = (width + 1) / 2, chromaHeight = (height + 1) / 2;
    return type == ImageData::YUYV ? 4 * chromaWidth * height
                                   : width * height + 2 * chromaWidth * chromaHeight;
}

} // namespace

TEST(YuvToRgb, staysInsideTheFrameAndThePicture)
{
    for (const int type : {ImageData::YUYV, ImageData::YUV420p}) {
        for (const int width : {1, 2, 3, 7, 8, 15, 16, 17, 31, 32, 33, 48, 64, 96, 160, 320, 640, 1920}) {
            for (const int height : {1, 2, 3, 4, 8, 9}) {
                const int size = sizeOf(type, width, height);
                const auto source = std::make_shared<FencedBytes>(std::size_t(size));
                const FencedBytes rgb(std::size_t(3 * width * height));
                ImageData::Frame frame;
                frame.data = ImageData::Buffer(source, source->data());
                frame.width = width;
                frame.height = height;
                frame.dataSize = size;
                frame.type = type;
                ASSERT_TRUE(yuvToRgb(frame, rgb.data(), 3 * width)) << type << ' ' << width << 'x' << height;
                // Luma and chroma of 128 are a grey of 130.
                for (int i = 0; i < 3 * width * height; ++i)
                    ASSERT_NEAR(rgb.data()[i], 130, 2)
                        << type << ' ' << width << 'x' << height << " at " << i;
                --frame.dataSize;
                ASSERT_FALSE(yuvToRgb(frame, rgb.data(), 3 * width));
            }
        }
    }
}

TEST(YuvToRgb, otherFramesAreRefused)
{
    unsigned char rgb[3];
    ImageData::Frame frame;
    frame.data = std::make_shared<unsigned char>();
    frame.width = frame.height = frame.dataSize = 1;
    for (const int type : {ImageData::Gray, ImageData::Color, ImageData::JPEG, ImageData::IR}) {
        frame.type = type;
        EXPECT_FALSE(yuvToRgb(frame, rgb, 3));
    }
    frame.type = ImageData::YUYV;
    frame.width = 0;
    EXPECT_FALSE(yuvToRgb(frame, rgb, 3));
}
