#include "autojsserver.h"

#include "autojsconnection.h"

AutojsServer::AutojsServer(Phone *phone, QObject *parent)
    : QObject(parent)
    , m_phone(phone)
{
}

void AutojsServer::accept(PhoneChannel *channel)
{
    if (channel)
        new AutojsConnection(m_phone, channel, this);
}
