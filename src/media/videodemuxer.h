#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "packetsink.h"


// Cuts the video socket's byte stream (a 76-byte stream header, then packets with a 12-byte
// header) into FFmpeg packets and hands each one to an ordered list of sinks: the recorder first,
// then the decoder, plus any sink inserted among them (a probe placed first sees every packet
// before the decoder does). Once the header is read, every sink is opened with a description of
// the stream; the demuxer decodes nothing itself.
class VideoDemuxer : public QObject
{
    Q_OBJECT

public:
    static constexpr int HeaderSize = 76;
    static constexpr int PacketHeaderSize = 12;
    static constexpr quint32 MaxPayloadSize = 0x800000;
    static constexpr int MaxPacketsPerRead = 200;

    // recorder and decoder may be null and are not owned. A sink that is also a QObject and is
    // destroyed before the demuxer is skipped from then on.
    VideoDemuxer(QIODevice *socket, PacketSink *recorder, PacketSink *decoder);
    ~VideoDemuxer() override;

    // Adds a sink (not owned, same lifetime rule as above) at position in the list of non-null
    // sinks; positions outside the list append. Null sinks are ignored. A sink added after the
    // header is opened at once.
    void insertPacketSink(int position, PacketSink *sink);
    int packetSinkCount() const { return int(m_sinks.size()); }

    // What the sinks were opened with; null until the header is read.
    const AVCodecParameters *stream() const { return m_stream; }

    bool isHeaderParsed() const { return m_headerParsed; }
    QString deviceName() const { return m_deviceName; }
    QByteArray codecId() const { return m_codecId; }
    quint32 width() const { return m_width; }
    quint32 height() const { return m_height; }

signals:
    // Part of the public interface for observers; packets themselves travel by direct calls.
    void packetReady(AVPacket packet);

public slots:
    void read();

private:

    bool parseHeader();
    bool describeStream();
    // Fills m_packet from size payload bytes at data; false if no packet could be allocated.
    bool fillPacket(const char *data, int size);

    QPointer<QIODevice> m_socket;
    bool m_headerParsed = false;
    QByteArray m_buffer;
    AVCodecParameters *m_stream = nullptr;
    QList<GuardedPacketSink> m_sinks;
    QString m_deviceName;
    QByteArray m_codecId;
    quint32 m_width = 0;
    quint32 m_height = 0;
    AVPacket *m_packet = nullptr;
};
