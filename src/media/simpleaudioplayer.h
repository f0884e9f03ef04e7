#pragma once

#include "audioresampler.h"

#include <QAudioFormat>
#include <QObject>
#include <QPointer>

class QAudioSink;
class QIODevice;
struct AVFrame;

// Plays decoded frames on the default audio output through QAudioSink in push mode. It never
// waits: a frame that does not fit whole into the sink's free buffer is dropped, which keeps the
// delay bounded by the sink's own buffer. Lives on, and is called from, one thread.
class SimpleAudioPlayer : public QObject
{
    Q_OBJECT

public:
    explicit SimpleAudioPlayer(QObject *parent = nullptr);
    ~SimpleAudioPlayer() override;

    void start();
    void stop();
    bool isPlaying() const { return m_playing; }
    void playFrame(const AVFrame *frame);

    // Writes pcm to output only if all of it fits in bytesFree; true when written.
    static bool writeWhole(QIODevice *output, const QByteArray &pcm, qsizetype bytesFree);

    qint64 framesPlayed() const { return m_framesPlayed; }
    qint64 framesDropped() const { return m_framesDropped; }

private:
    QAudioFormat m_format;
    QAudioSink *m_sink = nullptr;
    QPointer<QIODevice> m_output;
    AudioResampler m_resampler;
    bool m_playing = false;
    qint64 m_framesPlayed = 0;
    qint64 m_framesDropped = 0;
};
