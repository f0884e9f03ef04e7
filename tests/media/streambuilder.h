#pragma once

#include <QByteArray>
#include <QtEndian>

// Bytes as the phone's server sends them on the video socket.
namespace StreamBuilder {

inline QByteArray header(const QByteArray &deviceName, const QByteArray &codecId, quint32 width, quint32 height)
{
    QByteArray bytes = deviceName.left(64);
    bytes.append(QByteArray(64 - bytes.size(), '\0'));
    bytes.append(codecId.left(4).leftJustified(4, '\0'));
    char be[4];
    qToBigEndian(width, be);
    bytes.append(be, 4);
    qToBigEndian(height, be);
    bytes.append(be, 4);
    return bytes;
}

inline QByteArray packetHeader(quint64 ptsAndFlags, quint32 size)
{
    char be[12];
    qToBigEndian(ptsAndFlags, be);
    qToBigEndian(size, be + 8);
    return QByteArray(be, 12);
}

inline QByteArray packet(quint64 ptsAndFlags, const QByteArray &payload)
{
    return packetHeader(ptsAndFlags, quint32(payload.size())) + payload;
}

constexpr quint64 ConfigFlag = quint64(1) << 63;
constexpr quint64 KeyFlag = quint64(1) << 62;

} // namespace StreamBuilder
