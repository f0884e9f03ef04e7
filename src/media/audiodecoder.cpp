#include "audiodecoder.h"

#include "codecfeed.h"

#include <QtDebug>

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
    avcodec_free_context(&m_context);
    av_frame_free(&m_frame);
}

void AudioDecoder::openStream(const AVCodecParameters *stream)
{
    avcodec_free_context(&m_context);
    QString error;
    if (!openCodec(stream, &error)) {
        avcodec_free_context(&m_context);
        qWarning().noquote() << "AudioDecoder:" << error;
        emit unavailable(tr("Sound cannot be played: %1").arg(error));
    }
}

bool AudioDecoder::openCodec(const AVCodecParameters *stream, QString *error)
{
    const AVCodec *codec = stream ? avcodec_find_decoder(stream->codec_id) : nullptr;
    if (!codec) {
        *error = tr("no Opus decoder in this FFmpeg");
        return false;
    }
    m_context = avcodec_alloc_context3(codec);
    if (!m_context || avcodec_parameters_to_context(m_context, stream) < 0) {
        *error = tr("out of memory for the Opus decoder");
        return false;
    }
    const int result = avcodec_open2(m_context, codec, nullptr);
    if (result < 0) {
        char text[64] = {};
        av_strerror(result, text, sizeof text);
        *error = tr("the Opus decoder did not open: %1 (error code: %2)").arg(QString::fromUtf8(text)).arg(result);
        return false;
    }
    return true;
}

void AudioDecoder::setDecodingPaused(bool paused)
{
    m_paused = paused;
}

void AudioDecoder::decodePacket(const AVPacket *packet)
{
    // The configuration packet is the "OpusHead" header, not sound: decoding it would be noise.
    if (m_paused || !m_frame || !m_context || !packet || packet->pts == AV_NOPTS_VALUE)
        return;

    CodecFeed::decode(m_context, packet, m_frame, [this](AVFrame *frame) { emit frameDecoded(frame); });
}
