#pragma once

#include <QByteArray>

struct AVFrame;
struct SwrContext;

// Turns decoded audio frames into interleaved 48 kHz stereo signed 16-bit PCM. The converter is
// built from the first frame it can be built from and kept; a failed set-up is retried on the
// next frame.
class AudioResampler
{
public:
    static constexpr int SampleRate = 48000;
    static constexpr int Channels = 2;
    static constexpr int BytesPerSample = 2 * Channels;

    AudioResampler() = default;
    ~AudioResampler();
    AudioResampler(const AudioResampler &) = delete;
    AudioResampler &operator=(const AudioResampler &) = delete;

    // Empty when the frame is null, empty or could not be converted.
    QByteArray convert(const AVFrame *frame);

private:
    bool setUp(const AVFrame *frame);

    SwrContext *m_context = nullptr;
};
