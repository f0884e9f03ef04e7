#include "autojs.h"

#include "adbpool.h"
#include "adbtask.h"
#include "adbworkpool.h"
#include "autojsprotocol.h"
#include "device.h"

#include <QFile>
#include <QFileInfo>
#include <QHostAddress>
#include <QJsonDocument>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QtConcurrent/QtConcurrentRun>

namespace {
int connectTimeoutMs = 30000;
}

void Autojs::setConnectTimeout(int milliseconds)
{
    connectTimeoutMs = milliseconds;
}

Autojs::Autojs(QObject *parent)
    : QObject(parent)
    , m_device(qobject_cast<Device *>(parent))
    , m_socket(new QTcpSocket(this))
    , m_connectTimer(new QTimer(this))
{
    // The system picks a free port once; every later run forwards the same one.
    QTcpServer probe;
    if (probe.listen(QHostAddress::LocalHost, 0))
        m_localPort = probe.serverPort();
    probe.close();

    m_connectTimer->setSingleShot(true);
    connect(m_connectTimer, &QTimer::timeout, this, &Autojs::handleConnectFailed);
    connect(m_socket, &QTcpSocket::connected, this, &Autojs::handleConnected);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &Autojs::handleConnectFailed);
    connect(m_socket, &QTcpSocket::readyRead, this, &Autojs::handleReadyRead);
}

void Autojs::report(const QString &message, MessageKind::Kind kind)
{
    if (m_device)
        emit m_device->deviceMessage(message, kind, MessageKind::timeoutMs(kind));
}

QFuture<Autojs::Script> Autojs::load(const QString &path)
{
    return QtConcurrent::run(AdbPool::instance(), [path] {
        Script script;
        QFile file(path);
        script.readable = file.open(QIODevice::ReadOnly);
        if (script.readable)
            script.text = QString::fromUtf8(file.readAll());
        return script;
    });
}

void Autojs::endRun(bool started, const QString &message)
{
    report(message, started ? MessageKind::Info : MessageKind::Error);
    emit runFinished(started, message);
}

void Autojs::run(const QString &autojsPath)
{
    run(autojsPath, load(autojsPath));
}

void Autojs::run(const QString &autojsPath, const QFuture<Script> &script)
{
    cancelRun();
    m_socket->abort();
    m_receiveBuffer.clear();
    if (!m_device) {
        endRun(false, tr("Failed to connect to AutoJS server"));
        return;
    }
    m_script = script;
    // The forward runs on the adb work pool, so a whole group's runs never hold up the window.
    const QStringList args{"-s", m_device->adbConnectionSerial(), "forward", "tcp:" + QString::number(m_localPort),
                           "tcp:" + QString::number(RemotePort)};
    auto *forward = new AdbTask({{args, AdbResult::Kind::Command, true, false}});
    connect(forward, &AdbTask::finished, this, [this, autojsPath, ticket = m_run](const AdbResult &result) {
        if (ticket != m_run)
            return;
        m_forward = 0;
        if (!result.ok()) {
            endRun(false, tr("Failed to connect to AutoJS server"));
            return;
        }
        // The rest happens when the connection is up or has failed.
        m_pendingPath = autojsPath;
        m_connectTimer->start(connectTimeoutMs);
        m_socket->connectToHost(QHostAddress::LocalHost, m_localPort);
    });
    m_forward = AdbWorkPool::instance()->submit(forward);
}

void Autojs::cancelRun()
{
    ++m_run;
    dropForward();
    m_connectTimer->stop();
    if (!m_pendingPath.isEmpty()) {
        m_pendingPath.clear();
        m_socket->abort();
    }
    m_script = {};
}

void Autojs::dropForward()
{
    if (m_forward)
        AdbWorkPool::cancel(m_forward);
    m_forward = 0;
}

Autojs::~Autojs()
{
    dropForward();
}

void Autojs::handleConnectFailed()
{
    if (m_pendingPath.isEmpty())
        return;
    m_pendingPath.clear();
    m_connectTimer->stop();
    m_socket->abort();
    endRun(false, tr("Failed to connect to AutoJS server"));
}

void Autojs::handleConnected()
{
    if (m_pendingPath.isEmpty())
        return;
    m_connectTimer->stop();
    const QString path = m_pendingPath;
    m_pendingPath.clear();
    // The file was read meanwhile; rarely it is still being read.
    m_script.then(this, [this, path, ticket = m_run](const Script &script) {
        if (ticket == m_run)
            sendScript(path, script);
    });
}

void Autojs::sendScript(const QString &path, const Script &script)
{
    if (!script.readable) {
        endRun(false, tr("Failed to open AutoJS script file"));
        return;
    }
    sendData({{"command", "run"},
              {"id", int(m_localPort)},
              {"name", QFileInfo(path).baseName()},
              {"script", script.text}});
    m_running = true;
    emit runningStatusChanged();
    endRun(true, tr("AutoJS script started"));
}

void Autojs::stop()
{
    sendData({{"command", "stopAll"}});
    m_running = false;
    emit runningStatusChanged();
}

void Autojs::sendData(const QJsonObject &data)
{
    // Without a connection the command has nowhere to go.
    if (m_socket->state() != QAbstractSocket::ConnectedState)
        return;
    m_socket->write(AutojsProtocol::encodeCommand(m_localPort, data));
    m_socket->flush();
}

void Autojs::handleReadyRead()
{
    m_receiveBuffer.append(m_socket->readAll());
    // Several replies may arrive in one read; each is handled before waiting for more.
    for (;;) {
        quint32 type = 0;
        QByteArray body;
        switch (AutojsProtocol::takeReply(m_receiveBuffer, &type, &body)) {
        case AutojsProtocol::Take::Incomplete:
            return;
        case AutojsProtocol::Take::Garbage:
            m_receiveBuffer.clear();
            return;
        case AutojsProtocol::Take::Message:
            break;
        }
        if (type != AutojsProtocol::TypeJson)
            continue;
        const QJsonDocument document = QJsonDocument::fromJson(body);
        if (document.isObject())
            emit messageReceived(document.object());
    }
}
