#include "autojsframing.h"

#include <QJsonDocument>
#include <QJsonParseError>
#include <QtEndian>

QByteArray AutojsFraming::encode(const QJsonObject &message)
{
    const QByteArray body = QJsonDocument(message).toJson(QJsonDocument::Compact);
    QByteArray out(outHeaderSize, '\0');
    qToBigEndian(quint32(body.size()), out.data());
    qToBigEndian(typeJson, out.data() + 4);
    return out + body;
}

qint64 AutojsFraming::parseHeader(const QByteArray &header)
{
    qint64 length = 0;
    int digits = 0;
    bool padding = false;
    for (int i = 0; i < 14; ++i) {
        const char c = header[i];
        if (c == '\0') {
            padding = true;
        } else if (c >= '0' && c <= '9' && !padding) {
            ++digits;
            length = length * 10 + (c - '0');
            if (length > maxBodySize) {
                m_error = QString("message length above %1 bytes").arg(maxBodySize);
                return -1;
            }
        } else {
            m_error = "header is not a decimal length";
            return -1;
        }
    }
    if (digits == 0) {
        m_error = "header holds no length";
        return -1;
    }
    if (header[14] != '1') {
        m_error = QString("unsupported message type byte 0x%1").arg(quint8(header[14]), 2, 16, QChar('0'));
        return -1;
    }
    return length;
}

QList<QJsonObject> AutojsFraming::feed(const QByteArray &bytes)
{
    QList<QJsonObject> messages;
    if (hasError())
        return messages;
    m_buffer.append(bytes);
    while (m_buffer.size() >= inHeaderSize) {
        const qint64 length = parseHeader(m_buffer.left(inHeaderSize));
        if (length < 0)
            break;
        if (m_buffer.size() < inHeaderSize + length)
            break;
        QJsonParseError parseError;
        const QJsonDocument document = QJsonDocument::fromJson(m_buffer.mid(inHeaderSize, length), &parseError);
        m_buffer.remove(0, inHeaderSize + length);
        if (!document.isObject()) {
            m_error = parseError.error == QJsonParseError::NoError ? QString("body is not a JSON object")
                                                                   : "body is not JSON: " + parseError.errorString();
            break;
        }
        messages << document.object();
    }
    if (hasError())
        m_buffer.clear();
    return messages;
}
