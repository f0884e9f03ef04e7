#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QStringList>

class AudioDecoder;
class Controller;
class FrameHandoff;
class KeyMappingProfile;
class MediaPipeline;
class MediaRecorder;
class PacketSink;
class ScrcpyServer;
class ServerParams;

// One run of a phone's mirroring: the server on the phone, its streams read and decoded on a media
// thread of their own, and the controller that writes to it. Made when the phone starts, ended and
// deleted when the run stops; the Device, its pictures and its recorder outlive it.
class DeviceSession : public QObject
{
    Q_OBJECT

public:
    // Not owned: the pictures' handoff, the recorder and the probes belong to the device.
    DeviceSession(ServerParams *params, FrameHandoff *frames, MediaRecorder *recorder,
                  const QList<PacketSink *> &videoProbes, QObject *parent);
    ~DeviceSession() override;

    void start();
    // Stops reading and writing at once; the phone's server is killed and its tunnel removed in
    // the background. Nothing is emitted afterwards.
    void end();

    ScrcpyServer *server() const { return m_server; }
    Controller *controller() const { return m_controller; }
    // The sound decoder, living on the media thread; null until the audio socket arrives.
    AudioDecoder *audioDecoder() const;
    bool streaming() const { return m_media != nullptr; }
    // The server's last output lines, oldest first.
    QStringList lastOutput() const;

    // What the controller needs from the device's views and pictures.
    void setShowSize(QSize size);
    void setFrameSize(QSize size);
    void setKeyMappingProfile(const KeyMappingProfile *profile);
    // A picture was published; from the first one on decoding follows whether anybody looks.
    void pictureArrived();
    void applyDecodingDemand();

signals:
    void controllerChanged();
    void startFailed(const QString &error);
    // The server ended on its own.
    void serverStopped();
    void videoStreamStarted();
    void videoStreamStopped();
    void audioUnavailable(const QString &message);

private:
    MediaPipeline *mediaPipeline();
    void handleVideoSocketConnected();
    void handleAudioSocketConnected();
    void handleControlSocketConnected();

    ServerParams *m_params;
    FrameHandoff *m_frames;
    MediaRecorder *m_recorder;
    QList<PacketSink *> m_videoProbes;
    ScrcpyServer *m_server;
    MediaPipeline *m_media = nullptr;
    Controller *m_controller = nullptr;
    QSize m_showSize{-1, -1};
    QSize m_frameSize{-1, -1};
    QPointer<const KeyMappingProfile> m_keyMappingProfile;
    bool m_hasPicture = false;
    bool m_decodingPaused = false;
    bool m_ended = false;
};
