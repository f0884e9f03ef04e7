#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

// The AutoJS command channel's two framings. The PC sends a 16-byte ASCII header (decimal body
// length in bytes 0-13, NUL padded; byte 14 the message type, "1" for JSON) and a JSON body. The
// phone answers with an 8-byte binary header (u32 body length, u32 type, big-endian) and a body.
// `feed` reads the PC's side however it is split; malformed input stops decoding for good.
class AutojsFraming
{
public:
    static constexpr int inHeaderSize = 16;
    static constexpr int outHeaderSize = 8;
    static constexpr quint32 typeJson = 1;
    // Scripts are text files; anything larger is taken for garbage.
    static constexpr qint64 maxBodySize = 16 * 1024 * 1024;

    // A phone-to-PC message: 8-byte header and the compact JSON body.
    static QByteArray encode(const QJsonObject &message);

    QList<QJsonObject> feed(const QByteArray &bytes);
    bool hasError() const { return !m_error.isEmpty(); }
    QString error() const { return m_error; }

private:
    // Body length from a complete header, or -1 with m_error set.
    qint64 parseHeader(const QByteArray &header);

    QByteArray m_buffer;
    QString m_error;
};
