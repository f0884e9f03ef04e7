#include "simpleaudioplayer.h"

#include <QAudioSink>
#include <QCoreApplication>
#include <QMediaDevices>
#include <QMutex>
#include <QSet>
#include <QTimer>

#include <mutex>

namespace {

constexpr int RetireMs = 3000;

// Stopped sinks waiting to be deleted; those left when the application ends go with it.
QMutex retiredLock;
QSet<QAudioSink *> retired;

void deleteRetired(QAudioSink *sink)
{
    {
        QMutexLocker lock(&retiredLock);
        if (!retired.remove(sink))
            return;
    }
    delete sink;
}

void deleteAllRetired()
{
    QSet<QAudioSink *> all;
    {
        QMutexLocker lock(&retiredLock);
        all.swap(retired);
    }
    qDeleteAll(all);
}

} // namespace

SimpleAudioPlayer::SimpleAudioPlayer(QObject *parent)
    : QObject(parent)
{
    m_format.setSampleFormat(QAudioFormat::Int16);
    m_format.setChannelCount(AudioResampler::Channels);
    m_format.setSampleRate(AudioResampler::SampleRate);
    // Without a parent: Qt gives the sink's parent to its platform part too, which must outlive
    // this player (see the destructor).
    m_sink = new QAudioSink(QMediaDevices::defaultAudioOutput(), m_format);
}

SimpleAudioPlayer::~SimpleAudioPlayer()
{
    stop();
    // Qt's PulseAudio sink can still be called back by the sound server for a moment after it stops
    // (its last buffer draining); deleted at once, such a call lands on freed memory when many
    // phones stop together. So it goes a few seconds later, on the GUI thread.
    QCoreApplication *app = QCoreApplication::instance();
    if (!app) {
        delete m_sink;
        return;
    }
    QAudioSink *sink = m_sink;
    sink->moveToThread(app->thread());
    static std::once_flag atExit;
    std::call_once(atExit, [] { qAddPostRoutine(deleteAllRetired); });
    {
        QMutexLocker lock(&retiredLock);
        retired.insert(sink);
    }
    QMetaObject::invokeMethod(app, [app, sink] { QTimer::singleShot(RetireMs, app, [sink] { deleteRetired(sink); }); },
                              Qt::QueuedConnection);
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
