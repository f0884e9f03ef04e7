#pragma once

#include <QList>
#include <QObject>

struct AVFrame;
class AudioDecoder;
class AudioDemuxer;
class MediaRecorder;
class SimpleAudioPlayer;
struct SwsContext;
class FrameHandoff;
class PacketSink;
class QTcpSocket;
class VideoDecoder;
class VideoDemuxer;

// Lives on a session's media thread and owns everything that runs there: the video and audio
// sockets, their demuxers and decoders, and the sound output. Pictures in a format the views cannot draw are converted to 4:2:0 here.
class MediaWorker : public QObject
{
    Q_OBJECT

public:
    explicit MediaWorker(FrameHandoff *frames);
    ~MediaWorker() override;

    // The recorder (may be null) is the first sink of each demuxer.
    void startVideo(QTcpSocket *socket, const QList<PacketSink *> &probes, MediaRecorder *recorder = nullptr);
    // Takes ownership of socket and decoder.
    void startAudio(QTcpSocket *socket, AudioDecoder *decoder, bool deviceNameFirst, MediaRecorder *recorder);
    void setDecodingPaused(bool paused);

signals:
    void videoEnded();
    void audioUnavailable(const QString &message);

private:
    void publish(AVFrame *frame);

    FrameHandoff *m_frames;
    QTcpSocket *m_videoSocket = nullptr;
    VideoDemuxer *m_videoDemuxer = nullptr;
    VideoDecoder *m_videoDecoder = nullptr;
    QTcpSocket *m_audioSocket = nullptr;
    AudioDemuxer *m_audioDemuxer = nullptr;
    AudioDecoder *m_audioDecoder = nullptr;
    SimpleAudioPlayer *m_audioPlayer = nullptr;
    bool m_decodingPaused = false;
    SwsContext *m_converter = nullptr;
    AVFrame *m_converted = nullptr;
};
