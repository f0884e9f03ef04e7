#pragma once

#include <QString>

extern "C" {
#include <libavcodec/avcodec.h>
}

struct AVFormatContext;
struct AVStream;

// One Matroska file of H.264 and Opus packets, written as they come without re-encoding.
// Timestamps arrive in microseconds; each track's are kept rising, as the muxer needs them.
// Used on one thread at a time.
class MatroskaWriter
{
public:
    MatroskaWriter() = default;
    ~MatroskaWriter();
    MatroskaWriter(const MatroskaWriter &) = delete;
    MatroskaWriter &operator=(const MatroskaWriter &) = delete;

    // Creates the file; false when it cannot be written.
    bool open(const QString &path);
    // The video track from the stream's description and its configuration packet (SPS and PPS),
    // at the given frame rate.
    bool addVideo(const AVCodecParameters *described, const AVPacket *config, AVRational frameRate);
    // The Opus track, 48 kHz stereo, with the stream's description (its header among it).
    bool addAudio(const AVCodecParameters *described);
    bool hasVideo() const { return m_video; }
    bool hasAudio() const { return m_audio; }
    bool writeHeader();
    bool headerWritten() const { return m_headerWritten; }
    bool writeVideo(AVPacket *packet) { return write(packet, m_video, &m_lastVideoPts); }
    bool writeAudio(AVPacket *packet) { return write(packet, m_audio, &m_lastAudioPts); }
    // Writes the trailer when the header was written, and closes the file.
    void finish();

private:
    // A new track holding the stream's description, when there is one.
    AVStream *newStream(const AVCodecParameters *described);
    bool write(AVPacket *packet, AVStream *stream, qint64 *lastWritten);
    void close();

    AVFormatContext *m_context = nullptr;
    AVStream *m_video = nullptr;
    AVStream *m_audio = nullptr;
    bool m_headerWritten = false;
    qint64 m_lastVideoPts = AV_NOPTS_VALUE;
    qint64 m_lastAudioPts = AV_NOPTS_VALUE;
};
