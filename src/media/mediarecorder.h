#pragma once

#include "matroskawriter.h"
#include "messagekind.h"
#include "packetsink.h"
#include "recordingtimeline.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>

extern "C" {
#include <libavcodec/avcodec.h>
}

class QThread;

// Writes one phone's H.264 and Opus packets to a Matroska file without re-encoding. Producers
// (the demuxers, on any thread) open videoSink()/audioSink() with each stream's description and
// hand over packets through them; the file is muxed on a thread of the recorder's own,
// "VideoRecorderThread". Timestamps are regenerated from zero (RecordingTimeline), and the trailer
// is written on every stop, the recorder's destruction included, so a phone that vanishes
// mid-recording still leaves a playable file. The track's frame rate is the one the H.264
// configuration declares, 30 when it declares none.
class MediaRecorder : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isRecording READ isRecording NOTIFY isRecordingChanged)

public:
    explicit MediaRecorder(QObject *parent = nullptr);
    ~MediaRecorder() override;
    // Stops and deletes the recorder once its file is finished, waiting for that at most waitMs
    // (the trailer normally follows within milliseconds); after that the file is finished on the
    // recorder's own thread and the recorder deleted by the event loop.
    void finishAndDelete(int waitMs = 3000);

    // Which streams the session carries; the recording follows them. Set before start().
    void setStreams(bool video, bool audio);
    // The file goes to folder as "<nickname>_<serial>_<yyyyMMdd_hhmmss_zzz>.mkv", made safe for any
    // file system.
    void setOutput(const QString &folder, const QString &nickname, const QString &serial);
    static QString fileName(const QString &nickname, const QString &serial, const QDateTime &time);

    PacketSink *videoSink() { return &m_videoSink; }
    PacketSink *audioSink() { return &m_audioSink; }
    // The stream's description, taken for the next file; a new session opens its streams again.
    void openVideoStream(const AVCodecParameters *stream);
    void openAudioStream(const AVCodecParameters *stream);
    void enqueueVideoPacket(const AVPacket *packet);
    void enqueueAudioPacket(const AVPacket *packet);

    // False, with "Record Failed", when a recording is already running. While the last one's file
    // is still being finished, the new recording is queued and starts right after.
    Q_INVOKABLE bool start();
    Q_INVOKABLE void stop();
    // Owner's thread; also true while a recording waits for the last one's file to be finished.
    bool isRecording() const { return !m_stopped || m_startQueued; }
    // The file of the current or last recording; empty before the first one opened.
    QString filePath() const;

signals:
    void isRecordingChanged();
    // The phone must send a new configuration packet and key frame for the file to begin with.
    void resetVideoRequested();
    // Text, kind and display time for the user.
    void message(const QString &text, MessageKind::Kind kind, int timeout);

private:
    class Sink : public PacketSink
    {
    public:
        Sink(MediaRecorder *recorder, bool video) : m_recorder(recorder), m_video(video) {}
        void openStream(const AVCodecParameters *stream) override
        {
            m_video ? m_recorder->openVideoStream(stream) : m_recorder->openAudioStream(stream);
        }
        void pushPacket(const AVPacket *packet) override
        {
            m_video ? m_recorder->enqueueVideoPacket(packet) : m_recorder->enqueueAudioPacket(packet);
        }

    private:
        MediaRecorder *m_recorder;
        bool m_video;
    };

    void report(const QString &text, MessageKind::Kind kind);
    void requestStop();
    void record();
    bool openOutput();
    bool addVideoStream(const AVPacket *config);
    bool addAudioStream();
    void processVideo(AVPacket *packet, bool stopping);
    void processAudio(AVPacket *packet, bool stopping);
    bool chooseBase(bool stopping);
    void finish();
    static void keep(AVCodecParameters *&parameters, const AVCodecParameters *stream);

    Sink m_videoSink{this, true};
    Sink m_audioSink{this, false};
    QThread *m_thread = nullptr;

    // Standard rather than Qt's: the thread checker sees through these to the waits that release
    // the lock, and so can check everything this lock guards.
    mutable std::mutex m_mutex;
    std::condition_variable m_wakeUp;
    // Guarded by m_mutex.
    QList<AVPacket *> m_videoQueue;
    QList<AVPacket *> m_audioQueue;
    AVCodecParameters *m_videoParameters = nullptr;
    AVCodecParameters *m_audioParameters = nullptr;
    QString m_folder;
    QString m_nickname;
    QString m_serial;
    QString m_filePath;
    bool m_videoEnabled = true;
    bool m_audioEnabled = false;
    std::atomic<bool> m_stopped{true};
    bool m_startQueued = false; // owner's thread only

    // Only the recording thread touches these while it runs.
    MatroskaWriter m_file;
    bool m_keyFrameSeen = false;
    AVPacket *m_heldVideo = nullptr;
    AVPacket *m_heldAudio = nullptr;
    AVPacket *m_pendingVideo = nullptr;
    RecordingTimeline m_timeline;
};
