#include "controlchannel.h"

#include "devicemessageencoder.h"
#include "journal.h"
#include "phone.h"
#include "phonechannel.h"
#include "testpattern.h"

ControlChannel::ControlChannel(Phone *phone, TestPattern *pattern, PhoneChannel *channel, QObject *parent)
    : QObject(parent)
    , m_phone(phone)
    , m_pattern(pattern)
    , m_channel(channel)
{
    connect(channel, &PhoneChannel::dataReceived, this, &ControlChannel::receive);
    connect(phone, &Phone::clipboardChangedOnPhone, this,
            [this](const QString &text) { write(DeviceMessageEncoder::clipboard(text)); });
}

void ControlChannel::stop()
{
    if (m_channel)
        disconnect(m_channel, nullptr, this, nullptr);
    disconnect(m_phone, nullptr, this, nullptr);
    m_channel = nullptr;
}

void ControlChannel::receive(const QByteArray &bytes)
{
    const QList<QJsonObject> messages = m_decoder.feed(bytes);
    for (const QJsonObject &message : messages) {
        m_phone->journal().write("control", message);
        apply(message);
    }
    if (m_decoder.hasError() && m_channel) {
        m_phone->journal().write("error", {{"source", "control"}, {"message", m_decoder.error()}});
        // A real server's control thread dies on a malformed message; so does this socket.
        QPointer<PhoneChannel> channel = m_channel;
        stop();
        channel->close();
    }
}

void ControlChannel::apply(const QJsonObject &message)
{
    const QString type = message.value("type").toString();
    if (type == "InjectKeycode") {
        m_pattern->key(message.value("keycode").toInt(), message.value("action").toInt());
    } else if (type == "InjectTouchEvent") {
        const double width = message.value("screenWidth").toDouble();
        const double height = message.value("screenHeight").toDouble();
        if (width > 0 && height > 0) {
            const QPointF position(message.value("x").toDouble() / width, message.value("y").toDouble() / height);
            m_pattern->touch(message.value("action").toInt(), message.value("pointerId").toInteger(), position);
        }
    } else if (type == "InjectText") {
        m_pattern->showText(message.value("text").toString());
    } else if (type == "SetClipboard") {
        const QString text = message.value("text").toString();
        m_phone->setClipboard(text, true);
        if (message.value("paste").toBool())
            m_pattern->showText(text);
        const qint64 sequence = message.value("sequence").toInteger();
        if (sequence != 0)
            write(DeviceMessageEncoder::ackClipboard(quint64(sequence)));
    } else if (type == "GetClipboard") {
        write(DeviceMessageEncoder::clipboard(m_phone->clipboard()));
    } else if (type == "RotateDevice") {
        m_phone->setRotation(m_phone->rotation() + 1);
    } else if (type == "ResetVideo") {
        emit resetVideoRequested();
    }
}

void ControlChannel::write(const QByteArray &bytes)
{
    if (m_channel && m_channel->isOpen())
        m_channel->write(bytes);
}
