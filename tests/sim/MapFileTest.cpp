#include "device/MapFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

using namespace sim;
using ::testing::HasSubstr;

namespace {

StoredMap smallMap()
{
    StoredMap map;
    map.quality = 73;
    for (int i = 0; i < 5; ++i)
        map.landmarks.push_back(
            {0x0123456789abcdefULL + static_cast<std::uint64_t>(i), {0.1 * i, -1e-9, 1e6}});
    return map;
}

std::string refusal(const std::string &bytes)
{
    std::stringbuf buffer(bytes, std::ios_base::in | std::ios_base::binary);
    try {
        MapFile::read(buffer);
    } catch (const std::runtime_error &error) {
        return error.what();
    }
    return "";
}

/// The checksum bit by bit, as its definition has it.
std::uint32_t crc(const std::string &bytes)
{
    std::uint32_t value = 0xffffffffU;
    for (const char byte : bytes) {
        value ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            value = (value >> 1) ^ (0xedb88320U & (0U - (value & 1U)));
    }
    return ~value;
}

std::string sealed(std::string bytes)
{
    const std::uint32_t sum = crc(bytes);
    for (unsigned i = 0; i < 4; ++i)
        bytes.push_back(static_cast<char>(sum >> (8 * i)));
    return bytes;
}

class Broken : public std::streambuf {
protected:
    std::streamsize xsgetn(char *, std::streamsize) override { throw std::runtime_error("the disk is gone"); }
};

} // namespace

TEST(MapFile, givesBackWhatWasStored)
{
    const StoredMap map = smallMap();
    std::stringbuf buffer(MapFile::encode(map), std::ios_base::in | std::ios_base::binary);
    const StoredMap read = MapFile::read(buffer);
    EXPECT_EQ(read.quality, 73);
    ASSERT_EQ(read.landmarks.size(), 5U);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(read.landmarks[i].descriptor, map.landmarks[i].descriptor);
        EXPECT_EQ(read.landmarks[i].position, map.landmarks[i].position);
    }
}

TEST(MapFile, hasTheLayoutThatItSays)
{
    const std::string bytes = MapFile::encode(smallMap());
    ASSERT_EQ(bytes.size(), 24U + 5 * 32 + 4);
    EXPECT_EQ(bytes.substr(0, 8), "QVSLAMAP");
    EXPECT_EQ(bytes.substr(8, 16), std::string("\1\0\0\0\x49\0\0\0\xa0\0\0\0\0\0\0\0", 16));
    EXPECT_EQ(bytes.substr(24, 8), "\xef\xcd\xab\x89\x67\x45\x23\x01");
    EXPECT_EQ(bytes, sealed(bytes.substr(0, bytes.size() - 4)));
}

TEST(MapFile, refusesWhatIsEmptyOrOfAnotherKind)
{
    EXPECT_THAT(refusal(""), HasSubstr("empty"));
    EXPECT_THAT(refusal("QVSLAM"), HasSubstr("cut short"));
    EXPECT_THAT(refusal(std::string(1000, '\0')), HasSubstr("no map"));
    EXPECT_THAT(refusal("# timestamp tx ty tz qx qy qz qw\n1 2 3 4 5 6 7 8\n"), HasSubstr("no map"));
    std::string newer = MapFile::encode(smallMap());
    newer[8] = 2;
    EXPECT_THAT(refusal(newer), HasSubstr("version 2"));
}

TEST(MapFile, refusesEveryCut)
{
    const std::string bytes = MapFile::encode(smallMap());
    for (std::size_t length = 0; length < bytes.size(); ++length)
        EXPECT_NE(refusal(bytes.substr(0, length)), "") << length;
    EXPECT_EQ(refusal(bytes), "");
    EXPECT_THAT(refusal(bytes + '\0'), HasSubstr("longer"));
}

TEST(MapFile, refusesEveryWrongBit)
{
    const std::string bytes = MapFile::encode(smallMap());
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::string wrong = bytes;
        wrong[bit / 8] = static_cast<char>(wrong[bit / 8] ^ (1 << (bit % 8)));
        EXPECT_NE(refusal(wrong), "") << bit;
    }
}

TEST(MapFile, refusesLengthsThatLieThoughSealed)
{
    const std::string bytes = MapFile::encode(smallMap());
    for (const std::string &length : {std::string(8, '\0'), std::string(8, '\xff'),
             std::string("\xa1\0\0\0\0\0\0\0", 8), std::string("\0\0\0\x20\0\0\0\0", 8)}) {
        std::string wrong = bytes.substr(0, bytes.size() - 4);
        wrong.replace(16, 8, length);
        EXPECT_NE(refusal(sealed(wrong)), "");
    }
}

TEST(MapFile, refusesPointsThatAreNowhere)
{
    for (const double value :
        {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        StoredMap map = smallMap();
        map.landmarks[2].position.y() = value;
        EXPECT_THAT(refusal(MapFile::encode(map)), HasSubstr("nowhere"));
    }
}

TEST(MapFile, exceptionsOfTheStreamComeOut)
{
    Broken broken;
    EXPECT_THROW(MapFile::read(broken), std::runtime_error);
}
