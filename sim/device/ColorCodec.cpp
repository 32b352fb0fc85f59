#include "device/ColorCodec.h"

#include "core/Log.h"

namespace sim {

ColorCodec colorCodecByName(const std::string &name, ColorCodec fallback)
{
    static constexpr std::pair<const char *, ColorCodec> names[] = {
        {"yuyv", ColorCodec::Yuyv}, {"yuv420p", ColorCodec::Yuv420p}, {"jpeg", ColorCodec::Jpeg}};
    for (const auto &[known, codec] : names) {
        if (name == known)
            return codec;
    }
    if (!name.empty())
        complain("there is no codec \"" + name + "\" for colour pictures");
    return fallback;
}

std::size_t packedSize(ColorCodec codec, cv::Size size)
{
    const auto width = static_cast<std::size_t>(size.width);
    const auto height = static_cast<std::size_t>(size.height);
    if (codec == ColorCodec::Yuyv)
        return 2 * width * height;
    return width * height + 2 * ((width + 1) / 2) * ((height + 1) / 2);
}

} // namespace sim
