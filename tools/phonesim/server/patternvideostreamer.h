#pragma once

#include "videostreamer.h"

#include <QSize>
#include <QThread>

class EncoderWorker;
class Phone;
class TestPattern;

// Streams the live test pattern, encoded on the fly. A picture is encoded when it changed, and
// at least every `repeatIntervalMs` otherwise, like a phone's screen capture; while the encoder
// is busy with one picture no other is queued, so a slow encoder lowers the frame rate instead
// of building a backlog. A rotation or a reset restarts the encoder: a new configuration packet,
// then a key frame.
class PatternVideoStreamer : public VideoStreamer
{
    Q_OBJECT
public:
    static constexpr int repeatIntervalMs = 100;
    static constexpr int defaultMaxFps = 60;

    PatternVideoStreamer(Phone *phone, TestPattern *pattern, PhoneChannel *channel, int bitRate, int maxSize,
                         int maxFps, QObject *parent = nullptr);
    ~PatternVideoStreamer() override;

    bool start(QString *error) override;
    void resetVideo() override;

private:
    void restartEncoder();
    void produceFrame();
    void handleOpened(quint64 generation, const QByteArray &config);
    void handleFailed(quint64 generation, const QString &error);
    void handleEncoded(quint64 generation, const QByteArray &data, qint64 ptsUs, bool keyFrame);

    Phone *m_phone;
    TestPattern *m_pattern;
    QThread m_thread;
    EncoderWorker *m_worker;
    int m_bitRate;
    int m_maxSize;
    int m_fps;
    QSize m_size;
    quint64 m_generation = 0;
    bool m_ready = false;    // the current generation's encoder is open
    int m_inFlight = 0;      // pictures handed to the encoder and not yet back
    qint64 m_lastFrameUs = -1;
    bool m_frameDue = true;
};
