#include "streamframing.h"

#include <QtEndian>

namespace {

void appendU32(QByteArray &out, quint32 value)
{
    char bytes[4];
    qToBigEndian(value, bytes);
    out.append(bytes, 4);
}

void appendU64(QByteArray &out, quint64 value)
{
    char bytes[8];
    qToBigEndian(value, bytes);
    out.append(bytes, 8);
}

} // namespace

QByteArray StreamFraming::deviceName(const QString &name)
{
    QByteArray utf8 = name.toUtf8();
    // Keep a terminating NUL, and never cut a multi-byte character in half.
    while (utf8.size() > deviceNameSize - 1) {
        utf8.chop(1);
        while (!utf8.isEmpty() && (uchar(utf8.back()) & 0xc0) == 0x80)
            utf8.chop(1);
        if (!utf8.isEmpty() && uchar(utf8.back()) >= 0xc0)
            utf8.chop(1);
    }
    utf8.append(QByteArray(deviceNameSize - utf8.size(), '\0'));
    return utf8;
}

QByteArray StreamFraming::videoHeader(quint32 codecId, const QSize &size)
{
    QByteArray out;
    appendU32(out, codecId);
    appendU32(out, quint32(size.width()));
    appendU32(out, quint32(size.height()));
    return out;
}

QByteArray StreamFraming::audioHeader(quint32 codecId)
{
    QByteArray out;
    appendU32(out, codecId);
    return out;
}

QByteArray StreamFraming::packet(const QByteArray &payload, qint64 ptsUs, bool config, bool keyFrame)
{
    quint64 ptsAndFlags = config ? 0 : (quint64(ptsUs) & (keyFrameFlag - 1));
    if (config)
        ptsAndFlags |= configFlag;
    if (keyFrame)
        ptsAndFlags |= keyFrameFlag;
    QByteArray out;
    out.reserve(packetHeaderSize + payload.size());
    appendU64(out, ptsAndFlags);
    appendU32(out, quint32(payload.size()));
    out.append(payload);
    return out;
}
