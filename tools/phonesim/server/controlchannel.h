#pragma once

#include "controlmessagedecoder.h"

#include <QObject>
#include <QPointer>

class Phone;
class PhoneChannel;
class TestPattern;

// The control socket: carries out what the PC asks (touches and keys show on the picture,
// clipboard, rotation, video reset), records every message in the journal, and tells the PC when
// the phone's clipboard changes.
class ControlChannel : public QObject
{
    Q_OBJECT
public:
    ControlChannel(Phone *phone, TestPattern *pattern, PhoneChannel *channel, QObject *parent = nullptr);

    void stop();

signals:
    void resetVideoRequested();

private:
    void receive(const QByteArray &bytes);
    void apply(const QJsonObject &message);
    void write(const QByteArray &bytes);

    Phone *m_phone;
    TestPattern *m_pattern;
    QPointer<PhoneChannel> m_channel;
    ControlMessageDecoder m_decoder;
};
