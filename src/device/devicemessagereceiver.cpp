#include "devicemessagereceiver.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QIODevice>
#include <QtEndian>

#include <limits>

namespace {
constexpr char kClipboardType = 0;
constexpr int kHeaderSize = 5;
}

DeviceMessageReceiver::DeviceMessageReceiver(QObject *parent, QIODevice *socket)
    : QObject(parent)
    , m_socket(socket)
{
    connect(socket, &QIODevice::readyRead, this, &DeviceMessageReceiver::handleIncomingData);
}

bool DeviceMessageReceiver::parseClipboard(const QByteArray &chunk, QString *text)
{
    if (chunk.size() < kHeaderSize || chunk.at(0) != kClipboardType)
        return false;
    const quint32 length = qFromBigEndian<quint32>(chunk.constData() + 1);
    if (quint64(length) + kHeaderSize > quint64(std::numeric_limits<qint32>::max()))
        return false;
    const qsizetype available = qMin<qsizetype>(length, chunk.size() - kHeaderSize);
    QByteArray bytes = chunk.mid(kHeaderSize, available);
    // The text ends at its first NUL, as a C string would.
    const qsizetype nul = bytes.indexOf('\0');
    if (nul >= 0)
        bytes.truncate(nul);
    *text = QString::fromUtf8(bytes);
    return true;
}

void DeviceMessageReceiver::handleIncomingData()
{
    if (!m_socket)
        return;
    QString text;
    if (parseClipboard(m_socket->readAll(), &text))
        QGuiApplication::clipboard()->setText(text, QClipboard::Clipboard);
}
