#include "adbmessage.h"

#include <QtEndian>

QByteArray AdbMessage::encode(quint32 command, quint32 arg0, quint32 arg1, const QByteArray &data)
{
    QByteArray bytes(HeaderSize, '\0');
    char *p = bytes.data();
    qToLittleEndian<quint32>(command, p);
    qToLittleEndian<quint32>(arg0, p + 4);
    qToLittleEndian<quint32>(arg1, p + 8);
    qToLittleEndian<quint32>(quint32(data.size()), p + 12);
    qToLittleEndian<quint32>(checksum(data), p + 16);
    qToLittleEndian<quint32>(command ^ 0xffffffffu, p + 20);
    bytes.append(data);
    return bytes;
}

AdbMessage::ParseResult AdbMessage::parse(QByteArray &buffer, quint32 maxPayload, AdbMessage *message)
{
    if (buffer.size() < HeaderSize)
        return ParseResult::Incomplete;
    const char *p = buffer.constData();
    const quint32 command = qFromLittleEndian<quint32>(p);
    const quint32 length = qFromLittleEndian<quint32>(p + 12);
    const quint32 magic = qFromLittleEndian<quint32>(p + 20);
    if (magic != (command ^ 0xffffffffu) || !isKnownCommand(command) || length > maxPayload)
        return ParseResult::Malformed;
    if (quint64(buffer.size()) < quint64(HeaderSize) + length)
        return ParseResult::Incomplete;
    message->command = command;
    message->arg0 = qFromLittleEndian<quint32>(p + 4);
    message->arg1 = qFromLittleEndian<quint32>(p + 8);
    message->data = buffer.mid(HeaderSize, int(length));
    buffer.remove(0, HeaderSize + int(length));
    return ParseResult::Complete;
}

quint32 AdbMessage::checksum(const QByteArray &data)
{
    quint32 sum = 0;
    for (char c : data)
        sum += quint8(c);
    return sum;
}

bool AdbMessage::isKnownCommand(quint32 command)
{
    switch (command) {
    case Cnxn:
    case Open:
    case Okay:
    case Wrte:
    case Clse:
    case Auth:
        return true;
    default:
        return false;
    }
}
