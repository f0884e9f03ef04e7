#include "adbdaemon.h"

#include "adbconnection.h"
#include "adbstream.h"
#include "autojsserver.h"
#include "journal.h"
#include "packageinstallsession.h"
#include "phone.h"
#include "shellsession.h"
#include "simserver.h"
#include "syncsession.h"

#include <QDir>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTimer>

namespace {
// What adb 29 makes use of: the shell protocol with exit codes, stat v2 for push, the phone
// creating parent folders of pushed files, and "cmd" for streamed installs.
const char *const features = "shell_v2,cmd,stat_v2,fixed_push_mkdir,fixed_push_symlink_timestamp,apex,remount_shell";
constexpr quint16 EchoPort = 7;
constexpr quint16 AutojsPort = 7347;
}

AdbDaemon::AdbDaemon(Phone *phone, quint16 port, QObject *parent)
    : QObject(parent)
    , m_phone(phone)
    , m_port(port)
    , m_autojs(new AutojsServer(phone, this))
{
    for (const char *folder : {"/data/local/tmp", "/sdcard/Download", "/sdcard/DCIM"})
        QDir().mkpath(phone->sandboxPath(folder));
    connect(&m_main, &QTcpServer::newConnection, this, [this] { acceptConnections(&m_main); });
    connect(&m_wifi, &QTcpServer::newConnection, this, [this] { acceptConnections(&m_wifi); });
    connect(phone, &Phone::vanishRequested, this, &AdbDaemon::vanish);
    connect(phone, &Phone::returnRequested, this, &AdbDaemon::comeBack);
    phone->setReverseOpener([this](const QString &name) { return openReverse(name); });
}

AdbDaemon::~AdbDaemon()
{
    m_phone->setReverseOpener({});
}

bool AdbDaemon::start(QString *error)
{
    return listenMain(error);
}

bool AdbDaemon::listenMain(QString *error)
{
    if (m_main.isListening())
        return true;
    if (!m_main.listen(QHostAddress::LocalHost, m_port)) {
        if (error)
            *error = QString("cannot listen on 127.0.0.1:%1: %2").arg(m_port).arg(m_main.errorString());
        return false;
    }
    emit cameOnline();
    return true;
}

int AdbDaemon::connectionCount() const
{
    int count = 0;
    for (const auto &connection : m_connections)
        count += connection ? 1 : 0;
    return count;
}

QByteArray AdbDaemon::banner() const
{
    const auto &profile = m_phone->profile();
    return QString("device::ro.product.name=%1;ro.product.model=%2;ro.product.device=%3;features=%4")
        .arg(profile.product, profile.model, profile.device, QString::fromLatin1(features))
        .toUtf8();
}

void AdbDaemon::acceptConnections(QTcpServer *server)
{
    while (QTcpSocket *socket = server->nextPendingConnection()) {
        // Streams are children of their connection.
        auto opener = [this](AdbStream *stream, const QByteArray &destination) {
            return openService(qobject_cast<AdbConnection *>(stream->parent()), stream, destination);
        };
        auto *connection = new AdbConnection(socket, banner(), opener, this);
        m_connections.append(connection);
        connect(connection, &AdbConnection::disconnected, this, [this, connection] {
            m_connections.removeAll(connection);
            connection->deleteLater();
        });
    }
}

bool AdbDaemon::openService(AdbConnection *connection, AdbStream *stream, const QByteArray &destination)
{
    if (PackageInstallSession::handles(destination)) {
        new PackageInstallSession(m_phone, stream, destination);
        return true;
    }
    if (ShellSession::handles(destination)) {
        auto *session = new ShellSession(*this, stream, destination);
        session->start();
        return true;
    }
    if (destination == "sync:") {
        new SyncSession(m_phone, stream);
        return true;
    }
    if (destination.startsWith("reverse:")) {
        reverse(connection, stream, QString::fromUtf8(destination.mid(8)));
        return true;
    }
    if (destination.startsWith("tcp:"))
        return openTcp(stream, destination.mid(4));
    if (destination.startsWith("reboot:")) {
        stream->close();
        reboot(QString::fromUtf8(destination.mid(7)));
        return true;
    }
    if (destination.startsWith("tcpip:")) {
        tcpip(stream, QString::fromUtf8(destination.mid(6)));
        return true;
    }
    if (destination == "usb:") {
        usb(stream);
        return true;
    }
    if (destination == "root:") {
        reply(stream, "adbd cannot run as root in production builds\n");
        return true;
    }
    if (destination == "unroot:") {
        reply(stream, "adbd not running as root\n");
        return true;
    }
    m_phone->journal().write("refused", {{"service", QString::fromUtf8(destination)}});
    return false;
}

bool AdbDaemon::openTcp(AdbStream *stream, const QByteArray &portText)
{
    bool ok = false;
    const uint port = portText.toUInt(&ok);
    const bool accepted = ok && (port == EchoPort || port == AutojsPort);
    m_phone->journal().write("forward", {{"port", int(port)}, {"accepted", accepted}});
    if (!accepted)
        return false;
    if (port == EchoPort)
        connect(stream, &AdbStream::dataReceived, stream, &AdbStream::write);
    else
        m_autojs->accept(stream);
    return true;
}

