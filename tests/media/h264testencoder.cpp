#include "h264testencoder.h"

#include "streambuilder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
#include <libavutil/opt.h>
}

quint64 EncodedPacket::ptsAndFlags() const
{
    if (config)
        return StreamBuilder::ConfigFlag;
    return quint64(pts) | (key ? StreamBuilder::KeyFlag : 0);
}

namespace {

bool drainEncoder(AVCodecContext *context, AVPacket *packet, QList<EncodedPacket> *out)
{
    int result;
    while ((result = avcodec_receive_packet(context, packet)) >= 0) {
        EncodedPacket encoded;
        encoded.data = QByteArray(reinterpret_cast<const char *>(packet->data), packet->size);
        encoded.pts = packet->pts;
        encoded.key = packet->flags & AV_PKT_FLAG_KEY;
        out->append(encoded);
        av_packet_unref(packet);
    }
    return result == AVERROR(EAGAIN) || result == AVERROR_EOF;
}

} // namespace

QList<EncodedPacket> H264TestEncoder::encode(int width, int height, int frameCount, QString *error)
{
    QList<EncodedPacket> packets;
    const AVCodec *codec = avcodec_find_encoder_by_name("libx264");
    if (!codec) {
        *error = QStringLiteral("libx264 encoder not available");
        return {};
    }
    AVCodecContext *context = avcodec_alloc_context3(codec);
    AVFrame *frame = av_frame_alloc();
    AVPacket *packet = av_packet_alloc();
    context->width = width;
    context->height = height;
    context->pix_fmt = AV_PIX_FMT_YUV420P;
    context->time_base = AVRational{1, 1000000};
    context->framerate = AVRational{30, 1};
    context->gop_size = 30;
    context->max_b_frames = 0;
    context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    av_opt_set(context->priv_data, "preset", "ultrafast", 0);
    av_opt_set(context->priv_data, "tune", "zerolatency", 0);

    bool ok = avcodec_open2(context, codec, nullptr) >= 0 && context->extradata_size > 0;
    if (ok) {
        EncodedPacket config;
        config.data = QByteArray(reinterpret_cast<const char *>(context->extradata), context->extradata_size);
        config.config = true;
        packets.append(config);

        frame->width = width;
        frame->height = height;
        frame->format = AV_PIX_FMT_YUV420P;
        ok = av_frame_get_buffer(frame, 0) >= 0;
    }
    for (int i = 0; ok && i < frameCount; ++i) {
        ok = av_frame_make_writable(frame) >= 0;
        for (int y = 0; ok && y < height; ++y)
            for (int x = 0; x < width; ++x)
                frame->data[0][y * frame->linesize[0] + x] = uint8_t(x + y + 5 * i);
        for (int y = 0; ok && y < height / 2; ++y)
            for (int x = 0; x < width / 2; ++x) {
                frame->data[1][y * frame->linesize[1] + x] = uint8_t(128 + x / 4);
                frame->data[2][y * frame->linesize[2] + x] = uint8_t(128 - y / 4);
            }
        frame->pts = qint64(i) * 33333;
        ok = ok && avcodec_send_frame(context, frame) >= 0 && drainEncoder(context, packet, &packets);
    }
    ok = ok && avcodec_send_frame(context, nullptr) >= 0 && drainEncoder(context, packet, &packets);
    if (!ok) {
        *error = QStringLiteral("H.264 encoding failed");
        packets.clear();
    }
    av_packet_free(&packet);
    av_frame_free(&frame);
    avcodec_free_context(&context);
    return packets;
}

QByteArray H264TestEncoder::stream(const QList<EncodedPacket> &packets, int width, int height)
{
    QByteArray bytes = StreamBuilder::header("test phone", "h264", quint32(width), quint32(height));
    for (const EncodedPacket &p : packets)
        bytes += StreamBuilder::packet(p.ptsAndFlags(), p.data);
    return bytes;
}
