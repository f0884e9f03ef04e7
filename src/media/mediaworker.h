#pragma once

#include <QList>
#include <QObject>

struct AVFrame;
struct SwsContext;
class FrameHandoff;
class PacketSink;
class QTcpSocket;
class VideoDecoder;
class VideoDemuxer;

// Lives on a session's media thread and owns everything that runs there: the video socket, its
// demuxer and its decoder. Pictures in a format the views cannot draw are converted to 4:2:0 here.
class MediaWorker : public QObject
{
    Q_OBJECT

public:
    explicit MediaWorker(FrameHandoff *frames);
    ~MediaWorker() override;

    void startVideo(QTcpSocket *socket, const QList<PacketSink *> &probes);
    void setDecodingPaused(bool paused);

signals:
    void videoEnded();

private:
    void publish(AVFrame *frame);

    FrameHandoff *m_frames;
    QTcpSocket *m_videoSocket = nullptr;
    VideoDemuxer *m_videoDemuxer = nullptr;
    VideoDecoder *m_videoDecoder = nullptr;
    SwsContext *m_converter = nullptr;
    AVFrame *m_converted = nullptr;
};