void AdbDaemon::reply(AdbStream *stream, const QByteArray &text)
{
    stream->write(text);
    stream->close();
}

void AdbDaemon::reverse(AdbConnection *connection, AdbStream *stream, const QString &request)
{
    bool changed = false;
    const QByteArray answer =
        connection->reverseTable().handle(request, QString("host-%1").arg(connection->id()), &changed);
    QJsonObject entry{{"request", request}, {"ok", !answer.startsWith("FAIL")}};
    const QString action = request.section(':', 0, 0);
    entry.insert("action", action);
    if (action == "forward" || action == "killforward") {
        QString pair = request.section(':', 1);
        if (pair.startsWith("norebind:"))
            pair = pair.mid(9);
        entry.insert("local", pair.section(';', 0, 0));
        if (pair.contains(';'))
            entry.insert("remote", pair.section(';', 1));
    }
    m_phone->journal().write("reverse", entry);
    reply(stream, answer);
}

PhoneChannel *AdbDaemon::openReverse(const QString &abstractName)
{
    const QString local = "localabstract:" + abstractName;
    for (int i = m_connections.size() - 1; i >= 0; --i) {
        AdbConnection *connection = m_connections.at(i);
        if (!connection || !connection->isConnected())
            continue;
        const QString target = connection->reverseTable().target(local);
        if (target.isEmpty())
            continue;
        m_phone->journal().write("reverse", {{"action", "open"}, {"local", local}, {"remote", target}, {"ok", true}});
        return connection->openStream(target.toUtf8());
    }
    m_phone->journal().write("reverse", {{"action", "open"}, {"local", local}, {"ok", false}});
    return nullptr;
}

int AdbDaemon::killServers(const QString &pattern)
{
    const QRegularExpression expression(pattern);
    int killed = 0;
    const auto servers = m_servers;
    for (const Server &entry : servers) {
        if (!entry.server)
            continue;
        const bool matches = expression.isValid() ? expression.match(entry.commandLine).hasMatch()
                                                  : entry.commandLine.contains(pattern);
        if (matches) {
            entry.server->kill();
            ++killed;
        }
    }
    return killed;
}

void AdbDaemon::registerServer(SimServer *server, const QString &commandLine)
{
    m_servers.erase(std::remove_if(m_servers.begin(), m_servers.end(),
                                   [](const Server &entry) { return entry.server.isNull(); }),
                    m_servers.end());
    m_servers.append({server, commandLine});
}

void AdbDaemon::reboot(const QString &mode)
{
    m_phone->journal().write("reboot", {{"mode", mode}});
    const bool powerOff = mode == "-p" || mode == "shutdown";
    // Let the CLSE of the request go out before the connections drop.
    QTimer::singleShot(50, this, [this, powerOff] {
        goOffline();
        if (powerOff) {
            // Journalled where the decision falls, so a test knows no boot was scheduled.
            m_phone->journal().write("power_off");
            return;
        }
        QTimer::singleShot(m_rebootDelay, this, [this] {
            if (m_vanished)
                return;
            QString error;
            if (listenMain(&error))
                m_phone->journal().write("boot");
            else
                qWarning("phonesim: after reboot: %s", qPrintable(error));
        });
    });
}

void AdbDaemon::tcpip(AdbStream *stream, const QString &portText)
{
    bool ok = false;
    const int port = portText.toInt(&ok);
    if (!ok || port <= 0 || port > 65535) {
        reply(stream, QString("invalid port %1\n").arg(portText).toUtf8());
        return;
    }
    m_phone->journal().write("tcpip", {{"port", port}, {"address", m_phone->profile().wifiAddress}});
    reply(stream, QString("restarting in TCP mode port: %1\n").arg(port).toUtf8());
    if (m_wifi.isListening() && m_wifi.serverPort() == port)
        return;
    m_wifi.close();
    const QHostAddress address(m_phone->profile().wifiAddress);
    if (!address.isLoopback() || !m_wifi.listen(address, quint16(port))) {
        qWarning("phonesim: cannot listen on %s:%d: %s", qPrintable(m_phone->profile().wifiAddress), port,
                 qPrintable(m_wifi.errorString()));
        return;
    }
    m_tcpipPort = port;
}

void AdbDaemon::usb(AdbStream *stream)
{
    m_phone->journal().write("usb");
    reply(stream, "restarting in USB mode\n");
    // adbd restarts: every transport drops, Wi-Fi adb stops, and the cable side comes back.
    QTimer::singleShot(50, this, [this] {
        m_wifi.close();
        m_tcpipPort = 0;
        dropConnections();
    });
}

void AdbDaemon::vanish()
{
    m_phone->journal().write("vanish");
    m_vanished = true;
    goOffline();
}

void AdbDaemon::comeBack()
{
    if (!m_vanished)
        return;
    m_vanished = false;
    QString error;
    if (listenMain(&error))
        m_phone->journal().write("return");
    else
        qWarning("phonesim: return: %s", qPrintable(error));
}

void AdbDaemon::goOffline()
{
    m_main.close();
    m_wifi.close();
    m_tcpipPort = 0;
    dropConnections();
    emit wentOffline();
}

void AdbDaemon::dropConnections()
{
    // Dropping one removes it from the list.
    const auto connections = m_connections;
    for (const auto &connection : connections) {
        if (connection)
            connection->drop();
    }
}
