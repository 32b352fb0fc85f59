#include "device/MapFile.h"

#include <array>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <zlib.h>

namespace sim {

namespace {

constexpr char magic[] = "QVSLAMAP";
constexpr std::size_t magicSize = 8;
constexpr std::uint32_t version = 1;
constexpr std::size_t fileHeaderSize = 24;
constexpr std::size_t landmarkSize = 32;
constexpr std::size_t checksumSize = 4;
constexpr std::uint64_t largestLength = std::uint64_t(1) << 30;

std::uint32_t checksum(const std::string &bytes)
{
    return static_cast<std::uint32_t>(
        crc32_z(0, reinterpret_cast<const Bytef *>(bytes.data()), bytes.size()));
}

template <class Number>
void append(std::string &bytes, Number number)
{
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        bytes.push_back(static_cast<char>(number >> (8 * i) & 0xffU));
}

void append(std::string &bytes, double number)
{
    std::uint64_t pattern = 0;
    std::memcpy(&pattern, &number, sizeof pattern);
    append(bytes, pattern);
}

template <class Number>
Number number(const std::string &bytes, std::size_t at)
{
    Number value = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        value |= static_cast<Number>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    return value;
}

double real(const std::string &bytes, std::size_t at)
{
    const auto pattern = number<std::uint64_t>(bytes, at);
    double value = 0;
    std::memcpy(&value, &pattern, sizeof value);
    return value;
}

/// Piece by piece, so that a length that lies takes no memory.
void readMore(std::streambuf &stream, std::string &bytes, std::uint64_t count)
{
    std::array<char, 65536> piece{};
    while (count > 0) {
        const auto wanted = static_cast<std::streamsize>(std::min<std::uint64_t>(count, piece.size()));
        const std::streamsize got = stream.sgetn(piece.data(), wanted);
        if (got <= 0)
            throw std::runtime_error(bytes.empty() ? "it is empty or can't be read" : "it is cut short");
        bytes.append(piece.data(), static_cast<std::size_t>(got));
        count -= static_cast<std::uint64_t>(got);
    }
}

StoredMap::Landmark landmark(const std::string &bytes, std::size_t at)
{
    StoredMap::Landmark out;
    out.descriptor = number<std::uint64_t>(bytes, at);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double value = real(bytes, at + 8 + 8 * axis);
        if (!std::isfinite(value))
            throw std::runtime_error("it has a point that is nowhere");
        out.position[static_cast<Eigen::Index>(axis)] = value;
    }
    return out;
}

/// The length of the landmarks, from a header that has been checked.
std::uint64_t checkHeader(const std::string &bytes)
{
    if (bytes.compare(0, magicSize, magic) != 0)
        throw std::runtime_error("it is no map");
    const auto fileVersion = number<std::uint32_t>(bytes, 8);
    if (fileVersion != version)
        throw std::runtime_error("it has the unknown version " + std::to_string(fileVersion));
    const auto length = number<std::uint64_t>(bytes, 16);
    if (length == 0 || length % landmarkSize != 0 || length > largestLength)
        throw std::runtime_error("it has an impossible length");
    return length;
}

} // namespace

std::string MapFile::encode(const StoredMap &map)
{
    std::string bytes;
    bytes.reserve(fileHeaderSize + map.landmarks.size() * landmarkSize + checksumSize);
    bytes.append(magic, magicSize);
    append(bytes, version);
    append(bytes, static_cast<std::uint32_t>(map.quality));
    append(bytes, static_cast<std::uint64_t>(map.landmarks.size() * landmarkSize));
    for (const StoredMap::Landmark &point : map.landmarks) {
        append(bytes, point.descriptor);
        for (Eigen::Index axis = 0; axis < 3; ++axis)
            append(bytes, point.position[axis]);
    }
    append(bytes, checksum(bytes));
    return bytes;
}

StoredMap MapFile::read(std::streambuf &stream)
{
    std::string bytes;
    readMore(stream, bytes, fileHeaderSize);
    const std::uint64_t length = checkHeader(bytes);
    readMore(stream, bytes, length);
    const std::uint32_t expected = checksum(bytes);
    readMore(stream, bytes, checksumSize);
    if (number<std::uint32_t>(bytes, bytes.size() - checksumSize) != expected)
        throw std::runtime_error("it is damaged");
    if (stream.sgetc() != std::streambuf::traits_type::eof())
        throw std::runtime_error("it is longer than it says");
    StoredMap map;
    map.quality = static_cast<int>(std::min(number<std::uint32_t>(bytes, 12), 100U));
    for (std::size_t at = fileHeaderSize; at < fileHeaderSize + length; at += landmarkSize)
        map.landmarks.push_back(landmark(bytes, at));
    return map;
}

} // namespace sim
