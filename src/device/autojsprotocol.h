#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QtGlobal>

// The AutoJS command channel's framing. Towards the phone: a 16-byte ASCII header (decimal body
// length in bytes 0-13, zero padded; "1" for JSON in byte 14) before a compact JSON body. From the
// phone: an 8-byte binary header (u32 body length, u32 type, big-endian) before the body.
class AutojsProtocol
{
public:
    AutojsProtocol() = delete;

    static constexpr int CommandHeaderSize = 16;
    static constexpr int ReplyHeaderSize = 8;
    static constexpr quint32 TypeJson = 1;
    // A reply announcing more than this is garbage, not a message worth waiting for.
    static constexpr quint32 MaxReplySize = 16 * 1024 * 1024;

    // The bytes of one command: {"id": id, "type": "command", "data": data}.
    static QByteArray encodeCommand(quint16 id, const QJsonObject &data);

    enum class Take { Incomplete, Message, Garbage };
    // Takes the first reply off the front of buffer once it is whole.
    static Take takeReply(QByteArray &buffer, quint32 *type, QByteArray *body);
};
