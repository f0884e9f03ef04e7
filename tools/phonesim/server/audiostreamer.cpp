#include "audiostreamer.h"

#include "phonechannel.h"
#include "streamframing.h"

namespace {
constexpr qint64 packetUs = 1000000LL * OpusToneEncoder::samplesPerPacket / OpusToneEncoder::sampleRate;
constexpr int maxPacketsPerTick = 5;
constexpr qint64 congestedBytes = 256 * 1024;
constexpr int bitRate = 128000;
}

AudioStreamer::AudioStreamer(PhoneChannel *channel, const QString &mode, QObject *parent)
    : QObject(parent)
    , m_channel(channel)
    , m_mode(mode)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &AudioStreamer::sendDuePackets);
}

bool AudioStreamer::start(QString *error)
{
    if (m_mode == "disabled" || m_mode == "error") {
        if (m_channel)
            m_channel->write(StreamFraming::audioHeader(m_mode == "disabled" ? StreamFraming::codecDisabled
                                                                             : StreamFraming::codecError));
        return true;
    }
    if (!m_encoder.open(bitRate, error))
        return false;
    if (m_channel) {
        m_channel->write(StreamFraming::audioHeader(StreamFraming::codecOpus));
        m_channel->write(StreamFraming::packet(m_encoder.config(), 0, true, false));
    }
    m_clock.start();
    sendDuePackets();
    m_timer.start(int(packetUs / 1000));
    return true;
}

void AudioStreamer::stop()
{
    m_timer.stop();
    m_channel = nullptr;
}

void AudioStreamer::sendDuePackets()
{
    if (!m_channel || !m_channel->isOpen())
        return;
    const qint64 due = m_clock.nsecsElapsed() / 1000 / packetUs + 1;
    int budget = maxPacketsPerTick;
    while (m_packetsSent < due && budget-- > 0) {
        qint64 pts = 0;
        const QByteArray packet = m_encoder.nextPacket(&pts);
        ++m_packetsSent;
        // Sound is real time: what a slow PC cannot take is lost, as on a phone.
        if (!packet.isEmpty() && m_channel->pendingBytes() < congestedBytes)
            m_channel->write(StreamFraming::packet(packet, pts, false, false));
    }
    // Far behind (a stalled event loop): skip the silence gap rather than burst.
    if (due - m_packetsSent > maxPacketsPerTick)
        m_packetsSent = due;
}
