#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

class AudioDecoder;
class FrameHandoff;
class MediaRecorder;
class PacketSink;
class QTcpSocket;
class QThread;
class MediaWorker;

// One session's media work, on a thread of its own: the video socket is read, demuxed and decoded
// there, and finished pictures go to the handoff. The owner's thread never touches the stream.
// Destroying the pipeline ends the thread and frees its decoder, demuxer and codec context.
class MediaPipeline : public QObject
{
    Q_OBJECT

public:
    MediaPipeline(const QString &name, FrameHandoff *frames, QObject *parent = nullptr);
    ~MediaPipeline() override;

    // Takes the socket (it must have no parent) and moves it to the media thread. probes see each
    // packet before the decoder, on the media thread; they must outlive the pipeline.
    void startVideo(QTcpSocket *socket, const QList<PacketSink *> &probes = {});
    // The recorder gets every video and audio packet first, on the media thread; set it before the
    // streams start. It must outlive the pipeline.
    void setRecorder(MediaRecorder *recorder) { m_recorder = recorder; }
    // Takes the audio socket like startVideo; its sound is decoded and played on the media thread.
    // deviceNameFirst: the socket is the session's first one (no video), so the name leads it.
    void startAudio(QTcpSocket *socket, bool deviceNameFirst);
    // Lives on the media thread; null before startAudio.
    AudioDecoder *audioDecoder() const;

    // Pauses the video and the audio decoder together. A paused decoder skips packets but the
    // socket is still read, so the phone never stalls; after a pause pictures resume at the next
    // key frame, sound at the next packet.
    void setDecodingPaused(bool paused);

    QThread *thread() const { return m_thread; }

signals:
    // The phone closed the video stream (on the owner's thread).
    void videoEnded();
    // The phone sends no sound or it cannot be played: a text for the user (on the owner's thread).
    void audioUnavailable(const QString &message);

private:
    QThread *m_thread;
    MediaWorker *m_worker;
    MediaRecorder *m_recorder = nullptr;
    QPointer<AudioDecoder> m_audioDecoder;
};
