#pragma once

#include "packetsink.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

struct AVCodecContext;
struct AVFrame;
class ScreenshotWriter;
class VideoDemuxer;

// Decodes the packets of one video stream with the codec context that its demuxer opened,
// publishes every picture through frameDecoded, keeps the last one and saves it on request.
class VideoDecoder : public QObject, public PacketSink
{
    Q_OBJECT

public:
    explicit VideoDecoder(QObject *parent = nullptr);
    ~VideoDecoder() override;

    void setDemuxer(VideoDemuxer *demuxer);
    void setDecodingPaused(bool paused);
    bool isDecodingPaused() const { return m_paused; }
    // The serial that names screenshot files, used verbatim.
    void setScreenshotSerial(const QString &serial);
    QString screenshotSerial() const { return m_serial; }

    void decodePacket(const AVPacket *packet);
    void pushPacket(const AVPacket *packet) override { decodePacket(packet); }

    // The most recent picture with a positive size; null until there is one.
    const AVFrame *lastFrame() const { return m_lastFrame; }

signals:
    // The working frame, valid only during the emission: copy what you need, never keep or free it.
    void frameDecoded(AVFrame *frame);
    // The end of every screenshot request, on the main thread. path is the file written or, on a
    // failed save, the file that was tried; empty when the request failed before any file.
    void screenshotFinished(bool saved, const QString &path);

public slots:
    void takeScreenshot();

private:
    void drain(AVCodecContext *context);

    QPointer<VideoDemuxer> m_demuxer;
    // Keeps the borrowed context alive if the demuxer goes first.
    std::shared_ptr<AVCodecContext> m_codecContext;
    bool m_paused = false;
    AVFrame *m_frame = nullptr;
    AVFrame *m_lastFrame = nullptr;
    QString m_serial;
    std::shared_ptr<ScreenshotWriter> m_screenshotWriter;
};
