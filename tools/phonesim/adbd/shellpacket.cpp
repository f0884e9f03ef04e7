#include "shellpacket.h"

#include <QtEndian>

QByteArray ShellPacket::encode(Id id, const QByteArray &data)
{
    QByteArray bytes(HeaderSize, '\0');
    bytes[0] = char(id);
    qToLittleEndian<quint32>(quint32(data.size()), bytes.data() + 1);
    bytes.append(data);
    return bytes;
}

QByteArray ShellPacket::exitPacket(int exitCode)
{
    return encode(Exit, QByteArray(1, char(exitCode & 0xff)));
}

ShellPacket::TakeResult ShellPacket::take(QByteArray &buffer, quint8 *id, QByteArray *data)
{
    if (buffer.size() < HeaderSize)
        return TakeResult::Incomplete;
    const quint32 length = qFromLittleEndian<quint32>(buffer.constData() + 1);
    if (length > MaxLength)
        return TakeResult::Malformed;
    if (quint64(buffer.size()) < HeaderSize + quint64(length))
        return TakeResult::Incomplete;
    *id = quint8(buffer.at(0));
    *data = buffer.mid(HeaderSize, int(length));
    buffer.remove(0, HeaderSize + int(length));
    return TakeResult::Complete;
}
