#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

// Bytes of the media sockets: the one-time headers and the 12-byte packet header
// (8 bytes pts-and-flags, 4 bytes size, big-endian) in front of every payload.
class StreamFraming
{
public:
    StreamFraming() = delete;

    static constexpr quint32 codecH264 = 0x68323634; // "h264"
    static constexpr quint32 codecOpus = 0x6f707573; // "opus"
    // What the audio socket carries instead of a codec when the phone has no sound to give.
    static constexpr quint32 codecDisabled = 0;
    static constexpr quint32 codecError = 1;
    static constexpr quint64 configFlag = quint64(1) << 63;
    static constexpr quint64 keyFrameFlag = quint64(1) << 62;
    static constexpr int deviceNameSize = 64;
    static constexpr int packetHeaderSize = 12;

    // The device name, UTF-8, cut to fit and padded with NUL bytes. It opens only the first socket.
    static QByteArray deviceName(const QString &name);
    static QByteArray videoHeader(quint32 codecId, const QSize &size);
    static QByteArray audioHeader(quint32 codecId);
    static QByteArray packet(const QByteArray &payload, qint64 ptsUs, bool config, bool keyFrame);
};
