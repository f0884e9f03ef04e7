#pragma once

#include <QByteArray>
#include <QtGlobal>

// Framing of the shell protocol v2: one id byte and a 4-byte little-endian length before each
// payload, in both directions. Carries stdout, stderr and the exit code apart.
class ShellPacket
{
public:
    enum Id : quint8 {
        Stdin = 0,
        Stdout = 1,
        Stderr = 2,
        Exit = 3,
        CloseStdin = 4,
        WindowSizeChange = 5,
    };
    enum class TakeResult { Incomplete, Complete, Malformed };

    static constexpr int HeaderSize = 5;
    // Larger packets are not something adb sends; such a length means a corrupt stream.
    static constexpr quint32 MaxLength = 16 * 1024 * 1024;

    static QByteArray encode(Id id, const QByteArray &data);
    static QByteArray exitPacket(int exitCode);
    // Takes one packet off the front of buffer.
    static TakeResult take(QByteArray &buffer, quint8 *id, QByteArray *data);
};
