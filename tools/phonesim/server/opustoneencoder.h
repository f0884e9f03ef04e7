#pragma once

#include <QByteArray>
#include <QString>

struct AVCodecContext;
struct AVFrame;
struct AVPacket;

// A steady 440 Hz tone encoded with libopus at 48 kHz stereo, one 20 ms packet at a time.
class OpusToneEncoder
{
public:
    static constexpr int sampleRate = 48000;
    static constexpr int channels = 2;
    static constexpr int samplesPerPacket = 960;
    static constexpr double toneHz = 440.0;

    OpusToneEncoder() = default;
    ~OpusToneEncoder();
    OpusToneEncoder(const OpusToneEncoder &) = delete;
    OpusToneEncoder &operator=(const OpusToneEncoder &) = delete;

    bool open(int bitRate, QString *error);
    void close();
    // The "OpusHead" identification header: the stream's configuration packet.
    QByteArray config() const { return m_config; }
    // Encodes the next 20 ms; `ptsUs` gets its start time. Empty on failure.
    QByteArray nextPacket(qint64 *ptsUs);

private:
    AVCodecContext *m_context = nullptr;
    AVFrame *m_frame = nullptr;
    AVPacket *m_packet = nullptr;
    QByteArray m_config;
    qint64 m_samples = 0;
};
