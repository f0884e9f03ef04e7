#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTcpServer>

class AdbConnection;
class AdbStream;
class AutojsServer;
class Phone;
class PhoneChannel;
class SimServer;

// The phone's adb daemon: listens on 127.0.0.1:<port> like a phone reached over the network,
// and after "tcpip" also on the phone's own Wi-Fi address. Routes each stream the PC opens to
// its service and opens streams towards the PC for reverse tunnels.
class AdbDaemon : public QObject
{
    Q_OBJECT
public:
    AdbDaemon(Phone *phone, quint16 port, QObject *parent = nullptr);
    ~AdbDaemon() override;

    bool start(QString *error = nullptr);

    Phone *phone() const { return m_phone; }
    quint16 adbPort() const { return m_port; }
    // The Wi-Fi adb port after "tcpip", 0 before.
    int tcpipPort() const { return m_tcpipPort; }
    bool isOnline() const { return m_main.isListening(); }
    int connectionCount() const;
    // How long a reboot keeps the phone away from adb.
    void setRebootDelay(int ms) { m_rebootDelay = ms; }

    // Kills the servers whose command line matches the pattern (like pkill -f). Returns how many.
    int killServers(const QString &pattern);
    void registerServer(SimServer *server, const QString &commandLine);

    // The phone drops off adb as if unplugged and stays away.
    void vanish();
    void comeBack();

signals:
    void wentOffline();
    void cameOnline();

private:
    void acceptConnections(QTcpServer *server);
    bool openService(AdbConnection *connection, AdbStream *stream, const QByteArray &destination);
    bool openTcp(AdbStream *stream, const QByteArray &port);
    void reply(AdbStream *stream, const QByteArray &text);
    void reverse(AdbConnection *connection, AdbStream *stream, const QString &request);
    void reboot(const QString &mode);
    void tcpip(AdbStream *stream, const QString &port);
    void usb(AdbStream *stream);
    void goOffline();
    void dropConnections();
    bool listenMain(QString *error);
    PhoneChannel *openReverse(const QString &abstractName);
    QByteArray banner() const;

    Phone *m_phone;
    quint16 m_port;
    QTcpServer m_main;
    QTcpServer m_wifi;
    int m_tcpipPort = 0;
    int m_rebootDelay = 2000;
    bool m_vanished = false;
    QList<QPointer<AdbConnection>> m_connections;
    struct Server
    {
        QPointer<SimServer> server;
        QString commandLine;
    };
    QList<Server> m_servers;
    AutojsServer *m_autojs;
};
