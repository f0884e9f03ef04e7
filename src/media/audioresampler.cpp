#include "audioresampler.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/frame.h>
#include <libavutil/opt.h>
#include <libavutil/samplefmt.h>
#include <libswresample/swresample.h>
}

AudioResampler::~AudioResampler()
{
    swr_free(&m_context);
}

bool AudioResampler::setUp(const AVFrame *frame)
{
    AVChannelLayout stereo{};
    av_channel_layout_default(&stereo, Channels);
    // FFmpeg 5.1 takes the layouts by non-const pointer but only reads them.
    AVChannelLayout source = frame->ch_layout;
    SwrContext *context = nullptr;
    if (swr_alloc_set_opts2(&context, &stereo, AV_SAMPLE_FMT_S16, SampleRate, &source,
                            AVSampleFormat(frame->format), frame->sample_rate, 0, nullptr) < 0
        || swr_init(context) < 0) {
        swr_free(&context);
        return false;
    }
    m_context = context;
    return true;
}

QByteArray AudioResampler::convert(const AVFrame *frame)
{
    if (!frame || frame->nb_samples <= 0 || frame->sample_rate <= 0)
        return {};
    if (!m_context && !setUp(frame))
        return {};
    const int maxOut = swr_get_out_samples(m_context, frame->nb_samples);
    if (maxOut <= 0)
        return {};
    QByteArray pcm(qsizetype(maxOut) * BytesPerSample, Qt::Uninitialized);
    auto *out = reinterpret_cast<uint8_t *>(pcm.data());
    const int converted = swr_convert(m_context, &out, maxOut, const_cast<const uint8_t **>(frame->extended_data),
                                      frame->nb_samples);
    if (converted < 0)
        return {};
    pcm.truncate(qsizetype(converted) * BytesPerSample);
    return pcm;
}
