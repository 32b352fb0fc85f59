#pragma once

#include "imaging/ImageData.h"
#include <QBuffer>
#include <QImage>
#include <cstring>
#include <random>

/// Makers of frames. Each buffer has exactly the size it says, so that an address checker sees what is read
/// past it.
namespace frames {

template <class T>
ImageData::Buffer buffer(const std::vector<T> &values)
{
    const std::size_t bytes = values.size() * sizeof(T);
    auto *copy = new unsigned char[bytes];
    if (bytes > 0)
        std::memcpy(copy, values.data(), bytes);
    return {copy, std::default_delete<unsigned char[]>()};
}

inline std::vector<unsigned char> noise(std::size_t bytes, unsigned int seed)
{
    std::mt19937 random(seed);
    std::vector<unsigned char> values(bytes);
    for (auto &value : values)
        value = static_cast<unsigned char>(random());
    return values;
}

inline std::vector<float> noiseMetres(std::size_t count, unsigned int seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> metres(-0.1F, 2.0F);
    std::vector<float> values(count);
    for (auto &value : values)
        value = metres(random);
    return values;
}

inline std::vector<unsigned char> jpeg(
    const QSize &size, unsigned int seed, QImage::Format format = QImage::Format_RGB888)
{
    QImage image(size, format);
    const auto bytes = noise(static_cast<std::size_t>(image.bytesPerLine()) * size.height(), seed);
    std::memcpy(image.bits(), bytes.data(), bytes.size());
    QByteArray file;
    QBuffer device(&file);
    device.open(QIODevice::WriteOnly);
    image.save(&device, "JPG", 90);
    return {file.begin(), file.end()};
}

struct Bytes {
    ImageData::Buffer data;
    int size = 0;
};

template <class T>
Bytes bytes(const std::vector<T> &values)
{
    return {buffer(values), static_cast<int>(values.size() * sizeof(T))};
}

inline Bytes random(int type, const QSize &size, unsigned int seed)
{
    const auto pixels = static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height());
    switch (type) {
    case ImageData::Gray:
        return bytes(noise(pixels, seed));
    case ImageData::Color:
        return bytes(noise(pixels * 3, seed));
    case ImageData::YUV420p:
        return bytes(noise(pixels * 3 / 2, seed));
    case ImageData::JPEG:
        return bytes(jpeg(size, seed));
    case ImageData::Float:
        return bytes(noiseMetres(pixels, seed));
    default:
        return bytes(noise(pixels * 2, seed));
    }
}

inline void set(ImageData &image, int type, const QSize &size, const Bytes &bytes)
{
    image.setType(type);
    image.set(size.width(), size.height(), bytes.data, bytes.size);
}

} // namespace frames
