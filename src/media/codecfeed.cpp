#include "codecfeed.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

namespace CodecFeed {

namespace {
void drain(AVCodecContext *context, AVFrame *frame, const std::function<void(AVFrame *)> &take)
{
    while (avcodec_receive_frame(context, frame) >= 0) {
        take(frame);
        av_frame_unref(frame);
    }
}
}

void decode(AVCodecContext *context, const AVPacket *packet, AVFrame *frame, const std::function<void(AVFrame *)> &take)
{
    int result = avcodec_send_packet(context, packet);
    if (result == AVERROR(EAGAIN)) {
        drain(context, frame, take);
        result = avcodec_send_packet(context, packet);
    }
    if (result < 0)
        return;
    drain(context, frame, take);
}

}
