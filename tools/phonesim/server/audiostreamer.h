#pragma once

#include "opustoneencoder.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class PhoneChannel;

// Feeds the audio socket: the codec id, the Opus header as configuration packet, then one
// 20 ms packet of tone after another at real-time pace.
class AudioStreamer : public QObject
{
    Q_OBJECT
public:
    explicit AudioStreamer(PhoneChannel *channel, QObject *parent = nullptr);

    bool start(QString *error);
    void stop();

private:
    void sendDuePackets();

    QPointer<PhoneChannel> m_channel;
    OpusToneEncoder m_encoder;
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_packetsSent = 0;
};
