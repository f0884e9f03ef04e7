#pragma once

#include "messagekind.h"

#include <QByteArray>
#include <QFuture>
#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QString>

class Device;
class QTcpSocket;
class QTimer;

// Runs and stops JavaScript files on a phone through the AutoJS app's command server: an adb
// forward from a local port to the phone's port 7347 and length-prefixed JSON commands over it.
class Autojs : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY runningStatusChanged)

public:
    static constexpr quint16 RemotePort = 7347;

    // A script file's contents, read away from the user interface.
    struct Script
    {
        bool readable = false;
        QString text;
    };
    // Reads the file on a worker thread; a group run reads it once for all its phones.
    static QFuture<Script> load(const QString &path);

    // The parent is the owning Device.
    explicit Autojs(QObject *parent);
    ~Autojs() override;

    bool isRunning() const { return m_running; }
    quint16 localPort() const { return m_localPort; }

    // How long run() waits for the connection. Tests shorten it.
    static void setConnectTimeout(int milliseconds);

    Q_INVOKABLE void run(const QString &autojsPath);
    // The same, with the script already being read.
    void run(const QString &autojsPath, const QFuture<Script> &script);
    // Gives up a run still waiting for its forward, connection or script.
    void cancelRun();
    Q_INVOKABLE void stop();

signals:
    void runningStatusChanged();
    // A JSON message from the phone ("hello", "command", "bytes_command", "log", ...).
    void messageReceived(const QJsonObject &message);
    // The answer to run(): the script was handed over, or why not.
    void runFinished(bool started, const QString &message);

private:
    void handleConnected();
    void handleConnectFailed();
    void handleReadyRead();
    void sendData(const QJsonObject &data);
    void report(const QString &message, MessageKind::Kind kind);
    void endRun(bool started, const QString &message);
    void sendScript(const QString &path, const Script &script);
    void dropForward();

    QPointer<Device> m_device;
    QTcpSocket *m_socket;
    QTimer *m_connectTimer;
    QByteArray m_receiveBuffer;
    bool m_running = false;
    quint16 m_localPort = 0;
    // The script waiting for the connection; empty when none is pending.
    QString m_pendingPath;
    QFuture<Script> m_script;
    // Counts runs, so that the answer of a run given up is never taken for a later one's.
    quint64 m_run = 0;
    // The adb forward of the run under way, on the adb work pool; 0 when none.
    quint64 m_forward = 0;
};
