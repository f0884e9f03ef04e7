#include "matroskawriter.h"

#include <QtDebug>

#include <cstring>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/dict.h>
#include <libavutil/mem.h>
}

namespace {

constexpr AVRational Microseconds{1, 1000000};

QString errorText(int code)
{
    char text[128] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromUtf8(text);
}

} // namespace

MatroskaWriter::~MatroskaWriter()
{
    close();
}

bool MatroskaWriter::open(const QString &path)
{
    close();
    const QByteArray name = path.toUtf8();
    if (avformat_alloc_output_context2(&m_context, nullptr, "matroska", name.constData()) < 0 || !m_context)
        return false;
    if (avio_open2(&m_context->pb, name.constData(), AVIO_FLAG_WRITE, nullptr, nullptr) < 0) {
        close();
        return false;
    }
    return true;
}

void MatroskaWriter::close()
{
    if (!m_context)
        return;
    if (m_context->pb)
        avio_closep(&m_context->pb);
    avformat_free_context(m_context);
    m_context = nullptr;
    m_video = nullptr;
    m_audio = nullptr;
    m_headerWritten = false;
    m_lastVideoPts = AV_NOPTS_VALUE;
    m_lastAudioPts = AV_NOPTS_VALUE;
}

AVStream *MatroskaWriter::newStream(const AVCodecParameters *described)
{
    AVStream *stream = avformat_new_stream(m_context, nullptr);
    if (stream && described)
        avcodec_parameters_copy(stream->codecpar, described);
    return stream;
}

bool MatroskaWriter::addVideo(const AVCodecParameters *described, const AVPacket *config, AVRational frameRate)
{
    if (!m_context || m_video || !config || config->size <= 0)
        return false;
    AVStream *stream = newStream(described);
    if (!stream)
        return false;
    stream->codecpar->codec_type = AVMEDIA_TYPE_VIDEO;
    stream->codecpar->codec_id = AV_CODEC_ID_H264;
    stream->codecpar->codec_tag = 0;
    av_freep(&stream->codecpar->extradata);
    // The muxer may read past the end, so the copy carries zeroed padding.
    stream->codecpar->extradata = static_cast<uint8_t *>(av_mallocz(size_t(config->size) + 64));
    stream->codecpar->extradata_size = stream->codecpar->extradata ? config->size : 0;
    if (stream->codecpar->extradata)
        std::memcpy(stream->codecpar->extradata, config->data, size_t(config->size));
    stream->avg_frame_rate = frameRate;
    stream->r_frame_rate = frameRate;
    stream->time_base = Microseconds;
    m_video = stream;
    return true;
}

bool MatroskaWriter::addAudio(const AVCodecParameters *described)
{
    if (!m_context || m_audio)
        return false;
    AVStream *stream = newStream(described);
    if (!stream)
        return false;
    AVCodecParameters *par = stream->codecpar;
    par->codec_type = AVMEDIA_TYPE_AUDIO;
    par->codec_id = AV_CODEC_ID_OPUS;
    av_channel_layout_uninit(&par->ch_layout);
    av_channel_layout_default(&par->ch_layout, 2);
    par->sample_rate = 48000;
    par->format = AV_SAMPLE_FMT_S16;
    stream->time_base = Microseconds;
    m_audio = stream;
    return true;
}

bool MatroskaWriter::writeHeader()
{
    if (!m_context || m_headerWritten)
        return m_headerWritten;
    AVDictionary *options = nullptr;
    av_dict_set(&options, "reserve_index_space", "0", 0);
    const int result = avformat_write_header(m_context, &options);
    av_dict_free(&options);
    m_headerWritten = result >= 0;
    if (!m_headerWritten)
        qWarning().noquote() << "MediaRecorder: no file header:" << errorText(result);
    return m_headerWritten;
}

bool MatroskaWriter::write(AVPacket *packet, AVStream *stream, qint64 *lastWritten)
{
    if (!m_headerWritten || !m_context || !m_context->pb || !stream || !packet->data)
        return false;
    packet->stream_index = stream->index;
    packet->pts = qMax<qint64>(packet->pts, 0);
    packet->dts = qMin(qMax<qint64>(packet->dts, 0), packet->pts);
    av_packet_rescale_ts(packet, Microseconds, stream->time_base);
    if (*lastWritten != AV_NOPTS_VALUE && *lastWritten >= packet->pts) {
        packet->pts = *lastWritten + 1;
        packet->dts = packet->pts;
    }
    *lastWritten = packet->pts;
    const int result = av_interleaved_write_frame(m_context, packet);
    if (result < 0) {
        qWarning().noquote() << "MediaRecorder: packet lost:" << errorText(result);
        return false;
    }
    return true;
}

void MatroskaWriter::finish()
{
    if (m_headerWritten) {
        av_interleaved_write_frame(m_context, nullptr);
        const int result = av_write_trailer(m_context);
        if (result < 0)
            qWarning().noquote() << "MediaRecorder: no file trailer:" << errorText(result);
    }
    close();
}
