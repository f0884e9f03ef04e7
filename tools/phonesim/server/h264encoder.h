#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QSize>
#include <QString>

struct AVCodecContext;
struct AVFrame;
struct AVPacket;
struct SwsContext;

// Encodes pictures to H.264 with libx264, tuned like a phone's hardware encoder for mirroring:
// no B-frames, no look-ahead, parameter sets only in `config()` (Annex B), not in the frames.
class H264Encoder
{
public:
    struct Packet
    {
        QByteArray data;   // Annex B
        qint64 ptsUs = 0;
        bool keyFrame = false;
    };

    H264Encoder() = default;
    ~H264Encoder();
    H264Encoder(const H264Encoder &) = delete;
    H264Encoder &operator=(const H264Encoder &) = delete;

    bool open(const QSize &size, int bitRate, int fps, QString *error);
    void close();
    bool isOpen() const { return m_context != nullptr; }
    QSize size() const { return m_size; }
    // SPS and PPS with start codes: the stream's configuration packet.
    QByteArray config() const { return m_config; }

    // Encodes one picture of size() and appends what the encoder produced (one packet, with
    // zero-latency settings). Timestamps must increase; equal ones are nudged forward.
    bool encode(const QImage &image, qint64 ptsUs, QList<Packet> *packets);

private:
    AVCodecContext *m_context = nullptr;
    SwsContext *m_converter = nullptr;
    AVFrame *m_frame = nullptr;
    AVPacket *m_packet = nullptr;
    QSize m_size;
    QByteArray m_config;
    qint64 m_lastPts = -1;
};
