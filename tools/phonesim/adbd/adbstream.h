#pragma once

#include "phonechannel.h"

#include <QByteArray>
#include <QList>

class AdbConnection;

// One adb stream of a transport connection, seen from the phone. Keeps at most one WRTE in
// flight and sends the next chunk only when the PC has acknowledged the previous one.
// The connection owns it and deletes it (deleteLater) after `closed`, so holders keep a QPointer
// or drop their pointer on `closed`.
class AdbStream : public PhoneChannel
{
    Q_OBJECT
public:
    AdbStream(AdbConnection *connection, quint32 localId, quint32 remoteId);

    quint32 localId() const { return m_localId; }
    quint32 remoteId() const { return m_remoteId; }

    void write(const QByteArray &data) override;
    // Sends what is still queued, then CLSE.
    void close() override;
    bool isOpen() const override { return !m_closed && !m_closing; }
    qint64 pendingBytes() const override { return m_pending; }
    // Bytes per second the phone takes in on this stream; 0 for as fast as they come.
    int readRate() const { return m_readRate; }
    void setReadRate(int bytesPerSecond) { m_readRate = bytesPerSecond; }

    // Called by the connection.
    void accept();                         // the PC's OPEN was accepted: OKAY went out, writes may flow
    void handleOkay(quint32 remoteId);     // open confirmed (phone-opened streams) or WRTE acknowledged
    void handleWrite(const QByteArray &data);
    void handleClose();                    // CLSE from the PC, refusal, or lost transport

private:
    void pump();
    void finish(bool sendClose);

    AdbConnection *m_connection;
    quint32 m_localId;
    quint32 m_remoteId;
    bool m_awaitingOpen;    // opened by the phone, not yet confirmed by the PC
    bool m_ready = false;   // WRTE may flow
    bool m_closing = false;
    bool m_closed = false;
    QList<QByteArray> m_queue;
    qint64 m_pending = 0;
    int m_inFlight = -1;
    int m_readRate = 0;   // size of the unacknowledged WRTE, -1 when none
};
