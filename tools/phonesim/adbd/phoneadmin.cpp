#include "phoneadmin.h"

#include "journal.h"
#include "phone.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QTimer>

PhoneAdmin::PhoneAdmin(Phone *phone, quint16 port, QObject *parent)
    : QObject(parent)
    , m_phone(phone)
    , m_port(port)
{
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server.nextPendingConnection())
            serve(socket);
    });
}

QString PhoneAdmin::serverName(quint16 port)
{
    return QString("phonesim-%1").arg(port);
}

bool PhoneAdmin::listen(QString *error)
{
    // A phone that crashed leaves its socket file behind.
    QLocalServer::removeServer(serverName(m_port));
    if (m_server.listen(serverName(m_port)))
        return true;
    if (error)
        *error = QString("cannot open admin channel %1: %2").arg(serverName(m_port), m_server.errorString());
    return false;
}

void PhoneAdmin::serve(QLocalSocket *socket)
{
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
        if (!socket->canReadLine()) {
            if (socket->bytesAvailable() > 1024 * 1024)
                socket->abort();
            return;
        }
        const QJsonObject request = QJsonDocument::fromJson(socket->readLine()).object();
        const QString answer = execute(request.value("command").toString(), request.value("arg").toString());
        socket->write((answer + '\n').toUtf8());
        socket->flush();
        socket->disconnectFromServer();
    });
}

QString PhoneAdmin::execute(const QString &command, const QString &arg)
{
    m_phone->journal().write("ctl", {{"command", command}, {"arg", arg}});
    if (command == "clipboard") {
        m_phone->setClipboard(arg, false);
        return "ok";
    }
    if (command == "kill-server") {
        emit m_phone->killServerRequested();
        return "ok";
    }
    if (command == "return") {
        emit m_phone->returnRequested();
        return "ok";
    }
    if (command == "vanish") {
        emit m_phone->vanishRequested();
        return "ok";
    }
    if (command == "rotate") {
        m_phone->setRotation(m_phone->rotation() + 1);
        return "ok";
    }
    if (command == "quit") {
        // Answer first, then leave.
        QTimer::singleShot(50, this, &PhoneAdmin::quitRequested);
        return "ok";
    }
    return QString("error: unknown command '%1' (clipboard TEXT, kill-server, vanish, return, rotate, quit)").arg(command);
}

bool PhoneAdmin::send(quint16 port, const QString &command, const QString &arg, QString *answer)
{
    QLocalSocket socket;
    socket.connectToServer(serverName(port));
    if (!socket.waitForConnected(3000)) {
        *answer = QString("error: no phone on port %1 (%2)").arg(port).arg(socket.errorString());
        return false;
    }
    const QJsonObject request{{"command", command}, {"arg", arg}};
    socket.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    socket.flush();
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(5000)) {
            *answer = QString("error: the phone on port %1 did not answer").arg(port);
            return false;
        }
    }
    *answer = QString::fromUtf8(socket.readLine()).trimmed();
    return *answer == "ok";
}
