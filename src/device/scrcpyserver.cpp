#include "scrcpyserver.h"

#include "adbclient.h"
#include "adbpool.h"
#include "devicemessagereceiver.h"
#include "serverparams.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QMutex>
#include <QMutexLocker>
#include <QTcpServer>
#include <QTcpSocket>

#include <atomic>

// What the launch did on the phone, shared with the background steps: a stop that comes while
// the tunnel is being made waits for it, so that no tunnel outlives its session.
struct ScrcpyServer::Tunnel
{
    QMutex mutex;
    std::atomic_bool cancelled{false};
    QString serial;
    QString socketName;
    QString scid;
};

ScrcpyServer::ScrcpyServer(QObject *parent, ServerParams *params)
    : QObject(parent)
    , m_params(params)
    , m_process(new QProcess(this))
    , m_listener(new QTcpServer(this))
    , m_tunnel(std::make_shared<Tunnel>())
{
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    connect(m_process, &QProcess::readyRead, this, [this] {
        const QByteArray data = m_process->readAll();
        keepOutput(data);
        emit output(data);
    });
    connect(m_process, &QProcess::finished, this, &ScrcpyServer::stopped);
    connect(m_listener, &QTcpServer::newConnection, this, &ScrcpyServer::takeConnection);
}

ScrcpyServer::~ScrcpyServer()
{
    stop();
    // The killed adb process ends a moment later; deleted with the server it would be waited for here,
    // on the GUI thread.
    if (m_process->state() != QProcess::NotRunning) {
        m_process->setParent(nullptr);
        connect(m_process, &QProcess::finished, m_process, &QObject::deleteLater);
    }
}

QString ScrcpyServer::serverFile()
{
    const QString chosen = qEnvironmentVariable("KORVEL_SCRCPY_SERVER");
    return chosen.isEmpty() ? QCoreApplication::applicationDirPath() + "/third_party/scrcpy-server" : chosen;
}

void ScrcpyServer::start()
{
    m_tunnel->serial = m_params->deviceSerial();
    m_tunnel->socketName = m_params->socketName();
    m_tunnel->scid = m_params->scidText();
    m_listener->setMaxPendingConnections(3);
    if (!m_listener->listen(QHostAddress::LocalHost, 0)) {
        const QString error = tr("Cannot listen for the phone's connections: %1").arg(m_listener->errorString());
        emit startFailed(error);
        emit stopped(-1, QProcess::CrashExit);
        return;
    }
    m_params->setPort(m_listener->serverPort());

    const quint16 port = m_params->port();
    const QString serverFile = ScrcpyServer::serverFile();
    AdbPool::run(
        this,
        [tunnel = m_tunnel, port, serverFile]() -> QString {
            QMutexLocker locker(&tunnel->mutex);
            if (tunnel->cancelled)
                return QString();
            QString result = AdbClient::run({"-s", tunnel->serial, "push", serverFile, "/data/local/tmp/scrcpy-server.jar"});
            if (AdbClient::isError(result))
                return result;
            if (tunnel->cancelled)
                return QString();
            result = AdbClient::run({"-s", tunnel->serial, "reverse", "localabstract:" + tunnel->socketName,
                                     "tcp:" + QString::number(port)});
            return AdbClient::isError(result) ? result : QString();
        },
        [this](const QString &error) {
            if (m_stopped)
                return;
            if (!error.isEmpty()) {
                emit startFailed(error);
                emit stopped(-1, QProcess::CrashExit);
                return;
            }
            launch();
        });
}

void ScrcpyServer::launch()
{
    // stdin stays open: without adb's shell protocol, its end would end the remote command too.
    m_process->start(AdbClient::program(), m_params->serverArguments(), QIODevice::ReadWrite);
    emit launched();
}

void ScrcpyServer::keepOutput(const QByteArray &data)
{
    m_partialLine.append(data);
    qsizetype end;
    while ((end = m_partialLine.indexOf('\n')) >= 0) {
        const QString line = QString::fromUtf8(m_partialLine.left(end)).trimmed();
        m_partialLine.remove(0, end + 1);
        if (line.isEmpty())
            continue;
        m_outputLines.append(line);
        if (m_outputLines.size() > KeptOutputLines)
            m_outputLines.removeFirst();
    }
}

void ScrcpyServer::takeConnection()
{
    QTcpSocket *socket = m_listener->nextPendingConnection();
    if (!socket)
        return;
    socket->setParent(this);
    // Roles go by arrival, whether or not an earlier socket was handed over since.
    if (!m_videoArrived && m_params->video()) {
        m_videoArrived = true;
        m_videoSocket = socket;
        connect(socket, &QTcpSocket::disconnected, this, &ScrcpyServer::videoSocketDisconnected);
        emit videoSocketConnected();
    } else if (!m_audioArrived && m_params->audio()) {
        m_audioArrived = true;
        m_audioSocket = socket;
        connect(socket, &QTcpSocket::disconnected, this, &ScrcpyServer::audioSocketDisconnected);
        emit audioSocketConnected();
    } else if (!m_controlArrived && m_params->control()) {
        m_controlArrived = true;
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

QTcpSocket *ScrcpyServer::takeSocket(QPointer<QTcpSocket> &socket)
{
    QTcpSocket *taken = socket;
    socket = nullptr;
    if (taken) {
        taken->disconnect(this);
        taken->setParent(nullptr);
    }
    return taken;
}

QTcpSocket *ScrcpyServer::takeVideoSocket()
{
    return takeSocket(m_videoSocket);
}

QTcpSocket *ScrcpyServer::takeAudioSocket()
{
    return takeSocket(m_audioSocket);
}

void ScrcpyServer::stop()
{
    if (m_stopped)
        return;
    m_stopped = true;
    // A deliberate stop is not the server's own end: the killed process must not report one.
    m_process->disconnect(this);
    m_listener->close();
    for (QTcpSocket *socket : {m_videoSocket.data(), m_audioSocket.data(), m_controlSocket.data()}) {
        if (socket) {
            socket->disconnect(this);
            socket->abort();
        }
    }
    if (m_process->state() != QProcess::NotRunning)
        m_process->kill();

    // Only this session's server goes: another session on the same phone (another PC, another
    // instance) has another scid.
    m_tunnel->cancelled = true;
    AdbPool::post([tunnel = m_tunnel] {
        QMutexLocker locker(&tunnel->mutex);
        if (tunnel->serial.isEmpty())
            return;
        AdbClient::run({"-s", tunnel->serial, "shell", "pkill", "-f", "scid=" + tunnel->scid});
        AdbClient::removeReverse(tunnel->serial, tunnel->socketName);
    });
}
