#include "adbconnection.h"

#include "adbmessage.h"
#include "adbstream.h"

#include <QLoggingCategory>
#include <QTcpSocket>
#include <QTimer>

Q_LOGGING_CATEGORY(lcAdbd, "phonesim.adbd", QtWarningMsg)

namespace {
int nextConnectionId = 1;

QByteArray describe(quint32 command)
{
    QByteArray name(4, '\0');
    for (int i = 0; i < 4; ++i)
        name[i] = char((command >> (8 * i)) & 0xff);
    return name;
}
}

AdbConnection::AdbConnection(QTcpSocket *socket, const QByteArray &banner, ServiceOpener opener,
                             QObject *parent)
    : QObject(parent)
    , m_socket(socket)
    , m_banner(banner)
    , m_opener(std::move(opener))
    , m_id(nextConnectionId++)
{
    m_socket->setParent(this);
    connect(m_socket, &QTcpSocket::readyRead, this, &AdbConnection::readMessages);
    connect(m_socket, &QTcpSocket::disconnected, this, [this] {
        if (m_dropped)
            return;
        m_dropped = true;
        closeAllStreams();
        emit disconnected();
    });
    readMessages();
}

AdbConnection::~AdbConnection()
{
    closeAllStreams();
}

void AdbConnection::send(quint32 command, quint32 arg0, quint32 arg1, const QByteArray &data)
{
    if (m_dropped)
        return;
    qCDebug(lcAdbd) << "send" << describe(command) << arg0 << arg1 << data.size();
    m_socket->write(AdbMessage::encode(command, arg0, arg1, data));
}

void AdbConnection::forgetStream(quint32 localId)
{
    m_streams.remove(localId);
}

AdbStream *AdbConnection::openStream(const QByteArray &destination)
{
    if (!m_connected || m_dropped)
        return nullptr;
    auto *stream = new AdbStream(this, m_nextLocalId++, 0);
    m_streams.insert(stream->localId(), stream);
    QByteArray payload = destination;
    payload.append('\0');
    send(AdbMessage::Open, stream->localId(), 0, payload);
    return stream;
}

void AdbConnection::drop()
{
    if (m_dropped)
        return;
    closeAllStreams();
    m_dropped = true;
    m_connected = false;
    m_socket->abort();
    emit disconnected();
}

void AdbConnection::readMessages()
{
    if (m_dropped)
        return;
    m_buffer.append(m_socket->readAll());
    for (;;) {
        AdbMessage message;
        switch (AdbMessage::parse(m_buffer, MaxPayload, &message)) {
        case AdbMessage::ParseResult::Incomplete:
            return;
        case AdbMessage::ParseResult::Malformed:
            qCDebug(lcAdbd) << "malformed input, dropping connection" << m_id;
            drop();
            return;
        case AdbMessage::ParseResult::Complete:
            handle(message);
            if (m_dropped)
                return;
            break;
        }
    }
}

void AdbConnection::handle(const AdbMessage &message)
{
    qCDebug(lcAdbd) << "recv" << describe(message.command) << message.arg0 << message.arg1
                    << message.data.left(200);
    if (message.command == AdbMessage::Cnxn) {
        m_maxPayload = qBound<quint32>(4096, message.arg1, MaxPayload);
        if (m_connected)
            closeAllStreams();   // a new handshake starts the session again
        m_connected = true;
        send(AdbMessage::Cnxn, Version, MaxPayload, m_banner);
        return;
    }
    if (!m_connected) {
        drop();
        return;
    }
    switch (message.command) {
    case AdbMessage::Open:
        handleOpen(message);
        break;
    case AdbMessage::Okay: {
        if (AdbStream *stream = m_streams.value(message.arg1))
            stream->handleOkay(message.arg0);
        else if (message.arg0 != 0)
            send(AdbMessage::Clse, message.arg1, message.arg0);
        break;
    }
    case AdbMessage::Wrte: {
        AdbStream *stream = m_streams.value(message.arg1);
        if (!stream) {
            send(AdbMessage::Clse, message.arg1, message.arg0);
            break;
        }
        const int delayMs = stream->readRate() > 0 ? int(qint64(message.data.size()) * 1000 / stream->readRate()) : 0;
        if (delayMs > 0) {
            // adb sends the next chunk only after this acknowledgement: the transfer slows down.
            QTimer::singleShot(delayMs, stream, [this, local = message.arg1, remote = message.arg0] {
                send(AdbMessage::Okay, local, remote);
            });
        } else {
            send(AdbMessage::Okay, message.arg1, message.arg0);
        }
        stream->handleWrite(message.data);
        break;
    }
    case AdbMessage::Clse:
        if (AdbStream *stream = m_streams.value(message.arg1))
            stream->handleClose();
        break;
    default:
        break;   // AUTH is never asked for on loopback
    }
}

void AdbConnection::handleOpen(const AdbMessage &message)
{
    if (message.arg0 == 0) {
        drop();
        return;
    }
    QByteArray destination = message.data;
    const int nul = destination.indexOf('\0');
    if (nul >= 0)
        destination.truncate(nul);
    auto *stream = new AdbStream(this, m_nextLocalId++, message.arg0);
    m_streams.insert(stream->localId(), stream);
    if (!m_opener || !m_opener(stream, destination)) {
        m_streams.remove(stream->localId());
        send(AdbMessage::Clse, 0, message.arg0);
        delete stream;
        return;
    }
    send(AdbMessage::Okay, stream->localId(), message.arg0);
    stream->accept();
}

void AdbConnection::closeAllStreams()
{
    const auto streams = m_streams.values();
    m_streams.clear();
    for (AdbStream *stream : streams)
        stream->handleClose();
}
