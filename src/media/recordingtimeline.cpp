#include "recordingtimeline.h"

namespace {
bool plausible(qint64 microseconds)
{
    return microseconds >= 1 && microseconds <= 100000;
}
} // namespace

void RecordingTimeline::reset()
{
    m_hasBase = false;
    m_base = 0;
    m_hasVideo = false;
    m_videoClock = 0;
    m_lastVideoRel = 0;
    m_hasAudio = false;
    m_audioClock = 0;
    m_lastAudioRel = 0;
}

void RecordingTimeline::setBase(qint64 devicePts)
{
    m_base = devicePts;
    m_hasBase = true;
}

void RecordingTimeline::setNominalFrameDuration(qint64 microseconds)
{
    m_nominalFrame = plausible(microseconds) ? microseconds : DefaultFrameDuration;
}

void RecordingTimeline::setNominalAudioDuration(qint64 microseconds)
{
    m_nominalAudio = plausible(microseconds) ? microseconds : DefaultAudioDuration;
}

qint64 RecordingTimeline::bounded(qint64 delta, qint64 nominal, int factor)
{
    return delta > 0 && delta <= factor * nominal ? delta : nominal;
}

qint64 RecordingTimeline::placeVideo(qint64 devicePts, qint64 *previousDuration)
{
    const qint64 rel = devicePts - m_base;
    const qint64 duration = m_hasVideo ? bounded(rel - m_lastVideoRel, m_nominalFrame, 3) : m_nominalFrame;
    m_lastVideoRel = rel;
    if (!m_hasVideo) {
        m_hasVideo = true;
        m_videoClock = 0;
        return 0;
    }
    if (previousDuration)
        *previousDuration = duration;
    m_videoClock += duration;
    return m_videoClock;
}

qint64 RecordingTimeline::placeAudio(qint64 devicePts, qint64 *duration)
{
    const qint64 rel = devicePts - m_base;
    const qint64 own = m_hasAudio ? bounded(rel - m_lastAudioRel, m_nominalAudio, 4) : m_nominalAudio;
    m_hasAudio = true;
    m_lastAudioRel = rel;
    if (duration)
        *duration = own;
    const qint64 pts = m_audioClock;
    m_audioClock += own;
    return pts;
}
