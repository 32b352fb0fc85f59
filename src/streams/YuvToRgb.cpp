#include "streams/YuvToRgb.h"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
}

namespace {

struct FreeFrame {
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
};

struct FreeContext {
    void operator()(SwsContext *context) const { sws_freeContext(context); }
};

using Picture = std::unique_ptr<AVFrame, FreeFrame>;
using Scaler = std::unique_ptr<SwsContext, FreeContext>;

AVPixelFormat formatOf(int type)
{
    switch (type) {
    case ImageData::YUYV:
        return AV_PIX_FMT_YUYV422;
    case ImageData::YUV420p:
        return AV_PIX_FMT_YUV420P;
    default:
        return AV_PIX_FMT_NONE;
    }
}

/// swscale reads and writes rows in blocks of this many pixels, past the end of a row that is no multiple of
/// it.
constexpr int blockPixels = 32;

/// Points `picture` at the bytes of a frame; the bytes that it needs, negative where there can't be any.
int point(AVFrame &picture, const unsigned char *bytes, AVPixelFormat format, int width, int height)
{
    picture.format = format;
    picture.width = width;
    picture.height = height;
    return av_image_fill_arrays(picture.data, picture.linesize, bytes, format, width, height, 1);
}

/// A picture of the same size with room behind its rows.
Picture roomy(AVPixelFormat format, int width, int height)
{
    Picture picture(av_frame_alloc());
    if (!picture)
        return nullptr;
    picture->format = format;
    picture->width = width;
    picture->height = height;
    return av_frame_get_buffer(picture.get(), 0) == 0 ? std::move(picture) : nullptr;
}

void copyPicture(AVFrame &target, const AVFrame &source)
{
    av_image_copy(target.data, target.linesize, const_cast<const std::uint8_t **>(source.data),
        source.linesize, AVPixelFormat(source.format), source.width, source.height);
}

bool scale(const AVFrame &source, AVFrame &target)
{
    const Scaler scaler(sws_getContext(source.width, source.height, AVPixelFormat(source.format),
        target.width, target.height, AVPixelFormat(target.format), SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (scaler)
        sws_scale(scaler.get(), source.data, source.linesize, 0, source.height, target.data, target.linesize);
    return scaler != nullptr;
}

bool scaleWithRoom(const AVFrame &source, AVFrame &target)
{
    const Picture from = roomy(AVPixelFormat(source.format), source.width, source.height);
    const Picture to = roomy(AVPixelFormat(target.format), target.width, target.height);
    if (!from || !to)
        return false;
    copyPicture(*from, source);
    if (!scale(*from, *to))
        return false;
    copyPicture(target, *to);
    return true;
}

} // namespace

bool yuvToRgb(const ImageData::Frame &frame, unsigned char *rgb, int bytesPerLine)
{
    const AVPixelFormat format = formatOf(frame.type);
    const Picture source(av_frame_alloc()), target(av_frame_alloc());
    if (format == AV_PIX_FMT_NONE || !frame.data || frame.width <= 0 || frame.height <= 0 || !source
        || !target)
        return false;
    const int needed = point(*source, frame.data.get(), format, frame.width, frame.height);
    if (needed <= 0 || needed > frame.dataSize)
        return false;
    if (point(*target, rgb, AV_PIX_FMT_RGB24, frame.width, frame.height) <= 0)
        return false;
    target->linesize[0] = bytesPerLine;
    const bool fits = frame.width % blockPixels == 0 && frame.height % 2 == 0;
    return fits ? scale(*source, *target) : scaleWithRoom(*source, *target);
}
