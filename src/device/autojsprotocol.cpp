#include "autojsprotocol.h"

#include <QJsonDocument>
#include <QtEndian>

QByteArray AutojsProtocol::encodeCommand(quint16 id, const QJsonObject &data)
{
    const QJsonObject wrapper{{"id", int(id)}, {"type", "command"}, {"data", data}};
    const QByteArray body = QJsonDocument(wrapper).toJson(QJsonDocument::Compact);
    QByteArray header(CommandHeaderSize, '\0');
    const QByteArray length = QByteArray::number(body.size()).left(14);
    header.replace(0, length.size(), length);
    header[14] = '1';
    return header + body;
}

AutojsProtocol::Take AutojsProtocol::takeReply(QByteArray &buffer, quint32 *type, QByteArray *body)
{
    if (buffer.size() < ReplyHeaderSize)
        return Take::Incomplete;
    const quint32 length = qFromBigEndian<quint32>(buffer.constData());
    if (length > MaxReplySize)
        return Take::Garbage;
    if (quint64(buffer.size()) < quint64(ReplyHeaderSize) + length)
        return Take::Incomplete;
    *type = qFromBigEndian<quint32>(buffer.constData() + 4);
    *body = buffer.mid(ReplyHeaderSize, length);
    buffer.remove(0, ReplyHeaderSize + qsizetype(length));
    return Take::Message;
}
