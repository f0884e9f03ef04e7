#pragma once

#include "packetsink.h"

#include <QObject>

#include <atomic>

struct AVCodecContext;
struct AVFrame;

// Decodes the packets of one video stream and publishes every picture through frameDecoded, on
// the thread that feeds it. The codec context is its own: opened from the stream's description
// when the demuxer opens the stream, freed with the decoder.
class VideoDecoder : public QObject, public PacketSink
{
    Q_OBJECT

public:
    explicit VideoDecoder(QObject *parent = nullptr);
    ~VideoDecoder() override;

    // While paused, packets are dropped; decoding resumes at the next key frame.
    void setDecodingPaused(bool paused);
    bool isDecodingPaused() const { return m_paused; }

    void openStream(const AVCodecParameters *stream) override;
    void decodePacket(const AVPacket *packet);
    void pushPacket(const AVPacket *packet) override { decodePacket(packet); }

    // Null until a stream opened; read it, never feed it.
    const AVCodecContext *codecContext() const { return m_context; }

    // Decoders and codec contexts alive in the process, for leak checks.
    static int liveInstances() { return s_live.load(); }
    static int liveCodecContexts() { return s_liveContexts.load(); }

signals:
    // The working frame, valid only during the emission: reference what you need, never keep it.
    void frameDecoded(AVFrame *frame);

private:
    void closeCodec();

    static std::atomic_int s_live;
    static std::atomic_int s_liveContexts;
    AVCodecContext *m_context = nullptr;
    bool m_paused = false;
    bool m_waitingForKeyFrame = false;
    AVFrame *m_frame = nullptr;
};
