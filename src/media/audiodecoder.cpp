#include "audiodecoder.h"

#include "codecfeed.h"

#include "audiodemuxer.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

AudioDecoder::AudioDecoder(QObject *parent)
    : QObject(parent)
    , m_frame(av_frame_alloc())
{
}

AudioDecoder::~AudioDecoder()
{
    av_frame_free(&m_frame);
}

void AudioDecoder::setDemuxer(AudioDemuxer *demuxer)
{
    m_demuxer = demuxer;
}

void AudioDecoder::setDecodingPaused(bool paused)
{
    m_paused = paused;
}

void AudioDecoder::decodePacket(const AVPacket *packet)
{
    // The configuration packet is the "OpusHead" header, not sound: decoding it would be noise.
    if (m_paused || !m_frame || !packet || packet->pts == AV_NOPTS_VALUE)
        return;
    if (m_demuxer)
        m_codecContext = m_demuxer->sharedCodecContext();
    AVCodecContext *context = m_codecContext.get();
    if (!context)
        return;

    CodecFeed::decode(context, packet, m_frame, [this](AVFrame *frame) { emit frameDecoded(frame); });
}

