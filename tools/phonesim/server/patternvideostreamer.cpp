#include "patternvideostreamer.h"

#include "encoderworker.h"
#include "journal.h"
#include "phone.h"
#include "streamframing.h"
#include "testpattern.h"

#include <algorithm>

PatternVideoStreamer::PatternVideoStreamer(Phone *phone, TestPattern *pattern, PhoneChannel *channel, int bitRate,
                                           int maxSize, int maxFps, QObject *parent)
    : VideoStreamer(channel, parent)
    , m_phone(phone)
    , m_pattern(pattern)
    , m_worker(new EncoderWorker)
    , m_bitRate(bitRate)
    , m_maxSize(maxSize)
    , m_fps(maxFps > 0 ? std::min(maxFps, defaultMaxFps) : defaultMaxFps)
{
    m_thread.setObjectName("video encoder");
    m_worker->moveToThread(&m_thread);
    connect(m_worker, &EncoderWorker::opened, this, &PatternVideoStreamer::handleOpened);
    connect(m_worker, &EncoderWorker::failed, this, &PatternVideoStreamer::handleFailed);
    connect(m_worker, &EncoderWorker::encoded, this, &PatternVideoStreamer::handleEncoded);
    connect(&m_timer, &QTimer::timeout, this, &PatternVideoStreamer::produceFrame);
    connect(m_phone, &Phone::rotationChanged, this, &PatternVideoStreamer::resetVideo);
}

PatternVideoStreamer::~PatternVideoStreamer()
{
    m_thread.quit();
    m_thread.wait();
    delete m_worker;
}

bool PatternVideoStreamer::start(QString *)
{
    m_thread.start();
    m_size = TestPattern::videoSize(m_phone->displaySize(), m_maxSize);
    write(StreamFraming::videoHeader(StreamFraming::codecH264, m_size));
    m_clock.start();
    restartEncoder();
    m_timer.start(1000 / m_fps);
    return true;
}

void PatternVideoStreamer::resetVideo()
{
    if (m_clock.isValid())
        restartEncoder();
}

void PatternVideoStreamer::restartEncoder()
{
    ++m_generation;
    m_ready = false;
    m_size = TestPattern::videoSize(m_phone->displaySize(), m_maxSize);
    QMetaObject::invokeMethod(
        m_worker,
        [worker = m_worker, generation = m_generation, size = m_size, bitRate = m_bitRate, fps = m_fps] {
            worker->open(generation, size, bitRate, fps);
        },
        Qt::QueuedConnection);
}

void PatternVideoStreamer::handleOpened(quint64 generation, const QByteArray &config)
{
    if (generation != m_generation)
        return;
    m_ready = true;
    writePacket(config, 0, true, false);
    // The new encoder opens with a key frame; send it at once.
    m_frameDue = true;
    produceFrame();
}

void PatternVideoStreamer::handleFailed(quint64 generation, const QString &error)
{
    if (generation != m_generation)
        return;
    m_timer.stop();
    emit failed(error);
}

void PatternVideoStreamer::produceFrame()
{
    if (!channelOpen() || !m_ready || m_inFlight > 0)
        return;
    const qint64 now = elapsedUs();
    const bool repeat = m_lastFrameUs < 0 || now - m_lastFrameUs >= repeatIntervalMs * 1000;
    if (!m_frameDue && !m_pattern->changed() && !repeat)
        return;
    if (channelCongested())
        return;
    m_frameDue = false;
    m_lastFrameUs = now;
    ++m_inFlight;
    QMetaObject::invokeMethod(
        m_worker,
        [worker = m_worker, generation = m_generation, image = m_pattern->render(m_size), now] {
            worker->encode(generation, image, now);
        },
        Qt::QueuedConnection);
}

void PatternVideoStreamer::handleEncoded(quint64 generation, const QByteArray &data, qint64 ptsUs, bool keyFrame)
{
    --m_inFlight;
    // A picture of a replaced encoder would not fit the configuration the PC has now.
    if (generation == m_generation && !data.isEmpty())
        writePacket(data, ptsUs, false, keyFrame);
}
