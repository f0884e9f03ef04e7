#include "videodecoder.h"

#include "codecfeed.h"

#include <QtDebug>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

std::atomic_int VideoDecoder::s_live{0};
std::atomic_int VideoDecoder::s_liveContexts{0};

VideoDecoder::VideoDecoder(QObject *parent)
    : QObject(parent)
    , m_frame(av_frame_alloc())
{
    ++s_live;
}

VideoDecoder::~VideoDecoder()
{
    closeCodec();
    av_frame_free(&m_frame);
    --s_live;
}

void VideoDecoder::openStream(const AVCodecParameters *stream)
{
    closeCodec();
    if (!stream)
        return;
    const AVCodec *codec = avcodec_find_decoder(stream->codec_id);
    if (!codec) {
        qWarning() << "VideoDecoder: no decoder for" << avcodec_get_name(stream->codec_id);
        return;
    }
    m_context = avcodec_alloc_context3(codec);
    if (!m_context)
        return;
    ++s_liveContexts;
    if (avcodec_parameters_to_context(m_context, stream) < 0) {
        closeCodec();
        return;
    }
    // Pictures leave the decoder as soon as they are whole.
    m_context->flags |= AV_CODEC_FLAG_LOW_DELAY;
    if (stream->codec_id == AV_CODEC_ID_H264)
        m_context->flags2 |= AV_CODEC_FLAG2_FAST | AV_CODEC_FLAG2_CHUNKS;

    const int result = avcodec_open2(m_context, codec, nullptr);
    if (result < 0) {
        char text[64] = {};
        av_strerror(result, text, sizeof text);
        qWarning() << "VideoDecoder: cannot open decoder" << codec->name << ":" << text;
        closeCodec();
    }
}

void VideoDecoder::closeCodec()
{
    if (!m_context)
        return;
    avcodec_free_context(&m_context);
    --s_liveContexts;
}

void VideoDecoder::setDecodingPaused(bool paused)
{
    if (m_paused == paused)
        return;
    m_paused = paused;
    // Pictures after a gap would be drawn from missing references: start again at a key frame.
    if (!paused) {
        m_waitingForKeyFrame = true;
        if (m_context)
            avcodec_flush_buffers(m_context);
    }
}

void VideoDecoder::decodePacket(const AVPacket *packet)
{
    if (m_paused || !m_frame || !m_context)
        return;
    // Configuration packets (no timestamp) are always needed; pictures only from a key frame on.
    if (m_waitingForKeyFrame && packet->pts != AV_NOPTS_VALUE) {
        if (!(packet->flags & AV_PKT_FLAG_KEY))
            return;
        m_waitingForKeyFrame = false;
    }

    CodecFeed::decode(m_context, packet, m_frame, [this](AVFrame *frame) { emit frameDecoded(frame); });
}
