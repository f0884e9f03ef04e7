#include "devicemessageencoder.h"

#include <QtEndian>

QByteArray DeviceMessageEncoder::clipboard(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    QByteArray out(5, '\0');
    out[0] = char(typeClipboard);
    qToBigEndian(quint32(utf8.size()), out.data() + 1);
    out.append(utf8);
    return out;
}

QByteArray DeviceMessageEncoder::ackClipboard(quint64 sequence)
{
    QByteArray out(9, '\0');
    out[0] = char(typeAckClipboard);
    qToBigEndian(sequence, out.data() + 1);
    return out;
}
