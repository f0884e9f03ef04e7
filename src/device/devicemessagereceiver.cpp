#include "devicemessagereceiver.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QIODevice>
#include <QtEndian>

namespace {
constexpr char kClipboardType = 0;
constexpr char kAckClipboardType = 1;
constexpr qsizetype kClipboardHeaderSize = 5;
// The type byte and the 64-bit sequence number the phone acknowledges.
constexpr qsizetype kAckClipboardSize = 9;
}

DeviceMessageReceiver::DeviceMessageReceiver(QObject *parent, QIODevice *socket)
    : QObject(parent)
    , m_socket(socket)
{
    connect(socket, &QIODevice::readyRead, this, &DeviceMessageReceiver::handleIncomingData);
}

qsizetype DeviceMessageReceiver::parse(const QByteArray &buffer, QString *text, bool *isClipboard)
{
    *isClipboard = false;
    if (buffer.isEmpty())
        return Partial;
    if (buffer.at(0) == kAckClipboardType)
        return buffer.size() < kAckClipboardSize ? Partial : kAckClipboardSize;
    if (buffer.at(0) != kClipboardType)
        return Unusable;
    if (buffer.size() < kClipboardHeaderSize)
        return Partial;
    const quint32 length = qFromBigEndian<quint32>(buffer.constData() + 1);
    if (length > quint32(MaxTextSize))
        return Unusable;
    const qsizetype size = kClipboardHeaderSize + qsizetype(length);
    if (buffer.size() < size)
        return Partial;
    QByteArray bytes = buffer.mid(kClipboardHeaderSize, length);
    // The text ends at its first NUL, as a C string would.
    const qsizetype nul = bytes.indexOf('\0');
    if (nul >= 0)
        bytes.truncate(nul);
    *text = QString::fromUtf8(bytes);
    *isClipboard = true;
    return size;
}

void DeviceMessageReceiver::handleIncomingData()
{
    if (!m_socket)
        return;
    m_pending += m_socket->readAll();
    qsizetype offset = 0;
    while (offset < m_pending.size()) {
        QString text;
        bool isClipboard = false;
        const qsizetype used = parse(QByteArray::fromRawData(m_pending.constData() + offset, m_pending.size() - offset),
                                     &text, &isClipboard);
        if (used == Partial)
            break;
        if (used == Unusable) {
            // Without a length there is no telling where the next message starts.
            offset = m_pending.size();
            break;
        }
        if (isClipboard)
            QGuiApplication::clipboard()->setText(text, QClipboard::Clipboard);
        offset += used;
    }
    m_pending.remove(0, offset);
}
