#pragma once

#include "autojsframing.h"

#include <QObject>
#include <QPointer>

class Phone;
class PhoneChannel;

// One PC connection to the AutoJS command port: greets the PC, then journals each command.
class AutojsConnection : public QObject
{
    Q_OBJECT
public:
    AutojsConnection(Phone *phone, PhoneChannel *channel, QObject *parent = nullptr);

private:
    void receive(const QByteArray &bytes);
    void handle(const QJsonObject &message);

    Phone *m_phone;
    QPointer<PhoneChannel> m_channel;
    AutojsFraming m_framing;
};
