#pragma once

#include <QtGlobal>

// The timestamps a recording is written with. Device clocks jump and jitter, so every packet is
// placed right after the previous one of its stream, lasting as long as the device clock says if
// that is plausible (up to 3 frames for video, 4 for audio) and one nominal frame otherwise. All
// values are microseconds; file times start at 0.
class RecordingTimeline
{
public:
    static constexpr qint64 DefaultFrameDuration = 33333;
    static constexpr qint64 DefaultAudioDuration = 20000;
    // The last video frame of a recording has no successor to measure it by.
    static constexpr qint64 LastFrameDuration = 100000;

    void reset();
    bool hasBase() const { return m_hasBase; }
    void setBase(qint64 devicePts);
    // Values outside 1 to 100,000 fall back to the defaults.
    void setNominalFrameDuration(qint64 microseconds);
    void setNominalAudioDuration(qint64 microseconds);
    qint64 nominalFrameDuration() const { return m_nominalFrame; }
    qint64 nominalAudioDuration() const { return m_nominalAudio; }

    // The next video frame: its file time. When a frame came before it, previousDuration gets
    // that frame's duration (otherwise it is left alone).
    qint64 placeVideo(qint64 devicePts, qint64 *previousDuration);
    // The next audio packet: its file time; duration gets its own duration.
    qint64 placeAudio(qint64 devicePts, qint64 *duration);

private:
    static qint64 bounded(qint64 delta, qint64 nominal, int factor);

    bool m_hasBase = false;
    qint64 m_base = 0;
    qint64 m_nominalFrame = DefaultFrameDuration;
    qint64 m_nominalAudio = DefaultAudioDuration;
    bool m_hasVideo = false;
    qint64 m_videoClock = 0;
    qint64 m_lastVideoRel = 0;
    bool m_hasAudio = false;
    qint64 m_audioClock = 0;
    qint64 m_lastAudioRel = 0;
};
