#include "scrcpyserver.h"

#include "adbclient.h"
#include "appconfig.h"
#include "devicemessagereceiver.h"
#include "serverparams.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

ScrcpyServer::ScrcpyServer(QObject *parent, ServerParams *params)
    : QObject(parent)
    , m_params(params)
    , m_process(new QProcess(this))
    , m_listener(new QTcpServer(this))
{
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    connect(m_process, &QProcess::readyRead, this, [this] { emit output(m_process->readAll()); });
    connect(m_process, &QProcess::finished, this, &ScrcpyServer::stopped);
    connect(m_listener, &QTcpServer::newConnection, this, &ScrcpyServer::takeConnection);
}

ScrcpyServer::~ScrcpyServer()
{
    stop();
}

bool ScrcpyServer::start()
{
    const QString serial = m_params->deviceSerial();
    bool ok = AdbClient::push(serial, AppConfig::serverPath(), "/data/local/tmp/scrcpy-server.jar");
    if (ok) {
        m_listener->setMaxPendingConnections(2);
        ok = m_listener->listen(QHostAddress::LocalHost, 0);
    }
    if (ok) {
        m_params->setPort(m_listener->serverPort());
        ok = AdbClient::reverse(serial, m_params->socketName(), m_params->port());
    }
    if (!ok) {
        emit stopped(-1, QProcess::CrashExit);
        return false;
    }
    m_process->start(AdbClient::program(), m_params->serverArguments(), QIODevice::ReadWrite);
    return true;
}

void ScrcpyServer::takeConnection()
{
    QTcpSocket *socket = m_listener->nextPendingConnection();
    if (!socket)
        return;
    socket->setParent(this);
    if (!m_videoSocket && m_params->video()) {
        m_videoSocket = socket;
        connect(socket, &QTcpSocket::disconnected, this, [this] {
            m_videoSocket = nullptr;
            emit videoSocketDisconnected();
        });
        emit videoSocketConnected();
    } else if (!m_audioSocket && m_params->audio()) {
        m_audioSocket = socket;
        connect(socket, &QTcpSocket::disconnected, this, [this] {
            m_audioSocket = nullptr;
            emit audioSocketDisconnected();
        });
        emit audioSocketConnected();
    } else if (!m_controlSocket && m_params->control()) {
        m_controlSocket = socket;
        m_receiver = new DeviceMessageReceiver(this, socket);
        connect(socket, &QTcpSocket::disconnected, this, [this] {
            m_controlSocket = nullptr;
            delete m_receiver;
            m_receiver = nullptr;
            emit controlSocketDisconnected();
        });
        emit controlSocketConnected();
    } else {
        socket->close();
        socket->deleteLater();
    }
}

void ScrcpyServer::stop()
{
    if (m_stopped)
        return;
    m_stopped = true;
    // A deliberate stop is not the server's own end: the killed process must not report one.
    m_process->disconnect(this);
    if (m_listener->isListening()) {
        m_listener->close();
        // The audio socket is left to end with the server process.
        if (m_videoSocket)
            m_videoSocket->close();
        if (m_controlSocket)
            m_controlSocket->close();
    }
    const QString serial = m_params->deviceSerial();
    AdbClient::run({"-s", serial, "shell", "pkill", "-f", "com.genymobile.scrcpy.Server"});
    AdbClient::removeReverse(serial, m_params->socketName());
    if (m_process->state() != QProcess::NotRunning) {
        m_process->kill();
        m_process->waitForFinished(2000);
    }
}
