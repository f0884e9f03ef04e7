#include "videostreamer.h"

#include "phonechannel.h"
#include "streamframing.h"

namespace {
constexpr qint64 congestedBytes = 2 * 1024 * 1024;
}

VideoStreamer::VideoStreamer(PhoneChannel *channel, QObject *parent)
    : QObject(parent)
    , m_channel(channel)
{
    m_timer.setTimerType(Qt::PreciseTimer);
}

void VideoStreamer::stop()
{
    m_timer.stop();
    m_channel = nullptr;
}

bool VideoStreamer::channelOpen() const
{
    return m_channel && m_channel->isOpen();
}

bool VideoStreamer::channelCongested() const
{
    return m_channel && m_channel->pendingBytes() > congestedBytes;
}

void VideoStreamer::write(const QByteArray &bytes)
{
    if (channelOpen())
        m_channel->write(bytes);
}

void VideoStreamer::writePacket(const QByteArray &payload, qint64 ptsUs, bool config, bool keyFrame)
{
    write(StreamFraming::packet(payload, ptsUs, config, keyFrame));
}
