#include "adbstream.h"

#include "adbconnection.h"
#include "adbmessage.h"

AdbStream::AdbStream(AdbConnection *connection, quint32 localId, quint32 remoteId)
    : PhoneChannel(connection)
    , m_connection(connection)
    , m_localId(localId)
    , m_remoteId(remoteId)
    , m_awaitingOpen(remoteId == 0)
{
}

void AdbStream::write(const QByteArray &data)
{
    if (data.isEmpty() || !isOpen())
        return;
    m_queue.append(data);
    m_pending += data.size();
    pump();
}

void AdbStream::close()
{
    if (m_closed || m_closing)
        return;
    if (m_awaitingOpen) {
        // The PC never confirmed it; a late OKAY is answered with CLSE by the connection.
        finish(false);
        return;
    }
    m_closing = true;
    pump();
}

void AdbStream::accept()
{
    m_ready = true;
    pump();
}

void AdbStream::handleOkay(quint32 remoteId)
{
    if (m_closed)
        return;
    if (m_awaitingOpen) {
        m_awaitingOpen = false;
        m_remoteId = remoteId;
        m_ready = true;
        emit opened();
        pump();
        return;
    }
    if (m_inFlight >= 0) {
        m_pending -= m_inFlight;
        m_inFlight = -1;
        pump();
    }
}

void AdbStream::handleWrite(const QByteArray &data)
{
    if (!m_closed)
        emit dataReceived(data);
}

void AdbStream::handleClose()
{
    finish(false);
}

void AdbStream::pump()
{
    if (m_closed || !m_ready || m_inFlight >= 0)
        return;
    if (!m_queue.isEmpty()) {
        const int max = int(m_connection->maxPayload());
        QByteArray &head = m_queue.first();
        QByteArray chunk;
        if (head.size() <= max) {
            chunk = head;
            m_queue.removeFirst();
        } else {
            chunk = head.left(max);
            head.remove(0, max);
        }
        m_inFlight = chunk.size();
        m_connection->send(AdbMessage::Wrte, m_localId, m_remoteId, chunk);
        return;
    }
    if (m_closing)
        finish(true);
}

void AdbStream::finish(bool sendClose)
{
    if (m_closed)
        return;
    if (sendClose)
        m_connection->send(AdbMessage::Clse, m_localId, m_remoteId);
    m_closed = true;
    m_queue.clear();
    m_pending = 0;
    m_inFlight = -1;
    m_connection->forgetStream(m_localId);
    emit closed();
    deleteLater();
}
