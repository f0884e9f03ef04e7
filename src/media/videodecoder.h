#pragma once

#include "packetsink.h"

#include <QObject>
#include <QPointer>

#include <atomic>
#include <memory>

struct AVCodecContext;
struct AVFrame;
class VideoDemuxer;

// Decodes the packets of one video stream with the codec context that its demuxer opened and
// publishes every picture through frameDecoded, on the thread that feeds it.
class VideoDecoder : public QObject, public PacketSink
{
    Q_OBJECT

public:
    explicit VideoDecoder(QObject *parent = nullptr);
    ~VideoDecoder() override;

    void setDemuxer(VideoDemuxer *demuxer);
    // While paused, packets are dropped; decoding resumes at the next key frame.
    void setDecodingPaused(bool paused);
    bool isDecodingPaused() const { return m_paused; }

    void decodePacket(const AVPacket *packet);
    void pushPacket(const AVPacket *packet) override { decodePacket(packet); }

    // Decoders alive in the process, for leak checks.
    static int liveInstances() { return s_live.load(); }

signals:
    // The working frame, valid only during the emission: reference what you need, never keep it.
    void frameDecoded(AVFrame *frame);

private:

    static std::atomic_int s_live;
    QPointer<VideoDemuxer> m_demuxer;
    // Keeps the borrowed context alive if the demuxer goes first.
    std::shared_ptr<AVCodecContext> m_codecContext;
    bool m_paused = false;
    bool m_waitingForKeyFrame = false;
    AVFrame *m_frame = nullptr;
};
