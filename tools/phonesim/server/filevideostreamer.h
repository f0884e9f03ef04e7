#pragma once

#include "annexbfileplayer.h"
#include "videostreamer.h"

// Streams a pre-encoded H.264 file in a loop at the file's frame rate, with timestamps of a
// steady clock that keeps running across the loops.
class FileVideoStreamer : public VideoStreamer
{
    Q_OBJECT
public:
    // `player` must be loaded already.
    FileVideoStreamer(const AnnexBFilePlayer &player, PhoneChannel *channel, QObject *parent = nullptr);

    bool start(QString *error) override;
    void resetVideo() override;

private:
    void sendDueFrames();

    AnnexBFilePlayer m_player;
    qint64 m_framesSent = 0;
};
