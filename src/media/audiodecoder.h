#pragma once

#include "packetsink.h"

#include <QObject>
#include <QString>

struct AVCodecContext;
struct AVFrame;

// Decodes the Opus packets of one audio stream and publishes every frame through frameDecoded,
// on the thread that feeds it. Opens its own codec context from the stream's description when
// the demuxer opens the stream, and frees it with itself.
class AudioDecoder : public QObject, public PacketSink
{
    Q_OBJECT

public:
    explicit AudioDecoder(QObject *parent = nullptr);
    ~AudioDecoder() override;

    void setDecodingPaused(bool paused);
    bool isDecodingPaused() const { return m_paused; }

    void openStream(const AVCodecParameters *stream) override;
    void decodePacket(const AVPacket *packet);
    void pushPacket(const AVPacket *packet) override { decodePacket(packet); }

signals:
    // The working frame, valid only during the emission: copy what you need, never keep or free it.
    void frameDecoded(AVFrame *frame);
    // The decoder could not be set up: a translated text for the user. Packets are dropped from
    // then on; video and control go on.
    void unavailable(const QString &message);

private:
    bool openCodec(const AVCodecParameters *stream, QString *error);

    AVCodecContext *m_context = nullptr;
    bool m_paused = false;
    AVFrame *m_frame = nullptr;
};
