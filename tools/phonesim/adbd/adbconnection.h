#pragma once

#include "reversetable.h"

#include <QByteArray>
#include <QHash>
#include <QObject>

#include <functional>

class AdbStream;
struct AdbMessage;
class QTcpSocket;

// One adb transport over a TCP socket: the handshake, the stream table and message dispatch.
// No AUTH: loopback phones are trusted like a phone whose key was accepted long ago.
class AdbConnection : public QObject
{
    Q_OBJECT
public:
    static constexpr quint32 Version = 0x01000001;
    static constexpr quint32 MaxPayload = 1024 * 1024;

    // Decides what an OPEN from the PC reaches. Returns false to refuse it (CLSE).
    using ServiceOpener = std::function<bool(AdbStream *stream, const QByteArray &destination)>;

    AdbConnection(QTcpSocket *socket, const QByteArray &banner, ServiceOpener opener,
                  QObject *parent = nullptr);
    ~AdbConnection() override;

    quint32 maxPayload() const { return m_maxPayload; }
    bool isConnected() const { return m_connected; }
    int id() const { return m_id; }
    ReverseTable &reverseTable() { return m_reverse; }

    // Opens a stream from the phone to the PC, e.g. "tcp:27183". `opened` or `closed` follows.
    AdbStream *openStream(const QByteArray &destination);
    // Drops the TCP connection; every stream emits `closed`, then `disconnected` follows.
    void drop();

    // Used by AdbStream.
    void send(quint32 command, quint32 arg0, quint32 arg1, const QByteArray &data = {});
    void forgetStream(quint32 localId);

signals:
    void disconnected();

private:
    void readMessages();
    void handle(const AdbMessage &message);
    void handleOpen(const AdbMessage &message);
    void closeAllStreams();

    QTcpSocket *m_socket;
    QByteArray m_banner;
    ServiceOpener m_opener;
    QByteArray m_buffer;
    bool m_connected = false;
    bool m_dropped = false;
    quint32 m_maxPayload = MaxPayload;
    quint32 m_nextLocalId = 1;
    int m_id;
    QHash<quint32, AdbStream *> m_streams;
    ReverseTable m_reverse;
};
