#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QSize>
#include <QtEndian>

extern "C" {
#include <libavcodec/avcodec.h>
}

// Reads a media socket's bytes the way the PC does, written independently of the phone's code:
// optional 64-byte name, 4-byte codec id, for video width and height, then 12-byte packet headers.
struct MediaPacket
{
    quint64 ptsAndFlags = 0;
    QByteArray payload;
    bool config() const { return ptsAndFlags >> 63; }
    bool keyFrame() const { return (ptsAndFlags >> 62) & 1; }
    qint64 pts() const { return qint64(ptsAndFlags & ((quint64(1) << 62) - 1)); }
};

struct MediaStream
{
    bool headerComplete = false;
    QByteArray name;
    QByteArray codec;
    quint32 width = 0;
    quint32 height = 0;
    QList<MediaPacket> packets; // complete packets only

    static MediaStream parse(const QByteArray &bytes, bool withName, bool video)
    {
        MediaStream stream;
        qsizetype at = 0;
        const qsizetype headerSize = (withName ? 64 : 0) + (video ? 12 : 4);
        if (bytes.size() < headerSize)
            return stream;
        if (withName) {
            stream.name = bytes.left(64);
            stream.name.truncate(stream.name.indexOf('\0') < 0 ? 64 : stream.name.indexOf('\0'));
            at = 64;
        }
        stream.codec = bytes.mid(at, 4);
        at += 4;
        if (video) {
            stream.width = qFromBigEndian<quint32>(bytes.constData() + at);
            stream.height = qFromBigEndian<quint32>(bytes.constData() + at + 4);
            at += 8;
        }
        stream.headerComplete = true;
        while (bytes.size() - at >= 12) {
            const quint64 flags = qFromBigEndian<quint64>(bytes.constData() + at);
            const quint32 size = qFromBigEndian<quint32>(bytes.constData() + at + 8);
            if (bytes.size() - at - 12 < qsizetype(size))
                break;
            stream.packets << MediaPacket{flags, bytes.mid(at + 12, size)};
            at += 12 + size;
        }
        return stream;
    }
};

// Decodes packets with FFmpeg's own decoders, fed as the PC's decoder is fed.
class TestDecoder
{
public:
    explicit TestDecoder(const char *name)
    {
        const AVCodec *codec = avcodec_find_decoder_by_name(name);
        m_context = avcodec_alloc_context3(codec);
        if (QByteArray(name) == "opus") {
            m_context->sample_rate = 48000;
            av_channel_layout_default(&m_context->ch_layout, 2);
        }
        m_ok = codec && avcodec_open2(m_context, codec, nullptr) == 0;
        m_frame = av_frame_alloc();
        m_packet = av_packet_alloc();
    }
    ~TestDecoder()
    {
        av_frame_free(&m_frame);
        av_packet_free(&m_packet);
        avcodec_free_context(&m_context);
    }

    bool ok() const { return m_ok; }

    // Appends the frames it yields to `frames` (sizes, sample counts and luma copied out).
    void decode(const MediaPacket &packet)
    {
        if (!m_ok || av_new_packet(m_packet, int(packet.payload.size())) != 0)
            return;
        memcpy(m_packet->data, packet.payload.constData(), size_t(packet.payload.size()));
        m_packet->pts = packet.config() ? AV_NOPTS_VALUE : packet.pts();
        if (packet.keyFrame())
            m_packet->flags |= AV_PKT_FLAG_KEY;
        // A lone configuration packet holds no picture; FFmpeg keeps its parameter sets and says
        // "no frame", which is no fault of the stream.
        if (avcodec_send_packet(m_context, m_packet) < 0 && !packet.config())
            ++errors;
        av_packet_unref(m_packet);
        while (avcodec_receive_frame(m_context, m_frame) == 0) {
            Frame frame;
            frame.size = QSize(m_frame->width, m_frame->height);
            frame.sampleRate = m_frame->sample_rate;
            frame.channels = m_frame->ch_layout.nb_channels;
            frame.samples = m_frame->nb_samples;
            if (m_frame->format == AV_PIX_FMT_YUV420P) {
                frame.luma = QImage(m_frame->width, m_frame->height, QImage::Format_Grayscale8);
                for (int y = 0; y < m_frame->height; ++y)
                    memcpy(frame.luma.scanLine(y), m_frame->data[0] + y * m_frame->linesize[0], size_t(m_frame->width));
            }
            frames << frame;
            av_frame_unref(m_frame);
        }
    }

    struct Frame
    {
        QSize size;
        int sampleRate = 0;
        int channels = 0;
        int samples = 0;
        QImage luma;
    };
    QList<Frame> frames;
    int errors = 0;

private:
    AVCodecContext *m_context = nullptr;
    AVFrame *m_frame = nullptr;
    AVPacket *m_packet = nullptr;
    bool m_ok = false;
};
