#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
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
    QByteArray name;
    QByteArray codec;
    QSize size;
    QList<MediaPacket> packets; // complete packets only

    static MediaStream parse(const QByteArray &bytes, bool withName, bool video)
    {
        MediaStream stream;
        qsizetype at = withName ? 64 : 0;
        if (bytes.size() < at + (video ? 12 : 4))
            return stream;
        stream.name = bytes.left(at);
        stream.name.truncate(stream.name.indexOf('\0') < 0 ? at : stream.name.indexOf('\0'));
        stream.codec = bytes.mid(at, 4);
        at += 4;
        if (video) {
            stream.size = QSize(qFromBigEndian<qint32>(bytes.constData() + at), qFromBigEndian<qint32>(bytes.constData() + at + 4));
            at += 8;
        }
        while (bytes.size() - at >= 12) {
            const quint32 size = qFromBigEndian<quint32>(bytes.constData() + at + 8);
            if (bytes.size() - at - 12 < qsizetype(size))
                break;
            stream.packets << MediaPacket{qFromBigEndian<quint64>(bytes.constData() + at), bytes.mid(at + 12, size)};
            at += 12 + size;
        }
        return stream;
    }
};

// Decodes H.264 packets with FFmpeg's own decoder, fed as the PC's decoder is fed, and keeps the
// luma plane of each picture.
class TestDecoder
{
public:
    TestDecoder()
    {
        const AVCodec *codec = avcodec_find_decoder(AV_CODEC_ID_H264);
        m_context = avcodec_alloc_context3(codec);
        m_ok = codec && avcodec_open2(m_context, codec, nullptr) == 0;
    }
    ~TestDecoder()
    {
        av_frame_free(&m_frame);
        av_packet_free(&m_packet);
        avcodec_free_context(&m_context);
    }

    bool ok() const { return m_ok; }

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
            QImage luma(m_frame->width, m_frame->height, QImage::Format_Grayscale8);
            for (int y = 0; y < m_frame->height; ++y)
                memcpy(luma.scanLine(y), m_frame->data[0] + y * m_frame->linesize[0], size_t(m_frame->width));
            frames << luma;
            av_frame_unref(m_frame);
        }
    }

    QList<QImage> frames;
    int errors = 0;

private:
    AVCodecContext *m_context = nullptr;
    AVFrame *m_frame = av_frame_alloc();
    AVPacket *m_packet = av_packet_alloc();
    bool m_ok = false;
};
