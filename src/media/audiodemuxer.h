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


// Cuts the audio socket's byte stream into FFmpeg packets and hands each one to the recorder,
// then to the decoder, after opening both with a description of the stream. The stream opens with the 4-byte codec id; the 64-byte device name comes
// before it only when the audio socket is the session's first one (video off). Codec ids 0 and 1
// are the phone saying it has no sound to give: the demuxer reports that and reads nothing more.
// Runs on whichever thread owns the socket and never blocks.
class AudioDemuxer : public QObject
{
    Q_OBJECT

public:
    static constexpr int DeviceNameSize = 64;
    static constexpr int CodecIdSize = 4;
    static constexpr quint32 MaxPayloadSize = 0x100000;
    static constexpr int MaxPacketsPerRead = 50;
    static constexpr quint32 CodecDisabled = 0;
    static constexpr quint32 CodecError = 1;

    enum class State { AwaitingHeader, Streaming, Unavailable };
    Q_ENUM(State)

    // recorder and decoder may be null and are not owned; a sink that is also a QObject and is
    // destroyed first is skipped from then on.
    AudioDemuxer(QIODevice *socket, PacketSink *recorder, PacketSink *decoder, bool deviceNameFirst = false);
    ~AudioDemuxer() override;

    // What the sinks were opened with; null until the header named a stream with sound.
    const AVCodecParameters *stream() const { return m_stream; }

    State state() const { return m_state; }
    bool isHeaderParsed() const { return m_state != State::AwaitingHeader; }
    QString deviceName() const { return m_deviceName; }
    quint32 codecId() const { return m_codecId; }
    int headerSize() const { return m_deviceNameFirst ? DeviceNameSize + CodecIdSize : CodecIdSize; }

signals:
    void packetReady(AVPacket packet);
    // The phone sends no sound: a translated text for the user. Emitted once; video and control go on.
    void audioUnavailable(const QString &message);

public slots:
    void read();

private:
    bool parseHeader();
    void describeStream();
    void giveUp(const QString &message);

    QPointer<QIODevice> m_socket;
    bool m_deviceNameFirst = false;
    State m_state = State::AwaitingHeader;
    QByteArray m_buffer;
    AVCodecParameters *m_stream = nullptr;
    QList<GuardedPacketSink> m_sinks;
    QString m_deviceName;
    quint32 m_codecId = 0;
    AVPacket *m_packet = nullptr;
};
