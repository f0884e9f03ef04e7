#pragma once

#include <QByteArray>
#include <QString>

// Messages the server writes back on the control socket: type byte, then the payload, big-endian.
class DeviceMessageEncoder
{
public:
    DeviceMessageEncoder() = delete;

    static constexpr quint8 typeClipboard = 0;
    static constexpr quint8 typeAckClipboard = 1;

    // 00, u32 length, UTF-8 text without terminator.
    static QByteArray clipboard(const QString &text);
    // 01, u64 sequence: confirms a clipboard set that asked for it.
    static QByteArray ackClipboard(quint64 sequence);
};
