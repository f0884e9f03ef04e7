#include "videodecoder.h"

#include "codecfeed.h"

#include "videodemuxer.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

std::atomic_int VideoDecoder::s_live{0};

VideoDecoder::VideoDecoder(QObject *parent)
    : QObject(parent)
    , m_frame(av_frame_alloc())
{
    ++s_live;
}

VideoDecoder::~VideoDecoder()
{
    av_frame_free(&m_frame);
    --s_live;
}

void VideoDecoder::setDemuxer(VideoDemuxer *demuxer)
{
    m_demuxer = demuxer;
}

void VideoDecoder::setDecodingPaused(bool paused)
{
    if (m_paused == paused)
        return;
    m_paused = paused;
    // Pictures after a gap would be drawn from missing references: start again at a key frame.
    if (!paused) {
        m_waitingForKeyFrame = true;
        if (m_codecContext)
            avcodec_flush_buffers(m_codecContext.get());
    }
}

void VideoDecoder::decodePacket(const AVPacket *packet)
{
    if (m_paused || !m_frame)
        return;
    // Configuration packets (no timestamp) are always needed; pictures only from a key frame on.
    if (m_waitingForKeyFrame && packet->pts != AV_NOPTS_VALUE) {
        if (!(packet->flags & AV_PKT_FLAG_KEY))
            return;
        m_waitingForKeyFrame = false;
    }
    if (m_demuxer)
        m_codecContext = m_demuxer->sharedCodecContext();
    AVCodecContext *context = m_codecContext.get();
    if (!context)
        return;

    CodecFeed::decode(context, packet, m_frame, [this](AVFrame *frame) { emit frameDecoded(frame); });
}

