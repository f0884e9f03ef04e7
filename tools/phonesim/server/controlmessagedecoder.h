#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

// Turns the bytes that the PC writes on the control socket into messages, however the bytes are
// split across reads. Each message becomes a JSON object with "type" (the message type's name)
// and its fields, ready for the journal. An unknown type or an absurd length makes the stream
// unusable: decoding stops and `error()` says why.
class ControlMessageDecoder
{
public:
    // Longest text accepted in one message (clipboard texts are the large ones).
    static constexpr qint64 maxTextSize = 1 << 20;

    QList<QJsonObject> feed(const QByteArray &bytes);
    bool hasError() const { return !m_error.isEmpty(); }
    QString error() const { return m_error; }

    // Size of the message at the front of `buffer`: 0 when more bytes are needed, -1 when the bytes
    // are not a message (then `error` is set).
    static qint64 messageSize(const QByteArray &buffer, QString *error);
    // Decodes one complete message as measured by messageSize.
    static QJsonObject decode(const QByteArray &message);
    // The name of a type byte, empty for types that do not exist.
    static QString typeName(int type);

private:
    QByteArray m_buffer;
    QString m_error;
};
