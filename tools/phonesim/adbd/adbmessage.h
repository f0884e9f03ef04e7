#pragma once

#include <QByteArray>
#include <QtGlobal>

// One adb transport message: a 24-byte little-endian header followed by its payload.
struct AdbMessage
{
    enum Command : quint32 {
        Cnxn = 0x4e584e43,
        Open = 0x4e45504f,
        Okay = 0x59414b4f,
        Wrte = 0x45545257,
        Clse = 0x45534c43,
        Auth = 0x48545541,
    };

    enum class ParseResult {
        Incomplete,   // more bytes are needed
        Complete,     // one message was taken off the front of the buffer
        Malformed,    // bad magic, oversized payload or unknown command: drop the connection
    };

    static constexpr int HeaderSize = 24;

    quint32 command = 0;
    quint32 arg0 = 0;
    quint32 arg1 = 0;
    QByteArray data;

    static QByteArray encode(quint32 command, quint32 arg0, quint32 arg1, const QByteArray &data = {});
    // Takes one message off the front of buffer when it is complete and well formed.
    static ParseResult parse(QByteArray &buffer, quint32 maxPayload, AdbMessage *message);
    static quint32 checksum(const QByteArray &data);
    static bool isKnownCommand(quint32 command);
};
