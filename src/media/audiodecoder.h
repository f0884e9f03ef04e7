#pragma once

#include "packetsink.h"

#include <QObject>
#include <QPointer>

#include <memory>

struct AVCodecContext;
struct AVFrame;
class AudioDemuxer;

// Decodes the Opus packets of one audio stream with the context its demuxer opened and
// publishes every frame through frameDecoded, on the thread that feeds it.
class AudioDecoder : public QObject, public PacketSink
{
    Q_OBJECT

public:
    explicit AudioDecoder(QObject *parent = nullptr);
    ~AudioDecoder() override;

    void setDemuxer(AudioDemuxer *demuxer);
    void setDecodingPaused(bool paused);
    bool isDecodingPaused() const { return m_paused; }

    void decodePacket(const AVPacket *packet);
    void pushPacket(const AVPacket *packet) override { decodePacket(packet); }

signals:
    // The working frame, valid only during the emission: copy what you need, never keep or free it.
    void frameDecoded(AVFrame *frame);

private:

    QPointer<AudioDemuxer> m_demuxer;
    // Keeps the borrowed context alive if the demuxer goes first.
    std::shared_ptr<AVCodecContext> m_codecContext;
    bool m_paused = false;
    AVFrame *m_frame = nullptr;
};
