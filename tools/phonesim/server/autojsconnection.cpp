#include "autojsconnection.h"

#include "journal.h"
#include "phone.h"
#include "phonechannel.h"

#include <QCryptographicHash>

AutojsConnection::AutojsConnection(Phone *phone, PhoneChannel *channel, QObject *parent)
    : QObject(parent)
    , m_phone(phone)
    , m_channel(channel)
{
    connect(channel, &PhoneChannel::dataReceived, this, &AutojsConnection::receive);
    connect(channel, &PhoneChannel::closed, this, &QObject::deleteLater);
    const QJsonObject data{
        {"device_name", phone->profile().model},
        {"app_version", "4.1.1 Alpha2"},
        {"app_version_code", 461},
        {"client_version", 2},
    };
    channel->write(AutojsFraming::encode({{"type", "hello"}, {"data", data}}));
}

void AutojsConnection::receive(const QByteArray &bytes)
{
    const QList<QJsonObject> messages = m_framing.feed(bytes);
    for (const QJsonObject &message : messages)
        handle(message);
    if (m_framing.hasError() && m_channel) {
        m_phone->journal().write("error", {{"source", "autojs"}, {"message", m_framing.error()}});
        disconnect(m_channel, nullptr, this, nullptr);
        m_channel->close();
        deleteLater();
    }
}

void AutojsConnection::handle(const QJsonObject &message)
{
    const QJsonObject data = message.value("data").toObject();
    const QString command = data.value("command").toString();
    QJsonObject fields{{"type", message.value("type").toString() == "command" ? command : message.value("type").toString()}};
    if (command == "run") {
        const QByteArray script = data.value("script").toString().toUtf8();
        fields.insert("name", data.value("name").toString());
        fields.insert("size", script.size());
        fields.insert("sha256", QString::fromLatin1(QCryptographicHash::hash(script, QCryptographicHash::Sha256).toHex()));
    }
    m_phone->journal().write("autojs", fields);
}
