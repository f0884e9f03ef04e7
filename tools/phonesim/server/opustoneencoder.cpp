#include "opustoneencoder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/channel_layout.h>
#include <libavutil/error.h>
}

#include <cmath>

OpusToneEncoder::~OpusToneEncoder()
{
    close();
}

bool OpusToneEncoder::open(int bitRate, QString *error)
{
    close();
    const AVCodec *codec = avcodec_find_encoder_by_name("libopus");
    if (!codec) {
        *error = "the libopus encoder is not available in this FFmpeg";
        return false;
    }
    m_context = avcodec_alloc_context3(codec);
    m_frame = av_frame_alloc();
    m_packet = av_packet_alloc();
    if (!m_context || !m_frame || !m_packet) {
        *error = "out of memory setting up the Opus encoder";
        close();
        return false;
    }
    m_context->sample_rate = sampleRate;
    m_context->sample_fmt = AV_SAMPLE_FMT_S16;
    av_channel_layout_default(&m_context->ch_layout, channels);
    m_context->bit_rate = bitRate;
    m_context->time_base = AVRational{1, sampleRate};
    int result = avcodec_open2(m_context, codec, nullptr);
    if (result < 0 || m_context->frame_size != samplesPerPacket) {
        char text[AV_ERROR_MAX_STRING_SIZE] = {};
        av_strerror(result, text, sizeof text);
        *error = result < 0 ? QString("cannot open the Opus encoder: %1").arg(text)
                            : QString("the Opus encoder wants %1 samples per packet").arg(m_context->frame_size);
        close();
        return false;
    }
    m_frame->nb_samples = samplesPerPacket;
    m_frame->format = AV_SAMPLE_FMT_S16;
    m_frame->sample_rate = sampleRate;
    av_channel_layout_copy(&m_frame->ch_layout, &m_context->ch_layout);
    if (av_frame_get_buffer(m_frame, 0) < 0) {
        *error = "out of memory for the audio frame";
        close();
        return false;
    }
    m_config = QByteArray(reinterpret_cast<const char *>(m_context->extradata), m_context->extradata_size);
    m_samples = 0;
    return true;
}

void OpusToneEncoder::close()
{
    avcodec_free_context(&m_context);
    av_frame_free(&m_frame);
    av_packet_free(&m_packet);
    m_config.clear();
}

QByteArray OpusToneEncoder::nextPacket(qint64 *ptsUs)
{
    if (!m_context || av_frame_make_writable(m_frame) < 0)
        return {};
    auto *samples = reinterpret_cast<int16_t *>(m_frame->data[0]);
    for (int i = 0; i < samplesPerPacket; ++i) {
        const double t = double(m_samples + i) / sampleRate;
        const auto value = int16_t(std::lround(6000.0 * std::sin(2.0 * M_PI * toneHz * t)));
        samples[2 * i] = value;
        samples[2 * i + 1] = value;
    }
    m_frame->pts = m_samples;
    *ptsUs = m_samples * 1000000 / sampleRate;
    m_samples += samplesPerPacket;
    if (avcodec_send_frame(m_context, m_frame) < 0)
        return {};
    QByteArray out;
    // libopus answers each frame with one packet.
    if (avcodec_receive_packet(m_context, m_packet) == 0) {
        out = QByteArray(reinterpret_cast<const char *>(m_packet->data), m_packet->size);
        av_packet_unref(m_packet);
    }
    return out;
}
