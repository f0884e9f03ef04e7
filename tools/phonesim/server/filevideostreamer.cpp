#include "filevideostreamer.h"

#include "streamframing.h"

namespace {
// After a stall, catch up a little but never flood the PC.
constexpr int maxFramesPerTick = 3;
}

FileVideoStreamer::FileVideoStreamer(const AnnexBFilePlayer &player, PhoneChannel *channel, QObject *parent)
    : VideoStreamer(channel, parent)
    , m_player(player)
{
    connect(&m_timer, &QTimer::timeout, this, &FileVideoStreamer::sendDueFrames);
}

bool FileVideoStreamer::start(QString *error)
{
    if (m_player.accessUnits().isEmpty()) {
        *error = "no stream file loaded";
        return false;
    }
    write(StreamFraming::videoHeader(StreamFraming::codecH264, m_player.size()));
    writePacket(m_player.config(), 0, true, false);
    m_clock.start();
    sendDueFrames();
    m_timer.start(1000 / m_player.frameRate() / 2);
    return true;
}

void FileVideoStreamer::resetVideo()
{
    if (!m_clock.isValid())
        return;
    // Starting over from the first picture gives the decoder a key frame right after the config.
    m_player.rewind();
    writePacket(m_player.config(), 0, true, false);
    sendDueFrames();
}

void FileVideoStreamer::sendDueFrames()
{
    if (!channelOpen())
        return;
    const qint64 frameUs = 1000000 / m_player.frameRate();
    const qint64 due = elapsedUs() / frameUs + 1;
    if (due - m_framesSent > maxFramesPerTick)
        m_framesSent = due - maxFramesPerTick;
    // Pictures are never dropped, since the following ones refer to them: a congested PC makes
    // the playback pause, and the timestamps jump ahead when it resumes.
    while (m_framesSent < due && !channelCongested()) {
        const AnnexBFilePlayer::AccessUnit &unit = m_player.next();
        writePacket(unit.data, m_framesSent * frameUs, false, unit.keyFrame);
        ++m_framesSent;
    }
}
