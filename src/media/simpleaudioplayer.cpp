#include "simpleaudioplayer.h"

#include <QAudioSink>
#include <QMediaDevices>

SimpleAudioPlayer::SimpleAudioPlayer(QObject *parent)
    : QObject(parent)
{
    m_format.setSampleFormat(QAudioFormat::Int16);
    m_format.setChannelCount(AudioResampler::Channels);
    m_format.setSampleRate(AudioResampler::SampleRate);
    m_sink = new QAudioSink(QMediaDevices::defaultAudioOutput(), m_format, this);
}

SimpleAudioPlayer::~SimpleAudioPlayer()
{
    stop();
}

void SimpleAudioPlayer::start()
{
    if (m_playing || !m_sink)
        return;
    m_output = m_sink->start();
    m_playing = true;
}

void SimpleAudioPlayer::stop()
{
    if (!m_playing || !m_sink)
        return;
    m_sink->stop();
    m_output = nullptr;
    m_playing = false;
}

void SimpleAudioPlayer::playFrame(const AVFrame *frame)
{
    if (!m_playing || !frame || !m_output)
        return;
    const QByteArray pcm = m_resampler.convert(frame);
    if (pcm.isEmpty())
        return;
    if (writeWhole(m_output, pcm, m_sink->bytesFree()))
        ++m_framesPlayed;
    else
        ++m_framesDropped;
}

bool SimpleAudioPlayer::writeWhole(QIODevice *output, const QByteArray &pcm, qsizetype bytesFree)
{
    if (!output || pcm.isEmpty() || bytesFree < pcm.size())
        return false;
    return output->write(pcm) == pcm.size();
}
