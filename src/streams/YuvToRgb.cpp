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

/// Points `picture` at the bytes of a frame; the bytes that it needs, negative where there can't be any.
int point(AVFrame &picture, const unsigned char *bytes, AVPixelFormat format, int width, int height)
{
    return av_image_fill_arrays(picture.data, picture.linesize, bytes, format, width, height, 1);
}

} // namespace

bool yuvToRgb(const ImageData::Frame &frame, unsigned char *rgb, int bytesPerLine)
{
    const AVPixelFormat format = formatOf(frame.type);
    const Picture source(av_frame_alloc()), target(av_frame_alloc());
    if (format == AV_PIX_FMT_NONE || !frame.data || !source || !target)
        return false;
    const int needed = point(*source, frame.data.get(), format, frame.width, frame.height);
    if (needed <= 0 || needed > frame.dataSize)
        return false;
    if (point(*target, rgb, AV_PIX_FMT_RGB24, frame.width, frame.height) <= 0)
        return false;
    target->linesize[0] = bytesPerLine;
    const Scaler scaler(sws_getContext(frame.width, frame.height, format, frame.width, frame.height,
        AV_PIX_FMT_RGB24, SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (!scaler)
        return false;
    sws_scale(scaler.get(), source->data, source->linesize, 0, frame.height, target->data, target->linesize);
    return true;
}
