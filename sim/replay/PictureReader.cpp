#include "replay/PictureReader.h"

#include <cstring>
#include <fstream>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <sstream>
#include <stdexcept>
#include <zlib.h>

namespace sim {

namespace {

const std::string signature("\x89PNG\r\n\x1a\n", 8);

std::uint32_t bigEndian(const char *bytes)
{
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return value;
}

/// The sum of a PNG chunk, ISO 3309.
std::uint32_t crc(const char *bytes, std::size_t size)
{
    return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef *>(bytes), size));
}

std::string bytesOf(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::runtime_error("is missing");
    std::stringstream bytes;
    bytes << stream.rdbuf();
    return bytes.str();
}

cv::Mat decode(const std::string &bytes)
{
    const cv::Mat input(1, static_cast<int>(bytes.size()), CV_8UC1, const_cast<char *>(bytes.data()));
    try {
        return cv::imdecode(input, cv::IMREAD_UNCHANGED);
    } catch (const cv::Exception &) {
        return {};
    }
}

cv::Mat toBytes(const cv::Mat &picture)
{
    if (picture.depth() != CV_16U)
        return picture;
    cv::Mat bytes(picture.size(), CV_8UC(picture.channels()));
    // Shifted, not scaled: 255.996 would round up.
    const auto *from = picture.ptr<std::uint16_t>();
    auto *to = bytes.ptr<unsigned char>();
    const std::size_t count = picture.total() * static_cast<std::size_t>(picture.channels());
    for (std::size_t i = 0; i < count; ++i)
        to[i] = static_cast<unsigned char>(from[i] >> 8);
    return bytes;
}

cv::Mat toGrey(const cv::Mat &picture)
{
    cv::Mat bytes = toBytes(picture);
    if (bytes.channels() == 3)
        cv::cvtColor(bytes, bytes, cv::COLOR_BGR2GRAY);
    else if (bytes.channels() == 4)
        cv::cvtColor(bytes, bytes, cv::COLOR_BGRA2GRAY);
    return bytes;
}

cv::Mat readAny(const std::filesystem::path &file)
{
    const std::string bytes = bytesOf(file);
    const bool png = file.extension() == ".png" || bytes.compare(0, signature.size(), signature) == 0;
    if (bytes.empty() || (png && !isWholePng(bytes)))
        throw std::runtime_error("is broken");
    cv::Mat picture = decode(bytes);
    const bool shown = picture.depth() == CV_8U || picture.depth() == CV_16U;
    if (picture.empty() || !shown || picture.channels() == 2)
        throw std::runtime_error("is no picture that can be shown");
    return picture;
}

} // namespace

void preparePictureReader()
{
    std::vector<unsigned char> bytes;
    cv::imencode(".png", cv::Mat(1, 1, CV_8UC1, cv::Scalar(0)), bytes);
    cv::imdecode(bytes, cv::IMREAD_UNCHANGED);
}

bool isWholePng(const std::string &bytes)
{
    if (bytes.compare(0, signature.size(), signature) != 0)
        return false;
    std::size_t position = signature.size();
    while (position + 12 <= bytes.size()) {
        const std::size_t length = bigEndian(&bytes[position]);
        if (length > bytes.size() - position - 12)
            return false;
        const char *type = &bytes[position + 4];
        if (crc(type, length + 4) != bigEndian(type + 4 + length))
            return false;
        if (std::memcmp(type, "IEND", 4) == 0)
            return true;
        position += length + 12;
    }
    return false;
}

cv::Mat readGrey(const std::filesystem::path &file)
{
    return toGrey(readAny(file));
}

cv::Mat readColor(const std::filesystem::path &file)
{
    const cv::Mat bytes = toBytes(readAny(file));
    cv::Mat rgb;
    cv::cvtColor(bytes, rgb,
        bytes.channels() == 1       ? cv::COLOR_GRAY2RGB
            : bytes.channels() == 3 ? cv::COLOR_BGR2RGB
                                    : cv::COLOR_BGRA2RGB);
    return rgb;
}

cv::Mat readDepth(const std::filesystem::path &file)
{
    cv::Mat picture = readAny(file);
    if (picture.type() != CV_16UC1)
        throw std::runtime_error("is no depth picture of 16 bits");
    return picture;
}

qv::FisheyeImage fisheyeImage(const cv::Mat &grey)
{
    const auto owner = std::make_shared<const cv::Mat>(grey);
    return {static_cast<std::size_t>(grey.cols), static_cast<std::size_t>(grey.rows),
        std::shared_ptr<const unsigned char>(owner, owner->data)};
}

qv::FisheyeImage readPicture(const std::filesystem::path &file)
{
    return fisheyeImage(readGrey(file));
}

} // namespace sim
