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
    // mode: "on" streams the tone; "disabled" or "error" send only that codec id, as a phone
    // without sound capture does.
    explicit AudioStreamer(PhoneChannel *channel, const QString &mode = "on", QObject *parent = nullptr);

    bool start(QString *error);
    void stop();

private:
    void sendDuePackets();

    QPointer<PhoneChannel> m_channel;
    QString m_mode;
    OpusToneEncoder m_encoder;
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_packetsSent = 0;
};
